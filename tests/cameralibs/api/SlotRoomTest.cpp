// The memory of an image is large enough for readers that rely on values that the library has reported.

#include "tests/cameralibs/api/DescribedCamera.h"
#include "tests/cameralibs/api/LockedImage.h"
#include "tests/cameralibs/api/StreamRecorder.h"

#include "camera/OrvoCamUtl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

using namespace Orvo;

namespace {

struct Format {
    const char* name;
    std::uint32_t value;
    const char* alike; ///< a format with the same bits per pixel that does not pad its rows
};

constexpr Format kMono8{"Mono8", 0x01080001, nullptr};
constexpr Format kRgb8{"RGB8", 0x02180014, nullptr};

/// One format of each kind that pads rows to whole pairs or groups.
constexpr Format kGroupFormats[] = {
    {"YUV422_8", 0x02100032, "Mono16"},
    {"YUV422_8_UYVY", 0x0210001F, "Mono16"},
    {"YCbCr422_8_YY_CbCr_Semiplanar", 0x02100113, "Mono16"},
    {"YCbCr422_12p", 0x02180088, "RGB8"},
    {"Mono10Packed", 0x010C0004, "Mono12p"},
    {"Mono12Packed", 0x010C0006, "Mono12p"},
    {"BayerRG12Packed", 0x010C002B, "Mono12p"},
    {"YUV411_8_UYYVYY", 0x020C001E, "Mono12p"},
    {"YCbCr411_8", 0x020C005A, "Mono12p"},
    {"YCbCr420_8_YY_CbCr_Semiplanar", 0x020C0112, "Mono12p"},
};

std::string entry(const char* name, std::uint32_t value)
{
    return std::string("<EnumEntry Name=\"") + name + "\"><Value>" + std::to_string(value) + "</Value></EnumEntry>";
}

/// Each of the three features can be made unreadable.
std::string imagingCamera()
{
    std::string entries = entry("Mono8", 0x01080001) + entry("Mono12p", 0x010C0047) + entry("Mono16", 0x01100007) +
                          entry("RGB8", 0x02180014);
    for (const Format& format : kGroupFormats)
        entries += entry(format.name, format.value);
    const auto size = [](const char* name, unsigned address) {
        return integerNode(name, address,
                           "<Min>1</Min><Max>100000000</Max><pIsAvailable>" + std::string(name) +
                               "Readable</pIsAvailable>") +
               intReg(std::string(name) + "Readable", address + 4);
    };
    return describe("Width Height PixelFormat PayloadSize",
                    size("Width", 0) + size("Height", 8) +
                        "<Enumeration Name=\"PixelFormat\"><pIsAvailable>PixelFormatReadable</pIsAvailable>" + entries +
                        "<pValue>PixelFormatReg</pValue></Enumeration>" + intReg("PixelFormatReg", 16) +
                        intReg("PixelFormatReadable", 20) + integerNode("PayloadSize", 24, ""));
}

class SlotRoomTest : public ::testing::Test {
protected:
    SlotRoomTest()
    {
        EXPECT_EQ(m_described.status(), CAM_API_STS_SUCCESS) << m_described.error();
        for (const char* const feature : {"Width", "Height", "PixelFormat"})
            setReadable(feature, true);
    }

    void setReadable(const std::string& feature, bool readable)
    {
        setInt(m_camera, feature + "Readable", readable ? 1 : 0);
    }

    /// Does not use the library, so nothing is reported.
    void set(std::uint32_t width, std::uint32_t height, const char* format)
    {
        setInt(m_camera, "Width", width);
        setInt(m_camera, "Height", height);
        setEntry(m_camera, "PixelFormat", format);
    }

    /// Reads what a viewer reads before it starts a stream.
    void ask(std::uint32_t expectedWidth, std::uint32_t expectedHeight, std::uint32_t expectedFormat)
    {
        std::uint32_t value = 0;
        EXPECT_EQ(GetCamWidth(m_camera, &value), CAM_API_STS_SUCCESS);
        EXPECT_EQ(value, expectedWidth);
        EXPECT_EQ(GetCamHeight(m_camera, &value), CAM_API_STS_SUCCESS);
        EXPECT_EQ(value, expectedHeight);
        EXPECT_EQ(GetCamPixelFormat(m_camera, &value), CAM_API_STS_SUCCESS);
        EXPECT_EQ(value, expectedFormat);
    }

