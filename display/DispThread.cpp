#include "display/DispThread.h"

#include "app/MainWindow.h"
#include "camera/OrvoCamUtl.h"
#include "display/ConversionBuffer.h"

#include <QElapsedTimer>

namespace {

constexpr unsigned long kRoundPauseUs = 2000;
constexpr unsigned long kImagePauseMs = 5;
constexpr qint64 kImagePeriodMs = 25; // conversions are more than this apart
constexpr qint64 kRatePeriodMs = 2000;

constexpr std::uint32_t kToArgb32 = 0;
constexpr std::uint32_t kConversionOption = 1;

} // namespace

struct DispThread::Loop {
    QElapsedTimer frameTimer;
    QElapsedTimer rateTimer;
    std::uint32_t displayCount = 0;
    std::uint64_t lastShownFrameNumber = 0x5555; // deliberate: a first image with this number is not shown
    std::uint32_t bufferIndex = 0;
    Orvo::CAM_IMAGE_INFO info{};
};

DispThread::DispThread(QObject* parent)
    : QThread(parent)
    , m_mainWindow(qobject_cast<MainWindow*>(parent))
{
    Q_ASSERT(m_mainWindow);
}

void DispThread::run()
{
    Loop loop;
    loop.frameTimer.start();
    loop.rateTimer.start();

    while (!isStopRequested()) {
        usleep(kRoundPauseUs);
        if (isCameraRemoved()) {
            emit removedCamera();
            return;
        }
        if (!m_mainWindow->acquiring.load(std::memory_order_acquire))
            continue;
        const bool paused = !m_mainWindow->displayEnabled.load(std::memory_order_relaxed);
        if (!paused && displayStep(loop) == Next::End)
            return;
        if (rateStep(loop) == Next::End)
            return;
    }
}

DispThread::Next DispThread::pauseUnlessStopped() const
{
    if (isStopRequested())
        return Next::End;
    msleep(kImagePauseMs);
    return Next::GoOn;
}

bool DispThread::isCameraRemoved() const
{
    const CAM_SIGNAL_HANDLE signal = m_mainWindow->removalSignal;
    return signal != 0 && Orvo::Sys_WaitForSignal(signal, 0) == Orvo::CAM_API_STS_SUCCESS;
}

DispThread::Next DispThread::displayStep(Loop& loop)
{
    // While the GUI thread uses the last image, it is not overwritten and no second one is queued. The frame timer
    // keeps running, so that the next image is converted as soon as the buffer is returned.
    if (m_mainWindow->convBuffer->isLent() || loop.frameTimer.elapsed() <= kImagePeriodMs)
        return Next::GoOn;
    loop.frameTimer.restart();

    const CAM_STRM_HANDLE stream = m_mainWindow->stream;
    if (!m_mainWindow->firstFrameSeen.load(std::memory_order_relaxed) ||
        Orvo::Strm_GetCurrentBufferIndex(stream, &loop.bufferIndex) != Orvo::CAM_API_STS_SUCCESS)
        return pauseUnlessStopped();
    if (isStopRequested())
        return Next::End;

    const bool locked = Orvo::Strm_LockBuffer(stream, loop.bufferIndex, &loop.info) == Orvo::CAM_API_STS_SUCCESS;
    if (locked && loop.info.status == Orvo::CAM_API_STS_SUCCESS && loop.info.frameNumber != loop.lastShownFrameNumber)
        return takeImage(loop);
    // Also unlocks after a failed lock. The status does not matter.
    static_cast<void>(Orvo::Strm_UnlockBuffer(stream, loop.bufferIndex));
    return pauseUnlessStopped();
}

DispThread::Next DispThread::takeImage(Loop& loop)
{
    ConversionBuffer& buffer = *m_mainWindow->convBuffer;
    // If the image cannot be converted, the buffer is shown as it is.
    static_cast<void>(Orvo::ConvImage(kToArgb32, m_mainWindow->pixelFormat, kConversionOption, buffer.pixels(),
                                      loop.info.data, m_mainWindow->width, m_mainWindow->height));
    loop.lastShownFrameNumber = loop.info.frameNumber;
    // Ignored: a failed unlock does not affect the converted image.
    static_cast<void>(Orvo::Strm_UnlockBuffer(m_mainWindow->stream, loop.bufferIndex));
    if (isStopRequested())
        return Next::End;

    ++loop.displayCount;
    emit dispImage(buffer.lend());
    return pauseUnlessStopped();
}

DispThread::Next DispThread::rateStep(Loop& loop)
{
    if (isStopRequested())
        return Next::End;
    const qint64 elapsedMs = loop.rateTimer.elapsed();
    if (elapsedMs <= kRatePeriodMs)
        return Next::GoOn;

    const auto perSecond = [elapsedMs](std::uint32_t count) { return count * 1000.0 / static_cast<double>(elapsedMs); };
    const std::uint32_t captured = m_mainWindow->captureCount.exchange(0, std::memory_order_relaxed);
    emit dispFps(perSecond(captured), perSecond(loop.displayCount));
    loop.rateTimer.restart();
    loop.displayCount = 0;
    return Next::GoOn;
}
