// Converts gray and colour bytes to B, G, R, 255.
#if defined(ORVO_BGRA_STEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVO_BGRA_STEPS_INL_H
#undef ORVO_BGRA_STEPS_INL_H
#else
#define ORVO_BGRA_STEPS_INL_H
#endif

#include "cameralibs/util/conversion/VectorSteps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace cameralibs::HWY_NAMESPACE {

constexpr std::size_t kVectorPixels = kVectorBytes / kBytesPerBgra;

HWY_INLINE ByteVector opaque()
{
    return hn::BitCast(Bytes(), hn::Set(DoubleWords(), 0xFF000000U));
}

/// Interleaving works within blocks, so each vector of pixels is made of four bytes from every block of the planes.
/// Reorders a plane accordingly.
HWY_INLINE ByteVector inPixelOrder(ByteVector plane)
{
    if constexpr (kVectorBlocks == 1) {
        return plane;
    } else {
        static constexpr DoubleWordTable kOrder = [] {
            DoubleWordTable result{};
            for (std::size_t i = 0; i < result.size(); ++i)
                result[i] = static_cast<std::uint32_t>(i % 4 * kVectorBlocks + i / 4);
            return result;
        }();
        return reordered(plane, kOrder);
    }
}

/// Distributes a run of bytes: each block starts with twelve of them, which are four pixels of three bytes.
HWY_INLINE ByteVector inBlocksOf12(ByteVector run)
{
    if constexpr (kVectorBlocks == 1) {
        return run;
    } else {
        static constexpr DoubleWordTable kOrder = [] {
            DoubleWordTable result{};
            for (std::size_t i = 0; i < result.size(); ++i)
                result[i] = static_cast<std::uint32_t>(i / 4 * 3 + std::min<std::size_t>(i % 4, 2));
            return result;
        }();
        return reordered(run, kOrder);
    }
}

HWY_INLINE void writePixels(ByteVector blue, ByteVector green, ByteVector red, std::uint8_t* bgra)
{
    const Words words;
    blue = inPixelOrder(blue);
    green = inPixelOrder(green);
    red = inPixelOrder(red);
    const ByteVector alpha = hn::Set(Bytes(), 255);
    const WordVector lowerBlueGreen = hn::BitCast(words, hn::InterleaveLower(Bytes(), blue, green));
    const WordVector upperBlueGreen = hn::BitCast(words, hn::InterleaveUpper(Bytes(), blue, green));
    const WordVector lowerRedAlpha = hn::BitCast(words, hn::InterleaveLower(Bytes(), red, alpha));
    const WordVector upperRedAlpha = hn::BitCast(words, hn::InterleaveUpper(Bytes(), red, alpha));
    store(hn::BitCast(Bytes(), hn::InterleaveLower(words, lowerBlueGreen, lowerRedAlpha)), bgra);
    store(hn::BitCast(Bytes(), hn::InterleaveUpper(words, lowerBlueGreen, lowerRedAlpha)), bgra + kVectorBytes);
    store(hn::BitCast(Bytes(), hn::InterleaveLower(words, upperBlueGreen, upperRedAlpha)), bgra + 2 * kVectorBytes);
    store(hn::BitCast(Bytes(), hn::InterleaveUpper(words, upperBlueGreen, upperRedAlpha)), bgra + 3 * kVectorBytes);
}

class GrayStep {
public:
    static constexpr std::size_t kPlanes = 1;
    static constexpr std::size_t kUnits = kVectorBytes;
    static constexpr std::size_t kInBytes = kVectorBytes;
    static constexpr std::size_t kInReach = kVectorBytes;
    static constexpr std::size_t kOutBytes = 4 * kVectorBytes;

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, 1>& gray, std::uint8_t* bgra) const
    {
        writePart<0>(gray[0], bgra);
        writePart<1>(gray[0], bgra);
        writePart<2>(gray[0], bgra);
        writePart<3>(gray[0], bgra);
    }

private:
    // A block of 16 levels, copied to every block of a vector, makes one to four vectors of pixels.
    static constexpr std::size_t kVectorsPerBlock = kBlockBytes / kVectorPixels;

    static constexpr std::array<VectorTable, kVectorsPerBlock> kLevels = [] {
        std::array<VectorTable, kVectorsPerBlock> result{};
        for (std::size_t i = 0; i < kVectorsPerBlock * kVectorBytes; ++i) {
            const auto level = static_cast<std::uint8_t>(i / kBytesPerBgra);
            result[i / kVectorBytes][i % kVectorBytes] = i % kBytesPerBgra == 3 ? kZeroByte : level;
        }
        return result;
    }();

    template <std::size_t Part> HWY_INLINE static void writePart(const std::uint8_t* gray, std::uint8_t* bgra)
    {
        const ByteVector block = hn::LoadDup128(Bytes(), gray + Part / kVectorsPerBlock * kBlockBytes);
        const ByteVector pixels = lookUp(block, load(kLevels[Part % kVectorsPerBlock].data()));
        store(hn::Or(pixels, opaque()), bgra + Part * kVectorBytes);
    }
};

