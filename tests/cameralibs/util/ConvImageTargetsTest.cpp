#include "tests/cameralibs/util/ForcedTarget.h"
#include "tests/cameralibs/util/PfncFormats.h"
#include "tests/cameralibs/util/ReferenceConversion.h"

#include "camera/OrvoCamUtl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>

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

Bytes converted(const PfncFormat& format, const Bytes& source, std::uint32_t width, std::uint32_t height,
                std::size_t misalignment)
{
    Bytes bgra(std::size_t{4} * width * height, misalignment);
    EXPECT_EQ(Orvo::ConvImage(0, format.value, 1, bgra.begin(), source.begin(), width, height), 0U);
    return bgra;
}

class ConvImageTargets : public testing::TestWithParam<PfncFormat> {
protected:
    // Compares all instruction sets at one size.
    static void check(std::uint32_t width, std::uint32_t height)
    {
        std::minstd_rand random(width * 8 + height);
        const std::size_t misalignment = width % 5;
        const Bytes source(ReferenceConversion(GetParam().name, width, height).sourceBytes(), misalignment);
        std::generate(source.begin(), source.end(), [&] { return static_cast<std::uint8_t>(random() >> 8); });
        // Edges: the largest sums, and results outside 0 to 255.
        std::replace_if(
            source.begin(), source.end(), [](std::uint8_t byte) { return byte < 40; }, 0);
        std::replace_if(
            source.begin(), source.end(), [](std::uint8_t byte) { return byte > 215; }, 255);

        const Bytes expected = [&] {
            const ForcedTarget scalar(ForcedTarget::scalar());
            return converted(GetParam(), source, width, height, 0);
        }();
        for (const std::int64_t target : ForcedTarget::all()) {
            const ForcedTarget forced(target);
            const Bytes bgra = converted(GetParam(), source, width, height, misalignment);
            const auto* const different = std::mismatch(bgra.begin(), bgra.end(), expected.begin()).first;
            ASSERT_EQ(different, bgra.end())
                << hwy::TargetName(target) << ", " << width << " x " << height << ": byte " << different - bgra.begin();
        }
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

// Images with rows that have two others above and below.
TEST_P(ConvImageTargets, GiveTheSameInTheMiddleOfImages)
{
    for (std::uint32_t width = 120; width <= kWidest; width += width < 140 ? 1 : 9) {
        for (const std::uint32_t height : {9U, 12U}) {
            check(width, height);
            if (HasFatalFailure())
                return;
        }
    }
}

// Wider than the pieces that are reduced to bytes, and than the line buffers for Bayer images.
TEST_P(ConvImageTargets, GiveTheSameForWideImages)
{
    for (const std::uint32_t width : {2049U, 4099U, 8193U, 8300U})
        check(width, 3);
}

INSTANTIATE_TEST_SUITE_P(Formats, ConvImageTargets, testing::ValuesIn(kPfncFormats),
                         [](const auto& format) { return std::string(format.param.name); });

// Otherwise the tests above would compare the scalar code with itself.
TEST(ConvImageTarget, VectorCodeIsUsedIfTheProcessorSupportsIt)
{
#if HWY_ARCH_X86
    if (__builtin_cpu_supports("ssse3") == 0)
        GTEST_SKIP() << "the processor has no SSSE3";
#endif
    EXPECT_GT(ForcedTarget::all().size(), 1U);
    EXPECT_THAT(ForcedTarget::all(), testing::Contains(ForcedTarget::scalar()));
}

} // namespace
