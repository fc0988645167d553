#include "display/ConversionBuffer.h"

#include <algorithm>
#include <cstddef>
#include <new>

namespace {

constexpr std::uint32_t kBytesPerPixel = 4;

} // namespace

std::shared_ptr<ConversionBuffer> ConversionBuffer::create(std::uint32_t width, std::uint32_t height)
{
    const std::uint32_t bytes = width * height * kBytesPerPixel;
    if (bytes == 0 || bytes / kBytesPerPixel / width != height)
        return nullptr;
    const std::size_t lineCount = (std::size_t{bytes} + sizeof(CacheLine) - 1) / sizeof(CacheLine);
    try {
        std::unique_ptr<CacheLine[]> lines(new CacheLine[lineCount]);
        CacheLine black{};
        black.pixels.fill(qRgb(0, 0, 0));
        std::fill_n(lines.get(), lineCount, black);
        return std::shared_ptr<ConversionBuffer>(new ConversionBuffer(width, height, std::move(lines)));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

ConversionBuffer::ConversionBuffer(std::uint32_t width, std::uint32_t height,
                                   std::unique_ptr<CacheLine[]> lines) noexcept
    : m_width(width)
    , m_height(height)
    , m_lines(std::move(lines))
{
}

QImage ConversionBuffer::lend()
{
    using Hold = std::shared_ptr<ConversionBuffer>;
    auto hold = std::make_unique<Hold>(shared_from_this());
    const QImageCleanupFunction letGo = [](void* held) { delete static_cast<Hold*>(held); };
    QImage image(pixels(), static_cast<int>(m_width), static_cast<int>(m_height), QImage::Format_ARGB32, letGo,
                 hold.get());
    // If QImage does not support the size, the image is null and never calls its clean-up function, so the loan would
    // never end.
    if (!image.isNull()) {
        static_cast<void>(hold.release());
        m_lent.store(true, std::memory_order_release);
    }
    return image;
}
