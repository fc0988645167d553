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

// The vector code for every instruction set that this processor has gives what the plain code gives, bit for bit. The
// buffers are exactly as large as needed and begin anywhere: the address sanitizer sees every byte read or written
// beside them.

namespace {

constexpr std::uint32_t widest = 200;

class Bytes {
public:
    // They end where the memory ends.
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
    // With all instruction sets at one size.
    static void check(std::uint32_t width, std::uint32_t height)
    {
        std::minstd_rand random(width * 8 + height);
        const std::size_t misalignment = width % 5;
        const Bytes source(ReferenceConversion(GetParam().name, width, height).sourceBytes(), misalignment);
        std::generate(source.begin(), source.end(), [&] { return static_cast<std::uint8_t>(random() >> 8); });
        // Edges: the largest sums, and results beyond 0 and 255.
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
    for (std::uint32_t width = 1; width <= widest; ++width) {
        for (const std::uint32_t height : {1U, 2U, 5U}) {
            check(width, height);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

// Rows that have others two above and two below them.
TEST_P(ConvImageTargets, GiveTheSameInTheMiddleOfImages)
{
    for (std::uint32_t width = 120; width <= widest; width += width < 140 ? 1 : 9) {
        for (const std::uint32_t height : {9U, 12U}) {
            check(width, height);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

// Wider than what is reduced to bytes in one go, and than the lines that Bayer images are read into.
TEST_P(ConvImageTargets, GiveTheSameForWideImages)
{
    for (const std::uint32_t width : {2049U, 4099U, 8193U, 8300U}) {
        check(width, 3);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, ConvImageTargets, testing::ValuesIn(pfncFormats),
                         [](const auto& format) { return std::string(format.param.name); });

// Otherwise the tests above compare the plain code with itself.
TEST(ConvImageTarget, VectorsAreUsedWhereTheProcessorHasThem)
{
#if HWY_ARCH_X86
    if (__builtin_cpu_supports("ssse3") == 0) {
        GTEST_SKIP() << "a processor without SSSE3";
    }
#endif
    EXPECT_GT(ForcedTarget::all().size(), 1U);
    EXPECT_THAT(ForcedTarget::all(), testing::Contains(ForcedTarget::scalar()));
}

} // namespace
