#include "display/KeptImages.h"

#include <cstring>

QImage KeptImages::copyOf(const QImage& image)
{
    QImage& kept = m_images[m_next];
    m_next = (m_next + 1) % m_images.size();

    // bits() of an image that is still in use would copy the pixels, only for them to be overwritten.
    const bool reusable = kept.isDetached() && kept.size() == image.size() && kept.format() == image.format() &&
                          kept.bytesPerLine() == image.bytesPerLine();
    if (reusable) {
        std::memcpy(kept.bits(), image.constBits(), static_cast<std::size_t>(image.sizeInBytes()));
    } else {
        kept = image.copy();
    }
    return kept;
}
