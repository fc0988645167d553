#pragma once

#include "tests/support/Patience.h"

#include <QImage>
#include <QObject>
#include <QVector>

class MainWindow;

/// What a window hands to its image view, from the making of this object on. Either of the two may be gone first.
class ShownImages {
public:
    /// An image that is kept shares the window's memory, so that the window needs more of it.
    enum class Keep { None, Last, All };

    explicit ShownImages(MainWindow& window, Keep keep = Keep::None);

    [[nodiscard]] int count() const { return m_count; }
    /// Those that are kept, the latest last.
    [[nodiscard]] const QVector<QImage>& images() const { return m_images; }
    /// A null image where none is kept.
    [[nodiscard]] QImage last() const { return m_images.isEmpty() ? QImage() : m_images.last(); }

    /// Handles events until `more` images have come; false where they do not.
    [[nodiscard]] bool waitForMore(int more, int patienceMs = kPatienceMs) const;

    /// As at the making.
    void forget();

private:
    void take(const QImage& image);

    Keep m_keep;
    int m_count = 0;
    QVector<QImage> m_images;
    QObject m_receiver; // last: no image comes once it is gone
};
