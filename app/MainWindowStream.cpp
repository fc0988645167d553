// The stream of the open camera: start and stop, the callbacks of the camera library, and the way of images and frame
// rates from the display thread to the window.

#include "app/MainWindow.h"

#include "camera/Flag.h"
#include "camera/OrvoCamUtl.h"
#include "display/ConversionBuffer.h"
#include "display/DispThread.h"
#include "display/ImageLoan.h"
#include "display/ImageView.h"
#include "features/view/FeatureView.h"
#include "ui_MainWindow.h"

#include <QMutexLocker>

#include <array>

namespace {

constexpr std::uint32_t kBufferCount = 8;
constexpr std::uint32_t kRequestCount = 8;

/// "%1" in two decimals, right-aligned in six characters.
QString rateText(double rate)
{
    return QStringLiteral("%1").arg(rate, 6, 'f', 2);
}

} // namespace

// --- Image parameters -----------------------------------------------------------------------------------------------

bool MainWindow::get_camera_parameter(bool* changed)
{
    *changed = false;
    if (!cameraOpened)
        return false;

    const auto read = [this](auto operation, std::uint32_t& member, const char* failure) {
        std::uint32_t value = 0;
        const CAM_API_STATUS status = operation(camera, &value);
        if (status != Orvo::CAM_API_STS_SUCCESS) {
            set_error(status, failure);
            return false;
        }
        member = value;
        return true;
    };
    if (!read(Orvo::GetCamWidth, width, "Error image width.") ||
        !read(Orvo::GetCamHeight, height, "Error image height.") ||
        !read(Orvo::GetCamPixelFormat, pixelFormat, "Error image pixel format.")) {
        return false;
    }

    // Deliberately kept when the camera is closed: another camera with the same size and format is not a change.
    static std::array<std::uint32_t, 3> last{};
    const std::array now{width, height, pixelFormat};
    *changed = now != last;
    last = now;
    return true;
}

void MainWindow::initialize_image_view(int newWidth, int newHeight)
{
    if (imageView) {
        // Remove it first, because the window would delete it when the next central widget is set.
        takeCentralWidget();
        delete imageView;
        imageView = nullptr;
    }
    if (newWidth != 0 && newHeight != 0) {
        imageView = new ImageView(this);
        setCentralWidget(imageView);
        imageView->set_image_size(newWidth, newHeight);
        imageView->show();
    } else {
        setCentralWidget(new QWidget);
    }
}

// --- Stream ---------------------------------------------------------------------------------------------------------

bool MainWindow::open_stream()
{
    if (!dispThread) {
        dispThread = new DispThread(this);
        connect(dispThread, &DispThread::dispFps, this, &MainWindow::disp_fps);
        connect(dispThread, &DispThread::dispImage, this, &MainWindow::disp_image);
        connect(dispThread, &DispThread::removedCamera, this, &MainWindow::removed_camera);
        dispThread->start();
    }

    std::uint32_t maxImageSize = 0;
    const CAM_API_STATUS status = Orvo::Strm_OpenSimple(camera, &stream, &maxImageSize, nullptr, kBufferCount, nullptr);
    if (status != Orvo::CAM_API_STS_SUCCESS) {
        set_error(status, "Strm_OpenSimple()");
        return false;
    }

    // A failed read has been logged; the stream uses the previous values.
    bool changed = false;
    if (get_camera_parameter(&changed) && changed)
        initialize_image_view(static_cast<int>(width), static_cast<int>(height));

    convBuffer = ConversionBuffer::create(width, height);
    if (!convBuffer) {
        set_error(Orvo::CAM_API_STS_UNSUCCESSFUL, "malloc error!");
        return false;
    }

    const auto registered = [this](CAM_API_STATUS result, const char* operation) {
        if (result != Orvo::CAM_API_STS_SUCCESS)
            set_error(result, operation);
        return result == Orvo::CAM_API_STS_SUCCESS;
    };
    return registered(Orvo::Strm_SetCallbackImageAcquired(stream, this, &MainWindow::CallBackImageAcquired),
                      "Strm_SetCallbackImageAcquired()") &&
           registered(Orvo::Strm_SetCallbackImageError(stream, this, &MainWindow::CallBackErrorImage),
                      "Strm_SetCallbackImageError()") &&
           registered(Orvo::Strm_SetCallbackBufferBusy(stream, this, &MainWindow::CallbackBufferBusy),
                      "Strm_SetCallbackBufferBusy()");
}

void MainWindow::start_acquisition()
{
    if (!cameraOpened || acquiring.load(std::memory_order_acquire))
        return;

    bool changed = false;
    if (get_camera_parameter(&changed) && changed)
        initialize_image_view(static_cast<int>(width), static_cast<int>(height));

    if (!open_stream()) {
        close_camera();
        return;
    }
    const CAM_API_STATUS status = Orvo::Strm_Start(stream, kRequestCount);
    if (status != Orvo::CAM_API_STS_SUCCESS) {
        set_error(status, "Error stream start.");
        close_camera();
        return;
    }

    skipFirstFps = true;
    ui->actionStart->setEnabled(false);
    change_state(MAIN_STATE_ACQUIRING);
    check_software_trigger_mode();
    if (featureView) {
        featureView->closeEditOperation();
        featureView->updateAllFeatures(true);
    }
    // Comes last, so that the display thread and the callbacks see everything above.
    acquiring.store(true, std::memory_order_release);
}

