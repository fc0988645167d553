#include "cameralibs/util/conversion/Conversion.h"
#include "cameralibs/util/conversion/SampleReader.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace cameralibs {

namespace {

// Rows and columns that the filters reach to each side.
constexpr std::int64_t filterReach = 2;

// Few images are wider. All lines of a strip fit the caches near the processor.
constexpr std::int64_t stripWidth = 8192;

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

BayerRow firstRow(const PixelFormat& format)
{
    const bool greenFirst = format.order.front() == 'G';
    if (format.order.find('R') != std::string_view::npos) {
        return greenFirst ? BayerRow::GreenRed : BayerRow::RedGreen;
    }
    return greenFirst ? BayerRow::GreenBlue : BayerRow::BlueGreen;
}

class Demosaicer {
public:
    explicit Demosaicer(const SourceImage& image) // NOLINT(cppcoreguidelines-pro-type-member-init): room for lines
        : m_image(image)
        , m_kernels(rowKernels())
        , m_reader(image)
        , m_samplesPerRow(image.samplesPerRow())
        , m_firstRow(firstRow(image.format))
    {
    }

    // A strip of all rows, as wide as the buffers.
    void convertStrip(std::int64_t x, std::uint8_t* bgra)
    {
        const std::int64_t height = m_image.height;
        m_x = x;
        m_end = std::min(x + stripWidth, std::int64_t{m_image.width});
        m_nextLine = -filterReach;
        for (std::int64_t y = 0; y < height; y += 2) {
            const auto place = [&](std::int64_t row) {
                return bgra + static_cast<std::uint64_t>(row * m_image.width + x) * bytesPerBgra;
            };
            // A last row without a second one gives its place to it.
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
    static constexpr std::size_t lineBytes = bayerMargin + stripWidth + bayerMargin;

    // Whether the rows around y can be read where they are, and beside.
    [[nodiscard]] bool inImage(std::int64_t y) const
    {
        const bool wide = m_image.width >= bayerImageWidth && m_image.width <= stripWidth;
        return m_kernels.bgraFromBayerImage != nullptr && m_image.format.bits == 8 && wide && m_image.width % 2 == 0 &&
               y > filterReach && y + filterReach + 2 < m_image.height;
    }

    [[nodiscard]] BayerRows rowsOfImage(std::int64_t y) const
    {
        BayerRows rows{};
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i] = m_image.data + (y - filterReach + static_cast<std::int64_t>(i)) * m_image.width;
        }
        return rows;
    }

    // The rows around y, mirrored at the edges.
    [[nodiscard]] BayerRows lines(std::int64_t y)
    {
        BayerRows rows{};
        const std::int64_t first = y - filterReach;
        const auto end = first + static_cast<std::int64_t>(rows.size());
        for (m_nextLine = std::max(m_nextLine, first); m_nextLine < end; ++m_nextLine) {
            readLine(m_nextLine);
        }
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i] = line(first + static_cast<std::int64_t>(i));
        }
        return rows;
    }

    // Column m_x of a row.
    std::uint8_t* line(std::int64_t y)
    {
        return m_lines[static_cast<std::size_t>(y + filterReach) % m_lines.size()].data() + bayerMargin;
    }

    // With the columns that the filters reach beside the strip.
    void readLine(std::int64_t y)
    {
        std::uint8_t* const target = line(y);
        const std::int64_t width = m_image.width;
        const std::int64_t begin = std::max(m_x - filterReach, std::int64_t{0});
        const std::int64_t end = std::min(m_end + filterReach, width);
        const auto row = static_cast<std::uint64_t>(mirrored(y, m_image.height));
        m_reader.copy(row * m_samplesPerRow + static_cast<std::uint64_t>(begin), static_cast<std::size_t>(end - begin),
                      {target + begin - m_x, target - bayerMargin + lineBytes});
        for (std::int64_t x = m_x - filterReach; x < begin; ++x) {
            target[x - m_x] = target[mirrored(x, width) - m_x];
        }
        for (std::int64_t x = end; x < m_end + filterReach; ++x) {
            target[x - m_x] = target[mirrored(x, width) - m_x];
        }
    }

    const SourceImage& m_image;
    const RowKernels& m_kernels;
    SampleReader m_reader;
    std::uint64_t m_samplesPerRow;
    BayerRow m_firstRow;
    std::int64_t m_x = 0;
    std::int64_t m_end = 0;
    std::int64_t m_nextLine = 0;
    std::array<std::array<std::uint8_t, lineBytes>, std::tuple_size_v<BayerRows>> m_lines; // in turn
};

} // namespace

void convertBayer(const SourceImage& image, std::uint8_t* bgra) noexcept
{
    Demosaicer demosaicer(image);
    for (std::int64_t x = 0; x < image.width; x += stripWidth) {
        demosaicer.convertStrip(x, bgra);
    }
}

} // namespace cameralibs
