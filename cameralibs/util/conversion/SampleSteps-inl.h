// Converts samples of more than 8 bits to bytes, or to gray pixels.
#if defined(ORVO_SAMPLE_STEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVO_SAMPLE_STEPS_INL_H
#undef ORVO_SAMPLE_STEPS_INL_H
#else
#define ORVO_SAMPLE_STEPS_INL_H
#endif

#include "cameralibs/util/conversion/BgraSteps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace cameralibs::HWY_NAMESPACE {

/// Reduces 16-bit words to bytes, a vector of bytes at a time.
class WordSamples {
public:
    static constexpr std::size_t kInBytes = 2 * kVectorBytes;
    static constexpr std::size_t kInReach = kInBytes;

    HWY_INLINE explicit WordSamples(unsigned bits)
        : m_unusedBits(static_cast<int>(16 - bits))
    {
    }

    [[nodiscard]] HWY_INLINE ByteVector read(const std::uint8_t* words) const
    {
        return halvesOfBlocksApart(packed(upperBits(words), upperBits(words + kVectorBytes)));
    }

private:
    [[nodiscard]] HWY_INLINE WordVector upperBits(const std::uint8_t* words) const
    {
        return hn::ShiftRight<8>(hn::ShiftLeftSame(hn::BitCast(Words(), load(words)), m_unusedBits));
    }

    int m_unusedBits;
};

/// How a run of bits is distributed: each of two vectors takes half of the samples, eight per block. The samples of a
/// block start at a double word or two bytes after one.
template <unsigned Bits> struct RunLayout {
    static constexpr std::size_t kHalfVectorBytes = kVectorBytes / 2 * Bits / 8;

    static constexpr DoubleWordTable kBlocks = [] {
        DoubleWordTable result{};
        for (std::size_t i = 0; i < result.size(); ++i) {
            // Double words after the samples of a block are not used.
            const std::size_t from = i / 4 * Bits / 4 + i % 4;
            result[i] = static_cast<std::uint32_t>(std::min(from, result.size() - 1));
        }
        return result;
    }();

    static constexpr std::size_t startInBlock(std::size_t block) { return block * Bits % 4; }
};

template <unsigned Bits> class RunSamples {
public:
    static constexpr std::size_t kInBytes = 2 * RunLayout<Bits>::kHalfVectorBytes;
    static constexpr std::size_t kInReach = RunLayout<Bits>::kHalfVectorBytes + kVectorBytes;

    [[nodiscard]] HWY_INLINE ByteVector read(const std::uint8_t* run) const
    {
        return halvesOfBlocksApart(packed(upperBits(run), upperBits(run + RunLayout<Bits>::kHalfVectorBytes)));
    }

private:
    // Selects the two bytes that contain the upper 8 bits of a sample.
    static constexpr VectorTable kPlaces = [] {
        VectorTable result{};
        for (std::size_t i = 0; i < kVectorBytes / 2; ++i) {
            const std::size_t bit = i % 8 * Bits + Bits - 8;
            const std::size_t byte = RunLayout<Bits>::startInBlock(i / 8) + bit / 8;
            result[2 * i] = static_cast<std::uint8_t>(byte);
            result[2 * i + 1] = bit % 8 == 0 ? kZeroByte : static_cast<std::uint8_t>(byte + 1);
        }
        return result;
    }();

    // Multiplying by these moves the 8 bits to the upper byte of their word.
    static constexpr std::array<std::uint16_t, kVectorBytes / 2> kShifts = [] {
        std::array<std::uint16_t, kVectorBytes / 2> result{};
        for (std::size_t i = 0; i < result.size(); ++i)
            result[i] = static_cast<std::uint16_t>(1U << (8 - (i % 8 * Bits + Bits - 8) % 8));
        return result;
    }();

    [[nodiscard]] HWY_INLINE WordVector upperBits(const std::uint8_t* run) const
    {
        const ByteVector blocks = reordered(load(run), RunLayout<Bits>::kBlocks);
        return hn::ShiftRight<8>(
            hn::Mul(hn::BitCast(Words(), lookUp(blocks, load(kPlaces.data()))), hn::LoadU(Words(), kShifts.data())));
    }
};

/// Like a run of 12-bit samples, but the upper 8 bits of each sample are a separate byte.
class PairSamples {
public:
    static constexpr std::size_t kInBytes = 2 * RunLayout<12>::kHalfVectorBytes;
    static constexpr std::size_t kInReach = RunLayout<12>::kHalfVectorBytes + kVectorBytes;

    [[nodiscard]] HWY_INLINE ByteVector read(const std::uint8_t* pairs) const
    {
        const ByteVector first = reordered(load(pairs), RunLayout<12>::kBlocks);
        const ByteVector second = reordered(load(pairs + RunLayout<12>::kHalfVectorBytes), RunLayout<12>::kBlocks);
        return halvesOfBlocksApart(hn::Or(lookUp(first, repeated(kToLower)), lookUp(second, repeated(kToUpper))));
    }

private:
    static constexpr BlockTable kToLower{0,         2,         3,         5,         6,         8,
                                         9,         11,        kZeroByte, kZeroByte, kZeroByte, kZeroByte,
                                         kZeroByte, kZeroByte, kZeroByte, kZeroByte};
    static constexpr BlockTable kToUpper{kZeroByte, kZeroByte, kZeroByte, kZeroByte, kZeroByte, kZeroByte,
                                         kZeroByte, kZeroByte, 0,         2,         3,         5,
                                         6,         8,         9,         11};
};

template <typename Samples> class BytesStep {
public:
    static constexpr std::size_t kPlanes = 1;
    static constexpr std::size_t kUnits = kVectorBytes;
    static constexpr std::size_t kInBytes = Samples::kInBytes;
    static constexpr std::size_t kInReach = Samples::kInReach;
    static constexpr std::size_t kOutBytes = kVectorBytes;

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

/// One pass from samples to pixels. Two passes with a buffer in between take a quarter longer for images that do not
/// fit the caches, because stores to the buffer wait for earlier stores of pixels.
template <typename Samples> class GraySamplesStep {
public:
    static constexpr std::size_t kPlanes = 1;
    static constexpr std::size_t kUnits = kVectorBytes;
    static constexpr std::size_t kInBytes = Samples::kInBytes;
    static constexpr std::size_t kInReach = Samples::kInReach;
    static constexpr std::size_t kOutBytes = kVectorBytes * kBytesPerBgra;

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

/// `Step` is BytesStep or GraySamplesStep.
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
        HWY_DASSERT(bits == 14);
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
