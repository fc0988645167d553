// Samples of more than 8 bits to bytes, and to pixels of gray.
#if defined(ORVO_SAMPLE_STEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVO_SAMPLE_STEPS_INL_H
#undef ORVO_SAMPLE_STEPS_INL_H
#else
#define ORVO_SAMPLE_STEPS_INL_H
#endif

#include "cameralibs/util/conversion/BgraSteps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace cameralibs::HWY_NAMESPACE {

/// A vector of samples at a time, as bytes.
class WordSamples {
public:
    static constexpr std::size_t inBytes = 2 * vectorBytes;
    static constexpr std::size_t inReach = inBytes;

    HWY_INLINE explicit WordSamples(unsigned bits)
        : m_unusedBits(static_cast<int>(16 - bits))
    {
    }

    [[nodiscard]] HWY_INLINE ByteVector read(const std::uint8_t* words) const
    {
        return halvesOfBlocksApart(packed(upperBits(words), upperBits(words + vectorBytes)));
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

template <unsigned Bits> class RunSamples {
public:
    static constexpr std::size_t inBytes = 2 * RunLayout<Bits>::halfVectorBytes;
    static constexpr std::size_t inReach = RunLayout<Bits>::halfVectorBytes + vectorBytes;

    [[nodiscard]] HWY_INLINE ByteVector read(const std::uint8_t* run) const
    {
        return halvesOfBlocksApart(packed(upperBits(run), upperBits(run + RunLayout<Bits>::halfVectorBytes)));
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
class PairSamples {
public:
    static constexpr std::size_t inBytes = 2 * RunLayout<12>::halfVectorBytes;
    static constexpr std::size_t inReach = RunLayout<12>::halfVectorBytes + vectorBytes;

    [[nodiscard]] HWY_INLINE ByteVector read(const std::uint8_t* pairs) const
    {
        const ByteVector first = reordered(load(pairs), RunLayout<12>::blocks);
        const ByteVector second = reordered(load(pairs + RunLayout<12>::halfVectorBytes), RunLayout<12>::blocks);
        return halvesOfBlocksApart(hn::Or(lookUp(first, repeated(toLower)), lookUp(second, repeated(toUpper))));
    }

private:
    static constexpr BlockTable toLower{0,        2,        3,        5,        6,        8,        9,        11,
                                        zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte};
    static constexpr BlockTable toUpper{zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte, zeroByte,
                                        0,        2,        3,        5,        6,        8,        9,        11};
};

template <typename Samples> class BytesStep {
public:
    static constexpr std::size_t planes = 1;
    static constexpr std::size_t units = vectorBytes;
    static constexpr std::size_t inBytes = Samples::inBytes;
    static constexpr std::size_t inReach = Samples::inReach;
    static constexpr std::size_t outBytes = vectorBytes;

    HWY_INLINE explicit BytesStep(const Samples& samples)
        : m_samples(samples)
    {
    }

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, 1>& from, std::uint8_t* bytes) const
    {
        store(m_samples.read(from[0]), bytes);
    }

private:
    Samples m_samples;
};

/// In one go: a buffer between two passes costs a quarter more where the images do not fit the caches, because stores
/// to it wait for those of the pixels before.
template <typename Samples> class GraySamplesStep {
public:
    static constexpr std::size_t planes = 1;
    static constexpr std::size_t units = vectorBytes;
    static constexpr std::size_t inBytes = Samples::inBytes;
    static constexpr std::size_t inReach = Samples::inReach;
    static constexpr std::size_t outBytes = vectorBytes * bytesPerBgra;

    HWY_INLINE explicit GraySamplesStep(const Samples& samples)
        : m_samples(samples)
    {
    }

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, 1>& from, std::uint8_t* bgra) const
    {
        const ByteVector gray = m_samples.read(from[0]);
        writePixels(gray, gray, gray, bgra);
    }

private:
    Samples m_samples;
};

/// `Step` is one of the two above.
template <template <typename> class Step>
HWY_INLINE void overSamples(ReadableBytes from, SamplePacking packing, unsigned bits, std::size_t samples,
                            WritableBytes to)
{
    if (packing == SamplePacking::Pairs) {
        overRow(Step<PairSamples>(PairSamples()), {from}, samples, to);
    } else if (packing != SamplePacking::Bits) {
        overRow(Step<WordSamples>(WordSamples(bits)), {from}, samples, to);
    } else if (bits == 10) {
        overRow(Step<RunSamples<10>>(RunSamples<10>()), {from}, samples, to);
    } else if (bits == 12) {
        overRow(Step<RunSamples<12>>(RunSamples<12>()), {from}, samples, to);
    } else {
        overRow(Step<RunSamples<14>>(RunSamples<14>()), {from}, samples, to);
    }
}

void bytesFromSamples(ReadableBytes from, SamplePacking packing, unsigned bits, std::size_t samples,
                      WritableBytes bytes)
{
    overSamples<BytesStep>(from, packing, bits, samples, bytes);
}

void bgraFromGraySamples(ReadableBytes from, SamplePacking packing, unsigned bits, std::size_t pixels,
                         WritableBytes bgra)
{
    overSamples<GraySamplesStep>(from, packing, bits, pixels, bgra);
}

} // namespace cameralibs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // per target
