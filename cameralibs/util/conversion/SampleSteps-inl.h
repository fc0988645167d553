// Samples of more than 8 bits to bytes.
#if defined(ORVO_SAMPLE_STEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVO_SAMPLE_STEPS_INL_H
#undef ORVO_SAMPLE_STEPS_INL_H
#else
#define ORVO_SAMPLE_STEPS_INL_H
#endif

#include "cameralibs/util/conversion/VectorSteps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvo::HWY_NAMESPACE {

class WordsStep {
public:
    static constexpr std::size_t planes = 1;
    static constexpr std::size_t units = vectorBytes;
    static constexpr std::size_t inBytes = 2 * vectorBytes;
    static constexpr std::size_t inReach = inBytes;
    static constexpr std::size_t outBytes = vectorBytes;

    HWY_INLINE explicit WordsStep(unsigned bits)
        : m_unusedBits(static_cast<int>(16 - bits))
    {
    }

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, 1>& words, std::uint8_t* bytes) const
    {
        store(halvesOfBlocksApart(packed(upperBits(words[0]), upperBits(words[0] + vectorBytes))), bytes);
    }

private:
    [[nodiscard]] HWY_INLINE WordVector upperBits(const std::uint8_t* words) const
    {
        return hn::ShiftRight<8>(hn::ShiftLeftSame(hn::BitCast(Words(), load(words)), m_unusedBits));
    }

    int m_unusedBits;
};

/// Each vector takes half of the samples, eight a block: the bytes of a block begin with a double word, or two bytes
/// after one.
template <unsigned Bits> struct RunLayout {
    static constexpr std::size_t halfVectorBytes = vectorBytes / 2 * Bits / 8;

    static constexpr DoubleWordTable blocks = [] {
        DoubleWordTable result{};
        for (std::size_t i = 0; i < result.size(); ++i) {
            // What lies beyond the samples of a block is not looked at.
            const std::size_t from = i / 4 * Bits / 4 + i % 4;
            result[i] = static_cast<std::uint32_t>(std::min(from, result.size() - 1));
        }
        return result;
    }();

    static constexpr std::size_t startInBlock(std::size_t block) { return block * Bits % 4; }
};

template <unsigned Bits> class BitsStep {
public:
    static constexpr std::size_t planes = 1;
    static constexpr std::size_t units = vectorBytes;
    static constexpr std::size_t inBytes = 2 * RunLayout<Bits>::halfVectorBytes;
    static constexpr std::size_t inReach = RunLayout<Bits>::halfVectorBytes + vectorBytes;
    static constexpr std::size_t outBytes = vectorBytes;

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, 1>& run, std::uint8_t* bytes) const
    {
        store(halvesOfBlocksApart(packed(upperBits(run[0]), upperBits(run[0] + RunLayout<Bits>::halfVectorBytes))),
              bytes);
    }

private:
    // Words of the two bytes that hold the upper 8 bits of a sample.
    static constexpr VectorTable places = [] {
        VectorTable result{};
        for (std::size_t i = 0; i < vectorBytes / 2; ++i) {
            const std::size_t bit = i % 8 * Bits + Bits - 8;
            const std::size_t byte = RunLayout<Bits>::startInBlock(i / 8) + bit / 8;
            result[2 * i] = static_cast<std::uint8_t>(byte);
            result[2 * i + 1] = bit % 8 == 0 ? zeroByte : static_cast<std::uint8_t>(byte + 1);
        }
        return result;
    }();

    // Multiplied by these the 8 bits are the upper ones of their word.
    static constexpr std::array<std::uint16_t, vectorBytes / 2> shifts = [] {
        std::array<std::uint16_t, vectorBytes / 2> result{};
        for (std::size_t i = 0; i < result.size(); ++i) {
            result[i] = static_cast<std::uint16_t>(1U << (8 - (i % 8 * Bits + Bits - 8) % 8));
        }
        return result;
    }();

    [[nodiscard]] HWY_INLINE WordVector upperBits(const std::uint8_t* run) const
    {
        const ByteVector blocks = reordered(load(run), RunLayout<Bits>::blocks);
        return hn::ShiftRight<8>(
            hn::Mul(hn::BitCast(Words(), lookUp(blocks, load(places.data()))), hn::LoadU(Words(), shifts.data())));
    }
};

/// Laid out like samples of 12 bits, but the upper 8 are a byte of their own.
class PairsStep {
public:
    static constexpr std::size_t planes = 1;
    static constexpr std::size_t units = vectorBytes;
    static constexpr std::size_t inBytes = 2 * RunLayout<12>::halfVectorBytes;
    static constexpr std::size_t inReach = RunLayout<12>::halfVectorBytes + vectorBytes;
    static constexpr std::size_t outBytes = vectorBytes;

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, 1>& pairs, std::uint8_t* bytes) const
    {
        const ByteVector first = reordered(load(pairs[0]), RunLayout<12>::blocks);
        const ByteVector second = reordered(load(pairs[0] + RunLayout<12>::halfVectorBytes), RunLayout<12>::blocks);
        store(halvesOfBlocksApart(hn::Or(lookUp(first, repeated(toLower)), lookUp(second, repeated(toUpper)))), bytes);
    }

private:
    static constexpr BlockTable toLower{0,        2,        3,        5,        6,        8,        9,        11,
                                        zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte};
    static constexpr BlockTable toUpper{zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte,
                                        0,        2,        3,        5,        6,        8,        9,        11};
};

void bytesFromWords(ReadableBytes words, unsigned bits, std::size_t samples, WritableBytes bytes)
{
    overRow(WordsStep(bits), {words}, samples, bytes);
}

void bytesFromBits(ReadableBytes run, unsigned bits, std::size_t samples, WritableBytes bytes)
{
    switch (bits) {
    case 10:
        overRow(BitsStep<10>(), {run}, samples, bytes);
        break;
    case 12:
        overRow(BitsStep<12>(), {run}, samples, bytes);
        break;
    default:
        overRow(BitsStep<14>(), {run}, samples, bytes);
        break;
    }
}

void bytesFromPairs(ReadableBytes pairs, std::size_t samples, WritableBytes bytes)
{
    overRow(PairsStep(), {pairs}, samples, bytes);
}

} // namespace orvo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // per target
