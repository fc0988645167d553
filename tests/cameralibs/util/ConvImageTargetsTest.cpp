#include "tests/cameralibs/util/ForcedTarget.h"
#include "tests/cameralibs/util/PfncFormats.h"
#include "tests/cameralibs/util/ReferenceConversion.h"

#include "camera/OrvoCamUtl.h"
#include "cameralibs/util/conversion/Conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <random>
#include <set>
#include <string_view>

// For every instruction set that this processor supports, the vector code gives exactly the same result as the scalar
// code. The buffers are exactly as large as needed and unaligned; the address sanitizer detects every access beyond
// them.

namespace {

constexpr std::uint32_t kWidest = 200;

class Bytes {
public:
    // The image ends at the end of the memory.
    Bytes(std::size_t size, std::size_t misalignment)
        : m_memory(std::make_unique<std::uint8_t[]>(size + misalignment))
        , m_misalignment(misalignment)
        , m_size(size)
    {
    }

    [[nodiscard]] std::uint8_t* begin() const { return m_memory.get() + m_misalignment; }
    [[nodiscard]] std::uint8_t* end() const { return begin() + m_size; }

private:
    std::unique_ptr<std::uint8_t[]> m_memory;
    std::size_t m_misalignment;
    std::size_t m_size;
};

class ConvImageTargets : public testing::TestWithParam<PfncFormat> {
protected:
    // Fills a source image, then compares all instruction sets. Source and destination are misaligned independently.
    template <typename Fill> static void check(std::uint32_t width, std::uint32_t height, Fill fill)
    {
        const Bytes source(ReferenceConversion(GetParam().name, width, height).sourceBytes(), width % 5);
        fill(source);
        const std::size_t size = std::size_t{4} * width * height;
        const Bytes expected(size, 0);
        ASSERT_EQ(cameralibs::convertImage(cameralibs::scalarRowKernels(), GetParam().value, expected.begin(),
                                           source.begin(), width, height),
                  0U);
        for (const std::int64_t target : ForcedTarget::all()) {
            const ForcedTarget forced(target);
            const Bytes bgra(size, width / 2 % 7);
            ASSERT_EQ(Orvo::ConvImage(0, GetParam().value, 1, bgra.begin(), source.begin(), width, height), 0U);
            const auto* const different = std::mismatch(bgra.begin(), bgra.end(), expected.begin()).first;
            ASSERT_EQ(different, bgra.end())
                << hwy::TargetName(target) << ", " << width << " x " << height << ": byte " << different - bgra.begin();
        }
    }

    // Random samples, with many zeros and maxima.
    static void check(std::uint32_t width, std::uint32_t height)
    {
        check(width, height, [&](const Bytes& source) {
            std::minstd_rand random(width * 8 + height);
            std::generate(source.begin(), source.end(), [&] { return static_cast<std::uint8_t>(random() >> 8); });
            std::replace_if(
                source.begin(), source.end(), [](std::uint8_t byte) { return byte < 40; }, 0);
            std::replace_if(
                source.begin(), source.end(), [](std::uint8_t byte) { return byte > 215; }, 255);
        });
    }
};

TEST_P(ConvImageTargets, GiveTheSameAtEveryWidth)
{
    for (std::uint32_t width = 1; width <= kWidest; ++width) {
        for (const std::uint32_t height : {1U, 2U, 5U}) {
            check(width, height);
            if (HasFatalFailure())
                return;
        }
    }
}

// Images with rows that have two others above and below: the kernels for Bayer images read those rows in place.
TEST_P(ConvImageTargets, GiveTheSameInTheMiddleOfImages)
{
    for (std::uint32_t width = 120; width <= kWidest; ++width) {
        for (const std::uint32_t height : {9U, 12U}) {
            check(width, height);
            if (HasFatalFailure())
                return;
        }
    }
}

// Wider than the pieces that are reduced to bytes, and up to and beyond the width of the line buffers for Bayer images.
TEST_P(ConvImageTargets, GiveTheSameForWideImages)
{
    for (const std::uint32_t width : {2049U, 4099U, 8193U, 8300U})
        check(width, 3);
    check(2448, 9);
    check(8192, 9);
}

// The four filters of Bayer images: '+' where the weight is positive, '-' where it is negative. As tiles of an image
// they produce the largest sum of each filter, and inverted the smallest one. The tiles have an odd size, so the sums
// occur at all four colours.
using Filter = std::array<std::string_view, 5>;
constexpr Filter kFilters[] = {
    {"..-..", "..+..", "-+++-", "..+..", "..-.."}, // green at red and blue
    {"..-..", ".+.+.", "-.+.-", ".+.+.", "..-.."}, // red at blue, blue at red
    {"..+..", ".-.-.", "-+++-", ".-.-.", "..+.."}, // at green, the colour of the row
    {"..-..", ".-+-.", "+.+.+", ".-+-.", "..-.."}, // at green, the colour of the column
};

class ConvImageBayerTargets : public ConvImageTargets {};

TEST_P(ConvImageBayerTargets, GiveTheSameForExtremeSums)
{
    constexpr std::uint32_t kHeight = 22;
    for (const Filter& filter : kFilters) {
        for (const char largest : {'+', '-'}) {
            for (const std::uint32_t width : {37U, 143U, 144U, 198U}) {
                check(width, kHeight, [&](const Bytes& source) {
                    for (std::uint32_t i = 0; i < width * kHeight; ++i) {
                        const char weight = filter[i / width % filter.size()][i % width % filter.size()];
                        source.begin()[i] = weight == largest ? 255 : 0;
                    }
                });
            }
        }
    }
}

constexpr auto kNameOf = [](const testing::TestParamInfo<PfncFormat>& format) {
    return std::string(format.param.name);
};

INSTANTIATE_TEST_SUITE_P(Formats, ConvImageTargets, testing::ValuesIn(kPfncFormats), kNameOf);

INSTANTIATE_TEST_SUITE_P(Formats, ConvImageBayerTargets,
                         testing::Values(PfncFormat{"BayerGR8", 0x01080008}, PfncFormat{"BayerRG8", 0x01080009},
                                         PfncFormat{"BayerGB8", 0x0108000A}, PfncFormat{"BayerBG8", 0x0108000B}),
                         kNameOf);

// Otherwise the tests above would compare the scalar code with itself.
TEST(ConvImageTarget, VectorCodeIsUsedIfTheProcessorSupportsIt)
{
#if HWY_ARCH_X86
    if (__builtin_cpu_supports("ssse3") == 0)
        GTEST_SKIP() << "the processor has no SSSE3";
#endif
    EXPECT_NE(&cameralibs::rowKernels(), &cameralibs::scalarRowKernels());
}

// Otherwise the tests above would compare one set of kernels with the scalar code several times.
TEST(ConvImageTarget, EveryTargetHasItsOwnKernels)
{
    std::set<const cameralibs::RowKernels*> kernels;
    for (const std::int64_t target : ForcedTarget::all()) {
        const ForcedTarget forced(target);
        kernels.insert(&cameralibs::rowKernels());
    }
    EXPECT_EQ(kernels.size(), ForcedTarget::all().size());
}

} // namespace
