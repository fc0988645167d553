#pragma once

#include <QImage>

#include <array>
#include <cstddef>

/// Deep copies of images into reused memory: nothing is allocated while the images keep their size and only the last
/// copy is in use. One thread.
class KeptImages {
public:
    /// A copy that shares no pixel with `image`; null of a null image.
    [[nodiscard]] QImage copyOf(const QImage& image);

private:
    // Two, because the last copy is on screen while the next one is made.
    std::array<QImage, 2> m_images;
    std::size_t m_next = 0;
};
