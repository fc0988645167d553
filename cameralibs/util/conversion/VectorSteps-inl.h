// The common parts of the vector code. Compiled once per instruction set.
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

using ByteVector = hn::Vec<Bytes>;
using WordVector = hn::Vec<Words>;
using SignedVector = hn::Vec<SignedWords>;

constexpr std::size_t kVectorBytes = hn::MaxLanes(Bytes());
constexpr std::size_t kBlockBytes = 16; // most byte operations work within such blocks of a vector
constexpr std::size_t kVectorBlocks = kVectorBytes / kBlockBytes;
constexpr std::uint8_t kZeroByte = 0x80; // as an index of TableLookupBytesOr0

using BlockTable = std::array<std::uint8_t, kBlockBytes>;
using VectorTable = std::array<std::uint8_t, kVectorBytes>;
using DoubleWordTable = std::array<std::uint32_t, kVectorBytes / 4>;

HWY_INLINE ByteVector load(const std::uint8_t* bytes)
{
    return hn::LoadU(Bytes(), bytes);
}

HWY_INLINE void store(ByteVector vector, std::uint8_t* bytes)
{
    hn::StoreU(vector, Bytes(), bytes);
}

/// A table for lookUp() that is the same in every block.
HWY_INLINE ByteVector repeated(const BlockTable& table)
{
    return hn::LoadDup128(Bytes(), table.data());
}

/// Selects bytes within each block by the indices in `table`.
HWY_INLINE ByteVector lookUp(ByteVector vector, ByteVector table)
{
    return hn::TableLookupBytesOr0(vector, table);
}

/// Reorders the double words of a whole vector.
HWY_INLINE ByteVector reordered(ByteVector vector, const DoubleWordTable& order)
{
    const DoubleWords d;
    return hn::BitCast(Bytes(), hn::TableLookupLanes(hn::BitCast(d, vector), hn::SetTableIndices(d, order.data())));
}

/// Clamps words to bytes. Each block consists of those of `lower`, then those of `upper`.
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
    static_assert(kVectorBlocks == 1);
    const hn::Half<Bytes> half;
    return hn::Combine(Bytes(), hn::DemoteTo(half, upper), hn::DemoteTo(half, lower));
#endif
}

HWY_INLINE ByteVector packed(WordVector lower, WordVector upper)
{
    return packed(hn::BitCast(SignedWords(), lower), hn::BitCast(SignedWords(), upper));
}

/// Moves the lower halves of all blocks to the lower half of the vector, and the upper halves to the upper half.
HWY_INLINE ByteVector halvesOfBlocksApart(ByteVector vector)
{
    if constexpr (kVectorBlocks == 1) {
        return vector;
    } else {
        static constexpr DoubleWordTable kTable = [] {
            DoubleWordTable result{};
            for (std::size_t i = 0; i < result.size(); ++i) {
                const std::size_t half = i / 2;
                const std::size_t from = half < kVectorBlocks ? 2 * half : 2 * (half - kVectorBlocks) + 1;
                result[i] = static_cast<std::uint32_t>(2 * from + i % 2);
            }
            return result;
        }();
        return reordered(vector, kTable);
    }
}

/// Runs a step over a row. A step defines
///   kPlanes     number of input pointers
///   kUnits      number of samples or pixels that it converts
///   kInBytes    number of input bytes that it consumes
///   kInReach    number of input bytes that it may read, at least kInBytes
///   kOutBytes   number of bytes that it writes
/// Steps that would read or write beyond the image go through buffers.
template <typename Step>
HWY_INLINE void overRow(const Step& step, std::array<ReadableBytes, Step::kPlanes> in, std::size_t units,
                        WritableBytes out)
{
    std::array<const std::uint8_t*, Step::kPlanes> from{};
    std::size_t steps = std::min((units + Step::kUnits - 1) / Step::kUnits,
                                 static_cast<std::size_t>(out.end - out.begin) / Step::kOutBytes);
    for (std::size_t plane = 0; plane < Step::kPlanes; ++plane) {
        from[plane] = in[plane].begin;
        const auto bytes = static_cast<std::size_t>(in[plane].end - in[plane].begin);
        steps = std::min(steps, bytes < Step::kInReach ? 0 : (bytes - Step::kInReach) / Step::kInBytes + 1);
    }
    std::uint8_t* to = out.begin;
    for (std::size_t i = 0; i < steps; ++i) {
        step(from, to);
        for (const std::uint8_t*& plane : from)
            plane += Step::kInBytes;
        to += Step::kOutBytes;
    }
    for (std::size_t done = steps * Step::kUnits; done < units; done += Step::kUnits) {
        std::array<std::array<std::uint8_t, Step::kInReach>, Step::kPlanes> inBuffers{};
        std::array<std::uint8_t, Step::kOutBytes> outBuffer;
        std::array<const std::uint8_t*, Step::kPlanes> buffers{};
        for (std::size_t plane = 0; plane < Step::kPlanes; ++plane) {
            const auto bytes = static_cast<std::size_t>(in[plane].end - from[plane]);
            std::memcpy(inBuffers[plane].data(), from[plane], std::min(bytes, Step::kInReach));
            buffers[plane] = inBuffers[plane].data();
            from[plane] += std::min(bytes, Step::kInBytes);
        }
        step(buffers, outBuffer.data());
        const std::size_t made = std::min(units - done, Step::kUnits) * (Step::kOutBytes / Step::kUnits);
        std::memcpy(to, outBuffer.data(), made);
        to += made;
    }
}

} // namespace cameralibs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // per target
