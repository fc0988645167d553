#include "cameralibs/util/conversion/SampleReader.h"

#include <algorithm>
#include <cstring>

namespace cameralibs {

SampleReader::SampleReader(const RowKernels& kernels, const SourceImage& image) noexcept
    : m_kernels(kernels)
    , m_image{image.data, image.data + image.bytes()}
    , m_packing(image.format.packing)
    , m_bits(image.format.bits)
{
}

void SampleReader::copy(std::uint64_t first, std::size_t count, WritableBytes bytes) const noexcept
{
    if (m_packing == SamplePacking::Bits) {
        copyBits(first, count, bytes);
    } else if (m_packing == SamplePacking::Pairs) {
        m_kernels.bytesFromSamples({m_image.begin + first / 2 * 3, m_image.end}, m_packing, m_bits, count, bytes);
    } else if (m_bits == 8) {
        std::memcpy(bytes.begin, m_image.begin + first, count);
    } else {
        m_kernels.bytesFromSamples({m_image.begin + 2 * first, m_image.end}, m_packing, m_bits, count, bytes);
    }
}

ReadableBytes SampleReader::read(std::uint64_t first, std::size_t count, WritableBytes buffer) const noexcept
{
    if (m_bits == 8) {
        return {m_image.begin + first, m_image.end};
    }
    copy(first, count, buffer);
    return {buffer.begin, buffer.end};
}

void SampleReader::copyBits(std::uint64_t first, std::size_t count, WritableBytes bytes) const noexcept
{
    // Every fourth sample starts at a byte boundary. A row may start in the middle of such a group of four.
    constexpr std::size_t kGroup = 4;
    const std::size_t skipped = first % kGroup;
    const std::uint8_t* run = m_image.begin + first / kGroup * (kGroup * m_bits / 8);
    if (skipped != 0) {
        std::array<std::uint8_t, 64> samples{}; // large enough for a vector
        const std::size_t wanted = std::min(kGroup - skipped, count);
        m_kernels.bytesFromSamples({run, m_image.end}, m_packing, m_bits, skipped + wanted,
                                   {samples.data(), samples.data() + samples.size()});
        std::memcpy(bytes.begin, samples.data() + skipped, wanted);
        run += kGroup * m_bits / 8;
        bytes.begin += wanted;
        count -= wanted;
    }
    if (count > 0) {
        m_kernels.bytesFromSamples({run, m_image.end}, m_packing, m_bits, count, bytes);
    }
}

} // namespace cameralibs
