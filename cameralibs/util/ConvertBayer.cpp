#include "cameralibs/util/Conversion.h"
#include "cameralibs/util/SampleReader.h"

#include <algorithm>
#include <array>

namespace orvo {

namespace {

// The filters reach two rows and columns to each side.
constexpr std::int64_t reach = 2;
constexpr std::size_t pairsPerPiece = pixelsPerPiece / 2;

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

// A piece of a row and the columns that the filters reach beside it, those of even and of odd numbers apart: the sites
// of one colour then lie side by side, and a loop over them does the same for each.
class SplitRow {
public:
    // Column 0 is the first of the piece; it has an even number in the image.
    std::uint8_t& at(std::int64_t column)
    {
        auto& sites = column % 2 == 0 ? m_even : m_odd;
        return sites[static_cast<std::size_t>((column + reach) / 2)];
    }

    // Of the columns 0, 2, 4, ... and 1, 3, 5, ...; element -1 may be read too, as may the one after the last.
    [[nodiscard]] const std::uint8_t* even() const { return m_even.data() + 1; }
    [[nodiscard]] const std::uint8_t* odd() const { return m_odd.data() + 1; }

    // `first` is even and not below -2.
    void assign(std::int64_t first, const std::uint8_t* samples, std::size_t count)
    {
        const auto begin = static_cast<std::size_t>((first + reach) / 2);
        std::uint8_t* __restrict const even = m_even.data() + begin;
        std::uint8_t* __restrict const odd = m_odd.data() + begin;
        for (std::size_t i = 0; i < count / 2; ++i) {
            even[i] = samples[2 * i];
            odd[i] = samples[2 * i + 1];
        }
        if (count % 2 != 0) {
            even[count / 2] = samples[count - 1];
        }
    }

private:
    std::array<std::uint8_t, pairsPerPiece + reach> m_even{};
    std::array<std::uint8_t, pairsPerPiece + reach> m_odd{};
};

// Five rows around the one in work: the row itself is rows[2].
using Rows = std::array<const std::uint8_t*, 2 * reach + 1>;

inline std::uint8_t fromSixteenths(int sum)
{
    return static_cast<std::uint8_t>(std::clamp((sum + 8) >> 4, 0, 255));
}

// Sites of red and blue: green from the cross around, the opposite colour from the diagonals. `own` are the columns of
// the sites; `beside` those beside them, [k] to the left of a site and [k + 1] to the right.
void interpolateAtColour(const Rows& own, const Rows& beside, std::size_t sites, std::uint8_t* __restrict green,
                         std::uint8_t* __restrict opposite)
{
    const std::uint8_t* const here = own[2];
    for (std::size_t k = 0; k < sites; ++k) {
        const int far = own[0][k] + own[4][k] + here[k - 1] + here[k + 1];
        const int near = own[1][k] + own[3][k] + beside[2][k] + beside[2][k + 1];
        const int diagonal = beside[1][k] + beside[1][k + 1] + beside[3][k] + beside[3][k + 1];
        green[k] = fromSixteenths(8 * here[k] + 4 * near - 2 * far);
        opposite[k] = fromSixteenths(12 * here[k] + 4 * diagonal - 3 * far);
    }
}

// Sites of green: the colour of the neighbours in the row, and that of those above and below.
void interpolateAtGreen(const Rows& own, const Rows& beside, std::size_t sites, std::uint8_t* __restrict rowColour,
                        std::uint8_t* __restrict columnColour)
{
    const std::uint8_t* const here = own[2];
    for (std::size_t k = 0; k < sites; ++k) {
        const int diagonal = beside[1][k] + beside[1][k + 1] + beside[3][k] + beside[3][k + 1];
        const int inRow = beside[2][k] + beside[2][k + 1];
        const int inColumn = own[1][k] + own[3][k];
        const int farInRow = here[k - 1] + here[k + 1];
        const int farInColumn = own[0][k] + own[4][k];
        rowColour[k] = fromSixteenths(10 * here[k] + 8 * inRow - 2 * (diagonal + farInRow) + farInColumn);
        columnColour[k] = fromSixteenths(10 * here[k] + 8 * inColumn - 2 * (diagonal + farInColumn) + farInRow);
    }
}

struct ColourPlanes {
    const std::uint8_t* blue;
    const std::uint8_t* green;
    const std::uint8_t* red;
};

// Pixels of even columns in turn with those of odd ones.
void writePairs(const ColourPlanes& even, const ColourPlanes& odd, std::size_t pixels, std::uint8_t* __restrict bgra)
{
    for (std::size_t k = 0; k < pixels / 2; ++k) {
        bgra[8 * k] = even.blue[k];
        bgra[8 * k + 1] = even.green[k];
        bgra[8 * k + 2] = even.red[k];
        bgra[8 * k + 3] = 255;
        bgra[8 * k + 4] = odd.blue[k];
        bgra[8 * k + 5] = odd.green[k];
        bgra[8 * k + 6] = odd.red[k];
        bgra[8 * k + 7] = 255;
    }
    if (pixels % 2 != 0) {
        const std::size_t last = pixels / 2;
        writeBgra(even.blue + last, even.green + last, even.red + last, 1, bgra + 8 * last);
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
        for (std::int64_t y = -reach; y < reach; ++y) {
            readRow(y);
        }
        for (std::uint32_t y = 0; y < m_image.height; ++y) {
            readRow(std::int64_t{y} + reach);
            convertRow(y, bgra + (std::uint64_t{y} * m_image.width + x) * bytesPerBgra);
        }
    }

private:
    SplitRow& rowBuffer(std::int64_t y) { return m_rows[static_cast<std::size_t>(y + reach) % m_rows.size()]; }

    void readRow(std::int64_t y)
    {
        SplitRow& row = rowBuffer(y);
        const std::int64_t width = m_image.width;
        const std::int64_t end = m_x + m_pixels;
        const std::int64_t readBegin = std::max<std::int64_t>(m_x - reach, 0);
        const std::int64_t readEnd = std::min(end + reach, width);
        const auto count = static_cast<std::size_t>(readEnd - readBegin);
        const auto line = static_cast<std::uint64_t>(mirrored(y, m_image.height));
        const std::uint64_t first = line * m_samplesPerRow + static_cast<std::uint64_t>(readBegin);
        row.assign(readBegin - m_x, m_reader.read(first, count, m_samples.data()), count);
        for (std::int64_t x = m_x - reach; x < readBegin; ++x) {
            row.at(x - m_x) = row.at(mirrored(x, width) - m_x);
        }
        for (std::int64_t x = readEnd; x < end + reach; ++x) {
            row.at(x - m_x) = row.at(mirrored(x, width) - m_x);
        }
    }

    void convertRow(std::uint32_t y, std::uint8_t* bgra)
    {
        Rows even{};
        Rows odd{};
        for (std::size_t i = 0; i < even.size(); ++i) {
            const SplitRow& row = rowBuffer(std::int64_t{y} + static_cast<std::int64_t>(i) - reach);
            even[i] = row.even();
            odd[i] = row.odd();
        }
        const std::size_t pairs = (m_pixels + 1) / 2;
        const bool evenRow = y % 2 == 0;
        const bool greenFirst = m_greenFirstInEvenRows == evenRow;
        // The odd column to the left of an even one has the number before.
        Rows oddToTheLeft = odd;
        for (const std::uint8_t*& sites : oddToTheLeft) {
            --sites;
        }
        if (greenFirst) {
            interpolateAtGreen(even, oddToTheLeft, pairs, m_rowColour.data(), m_columnColour.data());
            interpolateAtColour(odd, even, pairs, m_green.data(), m_opposite.data());
        } else {
            interpolateAtColour(even, oddToTheLeft, pairs, m_green.data(), m_opposite.data());
            interpolateAtGreen(odd, even, pairs, m_rowColour.data(), m_columnColour.data());
        }
        // Blue and red of a row with blue sites; in one with red sites they change places.
        const Rows& colourSites = greenFirst ? odd : even;
        const Rows& greenSites = greenFirst ? even : odd;
        ColourPlanes atColour{colourSites[2], m_green.data(), m_opposite.data()};
        ColourPlanes atGreen{m_rowColour.data(), greenSites[2], m_columnColour.data()};
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
    std::array<SplitRow, 2 * reach + 1> m_rows;
    std::array<std::uint8_t, pixelsPerPiece + 2 * reach> m_samples{};
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