void MainWindow::stop_acquisition()
{
    acquiring.store(false, std::memory_order_release);
    if (stream != 0) {
        const CAM_API_STATUS status = Orvo::Strm_Stop(stream);
        if (status != Orvo::CAM_API_STS_SUCCESS)
            set_error(status, "Error stop acquisition.");
    }
    close_stream();
    change_state(MAIN_STATE_OPENED);
    if (featureView)
        featureView->updateAllFeatures(true);
}

bool MainWindow::close_stream()
{
    // The thread reads stream and buffer, so it ends first.
    if (dispThread) {
        dispThread->requestStop();
        dispThread->wait();
        delete dispThread;
        dispThread = nullptr;
    }
    if (stream != 0) {
        static_cast<void>(Orvo::Strm_Close(stream)); // ignored: there is nothing else to do with the stream
        stream = 0;
    }
    convBuffer.reset();
    captureCount.store(0, std::memory_order_relaxed);
    return true;
}

// --- Software trigger -----------------------------------------------------------------------------------------------

void MainWindow::execute_software_trigger()
{
    if (!cameraOpened)
        return;
    const CAM_API_STATUS status = Orvo::ExecuteCamSoftwareTrigger(camera);
    if (status != Orvo::CAM_API_STS_SUCCESS)
        set_error(status, "Error execute S/W trigger.");
}

void MainWindow::check_software_trigger_mode()
{
    // A failed read counts as "no software trigger".
    Flag triggerMode;
    std::uint32_t source = 0;
    const bool enabled = cameraOpened && state == MAIN_STATE_ACQUIRING &&
                         Orvo::GetCamTriggerMode(camera, triggerMode.out()) == Orvo::CAM_API_STS_SUCCESS &&
                         triggerMode.isSet() &&
                         Orvo::GetCamTriggerSource(camera, &source) == Orvo::CAM_API_STS_SUCCESS &&
                         source == Orvo::CAM_TRIGGER_SOURCE_SOFTWARE;
    ui->actionSoftwareTrigger->setEnabled(enabled);
    ui->action_Menu_One_Shot->setEnabled(enabled);
}

// --- Callbacks, on threads of the camera library --------------------------------------------------------------------

void MainWindow::CallBackImageAcquired(Orvo::CAM_HANDLE camera, CAM_STRM_HANDLE, Orvo::CAM_IMAGE_INFO* info,
                                       std::uint32_t, void* context)
{
    std::uint32_t index = 0;
    if (Orvo::GetCamIndexFromCamHandle(camera, &index) != Orvo::CAM_API_STS_SUCCESS)
        return;
    MainWindow& window = *static_cast<MainWindow*>(context);
    const auto frameNumber = static_cast<std::uint32_t>(info->frameNumber);
    const std::uint32_t previous = window.lastFrameNumber.exchange(frameNumber, std::memory_order_relaxed);
    // Adds differences of frame numbers, so that lost images count. For the first image of a stream the difference is
    // that to the previous stream, which affects only the first report after a start; that one is never shown.
    const bool first = !window.firstFrameSeen.exchange(true, std::memory_order_relaxed);
    window.captureCount.fetch_add(first ? 1 : frameNumber - previous, std::memory_order_relaxed);
}

void MainWindow::CallBackErrorImage(Orvo::CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t status, std::uint32_t,
                                    void* context)
{
    auto* const window = static_cast<MainWindow*>(context);
    if (!window || !window->acquiring.load(std::memory_order_acquire))
        return;
    emit window->writeLog(
        QStringLiteral("CallBackErrorImage. (status = 0x%1)").arg(QString::number(status, 16).toUpper()));
}

void MainWindow::CallbackBufferBusy(Orvo::CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t bufferIndex, void* context)
{
    auto* const window = static_cast<MainWindow*>(context);
    if (!window || !window->acquiring.load(std::memory_order_acquire))
        return;
    emit window->writeLog(QStringLiteral("CallbackBufferBusy. (uiBufferIndex = %1)").arg(bufferIndex));
}

// --- From the display thread ----------------------------------------------------------------------------------------

void MainWindow::disp_fps(double capFps, double dispFps)
{
    if (!acquiring.load(std::memory_order_acquire))
        return;
    if (skipFirstFps) {
        skipFirstFps = false;
        return;
    }
    ui->labelDispFps->setText(
        QStringLiteral("[Disp = %1 fps] , [Cap = %2 fps]").arg(rateText(dispFps), rateText(capFps)));
}

void MainWindow::disp_image(QImage image)
{
    // The display thread converts the next image only after this one is given back. An image still queued when its
    // stream stops belongs to an earlier buffer, which it keeps alive.
    const ImageLoan handOver(convBuffer.get(), image);
    if (!acquiring.load(std::memory_order_acquire))
        return;
    captureImage = displayedImages.copyOf(image);
    update_capture_image();
}

void MainWindow::update_capture_image()
{
    const QMutexLocker locker(&captureMutex);
    emit Update_Image(captureImage);
}
