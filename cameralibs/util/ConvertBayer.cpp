#include "cameralibs/util/BayerFilters.h"
#include "cameralibs/util/Conversion.h"
#include "cameralibs/util/SampleReader.h"
#include "cameralibs/util/SplitRow.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvo {

namespace {

// Outside the image it is mirrored without repeating the edge: index -1 is 1. A size of 1 repeats itself.
std::int64_t mirrored(std::int64_t index, std::int64_t size)
{
    if (size == 1) {
        return 0;
    }
    while (index < 0 || index >= size) {
        index = index < 0 ? -index : 2 * (size - 1) - index;
    }
    return index;
}

struct ColourPlanes {
    const std::uint8_t* __restrict blue;
    const std::uint8_t* __restrict green;
    const std::uint8_t* __restrict red;
};

// Pixels of even columns in turn with those of odd ones.
void writePairs(const ColourPlanes evenColumns, const ColourPlanes oddColumns, std::size_t pixels,
                std::uint8_t* __restrict bgra)
{
    const std::size_t pairs = pixels / 2;
    for (std::size_t k = 0; k < pairs; ++k) {
        writePixel(evenColumns.blue[k], evenColumns.green[k], evenColumns.red[k], bgra + 2 * bytesPerBgra * k);
        writePixel(oddColumns.blue[k], oddColumns.green[k], oddColumns.red[k], bgra + bytesPerBgra * (2 * k + 1));
    }
    if (pixels % 2 != 0) {
        writePixel(evenColumns.blue[pairs], evenColumns.green[pairs], evenColumns.red[pairs],
                   bgra + 2 * bytesPerBgra * pairs);
    }
}

class Demosaicer {
public:
    explicit Demosaicer(const SourceImage& image)
        : m_image(image)
        , m_reader(image.format, image.data)
        , m_samplesPerRow(image.samplesPerRow())
        , m_redInEvenRows(image.format.order.find('R') != std::string_view::npos)
        , m_greenFirstInEvenRows(image.format.order.front() == 'G')
    {
    }

    // The pieces of all rows that begin at column `x`: a row is read once for the five rows that look at it.
    void convertStrip(std::uint32_t x, std::uint8_t* bgra)
    {
        m_x = x;
        m_pixels = std::min(pixelsPerPiece, m_image.width - x);
        for (std::int64_t y = -filterReach; y < filterReach; ++y) {
            readRow(y);
        }
        for (std::uint32_t y = 0; y < m_image.height; ++y) {
            readRow(std::int64_t{y} + filterReach);
            convertRow(y, bgra + (std::uint64_t{y} * m_image.width + x) * bytesPerBgra);
        }
    }

private:
    SplitRow& rowBuffer(std::int64_t y) { return m_rows[static_cast<std::size_t>(y + filterReach) % m_rows.size()]; }

    void readRow(std::int64_t y)
    {
        SplitRow& row = rowBuffer(y);
        const std::int64_t width = m_image.width;
        const std::int64_t end = m_x + m_pixels;
        const std::int64_t readBegin = std::max<std::int64_t>(m_x - filterReach, 0);
        const std::int64_t readEnd = std::min(end + filterReach, width);
        const auto count = static_cast<std::size_t>(readEnd - readBegin);
        const auto line = static_cast<std::uint64_t>(mirrored(y, m_image.height));
        const std::uint64_t first = line * m_samplesPerRow + static_cast<std::uint64_t>(readBegin);
        row.assign(readBegin - m_x, m_reader.read(first, count, m_samples.data()), count);
        for (std::int64_t x = m_x - filterReach; x < readBegin; ++x) {
            row.at(x - m_x) = row.at(mirrored(x, width) - m_x);
        }
        for (std::int64_t x = readEnd; x < end + filterReach; ++x) {
            row.at(x - m_x) = row.at(mirrored(x, width) - m_x);
        }
    }

    void convertRow(std::uint32_t y, std::uint8_t* bgra)
    {
        SiteRows even{};
        SiteRows odd{};
        for (std::size_t i = 0; i < even.size(); ++i) {
            const SplitRow& row = rowBuffer(std::int64_t{y} + static_cast<std::int64_t>(i) - filterReach);
            even[i] = row.even();
            odd[i] = row.odd();
        }
        // The odd column to the left of an even one has the number before.
        SiteRows oddToTheLeft = odd;
        for (const std::uint8_t*& sites : oddToTheLeft) {
            --sites;
        }
        const bool evenRow = y % 2 == 0;
        const bool greenFirst = m_greenFirstInEvenRows == evenRow;
        const SiteRows& colourSites = greenFirst ? odd : even;
        const SiteRows& besideColour = greenFirst ? even : oddToTheLeft;
        const SiteRows& greenSites = greenFirst ? even : odd;
        const SiteRows& besideGreen = greenFirst ? oddToTheLeft : even;
        const std::size_t pairs = (m_pixels + 1) / 2;
        interpolateAtColour(colourSites, besideColour, pairs, m_green.data(), m_opposite.data());
        interpolateAtGreen(greenSites, besideGreen, pairs, m_rowColour.data(), m_columnColour.data());

        // Blue and red of a row with blue sites; in one with red sites they change places.
        ColourPlanes atColour{colourSites[filterReach], m_green.data(), m_opposite.data()};
        ColourPlanes atGreen{m_rowColour.data(), greenSites[filterReach], m_columnColour.data()};
        if (m_redInEvenRows == evenRow) {
            std::swap(atColour.blue, atColour.red);
            std::swap(atGreen.blue, atGreen.red);
        }
        if (greenFirst) {
            writePairs(atGreen, atColour, m_pixels, bgra);
        } else {
            writePairs(atColour, atGreen, m_pixels, bgra);
        }
    }

    const SourceImage& m_image;
    SampleReader m_reader;
    std::uint64_t m_samplesPerRow;
    bool m_redInEvenRows;
    bool m_greenFirstInEvenRows;
    std::int64_t m_x = 0;
    std::uint32_t m_pixels = 0;
    std::array<SplitRow, 2 * filterReach + 1> m_rows; // in turn
    std::array<std::uint8_t, pixelsPerPiece + 2 * filterReach> m_samples{};
    std::array<std::uint8_t, pairsPerPiece> m_green{};
    std::array<std::uint8_t, pairsPerPiece> m_opposite{};
    std::array<std::uint8_t, pairsPerPiece> m_rowColour{};
    std::array<std::uint8_t, pairsPerPiece> m_columnColour{};
};

} // namespace

void convertBayer(const SourceImage& image, std::uint8_t* bgra) noexcept
{
    Demosaicer demosaicer(image);
    for (std::uint32_t x = 0; x < image.width; x += pixelsPerPiece) {
        demosaicer.convertStrip(x, bgra);
    }
}

} // namespace orvo
