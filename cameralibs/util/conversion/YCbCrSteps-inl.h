// Converts luma and chroma to B, G, R, 255.
#if defined(ORVO_YCBCR_STEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVO_YCBCR_STEPS_INL_H
#undef ORVO_YCBCR_STEPS_INL_H
#else
#define ORVO_YCBCR_STEPS_INL_H
#endif

#include "cameralibs/util/conversion/BgraSteps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace cameralibs::HWY_NAMESPACE {

/// Pixels per step: as many as a vector has words. Each block processes four pixels (a quad) of their first half and
/// four of their second half, so that the two vectors of results are in order.
constexpr std::size_t kWordPixels = kVectorBytes / 2;
constexpr std::size_t kQuadPixels = 4;

/// The offsets of the samples in a quad of pixels.
struct QuadPlaces {
    std::array<std::size_t, kQuadPixels> y;
    std::array<std::size_t, kQuadPixels> cb;
    std::array<std::size_t, kQuadPixels> cr;
};

HWY_INLINE QuadPlaces quadPlaces(const ChromaLayout& layout)
{
    QuadPlaces places{};
    for (std::size_t pixel = 0; pixel < kQuadPixels; ++pixel) {
        const std::size_t group = pixel / layout.pixels * layout.samples;
        places.y[pixel] = group + layout.luma[pixel % layout.pixels];
        places.cb[pixel] = group + layout.cb;
        places.cr[pixel] = group + layout.cr;
    }
    return places;
}

/// A table that makes these bytes the upper bytes of words, four in each half of a block.
HWY_INLINE BlockTable wordTable(const std::array<std::size_t, kQuadPixels>& lower,
                                const std::array<std::size_t, kQuadPixels>& upper)
{
    BlockTable table{};
    for (std::size_t i = 0; i < kQuadPixels; ++i) {
        table[2 * i] = table[8 + 2 * i] = kZeroByte;
        table[2 * i + 1] = static_cast<std::uint8_t>(lower[i]);
        table[8 + 2 * i + 1] = static_cast<std::uint8_t>(upper[i]);
    }
    return table;
}

/// The same for a block of two quads that start `distance` bytes apart.
HWY_INLINE BlockTable quadTable(const std::array<std::size_t, kQuadPixels>& bytes, std::size_t distance)
{
    return wordTable(bytes, {bytes[0] + distance, bytes[1] + distance, bytes[2] + distance, bytes[3] + distance});
}

/// Samples in the upper bytes of words. Chroma has 128 subtracted, and Cb and Cr alternate. With one chroma vector
/// there is a pair for every two pixels; with two, a pair for every pixel, and each vector holds one quad of each
/// block.
template <std::size_t ChromaVectors> struct Samples {
    WordVector y;
    std::array<SignedVector, ChromaVectors> chroma;
};

HWY_INLINE SignedVector from128(ByteVector samplesInUpperBytes)
{
    return hn::Xor(hn::BitCast(SignedWords(), samplesInUpperBytes), hn::Set(SignedWords(), std::int16_t{-32768}));
}

/// Groups of two or four pixels. Both quads of a block fit the block with all their samples.
template <std::size_t BytesPerQuad> class SharedChroma {
public:
    static constexpr std::size_t kPlanes = 1;
    static constexpr std::size_t kInBytes = kWordPixels / kQuadPixels * BytesPerQuad;
    static constexpr std::size_t kInReach = kVectorBytes;

    HWY_INLINE explicit SharedChroma(const ChromaLayout& layout)
    {
        const QuadPlaces places = quadPlaces(layout);
        m_y = tableOf(places.y);
        m_chroma = tableOf({places.cb[0], places.cr[0], places.cb[2], places.cr[2]});
    }

    [[nodiscard]] HWY_INLINE Samples<1> read(const std::array<const std::uint8_t*, 1>& samples) const
    {
        const ByteVector quads = reordered(load(samples[0]), kQuadOrder);
        return {hn::BitCast(Words(), lookUp(quads, m_y)), {from128(lookUp(quads, m_chroma))}};
    }

private:
    static constexpr std::size_t firstByte(std::size_t block, std::size_t half)
    {
        return (half * kVectorBlocks + block) * BytesPerQuad;
    }

    static constexpr DoubleWordTable kQuadOrder = [] {
        DoubleWordTable result{};
        for (std::size_t i = 0; i < result.size(); ++i) {
            const std::size_t from = firstByte(i / 4, i % 4 / 2) / 4 + i % 2;
            result[i] = static_cast<std::uint32_t>(std::min(from, result.size() - 1));
        }
        return result;
    }();

    // A quad starts at a double word or two bytes after one.
    static constexpr VectorTable kStarts = [] {
        VectorTable result{};
        for (std::size_t i = 0; i < kVectorBytes; ++i)
            result[i] = static_cast<std::uint8_t>(firstByte(i / kBlockBytes, i % kBlockBytes / 8) % 4);
        return result;
    }();

    HWY_INLINE static ByteVector tableOf(const std::array<std::size_t, kQuadPixels>& bytes)
    {
        // kZeroByte plus a start still selects zero.
        return hn::Add(repeated(quadTable(bytes, 8)), load(kStarts.data()));
    }

    ByteVector m_y;
    ByteVector m_chroma;
};

