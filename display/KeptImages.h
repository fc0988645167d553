#pragma once

#include <QImage>

#include <array>
#include <cstddef>

/// Makes deep copies of images in reused memory. Nothing is allocated as long as the size does not change and only the
/// last copy is in use. Not thread-safe.
class KeptImages {
public:
    /// A copy that shares no memory with `image`; null if `image` is null.
    [[nodiscard]] QImage copyOf(const QImage& image);

private:
    // Two, because the last copy is displayed while the next one is made.
    std::array<QImage, 2> m_images;
    std::size_t m_next = 0;
};
