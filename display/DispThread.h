#pragma once

#include <QImage>
#include <QThread>

#include <atomic>

class MainWindow;

/// Passes the newest image of the running stream to the GUI thread, and reports the frame rates. There is one thread
/// per started stream; the main window creates, starts, stops and deletes it on the GUI thread. It reads the main
/// window's stream members directly while `acquiring` is set.
///
/// Only run() runs on the display thread; its signals are queued to the GUI thread.
class DispThread : public QThread {
    Q_OBJECT

public:
    /// `parent` must be the main window.
    explicit DispThread(QObject* parent);

    /// Makes the thread end within milliseconds. Thread-safe.
    void requestStop() noexcept { m_stopRequested.store(true, std::memory_order_release); }

signals:
    /// Images per second since the last report, which is more than two seconds ago: captured (by frame numbers, so that
    /// lost images count) and displayed.
    void dispFps(double capFps, double dispFps);

    /// A view of the conversion buffer. The next one is emitted only after this one has been returned.
    void dispImage(QImage image);

    /// The camera was unplugged; the thread ends.
    void removedCamera();

protected:
    void run() override;

private:
    /// Whether the thread continues after a step.
    enum class Next { GoOn, End };

    struct Loop; // the state that run() keeps between iterations

    [[nodiscard]] bool isStopRequested() const noexcept { return m_stopRequested.load(std::memory_order_acquire); }
    [[nodiscard]] Next pauseUnlessStopped() const;
    [[nodiscard]] bool isCameraRemoved() const;

    [[nodiscard]] Next displayStep(Loop& loop);
    [[nodiscard]] Next takeImage(Loop& loop);
    [[nodiscard]] Next rateStep(Loop& loop);

    std::atomic<bool> m_stopRequested{false};
    MainWindow* const m_mainWindow;
};