/// Reorders the bytes of pixels that have three or four of them.
template <std::size_t BytesPerPixel> class PixelsStep {
public:
    static constexpr std::size_t kPlanes = 1;
    static constexpr std::size_t kUnits = 4 * kVectorPixels;
    static constexpr std::size_t kInBytes = kUnits * BytesPerPixel;
    static constexpr std::size_t kInReach = kInBytes - kVectorPixels * BytesPerPixel + kVectorBytes;
    static constexpr std::size_t kOutBytes = 4 * kVectorBytes;

    HWY_INLINE explicit PixelsStep(const PixelLayout& layout)
    {
        BlockTable table{};
        for (std::size_t pixel = 0; pixel < kBlockBytes / kBytesPerBgra; ++pixel) {
            const std::size_t start = pixel * BytesPerPixel;
            table[kBytesPerBgra * pixel] = static_cast<std::uint8_t>(start + layout.blue);
            table[kBytesPerBgra * pixel + 1] = static_cast<std::uint8_t>(start + layout.green);
            table[kBytesPerBgra * pixel + 2] = static_cast<std::uint8_t>(start + layout.red);
            table[kBytesPerBgra * pixel + 3] = kZeroByte;
        }
        m_places = repeated(table);
    }

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, 1>& samples, std::uint8_t* bgra) const
    {
        for (std::size_t part = 0; part < 4; ++part) {
            ByteVector pixels = load(samples[0] + part * kVectorPixels * BytesPerPixel);
            if constexpr (BytesPerPixel == 3) {
                pixels = inBlocksOf12(pixels);
            }
            store(hn::Or(lookUp(pixels, m_places), opaque()), bgra + part * kVectorBytes);
        }
    }

private:
    ByteVector m_places;
};

class Words30Step {
public:
    static constexpr std::size_t kPlanes = 1;
    static constexpr std::size_t kUnits = kVectorPixels;
    static constexpr std::size_t kInBytes = kVectorBytes;
    static constexpr std::size_t kInReach = kVectorBytes;
    static constexpr std::size_t kOutBytes = kVectorBytes;

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, 1>& words, std::uint8_t* bgra) const
    {
        const DoubleWords d;
        const auto word = hn::BitCast(d, load(words[0]));
        const auto red = hn::And(hn::ShiftLeft<14>(word), hn::Set(d, 0xFF0000));
        const auto green = hn::And(hn::ShiftRight<4>(word), hn::Set(d, 0x00FF00));
        const auto blue = hn::And(hn::ShiftRight<22>(word), hn::Set(d, 0x0000FF));
        const auto colours = hn::BitCast(Bytes(), hn::Or(hn::Or(red, green), blue));
        store(hn::Or(colours, opaque()), bgra);
    }
};

class PlanesStep {
public:
    static constexpr std::size_t kPlanes = 3;
    static constexpr std::size_t kUnits = kVectorBytes;
    static constexpr std::size_t kInBytes = kVectorBytes;
    static constexpr std::size_t kInReach = kVectorBytes;
    static constexpr std::size_t kOutBytes = 4 * kVectorBytes;

    HWY_INLINE void operator()(const std::array<const std::uint8_t*, 3>& blueGreenRed, std::uint8_t* bgra) const
    {
        writePixels(load(blueGreenRed[0]), load(blueGreenRed[1]), load(blueGreenRed[2]), bgra);
    }
};

void bgraFromGray(ReadableBytes gray, std::size_t pixels, WritableBytes bgra)
{
    overRow(GrayStep(), {gray}, pixels, bgra);
}

void bgraFromPixels(ReadableBytes samples, const PixelLayout& layout, std::size_t pixels, WritableBytes bgra)
{
    if (layout.bytes == 3) {
        overRow(PixelsStep<3>(layout), {samples}, pixels, bgra);
    } else {
        overRow(PixelsStep<4>(layout), {samples}, pixels, bgra);
    }
}

void bgraFromWords30(ReadableBytes words, std::size_t pixels, WritableBytes bgra)
{
    overRow(Words30Step(), {words}, pixels, bgra);
}

void bgraFromPlanes(ReadableBytes blue, ReadableBytes green, ReadableBytes red, std::size_t pixels, WritableBytes bgra)
{
    overRow(PlanesStep(), {blue, green, red}, pixels, bgra);
}

} // namespace cameralibs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // per target
