// Luma and chroma to B, G, R, 255.
#if defined(ORVO_YCBCR_STEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVO_YCBCR_STEPS_INL_H
#undef ORVO_YCBCR_STEPS_INL_H
#else
#define ORVO_YCBCR_STEPS_INL_H
#endif

#include "cameralibs/util/conversion/BgraSteps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace cameralibs::HWY_NAMESPACE {

/// Pixels in words: half a vector of bytes. A block of results is made of four pixels of the first half of them and
/// four of the second, so that two vectors of results come out in order.
constexpr std::size_t wordPixels = vectorBytes / 2;
constexpr std::size_t quadPixels = 4;

/// Where the samples of a quad of pixels lie, counted from its first byte.
struct QuadPlaces {
    std::array<std::size_t, quadPixels> y;
    std::array<std::size_t, quadPixels> cb;
    std::array<std::size_t, quadPixels> cr;
};

HWY_INLINE QuadPlaces quadPlaces(const ChromaLayout& layout)
{
    QuadPlaces places{};
    for (std::size_t pixel = 0; pixel < quadPixels; ++pixel) {
        const std::size_t group = pixel / layout.pixels * layout.samples;
        places.y[pixel] = group + layout.luma[pixel % layout.pixels];
        places.cb[pixel] = group + layout.cb;
        places.cr[pixel] = group + layout.cr;
    }
    return places;
}

/// Indices for half of a block: these four bytes become the upper ones of words.
HWY_INLINE void placeWords(BlockTable& table, std::size_t half, const std::array<std::size_t, 4>& bytes)
{
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        table[8 * half + 2 * i] = zeroByte;
        table[8 * half + 2 * i + 1] = static_cast<std::uint8_t>(bytes[i]);
    }
}

/// Samples in the upper bytes of words. Those of chroma are counted from 128; Cb and Cr take turns, one of each for
/// every two pixels, or, where `chromaVectors` is 2, for every pixel: the quads of a block apart.
template <std::size_t ChromaVectors> struct Samples {
    WordVector y;
    std::array<SignedVector, ChromaVectors> chroma;
};

HWY_INLINE SignedVector from128(ByteVector samplesInUpperBytes)
{
    return hn::Xor(hn::BitCast(SignedWords(), samplesInUpperBytes), hn::Set(SignedWords(), std::int16_t{-32768}));
}

/// Groups of two or four pixels: both quads of a block fit it with all of their samples.
template <std::size_t BytesPerQuad> class SharedChroma {
public:
    static constexpr std::size_t planes = 1;
    static constexpr std::size_t inBytes = wordPixels / quadPixels * BytesPerQuad;
    static constexpr std::size_t inReach = vectorBytes;

    HWY_INLINE explicit SharedChroma(const ChromaLayout& layout)
    {
        const QuadPlaces places = quadPlaces(layout);
        m_y = tableOf(places.y);
        m_chroma = tableOf({places.cb[0], places.cr[0], places.cb[2], places.cr[2]});
    }

    [[nodiscard]] HWY_INLINE Samples<1> read(const std::array<const std::uint8_t*, 1>& samples) const
    {
        const ByteVector quads = reordered(load(samples[0]), quadOrder);
        return {hn::BitCast(Words(), lookUp(quads, m_y)), {from128(lookUp(quads, m_chroma))}};
    }

private:
    static constexpr std::size_t firstByte(std::size_t block, std::size_t half)
    {
        return (half * vectorBlocks + block) * BytesPerQuad;
    }

    static constexpr DoubleWordTable quadOrder = [] {
        DoubleWordTable result{};
        for (std::size_t i = 0; i < result.size(); ++i) {
            const std::size_t from = firstByte(i / 4, i % 4 / 2) / 4 + i % 2;
            result[i] = static_cast<std::uint32_t>(std::min(from, result.size() - 1));
        }
        return result;
    }();

    // A quad begins with a double word, or two bytes after one.
    static constexpr VectorTable starts = [] {
        VectorTable result{};
        for (std::size_t i = 0; i < vectorBytes; ++i) {
            result[i] = static_cast<std::uint8_t>(firstByte(i / blockBytes, i % blockBytes / 8) % 4);
        }
        return result;
    }();

    HWY_INLINE static ByteVector tableOf(const std::array<std::size_t, 4>& bytes)
    {
        BlockTable table{};
        placeWords(table, 0, bytes);
        placeWords(table, 1, {bytes[0] + 8, bytes[1] + 8, bytes[2] + 8, bytes[3] + 8});
        return hn::Add(repeated(table), load(starts.data())); // `zeroByte` and a start give zero as well
    }

    ByteVector m_y;
    ByteVector m_chroma;
};

/// Three samples for every pixel: each quad of a block comes from a vector of its own.
class OwnChroma {
public:
    static constexpr std::size_t planes = 1;
    static constexpr std::size_t bytesPerQuad = 12;
    static constexpr std::size_t inBytes = wordPixels / quadPixels * bytesPerQuad;
    static constexpr std::size_t inReach = inBytes / 2 + vectorBytes;

    HWY_INLINE explicit OwnChroma(const ChromaLayout& layout)
    {
        const QuadPlaces places = quadPlaces(layout);
        constexpr std::array<std::size_t, 4> nothing{zeroByte, zeroByte, zeroByte, zeroByte};
        m_yOfFirst = tableOf(places.y, nothing);
        m_yOfSecond = tableOf(nothing, places.y);
        m_chroma = tableOf({places.cb[0], places.cr[0], places.cb[1], places.cr[1]},
                           {places.cb[2], places.cr[2], places.cb[3], places.cr[3]});
    }