    void open() { ASSERT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, 8, nullptr), CAM_API_STS_SUCCESS); }

    void start()
    {
        m_recorder.attachTo(m_stream);
        ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    }

    /// Reads the first slots as images of this size. The address sanitizer detects reads beyond their memory.
    void expectRoom(std::uint32_t width, std::uint32_t height, const Format& format, std::uint32_t slots = 8)
    {
        ASSERT_TRUE(m_recorder.waitForImages(slots));
        const auto bgra = std::make_unique<std::uint8_t[]>(std::size_t{4} * width * height);
        for (std::uint32_t slot = 0; slot < slots; ++slot) {
            CAM_IMAGE_INFO info = {};
            ASSERT_EQ(Strm_LockBuffer(m_stream, slot, &info), CAM_API_STS_SUCCESS);
            EXPECT_EQ(ConvImage(0, format.value, 1, bgra.get(), info.data, width, height), CAM_API_STS_SUCCESS);
            EXPECT_EQ(Strm_UnlockBuffer(m_stream, slot), CAM_API_STS_SUCCESS);
        }
    }

    /// The same, and checks that the bytes after the received ones are zero.
    void expectZerosBehind(std::size_t sent, std::size_t room)
    {
        ASSERT_TRUE(m_recorder.waitForImages(8));
        for (std::uint32_t slot = 0; slot < 8; ++slot) {
            CAM_IMAGE_INFO info = {};
            ASSERT_EQ(Strm_LockBuffer(m_stream, slot, &info), CAM_API_STS_SUCCESS);
            EXPECT_EQ(info.dataSize, sent);
            const auto* const data = static_cast<const std::uint8_t*>(info.data);
            EXPECT_TRUE(std::all_of(data + sent, data + room, [](std::uint8_t byte) { return byte == 0; })) << slot;
            EXPECT_EQ(Strm_UnlockBuffer(m_stream, slot), CAM_API_STS_SUCCESS);
        }
    }

    StreamRecorder m_recorder; // outlives the library
    const DescribedCamera m_described{imagingCamera()};
    const CAM_HANDLE m_camera = m_described.handle();
    CAM_STRM_HANDLE m_stream = 0;
};

class SlotRoomWithoutFeatureTest : public SlotRoomTest, public ::testing::WithParamInterface<const char*> {};

class SlotRoomOfGroupsTest : public SlotRoomTest, public ::testing::WithParamInterface<Format> {
protected:
    void expectRoomForRows(std::uint32_t width, std::uint32_t height, std::uint32_t slots)
    {
        const Format& format = GetParam();
        set(width, height, format.name);
        ask(width, height, format.value);
        // Like cameras that calculate width x height x bits: the last group of a row is incomplete.
        setEntry(m_camera, "PixelFormat", format.alike);
        open();
        start();
        expectRoom(width, height, format, slots);
    }
};

} // namespace

TEST_P(SlotRoomOfGroupsTest, RowsWithAPartialGroup)
{
    expectRoomForRows(641, 481, 8);
}

TEST_P(SlotRoomOfGroupsTest, RowsOfOnePixel)
{
    expectRoomForRows(1, 1'000'000, 1); // they take long to generate
}

INSTANTIATE_TEST_SUITE_P(Formats, SlotRoomOfGroupsTest, ::testing::ValuesIn(kGroupFormats),
                         [](const auto& format) { return std::string(format.param.name); });

TEST_F(SlotRoomTest, WidthReportedBetweenOpeningAndStart)
{
    set(64, 1024, "Mono8");
    open();
    setInt(m_camera, "Width", 1280);
    ask(1280, 1024, kMono8.value);
    setInt(m_camera, "Width", 64);
    start();
    expectRoom(1280, 1024, kMono8);
    expectZerosBehind(std::size_t{64} * 1024, std::size_t{1280} * 1024);
}

TEST_F(SlotRoomTest, HeightReportedBetweenOpeningAndStart)
{
    set(1280, 3, "Mono8");
    open();
    setInt(m_camera, "Height", 1024);
    ask(1280, 1024, kMono8.value);
    setInt(m_camera, "Height", 3);
    start();
    expectRoom(1280, 1024, kMono8);
    expectZerosBehind(std::size_t{1280} * 3, std::size_t{1280} * 1024);
}

TEST_F(SlotRoomTest, PixelFormatReportedBetweenOpeningAndStart)
{
    set(1280, 1024, "Mono8");
    open();
    setEntry(m_camera, "PixelFormat", "RGB8");
    ask(1280, 1024, kRgb8.value);
    setEntry(m_camera, "PixelFormat", "Mono8");
    start();
    expectRoom(1280, 1024, kRgb8);
    expectZerosBehind(std::size_t{1280} * 1024, std::size_t{1280} * 1024 * 3);
}

TEST_P(SlotRoomWithoutFeatureTest, FeatureThatCannotBeReadAtTheStart)
{
    set(1280, 1024, "RGB8");
    ask(1280, 1024, kRgb8.value);
    set(64, 64, "Mono8");
    setReadable(GetParam(), false);
    open();
    start();
    expectRoom(1280, 1024, kRgb8);
    expectZerosBehind(std::size_t{64} * 64, std::size_t{1280} * 1024 * 3);
}

INSTANTIATE_TEST_SUITE_P(Features, SlotRoomWithoutFeatureTest, ::testing::Values("Width", "Height", "PixelFormat"));

TEST_F(SlotRoomTest, LargestReportedValueOfEachFeature)
{
    set(1280, 3, "Mono8");
    ask(1280, 3, kMono8.value);
    set(3, 1024, "Mono8");
    ask(3, 1024, kMono8.value);
    set(3, 3, "RGB8");
    ask(3, 3, kRgb8.value);
    set(64, 64, "Mono8");
    ask(64, 64, kMono8.value);
    open();
    start();
    expectRoom(1280, 1024, kRgb8);
    expectZerosBehind(std::size_t{64} * 64, std::size_t{1280} * 1024 * 3);
}