/// Three samples for every pixel. The two quads of a block come from different vectors.
class OwnChroma {
public:
    static constexpr std::size_t kPlanes = 1;
    static constexpr std::size_t kBytesPerQuad = 12;
    static constexpr std::size_t kInBytes = kWordPixels / kQuadPixels * kBytesPerQuad;
    static constexpr std::size_t kInReach = kInBytes / 2 + kVectorBytes;

    HWY_INLINE explicit OwnChroma(const ChromaLayout& layout)
    {
        const QuadPlaces places = quadPlaces(layout);
        constexpr std::array<std::size_t, 4> kNothing{kZeroByte, kZeroByte, kZeroByte, kZeroByte};
        m_yOfFirst = repeated(wordTable(places.y, kNothing));
        m_yOfSecond = repeated(wordTable(kNothing, places.y));
        m_chroma = repeated(wordTable({places.cb[0], places.cr[0], places.cb[1], places.cr[1]},
                                      {places.cb[2], places.cr[2], places.cb[3], places.cr[3]}));
    }

    [[nodiscard]] HWY_INLINE Samples<2> read(const std::array<const std::uint8_t*, 1>& samples) const
    {
        const ByteVector first = inBlocksOf12(load(samples[0]));
        const ByteVector second = inBlocksOf12(load(samples[0] + kInBytes / 2));
        return {hn::BitCast(Words(), hn::Or(lookUp(first, m_yOfFirst), lookUp(second, m_yOfSecond))),
                {from128(lookUp(first, m_chroma)), from128(lookUp(second, m_chroma))}};
    }

private:
    ByteVector m_yOfFirst;
    ByteVector m_yOfSecond;
    ByteVector m_chroma;
};

/// Separate planes. A block holds four luma bytes for each quad, then four chroma bytes for each.
class SemiplanarChroma {
public:
    static constexpr std::size_t kPlanes = 2;
    static constexpr std::size_t kInBytes = kWordPixels;
    static constexpr std::size_t kInReach = kWordPixels;

    HWY_INLINE explicit SemiplanarChroma(const ChromaLayout& layout)
    {
        m_y = repeated(quadTable({0, 1, 2, 3}, 4));
        m_chroma = repeated(quadTable({8U + layout.cb, 8U + layout.cr, 10U + layout.cb, 10U + layout.cr}, 4));
    }

    [[nodiscard]] HWY_INLINE Samples<1> read(const std::array<const std::uint8_t*, 2>& lumaChroma) const
    {
        const hn::Half<Bytes> half;
        const ByteVector both = hn::Combine(Bytes(), hn::LoadU(half, lumaChroma[1]), hn::LoadU(half, lumaChroma[0]));
        const ByteVector quads = inPixelOrder(both);
        return {hn::BitCast(Words(), lookUp(quads, m_y)), {from128(lookUp(quads, m_chroma))}};
    }

private:
    ByteVector m_y;
    ByteVector m_chroma;
};

/// Distributes products of chroma to the pixels: the lower or the upper word of each pair.
template <bool Upper> HWY_INLINE SignedVector spread(const std::array<SignedVector, 1>& products)
{
    static constexpr BlockTable kLowerWords{0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13};
    static constexpr BlockTable kUpperWords{2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15};
    const ByteVector table = repeated(Upper ? kUpperWords : kLowerWords);
    return hn::BitCast(SignedWords(), lookUp(hn::BitCast(Bytes(), products[0]), table));
}

template <bool Upper> HWY_INLINE SignedVector spread(const std::array<SignedVector, 2>& products)
{
    constexpr std::uint8_t kNo = kZeroByte;
    static constexpr BlockTable kLowerOfFirst{0, 1, 4, 5, 8, 9, 12, 13, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo};
    static constexpr BlockTable kLowerOfSecond{kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, 0, 1, 4, 5, 8, 9, 12, 13};
    static constexpr BlockTable kUpperOfFirst{2, 3, 6, 7, 10, 11, 14, 15, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo};
    static constexpr BlockTable kUpperOfSecond{kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, 2, 3, 6, 7, 10, 11, 14, 15};
    const ByteVector first = lookUp(hn::BitCast(Bytes(), products[0]), repeated(Upper ? kUpperOfFirst : kLowerOfFirst));
    const ByteVector second =
        lookUp(hn::BitCast(Bytes(), products[1]), repeated(Upper ? kUpperOfSecond : kLowerOfSecond));
    return hn::BitCast(SignedWords(), hn::Or(first, second));
}

