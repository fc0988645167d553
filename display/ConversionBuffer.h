#pragma once

#include <QImage>
#include <QRgb>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

/// The pixels that the display thread converts into and lends to the GUI thread, one image at a time.
///
/// A lent image keeps the memory alive, because it may still be queued when its stream is closed. create(), isLent()
/// and lend() are called on the display thread or while it does not run; the GUI thread uses ImageLoan.
class ConversionBuffer : public std::enable_shared_from_this<ConversionBuffer> {
public:
    /// A buffer for width x height pixels of 4 bytes. Null if there is not enough memory, or if the product is 0 or
    /// does not fit 32 bits, like the camera's sizes. Black at first, so that an image that cannot be converted does
    /// not show earlier contents of the memory.
    [[nodiscard]] static std::shared_ptr<ConversionBuffer> create(std::uint32_t width, std::uint32_t height);
    Q_DISABLE_COPY_MOVE(ConversionBuffer)

    [[nodiscard]] uchar* pixels() noexcept { return reinterpret_cast<uchar*>(m_lines.get()); }

    /// True from lend() until the ImageLoan is destroyed: the GUI thread may be reading.
    [[nodiscard]] bool isLent() const noexcept { return m_lent.load(std::memory_order_acquire); }

    /// The buffer as an ARGB32 image of the size given at creation, without a copy of its pixels.
    [[nodiscard]] QImage lend();

private:
    friend class ImageLoan;

    /// Conversion is a tenth slower if its vectors straddle cache lines.
    struct alignas(64) CacheLine {
        std::array<QRgb, 16> pixels;
    };

    ConversionBuffer(std::uint32_t width, std::uint32_t height, std::unique_ptr<CacheLine[]> lines) noexcept;

    const std::uint32_t m_width;
    const std::uint32_t m_height;
    const std::unique_ptr<CacheLine[]> m_lines;
    std::atomic<bool> m_lent{false};
};
