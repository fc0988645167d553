#include "display/ConversionBuffer.h"

#include <algorithm>
#include <cstddef>
#include <new>

namespace {

constexpr std::uint32_t kBytesPerPixel = 4;

} // namespace

ConversionBuffer::Owner ConversionBuffer::create(std::uint32_t width, std::uint32_t height)
{
    const std::uint32_t bytes = width * height * kBytesPerPixel;
    if (bytes == 0 || bytes / kBytesPerPixel / width != height)
        return nullptr;
    const std::size_t count = bytes / kBytesPerPixel;
    std::unique_ptr<QRgb[]> pixels(new (std::nothrow) QRgb[count]);
    if (!pixels)
        return nullptr;
    std::fill_n(pixels.get(), count, qRgb(0, 0, 0));
    return Owner(new (std::nothrow) ConversionBuffer(width, height, std::move(pixels)));
}

ConversionBuffer::ConversionBuffer(std::uint32_t width, std::uint32_t height, std::unique_ptr<QRgb[]> pixels) noexcept
    : m_width(width)
    , m_height(height)
    , m_pixels(std::move(pixels))
{
}

void ConversionBuffer::release() noexcept
{
    if (m_users.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

QImage ConversionBuffer::lend()
{
    QImage image(pixels(), static_cast<int>(m_width), static_cast<int>(m_height), QImage::Format_ARGB32, releaseImage,
                 this);
    // A size beyond what QImage takes gives a null image, which holds nothing and could never be given back.
    if (!image.isNull()) {
        m_users.fetch_add(1, std::memory_order_acq_rel);
        m_lent.store(true, std::memory_order_release);
    }
    return image;
}