/// The sum of the products of each pair of words, as a double word. Only its upper word is used.
HWY_INLINE SignedVector sumsOfProducts(SignedVector a, SignedVector b)
{
    // Highway 1.0 has no such operation that keeps the order on all processors.
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
    return SignedVector{_mm512_madd_epi16(a.raw, b.raw)};
#elif HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX2
    return SignedVector{_mm256_madd_epi16(a.raw, b.raw)};
#elif HWY_ARCH_X86
    return SignedVector{_mm_madd_epi16(a.raw, b.raw)};
#else
    const hn::RepartitionToWide<SignedWords> wide;
    const auto lower = [wide](SignedVector v)
                           HWY_ATTR { return hn::ShiftRight<16>(hn::ShiftLeft<16>(hn::BitCast(wide, v))); };
    const auto upper = [wide](SignedVector v) HWY_ATTR { return hn::ShiftRight<16>(hn::BitCast(wide, v)); };
    return hn::BitCast(SignedWords(), hn::Add(hn::Mul(lower(a), lower(b)), hn::Mul(upper(a), upper(b))));
#endif
}

template <typename Reader> class ChromaStep {
public:
    static constexpr std::size_t kPlanes = Reader::kPlanes;
    static constexpr std::size_t kUnits = kWordPixels;
    static constexpr std::size_t kInBytes = Reader::kInBytes;
    static constexpr std::size_t kInReach = Reader::kInReach;
    static constexpr std::size_t kOutBytes = kWordPixels * kBytesPerBgra;

    HWY_INLINE ChromaStep(const ChromaLayout& layout, const ChromaWeights& weights)
        : m_reader(layout)
        , m_luma(hn::Set(Words(), static_cast<std::uint16_t>(weights.luma)))
        , m_offset(hn::Set(SignedWords(), weights.offset))
        , m_blueRed(inTurn(weights.blueFromCb, weights.redFromCr))
        , m_green(inTurn(weights.greenFromCb, weights.greenFromCr))
    {
    }

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, kPlanes>& from, std::uint8_t* bgra) const
    {
        const auto samples = m_reader.read(from);
        auto blueRedChroma = samples.chroma;
        auto greenChroma = samples.chroma;
        for (std::size_t i = 0; i < samples.chroma.size(); ++i) {
            blueRedChroma[i] = hn::MulHigh(samples.chroma[i], m_blueRed);
            greenChroma[i] = sumsOfProducts(samples.chroma[i], m_green);
        }
        const auto gray = hn::Add(hn::BitCast(SignedWords(), hn::MulHigh(samples.y, m_luma)), m_offset);
        const auto blue = hn::Add(gray, spread<false>(blueRedChroma));
        const auto green = hn::Add(gray, spread<true>(greenChroma));
        const auto red = hn::Add(gray, spread<true>(blueRedChroma));

        const ByteVector blueRed = packed(hn::ShiftRight<5>(blue), hn::ShiftRight<5>(red));
        const ByteVector greenAlpha = packed(hn::ShiftRight<5>(green), hn::Set(SignedWords(), std::int16_t{255}));
        const auto blueGreen = hn::BitCast(Words(), hn::InterleaveLower(Bytes(), blueRed, greenAlpha));
        const auto redAlpha = hn::BitCast(Words(), hn::InterleaveUpper(Bytes(), blueRed, greenAlpha));
        store(hn::BitCast(Bytes(), hn::InterleaveLower(Words(), blueGreen, redAlpha)), bgra);
        store(hn::BitCast(Bytes(), hn::InterleaveUpper(Words(), blueGreen, redAlpha)), bgra + kVectorBytes);
    }

private:
    HWY_INLINE static SignedVector inTurn(std::int16_t lower, std::int16_t upper)
    {
        const std::uint32_t both = static_cast<std::uint16_t>(lower) | std::uint32_t{static_cast<std::uint16_t>(upper)}
                                                                           << 16;
        return hn::BitCast(SignedWords(), hn::Set(DoubleWords(), both));
    }

    Reader m_reader;
    WordVector m_luma;
    SignedVector m_offset;
    SignedVector m_blueRed;
    SignedVector m_green;
};

void bgraFromGroups(ReadableBytes samples, const ChromaLayout& layout, const ChromaWeights& weights, std::size_t pixels,
                    WritableBytes bgra)
{
    switch (layout.pixels) {
    case 1:
        overRow(ChromaStep<OwnChroma>(layout, weights), {samples}, pixels, bgra);
        break;
    case 2:
        overRow(ChromaStep<SharedChroma<8>>(layout, weights), {samples}, pixels, bgra);
        break;
    default:
        overRow(ChromaStep<SharedChroma<6>>(layout, weights), {samples}, pixels, bgra);
        break;
    }
}

void bgraFromSemiplanar(ReadableBytes luma, ReadableBytes chroma, const ChromaLayout& layout,
                        const ChromaWeights& weights, std::size_t pixels, WritableBytes bgra)
{
    overRow(ChromaStep<SemiplanarChroma>(layout, weights), {luma, chroma}, pixels, bgra);
}

} // namespace cameralibs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // per target
