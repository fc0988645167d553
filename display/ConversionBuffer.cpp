#include "display/ConversionBuffer.h"

#include <new>

namespace {

constexpr std::uint32_t kBytesPerPixel = 4;

} // namespace

std::shared_ptr<ConversionBuffer> ConversionBuffer::create(std::uint32_t width, std::uint32_t height)
{
    const std::uint32_t bytes = width * height * kBytesPerPixel;
    if (bytes == 0 || bytes / kBytesPerPixel / width != height)
        return nullptr;
    // Cleared, so that an image that cannot be converted is black and not what the memory held before.
    std::unique_ptr<uchar[]> pixels(new (std::nothrow) uchar[bytes]());
    if (!pixels)
        return nullptr;
    return {new ConversionBuffer(width, height, std::move(pixels)),
            [](ConversionBuffer* buffer) { buffer->release(); }};
}

ConversionBuffer::ConversionBuffer(std::uint32_t width, std::uint32_t height, std::unique_ptr<uchar[]> pixels) noexcept
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
    QImage image(m_pixels.get(), static_cast<int>(m_width), static_cast<int>(m_height), QImage::Format_ARGB32,
                 releaseImage, this);
    // A size beyond what QImage takes gives a null image, which holds nothing and could never be given back.
    if (!image.isNull()) {
        m_users.fetch_add(1, std::memory_order_acq_rel);
        m_lent.store(true, std::memory_order_release);
    }
    return image;
}