    [[nodiscard]] HWY_INLINE Samples<2> read(const std::array<const std::uint8_t*, 1>& samples) const
    {
        const ByteVector first = reordered(load(samples[0]), quadOrder);
        const ByteVector second = reordered(load(samples[0] + inBytes / 2), quadOrder);
        return {hn::BitCast(Words(), hn::Or(lookUp(first, m_yOfFirst), lookUp(second, m_yOfSecond))),
                {from128(lookUp(first, m_chroma)), from128(lookUp(second, m_chroma))}};
    }

private:
    static constexpr DoubleWordTable quadOrder = [] {
        DoubleWordTable result{};
        for (std::size_t i = 0; i < result.size(); ++i) {
            result[i] = static_cast<std::uint32_t>(i / 4 * 3 + std::min<std::size_t>(i % 4, 2));
        }
        return result;
    }();

    HWY_INLINE static ByteVector tableOf(const std::array<std::size_t, 4>& lower,
                                         const std::array<std::size_t, 4>& upper)
    {
        BlockTable table{};
        placeWords(table, 0, lower);
        placeWords(table, 1, upper);
        return repeated(table);
    }

    ByteVector m_yOfFirst;
    ByteVector m_yOfSecond;
    ByteVector m_chroma;
};

/// A block takes four bytes of luma for each quad, then four of chroma for each.
class SemiplanarChroma {
public:
    static constexpr std::size_t planes = 2;
    static constexpr std::size_t inBytes = wordPixels;
    static constexpr std::size_t inReach = wordPixels;

    HWY_INLINE explicit SemiplanarChroma(const ChromaLayout& layout)
    {
        m_y = tableOf({0, 1, 2, 3});
        m_chroma = tableOf({8U + layout.cb, 8U + layout.cr, 10U + layout.cb, 10U + layout.cr});
    }

    [[nodiscard]] HWY_INLINE Samples<1> read(const std::array<const std::uint8_t*, 2>& lumaChroma) const
    {
        const hn::Half<Bytes> half;
        const ByteVector both = hn::Combine(Bytes(), hn::LoadU(half, lumaChroma[1]), hn::LoadU(half, lumaChroma[0]));
        const ByteVector quads = reordered(both, quadOrder);
        return {hn::BitCast(Words(), lookUp(quads, m_y)), {from128(lookUp(quads, m_chroma))}};
    }

private:
    static constexpr DoubleWordTable quadOrder = [] {
        DoubleWordTable result{};
        for (std::size_t i = 0; i < result.size(); ++i) {
            result[i] = static_cast<std::uint32_t>(i % 4 * vectorBlocks + i / 4);
        }
        return result;
    }();

    HWY_INLINE static ByteVector tableOf(const std::array<std::size_t, 4>& bytes)
    {
        BlockTable table{};
        placeWords(table, 0, bytes);
        placeWords(table, 1, {bytes[0] + 4, bytes[1] + 4, bytes[2] + 4, bytes[3] + 4});
        return repeated(table);
    }

    ByteVector m_y;
    ByteVector m_chroma;
};

/// Products of chroma to words of pixels: from the lower or the upper word of each two.
template <bool Upper> HWY_INLINE SignedVector spread(const std::array<SignedVector, 1>& products)
{
    static constexpr BlockTable lowerWords{0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13};
    static constexpr BlockTable upperWords{2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15};
    const ByteVector table = repeated(Upper ? upperWords : lowerWords);
    return hn::BitCast(SignedWords(), lookUp(hn::BitCast(Bytes(), products[0]), table));
}

template <bool Upper> HWY_INLINE SignedVector spread(const std::array<SignedVector, 2>& products)
{
    constexpr std::uint8_t no = zeroByte;
    static constexpr BlockTable lowerOfFirst{0, 1, 4, 5, 8, 9, 12, 13, no, no, no, no, no, no, no, no};
    static constexpr BlockTable lowerOfSecond{no, no, no, no, no, no, no, no, 0, 1, 4, 5, 8, 9, 12, 13};
    static constexpr BlockTable upperOfFirst{2, 3, 6, 7, 10, 11, 14, 15, no, no, no, no, no, no, no, no};
    static constexpr BlockTable upperOfSecond{no, no, no, no, no, no, no, no, 2, 3, 6, 7, 10, 11, 14, 15};
    const ByteVector first = lookUp(hn::BitCast(Bytes(), products[0]), repeated(Upper ? upperOfFirst : lowerOfFirst));
    const ByteVector second =
        lookUp(hn::BitCast(Bytes(), products[1]), repeated(Upper ? upperOfSecond : lowerOfSecond));
    return hn::BitCast(SignedWords(), hn::Or(first, second));
}

/// For each two words the sum of their products, of which the upper word is wanted.
HWY_INLINE SignedVector sumsOfProducts(SignedVector a, SignedVector b)
{
    // Highway 1.0 has no such operation that keeps the order on every processor.
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
    static constexpr std::size_t planes = Reader::planes;
    static constexpr std::size_t units = wordPixels;
    static constexpr std::size_t inBytes = Reader::inBytes;
    static constexpr std::size_t inReach = Reader::inReach;
    static constexpr std::size_t outBytes = wordPixels * bytesPerBgra;

    HWY_INLINE ChromaStep(const ChromaLayout& layout, const ChromaWeights& weights)
        : m_reader(layout)
        , m_luma(hn::Set(Words(), static_cast<std::uint16_t>(weights.luma)))
        , m_offset(hn::Set(SignedWords(), weights.offset))
        , m_blueRed(inTurn(weights.blueFromCb, weights.redFromCr))
        , m_green(inTurn(weights.greenFromCb, weights.greenFromCr))
    {
    }

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, planes>& from, std::uint8_t* bgra) const
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
        store(hn::BitCast(Bytes(), hn::InterleaveUpper(Words(), blueGreen, redAlpha)), bgra + vectorBytes);
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
