#include "app/MainWindow.h"

#include "app/ActionStates.h"
#include "app/MessageLog.h"
#include "camera/OrvoCamUtl.h"
#include "camera/StatusName.h"
#include "discovery/DiscoveryDlg.h"
#include "display/DispThread.h"
#include "features/view/FeatureView.h"
#include "ui_MainWindow.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>

namespace {

constexpr std::uint32_t kEveryLayer = 65535;

constexpr int kTopDockHeight = 25;
constexpr int kRightDockWidth = 500;
constexpr int kBottomDockHeight = 170;

/// Shows the wait cursor for as long as it lives.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(WaitCursor)
};

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui_MainWindow>())
{
    ui->setupUi(this);
    messageLog = new MessageLog(*ui->messageLogEdit);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    move(QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size(), screen).topLeft());

    if (!operationLog.open())
        set_error(Orvo::CAM_API_STS_FILE_OPEN_ERROR, operationLog.failure());

    // After a failure the window stays open, with the actions as the form sets them.
    CAM_API_STATUS status = Orvo::Sys_Initialize(kEveryLayer);
    if (status != Orvo::CAM_API_STS_SUCCESS) {
        set_error(status, "Sys_Initialize error!");
        return;
    }
    status = Orvo::PrepareLUT();
    if (status != Orvo::CAM_API_STS_SUCCESS) {
        set_error(status, "PrepareLUT error!");
        return;
    }

    ui->dockWidget_Top->setFixedHeight(kTopDockHeight);
    // Some styles reserve space for a frame around docks when they first style them, which would cut off the frame
    // rates.
    ui->dockWidget_Top->ensurePolished();
    ui->dockWidget_Top->setContentsMargins(0, 0, 0, 0);
    ui->dockWidgetRight->setFixedWidth(kRightDockWidth);
    ui->dockWidgetBottom->setFixedHeight(kBottomDockHeight);

    state = MAIN_STATE_IDLE;
    scale = 1.0;
    update_main_dialog();
}

MainWindow::~MainWindow()
{
    terminate();
}

// --- Message log ----------------------------------------------------------------------------------------------------

void MainWindow::write_log(QString text)
{
    if (logEnabled)
        messageLog->append(text);
}

void MainWindow::set_error(CAM_API_STATUS status, QString title_str)
{
    write_log(QStringLiteral("ERROR: %1 [%2]").arg(title_str, QLatin1String(cameraStatusName(status))));
}

void MainWindow::write_operation(const QString& entry)
{
    if (!operationLog.append(entry))
        set_error(Orvo::CAM_API_STS_FILE_WRITE_ERROR, operationLog.failure());
}

void MainWindow::on_pushButtonClear_clicked()
{
    messageLog->clear();
}

// --- State ----------------------------------------------------------------------------------------------------------

void MainWindow::change_state(MAIN_STATE newState)
{
    state = newState;
    update_main_dialog();
}

void MainWindow::update_main_dialog()
{
    applyActionStates(*ui, state, scale);
}

// --- Opening and closing a camera -----------------------------------------------------------------------------------

void MainWindow::open_camera()
{
    if (cameraOpened)
        return;
    change_state(MAIN_STATE_OPENING);

    bool chosen = false;
    {
        DiscoveryDlg dialog(this);
        connect(&dialog, &DiscoveryDlg::setError, this, &MainWindow::set_error);
        connect(&dialog, &DiscoveryDlg::writeLog, this, &MainWindow::write_log);
        // Deliberately connected again at every opening: after the n-th, each line of a callback is written n times.
        connect(this, &MainWindow::writeLog, this, &MainWindow::write_log);
        chosen = dialog.exec() == QDialog::Accepted;
        if (chosen)
            cameraIndex = dialog.current_device;
    }
    if (!chosen) {
        change_state(MAIN_STATE_IDLE);
        return;
    }

    const WaitCursor waitCursor;
    if (removalSignal == 0) {
        // The camera can be opened without a signal; then its removal is not noticed.
        static_cast<void>(Orvo::Sys_CreateSignal(&removalSignal));
    }
    const CAM_API_STATUS status = Orvo::Cam_Open(cameraIndex, &camera, removalSignal, 1, nullptr, 1);
    if (status != Orvo::CAM_API_STS_SUCCESS) {
        set_error(status, "Error Cam_Open()");
        const char* description = nullptr;
        if (status == Orvo::CAM_API_STS_GENICAM_ERR &&
            Orvo::Misc_GetLastGenICamError(&description) == Orvo::CAM_API_STS_SUCCESS) {
            write_log(QStringLiteral("  GenICam Error description: %1").arg(QString::fromUtf8(description)));
        }
        change_state(MAIN_STATE_IDLE);
        return;
    }
    cameraOpened = true;

    bool changed = false;
    if (!get_camera_parameter(&changed)) {
        // This line deliberately shows success; the failed read has already been logged.
        set_error(Orvo::CAM_API_STS_SUCCESS, "Error Cam_Open()");
        close_camera();
        return;
    }
    captureCount.store(0, std::memory_order_relaxed);
    lastFrameNumber.store(0, std::memory_order_relaxed);
    initialize_image_view(static_cast<int>(width), static_cast<int>(height));

    featureView = new FeatureView;
    ui->dockWidgetRight->setWidget(featureView);
    // Connected before SetCam(), which makes the first entry.
    connect(featureView, &FeatureView::OpeLogAppended, this, &MainWindow::write_operation);
    static_cast<void>(featureView->SetCam(camera)); // without a node map the browser stays empty
    connect(featureView, &FeatureView::checkSoftwareTriggerMode, this, &MainWindow::check_software_trigger_mode);

    change_state(MAIN_STATE_OPENED);
}

void MainWindow::close_camera()
{
    acquiring.store(false, std::memory_order_release);
    if (dispThread)
        dispThread->requestStop();

    stop_acquisition();

    if (featureView) {
        ui->dockWidgetRight->setWidget(nullptr);
        featureView->close();
        delete featureView;
        featureView = nullptr;
    }

    close_stream();
    if (camera != 0) {
        static_cast<void>(Orvo::Cam_Close(camera)); // ignored: there is nothing else to do with the camera
        camera = 0;
    }
    if (removalSignal != 0) {
        static_cast<void>(Orvo::Sys_CloseSignal(removalSignal)); // as above
        removalSignal = 0;
    }

    initialize_image_view(0, 0);
    on_actionNormalSize_triggered();

    cameraOpened = false;
    change_state(MAIN_STATE_IDLE);
}

void MainWindow::removed_camera()
{
    write_log("A camera has been Removed.");
    // The removal arrives through the event queue: by then the user may have closed that camera and be choosing the
    // next one, which must not be affected.
    if (!cameraOpened)
        return;

    // Failures while closing a removed camera do not interest the user.
    const bool logWasEnabled = logEnabled;
    logEnabled = false;
    close_camera();
    logEnabled = logWasEnabled;
}

void MainWindow::terminate()
{
    close_camera();
    const CAM_API_STATUS status = Orvo::Sys_Terminate();
    if (status != Orvo::CAM_API_STS_SUCCESS)
        set_error(status, "Sys_Terminate error!");
}
