#pragma once

#include <QImage>
#include <QRgb>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

/// The pixels that the display thread converts into and lends to the GUI thread, one image at a time.
///
/// Lent images keep the memory alive, so that one still queued when its stream is closed never shows freed memory.
/// create(), isLent() and lend() are called on the display thread or while it does not run; ImageLoan is the GUI
/// thread's side.
class ConversionBuffer : public std::enable_shared_from_this<ConversionBuffer> {
public:
    /// Room for width x height pixels of 4 bytes. Null where memory is short, or where the product, taken in 32 bits
    /// as the camera's sizes are, is 0 or does not fit. Black at first, so that an image that cannot be converted does
    /// not show what the memory held before.
    [[nodiscard]] static std::shared_ptr<ConversionBuffer> create(std::uint32_t width, std::uint32_t height);
    Q_DISABLE_COPY_MOVE(ConversionBuffer)

    [[nodiscard]] uchar* pixels() noexcept { return reinterpret_cast<uchar*>(m_lines.get()); }

    /// True from lend() to the end of the ImageLoan: the GUI thread may be reading.
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
