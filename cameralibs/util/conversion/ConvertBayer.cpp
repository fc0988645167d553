#include "cameralibs/util/conversion/Conversion.h"
#include "cameralibs/util/conversion/SampleReader.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace cameralibs {

namespace {

// Number of rows and columns that the filters need on each side.
constexpr std::int64_t kFilterReach = 2;

// Few images are wider, and all lines of such a strip fit the first- and second-level caches.
constexpr std::int64_t kStripWidth = 8192;

// Mirrors an index outside the image at the edge, without repeating the edge itself: -1 becomes 1.
std::int64_t mirrored(std::int64_t index, std::int64_t size)
{
    if (size == 1)
        return 0;
    while (index < 0 || index >= size)
        index = index < 0 ? -index : 2 * (size - 1) - index;
    return index;
}

BayerRow firstRow(const PixelFormat& format)
{
    const bool greenFirst = format.order.front() == 'G';
    if (format.order.find('R') != std::string_view::npos)
        return greenFirst ? BayerRow::GreenRed : BayerRow::RedGreen;
    return greenFirst ? BayerRow::GreenBlue : BayerRow::BlueGreen;
}

class Demosaicer {
public:
    Demosaicer(const RowKernels& kernels, // NOLINT(cppcoreguidelines-pro-type-member-init): m_lines is a buffer
               const SourceImage& image)
        : m_image(image)
        , m_kernels(kernels)
        , m_reader(kernels, image)
        , m_samplesPerRow(image.samplesPerRow())
        , m_firstRow(firstRow(image.format))
    {
    }

    // Converts a strip of all rows that starts at column `x` and is at most as wide as the line buffers.
    void convertStrip(std::int64_t x, std::uint8_t* bgra)
    {
        const std::int64_t height = m_image.height;
        m_x = x;
        m_end = std::min(x + kStripWidth, std::int64_t{m_image.width});
        m_nextLine = -kFilterReach;
        for (std::int64_t y = 0; y < height; y += 2) {
            const auto place = [&](std::int64_t row) {
                return bgra + static_cast<std::uint64_t>(row * m_image.width + x) * kBytesPerBgra;
            };
            // If the height is odd, the last row has no second one: both get the same destination.
            std::uint8_t* const second = place(std::min(y + 1, height - 1));
            const auto pixels = static_cast<std::size_t>(m_end - x);
            if (inImage(y)) {
                m_kernels.bgraFromBayerImage(rowsOfImage(y), m_firstRow, pixels, place(y), second);
            } else {
                m_kernels.bgraFromBayer(lines(y), m_firstRow, pixels, place(y), second);
            }
        }
    }

private:
    static constexpr std::size_t kLineBytes = kBayerMargin + kStripWidth + kBayerMargin;

    // Whether the rows around y can be read in place: the kernels also read beside them.
    [[nodiscard]] bool inImage(std::int64_t y) const
    {
        const bool wide = m_image.width >= kMinBayerImageWidth && m_image.width <= kStripWidth;
        return m_kernels.bgraFromBayerImage != nullptr && m_image.format.bits == 8 && wide && m_image.width % 2 == 0 &&
               y > kFilterReach && y + kFilterReach + 2 < m_image.height;
    }

    [[nodiscard]] BayerRows rowsOfImage(std::int64_t y) const
    {
        BayerRows rows{};
        for (std::size_t i = 0; i < rows.size(); ++i)
            rows[i] = m_image.data + (y - kFilterReach + static_cast<std::int64_t>(i)) * m_image.width;
        return rows;
    }

    // Copies of the rows around y, mirrored at the edges of the image.
    [[nodiscard]] BayerRows lines(std::int64_t y)
    {
        BayerRows rows{};
        const std::int64_t first = y - kFilterReach;
        const auto end = first + static_cast<std::int64_t>(rows.size());
        for (m_nextLine = std::max(m_nextLine, first); m_nextLine < end; ++m_nextLine)
            readLine(m_nextLine);
        for (std::size_t i = 0; i < rows.size(); ++i)
            rows[i] = line(first + static_cast<std::int64_t>(i));
        return rows;
    }

    // The buffered pixel at column m_x of a row.
    std::uint8_t* line(std::int64_t y)
    {
        return m_lines[static_cast<std::size_t>(y + kFilterReach) % m_lines.size()].data() + kBayerMargin;
    }

    // Also reads the columns beside the strip that the filters need.
    void readLine(std::int64_t y)
    {
        std::uint8_t* const target = line(y);
        const std::int64_t width = m_image.width;
        const std::int64_t begin = std::max(m_x - kFilterReach, std::int64_t{0});
        const std::int64_t end = std::min(m_end + kFilterReach, width);
        const auto row = static_cast<std::uint64_t>(mirrored(y, m_image.height));
        m_reader.copy(row * m_samplesPerRow + static_cast<std::uint64_t>(begin), static_cast<std::size_t>(end - begin),
                      {target + begin - m_x, target - kBayerMargin + kLineBytes});
        for (std::int64_t x = m_x - kFilterReach; x < begin; ++x)
            target[x - m_x] = target[mirrored(x, width) - m_x];
        for (std::int64_t x = end; x < m_end + kFilterReach; ++x)
            target[x - m_x] = target[mirrored(x, width) - m_x];
    }

    const SourceImage& m_image;
    const RowKernels& m_kernels;
    SampleReader m_reader;
    std::uint64_t m_samplesPerRow;
    BayerRow m_firstRow;
    std::int64_t m_x = 0;
    std::int64_t m_end = 0;
    std::int64_t m_nextLine = 0;
    std::array<std::array<std::uint8_t, kLineBytes>, std::tuple_size_v<BayerRows>> m_lines; // a ring of rows
};

} // namespace

void convertBayer(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra) noexcept
{
    Demosaicer demosaicer(kernels, image);
    for (std::int64_t x = 0; x < image.width; x += kStripWidth)
        demosaicer.convertStrip(x, bgra);
}

} // namespace cameralibs