TEST_F(SlotRoomTest, ValuesReportedToTheFeatureBrowserCount)
{
    set(1280, 1024, "RGB8");
    EXPECT_EQ(intOf(m_camera, "Width"), 1280);
    EXPECT_EQ(intOf(m_camera, "Height"), 1024);
    EXPECT_EQ(wholeText(Nd_GetEnumStrValue, m_camera, nodeOf(m_camera, "PixelFormat")), "RGB8");
    set(64, 64, "Mono8");
    open();
    start();
    expectRoom(1280, 1024, kRgb8);
}

TEST_F(SlotRoomTest, NothingRemainsOfALongerImage)
{
    set(1280, 1024, "Mono8");
    ask(1280, 1024, kMono8.value);
    open();
    start();
    ASSERT_TRUE(m_recorder.waitForImages(40)); // every buffer has contained one
    ASSERT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    set(64, 64, "Mono8");
    m_recorder.clear();
    start();
    expectZerosBehind(std::size_t{64} * 64, std::size_t{1280} * 1024);
}

TEST_F(SlotRoomTest, NothingRemainsOfALongerImageOfAnEarlierStart)
{
    set(1280, 1024, "Mono8");
    open();
    start();
    ASSERT_TRUE(m_recorder.waitForImages(40)); // every buffer has contained one
    ASSERT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    set(64, 64, "Mono8");
    m_recorder.clear();
    start();
    ASSERT_TRUE(m_recorder.waitForImages(8));
    ASSERT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    // The images of the next start do not reach this slot.
    const LockedImage locked(m_stream);
    set(1280, 1024, "Mono8");
    ask(1280, 1024, kMono8.value);
    set(64, 64, "Mono8");
    start();
    CAM_IMAGE_INFO info = {};
    ASSERT_EQ(Strm_LockBuffer(m_stream, locked.slot(), &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.dataSize, 64U * 64U);
    const auto* const data = static_cast<const std::uint8_t*>(info.data);
    EXPECT_TRUE(std::all_of(data + 64L * 64, data + 1280L * 1024, [](std::uint8_t byte) { return byte == 0; }));
    EXPECT_EQ(Strm_UnlockBuffer(m_stream, locked.slot()), CAM_API_STS_SUCCESS);
}

TEST_F(SlotRoomTest, ImagesOfAnEarlierStartHaveTheMemoryOfTheNewOne)
{
    set(64, 64, "Mono8");
    open();
    start();
    ASSERT_TRUE(m_recorder.waitForImages(8));
    ASSERT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    const LockedImage locked(m_stream);
    setInt(m_camera, "Width", 1280);
    ask(1280, 64, kMono8.value);
    setInt(m_camera, "Width", 64);
    start();
    {
        // A locked slot keeps its image.
        CAM_IMAGE_INFO info = {};
        ASSERT_EQ(Strm_LockBuffer(m_stream, locked.slot(), &info), CAM_API_STS_SUCCESS);
        const auto bgra = std::make_unique<std::uint8_t[]>(std::size_t{4} * 1280 * 64);
        EXPECT_EQ(ConvImage(0, kMono8.value, 1, bgra.get(), info.data, 1280, 64), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Strm_UnlockBuffer(m_stream, locked.slot()), CAM_API_STS_SUCCESS);
    }
    EXPECT_EQ(locked.bytes(), locked.lockedBytes()) << "where it was when it was locked";
}

TEST_F(SlotRoomTest, FourGigabytesInTotalAreRefused)
{
    set(32768, 32767, "Mono8");
    ASSERT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS);
    CAM_STRM_HANDLE refused = 0;
    EXPECT_EQ(Strm_OpenSimple(m_camera, &refused, nullptr, nullptr, 5, nullptr), CAM_API_STS_INVALID_PARAMETER);
    set(32768, 32768, "Mono8");
    EXPECT_EQ(Strm_OpenSimple(m_camera, &refused, nullptr, nullptr, 4, nullptr), CAM_API_STS_INVALID_PARAMETER);
    // Products that are small when truncated to 32 or 64 bits.
    set(65536, 65537, "Mono8");
    EXPECT_EQ(Strm_OpenSimple(m_camera, &refused, nullptr, nullptr, 1, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(refused, 0U);
}

TEST_F(SlotRoomTest, FourGigabytesByReportedValuesAreRefusedAtTheStart)
{
    set(64, 64, "Mono8");
    open();
    setInt(m_camera, "Width", 100'000'000);
    EXPECT_EQ(intOf(m_camera, "Width"), 100'000'000);
    setInt(m_camera, "Width", 64);
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS);
    // After reopening, the values are forgotten.
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    CAM_HANDLE camera = 0;
    ASSERT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_OpenSimple(camera, &m_stream, nullptr, nullptr, 8, nullptr), CAM_API_STS_SUCCESS);
}
