#pragma once

#include <QImage>
#include <QThread>

#include <atomic>

class MainWindow;

/// Brings the newest image of the running stream to the GUI, and reports the frame rates: one thread per started
/// stream, made, started, stopped and deleted by the main window on the GUI thread. It reads the main window's members
/// of the stream in place while `acquiring` is set.
///
/// run() alone lives on the display thread; its signals cross to the GUI thread as queued calls.
class DispThread : public QThread {
    Q_OBJECT

public:
    /// `parent` must be the main window.
    explicit DispThread(QObject* parent);

    /// The thread ends within milliseconds; any thread.
    void requestStop() noexcept { m_stopRequested.store(true, std::memory_order_release); }

signals:
    /// Images per second since the last report, more than two seconds ago: captured (by frame numbers, so that lost
    /// images count) and shown.
    void dispFps(double capFps, double dispFps);

    /// A view of the conversion buffer; the next one is emitted only after this one is given back.
    void dispImage(QImage image);

    /// The camera was unplugged; the thread ends.
    void removedCamera();

protected:
    void run() override;

private:
    /// Whether the thread goes on after a step.
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
