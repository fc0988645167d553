// What the vector code of all families shares. Compiled once for every instruction set.
#if defined(ORVO_VECTOR_STEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVO_VECTOR_STEPS_INL_H
#undef ORVO_VECTOR_STEPS_INL_H
#else
#define ORVO_VECTOR_STEPS_INL_H
#endif

#include "cameralibs/util/conversion/RowKernels.h"

#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace cameralibs::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using Words = hn::Repartition<std::uint16_t, Bytes>;
using SignedWords = hn::Repartition<std::int16_t, Bytes>;
using DoubleWords = hn::Repartition<std::uint32_t, Bytes>;
using QuadWords = hn::Repartition<std::uint64_t, Bytes>;

using ByteVector = hn::Vec<Bytes>;
using WordVector = hn::Vec<Words>;
using SignedVector = hn::Vec<SignedWords>;

constexpr std::size_t vectorBytes = hn::MaxLanes(Bytes());
constexpr std::size_t blockBytes = 16; // most operations on bytes stay within such a block of a vector
constexpr std::size_t vectorBlocks = vectorBytes / blockBytes;
constexpr std::uint8_t zeroByte = 0x80; // as an index of TableLookupBytesOr0

using BlockTable = std::array<std::uint8_t, blockBytes>;
using VectorTable = std::array<std::uint8_t, vectorBytes>;
using DoubleWordTable = std::array<std::uint32_t, vectorBytes / 4>;

HWY_INLINE ByteVector load(const std::uint8_t* bytes)
{
    return hn::LoadU(Bytes(), bytes);
}

HWY_INLINE void store(ByteVector vector, std::uint8_t* bytes)
{
    hn::StoreU(vector, Bytes(), bytes);
}

/// Looks up bytes within blocks, by the same table in every block.
HWY_INLINE ByteVector repeated(const BlockTable& table)
{
    return hn::LoadDup128(Bytes(), table.data());
}

HWY_INLINE ByteVector lookUp(ByteVector vector, ByteVector table)
{
    return hn::TableLookupBytesOr0(vector, table);
}

/// Puts double words of a whole vector in another order.
HWY_INLINE ByteVector reordered(ByteVector vector, const DoubleWordTable& order)
{
    const DoubleWords d;
    return hn::BitCast(Bytes(), hn::TableLookupLanes(hn::BitCast(d, vector), hn::SetTableIndices(d, order.data())));
}

/// Words to bytes, clamped. In every block those of `lower`, then those of `upper`.
HWY_INLINE ByteVector packed(SignedVector lower, SignedVector upper)
{
    // Highway 1.0 has no such operation.
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
    return ByteVector{_mm512_packus_epi16(lower.raw, upper.raw)};
#elif HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX2
    return ByteVector{_mm256_packus_epi16(lower.raw, upper.raw)};
#elif HWY_ARCH_X86
    return ByteVector{_mm_packus_epi16(lower.raw, upper.raw)};
#else
    static_assert(vectorBlocks == 1);
    const hn::Half<Bytes> half;
    return hn::Combine(Bytes(), hn::DemoteTo(half, upper), hn::DemoteTo(half, lower));
#endif
}

HWY_INLINE ByteVector packed(WordVector lower, WordVector upper)
{
    return packed(hn::BitCast(SignedWords(), lower), hn::BitCast(SignedWords(), upper));
}

/// The order that makes one run of the lower halves of all blocks, then one of the upper ones.
HWY_INLINE ByteVector halvesOfBlocksApart(ByteVector vector)
{
    if constexpr (vectorBlocks == 1) {
        return vector;
    } else {
        static constexpr DoubleWordTable table = [] {
            DoubleWordTable result{};
            for (std::size_t i = 0; i < result.size(); ++i) {
                const std::size_t half = i / 2;
                const std::size_t from = half < vectorBlocks ? 2 * half : 2 * (half - vectorBlocks) + 1;
                result[i] = static_cast<std::uint32_t>(2 * from + i % 2);
            }
            return result;
        }();
        return reordered(vector, table);
    }
}

/// Runs a step over a row. A step has
///   planes      pointers that it reads from
///   units       samples or pixels that it makes
///   inBytes     from where it reads to where the next step reads
///   inReach     bytes that it may read, at least inBytes
///   outBytes    that it writes
/// The last steps of an image go through buffers, lest they leave it; those of other rows do not need to.
template <typename Step>
HWY_INLINE void overRow(const Step& step, std::array<ReadableBytes, Step::planes> in, std::size_t units,
                        WritableBytes out)
{
    std::array<const std::uint8_t*, Step::planes> from{};
    std::size_t steps = std::min((units + Step::units - 1) / Step::units,
                                 static_cast<std::size_t>(out.end - out.begin) / Step::outBytes);
    for (std::size_t plane = 0; plane < Step::planes; ++plane) {
        from[plane] = in[plane].begin;
        const auto bytes = static_cast<std::size_t>(in[plane].end - in[plane].begin);
        steps = std::min(steps, bytes < Step::inReach ? 0 : (bytes - Step::inReach) / Step::inBytes + 1);
    }
    std::uint8_t* to = out.begin;
    for (std::size_t i = 0; i < steps; ++i) {
        step(from, to);
        for (const std::uint8_t*& plane : from) {
            plane += Step::inBytes;
        }
        to += Step::outBytes;
    }
    for (std::size_t done = steps * Step::units; done < units; done += Step::units) {
        std::array<std::array<std::uint8_t, Step::inReach>, Step::planes> inBuffers{};
        std::array<std::uint8_t, Step::outBytes> outBuffer;
        std::array<const std::uint8_t*, Step::planes> buffers{};
        for (std::size_t plane = 0; plane < Step::planes; ++plane) {
            const auto bytes = static_cast<std::size_t>(in[plane].end - from[plane]);
            std::memcpy(inBuffers[plane].data(), from[plane], std::min(bytes, Step::inReach));
            buffers[plane] = inBuffers[plane].data();
            from[plane] += std::min(bytes, Step::inBytes);
        }
        step(buffers, outBuffer.data());
        const std::size_t made = std::min(units - done, Step::units) * (Step::outBytes / Step::units);
        std::memcpy(to, outBuffer.data(), made);
        to += made;
    }
}

} // namespace cameralibs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // per target
