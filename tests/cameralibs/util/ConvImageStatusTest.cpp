#include "tests/cameralibs/util/PfncFormats.h"

#include "camera/OrvoCamUtl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

// The statuses of ConvImage and the order of its checks. None of these tests calls Sys_Initialize.

namespace {

constexpr std::uint32_t kMono8 = 0x01080001;
constexpr std::uint32_t kBayerRg8 = 0x01080009;
constexpr std::uint32_t kUnknownFormat = 0x01080002; // signed

class ConvImageStatus : public testing::Test {
protected:
    [[nodiscard]] Orvo::CAM_API_STATUS convert(std::uint32_t dstFormat, std::uint32_t srcFormat, std::uint32_t width,
                                               std::uint32_t height)
    {
        return Orvo::ConvImage(dstFormat, srcFormat, 1, m_bgra.data(), m_source.data(), width, height);
    }

    [[nodiscard]] bool nothingWritten() const
    {
        return std::all_of(m_bgra.begin(), m_bgra.end(), [](std::uint8_t byte) { return byte == kUntouched; });
    }

    void SetUp() override { m_bgra.fill(kUntouched); }

    static constexpr std::uint8_t kUntouched = 0xA5;
    std::array<std::uint8_t, 64> m_source{};
    std::array<std::uint8_t, 256> m_bgra{};
};

TEST_F(ConvImageStatus, AnyDestinationFormatButZeroIsNotImplemented)
{
    EXPECT_EQ(convert(1, kMono8, 4, 4), Orvo::CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(convert(0xFFFFFFFF, kMono8, 4, 4), Orvo::CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(convert(kMono8, kMono8, 4, 4), Orvo::CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_TRUE(nothingWritten());
}

TEST_F(ConvImageStatus, UnknownSourceFormatIsNotImplemented)
{
    for (const std::uint32_t format : {0U, 1U, kUnknownFormat, 0x010C0000U, 0x81080001U, 0xFFFFFFFFU})
        EXPECT_EQ(convert(0, format, 4, 4), Orvo::CAM_API_STS_NOT_IMPLEMENTED) << std::hex << format;
    EXPECT_TRUE(nothingWritten());
}

TEST_F(ConvImageStatus, FormatsAreCheckedBeforeSizesAndPointers)
{
    EXPECT_EQ(convert(1, kMono8, 0, 0), Orvo::CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(convert(0, kUnknownFormat, 0, 4), Orvo::CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(convert(0, kUnknownFormat, 0xFFFFFFFF, 0xFFFFFFFF), Orvo::CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(Orvo::ConvImage(1, kMono8, 1, nullptr, nullptr, 4, 4), Orvo::CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(Orvo::ConvImage(0, kUnknownFormat, 1, nullptr, nullptr, 4, 4), Orvo::CAM_API_STS_NOT_IMPLEMENTED);
}

TEST_F(ConvImageStatus, ZeroSizeIsInvalid)
{
    for (const PfncFormat& format : kPfncFormats) {
        EXPECT_EQ(convert(0, format.value, 0, 4), Orvo::CAM_API_STS_INVALID_PARAMETER) << format.name;
        EXPECT_EQ(convert(0, format.value, 4, 0), Orvo::CAM_API_STS_INVALID_PARAMETER) << format.name;
        EXPECT_EQ(convert(0, format.value, 0, 0), Orvo::CAM_API_STS_INVALID_PARAMETER) << format.name;
    }
    EXPECT_TRUE(nothingWritten());
}

TEST_F(ConvImageStatus, ResultOfFourGigabytesIsInvalid)
{
    EXPECT_EQ(convert(0, kMono8, 32768, 32768), Orvo::CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(convert(0, kMono8, 1U << 30, 1), Orvo::CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(convert(0, kMono8, 1, 1U << 30), Orvo::CAM_API_STS_INVALID_PARAMETER);
    // Products that are small when truncated to 32 bits.
    EXPECT_EQ(convert(0, kBayerRg8, 65536, 65537), Orvo::CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(convert(0, kBayerRg8, 0x80000000, 2), Orvo::CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(convert(0, kBayerRg8, 0xFFFFFFFF, 0xFFFFFFFF), Orvo::CAM_API_STS_INVALID_PARAMETER);
    EXPECT_TRUE(nothingWritten());
}

TEST_F(ConvImageStatus, NullPointersAreInvalid)
{
    for (const PfncFormat& format : kPfncFormats) {
        EXPECT_EQ(Orvo::ConvImage(0, format.value, 1, nullptr, m_source.data(), 2, 2),
                  Orvo::CAM_API_STS_INVALID_PARAMETER);
        EXPECT_EQ(Orvo::ConvImage(0, format.value, 1, m_bgra.data(), nullptr, 2, 2),
                  Orvo::CAM_API_STS_INVALID_PARAMETER);
    }
    EXPECT_TRUE(nothingWritten());
}

TEST_F(ConvImageStatus, OptionIsIgnored)
{
    m_source.fill(77);
    for (const std::uint32_t option : {0U, 1U, 2U, 0xFFFFFFFFU}) {
        m_bgra.fill(kUntouched);
        EXPECT_EQ(Orvo::ConvImage(0, kMono8, option, m_bgra.data(), m_source.data(), 4, 4), 0U);
        EXPECT_EQ(m_bgra[0], 77);
        EXPECT_EQ(m_bgra[63], 255);
        EXPECT_EQ(m_bgra[64], kUntouched);
    }
}

TEST_F(ConvImageStatus, TablesMayBePreparedAnyNumberOfTimes)
{
    EXPECT_EQ(Orvo::PrepareLUT(), 0U);
    EXPECT_EQ(Orvo::PrepareLUT(), 0U);
    EXPECT_EQ(convert(0, kMono8, 4, 4), 0U);
    EXPECT_EQ(Orvo::PrepareLUT(), 0U);
}

TEST_F(ConvImageStatus, SourceAndDestinationNeedNoAlignment)
{
    for (const PfncFormat& format : kPfncFormats) {
        std::vector<std::uint8_t> source(1 + 40 * 4 * 8);
        for (std::size_t i = 0; i < source.size(); ++i)
            source[i] = static_cast<std::uint8_t>(i * 37);
        std::vector<std::uint8_t> aligned(std::size_t{40} * 4 * 4);
        std::vector<std::uint8_t> unaligned(aligned.size() + 1);
        ASSERT_EQ(Orvo::ConvImage(0, format.value, 1, unaligned.data() + 1, source.data() + 1, 40, 4), 0U);
        source.erase(source.begin());
        ASSERT_EQ(Orvo::ConvImage(0, format.value, 1, aligned.data(), source.data(), 40, 4), 0U);
        EXPECT_TRUE(std::equal(aligned.begin(), aligned.end(), unaligned.begin() + 1)) << format.name;
    }
}

TEST_F(ConvImageStatus, EightConcurrentThreadsGiveTheSameResult)
{
    constexpr std::uint32_t kWidth = 70;
    constexpr std::uint32_t kHeight = 21;
    constexpr std::size_t kBytes = std::size_t{kWidth} * kHeight * 4;
    std::vector<std::uint8_t> source(std::size_t{kWidth} * kHeight * 8);
    for (std::size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<std::uint8_t>(i * i / 7);
    const auto convertAll = [&source](std::size_t start) {
        std::vector<std::uint8_t> results(kBytes * kPfncFormats.size());
        for (std::size_t i = 0; i < kPfncFormats.size(); ++i) {
            const std::size_t format = (start + i) % kPfncFormats.size();
            EXPECT_EQ(Orvo::PrepareLUT(), 0U);
            EXPECT_EQ(Orvo::ConvImage(0, kPfncFormats[format].value, 1, results.data() + format * kBytes, source.data(),
                                      kWidth, kHeight),
                      0U);
        }
        return results;
    };

    const auto expected = convertAll(0);
    std::vector<std::vector<std::uint8_t>> results(8);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < results.size(); ++i) {
        threads.emplace_back([&, i] { results[i] = convertAll(i * 17); });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& result : results)
        EXPECT_EQ(result, expected);
}

} // namespace
