#include "cameralibs/util/SampleReader.h"

namespace orvo {

namespace {

template <unsigned Bits>
void readWords(const std::uint8_t* __restrict words, std::size_t count, std::uint8_t* __restrict out)
{
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<std::uint8_t>((words[2 * i] | words[2 * i + 1] << 8) >> (Bits - 8));
    }
}

// The upper 8 of the bits of a sample that begins at bit `start`.
inline std::uint8_t upperBits(const std::uint8_t* run, std::uint64_t start, std::size_t bits)
{
    const std::uint64_t bit = start + bits - 8;
    const std::uint8_t* const byte = run + bit / 8;
    const unsigned shift = bit % 8;
    // The byte after a sample that ends with its byte may be past the end of the image.
    return shift == 0 ? *byte : static_cast<std::uint8_t>(byte[0] >> shift | byte[1] << (8 - shift));
}

template <std::size_t Bits>
void readBits(const std::uint8_t* run, std::uint64_t first, std::size_t count, std::uint8_t* out)
{
    // Four samples end with a byte. Rows may begin in the middle of such a group.
    constexpr std::size_t group = 4;
    static_assert(group * Bits % 8 == 0);
    std::uint8_t* const end = out + count;
    for (; out != end && first % group != 0; ++first) {
        *out++ = upperBits(run, first * Bits, Bits);
    }
    run += first / group * (group * Bits / 8);
    for (; static_cast<std::size_t>(end - out) >= group; out += group, run += group * Bits / 8) {
        out[0] = upperBits(run, 0, Bits);
        out[1] = upperBits(run, Bits, Bits);
        out[2] = upperBits(run, 2 * Bits, Bits);
        out[3] = upperBits(run, 3 * Bits, Bits);
    }
    for (std::size_t start = 0; out != end; start += Bits) {
        *out++ = upperBits(run, start, Bits);
    }
}

void readBits32(const std::uint8_t* words, unsigned bits, std::uint64_t first, std::size_t count, std::uint8_t* out)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t sample = first + i;
        out[i] = upperBits(words, sample / 3 * 32 + sample % 3 * bits, bits);
    }
}

// Rows, and the pieces that they are read in, begin with a pair.
void readPairs(const std::uint8_t* pairs, std::uint64_t first, std::size_t count, std::uint8_t* out)
{
    std::uint8_t* const end = out + count;
    for (pairs += first / 2 * 3; end - out >= 2; out += 2, pairs += 3) {
        out[0] = pairs[0];
        out[1] = pairs[2];
    }
    if (out != end) {
        *out = pairs[0];
    }
}

} // namespace

SampleReader::SampleReader(const PixelFormat& format, const std::uint8_t* image) noexcept
    : m_image(image)
    , m_packing(format.packing)
    , m_bits(format.bits)
{
}

const std::uint8_t* SampleReader::read(std::uint64_t first, std::size_t count, std::uint8_t* buffer) const noexcept
{
    switch (m_packing) {
    case SamplePacking::Unpacked:
    case SamplePacking::Planar:
    case SamplePacking::Semiplanar:
        switch (m_bits) {
        case 8:
            return m_image + first;
        case 10:
            readWords<10>(m_image + 2 * first, count, buffer);
            break;
        case 12:
            readWords<12>(m_image + 2 * first, count, buffer);
            break;
        case 14:
            readWords<14>(m_image + 2 * first, count, buffer);
            break;
        default:
            readWords<16>(m_image + 2 * first, count, buffer);
            break;
        }
        break;
    case SamplePacking::Bits:
        switch (m_bits) {
        case 10:
            readBits<10>(m_image, first, count, buffer);
            break;
        case 12:
            readBits<12>(m_image, first, count, buffer);
            break;
        default:
            readBits<14>(m_image, first, count, buffer);
            break;
        }
        break;
    case SamplePacking::Bits32:
        readBits32(m_image, m_bits, first, count, buffer);
        break;
    case SamplePacking::Pairs:
        readPairs(m_image, first, count, buffer);
        break;
    }
    return buffer;
}

} // namespace orvo
