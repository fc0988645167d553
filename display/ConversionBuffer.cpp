#include "display/ConversionBuffer.h"

#include <new>

namespace {

constexpr std::uint32_t kBytesPerPixel = 4;

void endLoanOfMemory(void* keepAlive)
{
    delete static_cast<std::shared_ptr<ConversionBuffer>*>(keepAlive);
}

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
    return std::make_shared<ConversionBuffer>(width, height, std::move(pixels));
}

ConversionBuffer::ConversionBuffer(std::uint32_t width, std::uint32_t height, std::unique_ptr<uchar[]> pixels) noexcept
    : m_width(width)
    , m_height(height)
    , m_pixels(std::move(pixels))
{
}

QImage ConversionBuffer::lend()
{
    auto keepAlive = std::make_unique<std::shared_ptr<ConversionBuffer>>(shared_from_this());
    QImage image(m_pixels.get(), static_cast<int>(m_width), static_cast<int>(m_height), QImage::Format_ARGB32,
                 endLoanOfMemory, keepAlive.get());
    // A size beyond what QImage takes gives a null image, which owns nothing and can never be given back.
    if (!image.isNull()) {
        static_cast<void>(keepAlive.release()); // now the image's
        m_lent.store(true, std::memory_order_release);
    }
    return image;
}

void ConversionBuffer::giveBack(const QImage& image) noexcept
{
    if (image.constBits() == m_pixels.get())
        m_lent.store(false, std::memory_order_release);
}
