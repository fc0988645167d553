#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// A simple and slow reference implementation of ConvImage that shares no code with the library. It reads every sample
/// bit by bit, computes every pixel separately, and derives the layout of an image from the name of its format.
class ReferenceConversion {
public:
    /// An exact pixel, not rounded for the YCbCr formats.
    struct Colour {
        double blue = 0;
        double green = 0;
        double red = 0;
    };

    ReferenceConversion(const std::string& formatName, std::size_t width, std::size_t height);

    /// Size of the whole source image.
    [[nodiscard]] std::size_t sourceBytes() const;

    /// Derived from the name; the value of the format contains it, too.
    [[nodiscard]] std::size_t bitsPerPixel() const;

    [[nodiscard]] std::vector<Colour> convert(const std::uint8_t* source) const;

    /// Allowed difference in levels: 1 for the YCbCr formats, otherwise 0.
    [[nodiscard]] double tolerance() const { return m_chroma ? 1 : 0; }

private:
    // The upper 8 bits of a component, such as 'Y', 'R' or 'U'; 'C' is the only sample of a Bayer pixel.
    [[nodiscard]] int sample(const std::uint8_t* source, char component, std::size_t x, std::size_t y) const;
    [[nodiscard]] std::size_t samplesPerRow() const;
    [[nodiscard]] Colour bayer(const std::vector<int>& mosaic, std::size_t x, std::size_t y) const;
    [[nodiscard]] Colour yCbCr(int y, int cb, int cr) const;

    std::size_t m_width;
    std::size_t m_height;
    std::string m_order; // the samples of one group
    std::size_t m_pixelsPerGroup = 1;
    std::size_t m_bits = 8;
    std::size_t m_containerBits = 8;
    bool m_pairs = false;
    bool m_padded32 = false;
    bool m_planar = false;
    std::size_t m_chromaRows = 0; // in a semiplanar image: rows of Y per row of chroma
    std::string m_bayer;          // the first two colours
    bool m_chroma = false;
    double m_kr = 0.299;
    double m_kb = 0.114;
    bool m_fullRange = true;
};
