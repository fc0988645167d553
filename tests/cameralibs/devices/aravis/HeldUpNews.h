#pragma once

/// Keeps the thread that tells of an unplugged camera at one moment of it: where it unlocks something of GLib's for the
/// n-th time, counted from 1. One at a time.
class HeldUpNews {
public:
    explicit HeldUpNews(int moment);

    /// Lets it go on and waits until all is told.
    ~HeldUpNews();
    HeldUpNews(const HeldUpNews&) = delete;
    HeldUpNews& operator=(const HeldUpNews&) = delete;

    /// False where all was told before the moment came.
    [[nodiscard]] bool waitForMoment() const;
    void goOn();
    void waitUntilTold() const;

private:
    const int m_toldBefore;
};
