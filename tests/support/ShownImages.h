#pragma once

#include "tests/support/Patience.h"

#include <QImage>
#include <QObject>
#include <QVector>

class MainWindow;

/// Records the images that a window sends to its image view, from construction on. Window and recorder may be destroyed
/// in any order.
class ShownImages {
public:
    /// Kept images share the window's memory, so the window has to allocate more of it.
    enum class Keep { None, Last, All };

    explicit ShownImages(MainWindow& window, Keep keep = Keep::None);

    [[nodiscard]] int count() const { return m_count; }
    /// The kept images, the latest last.
    [[nodiscard]] const QVector<QImage>& images() const { return m_images; }
    /// A null image if none is kept.
    [[nodiscard]] QImage last() const { return m_images.isEmpty() ? QImage() : m_images.last(); }

    /// Handles events until `more` further images arrive; false on timeout.
    [[nodiscard]] bool waitForMore(int more, int patienceMs = kPatienceMs) const;

    /// Resets to the state after construction.
    void forget();

private:
    void take(const QImage& image);

    Keep m_keep;
    int m_count = 0;
    QVector<QImage> m_images;
    QObject m_receiver; // last member: destroyed first, which stops the recording
};
