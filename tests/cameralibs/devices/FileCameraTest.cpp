// Cameras made from description files.

#include "tests/cameralibs/api/MemoryLimit.h"
#include "tests/cameralibs/api/StreamRecorder.h"
#include "tests/cameralibs/devices/DescriptionText.h"
#include "tests/cameralibs/devices/FrameNumberReader.h"
#include "tests/cameralibs/devices/SimulatedCamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>

using namespace Orvo;

namespace {

std::string enumerationNode(const std::string& name, unsigned address, const std::string& entries)
{
    return "<Enumeration Name=\"" + name + "\">" + entries + "<pValue>" + name + "Reg</pValue></Enumeration>" +
           "<IntReg Name=\"" + name + "Reg\"><Address>" + std::to_string(address) +
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>"
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

std::string entry(const std::string& name, std::uint32_t value)
{
    return "<EnumEntry Name=\"" + name + "\"><Value>" + std::to_string(value) + "</Value></EnumEntry>";
}

std::string commandNode(const std::string& name, unsigned address)
{
    return "<Command Name=\"" + name + "\"><pValue>" + name + "Reg</pValue><CommandValue>1</CommandValue></Command>" +
           "<IntReg Name=\"" + name + "Reg\"><Address>" + std::to_string(address) +
           "</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort></IntReg>";
}

const char kRange[] = "<Min>1</Min><Max>4096</Max>";

// The nodes of every camera that sends images.
std::string imagingCamera(const std::string& formats)
{
    return descriptionOf("Heron", "Width Height PixelFormat PayloadSize AcquisitionStart AcquisitionStop Speed Mode",
                         integerNode("Width", 0x100, kRange) + integerNode("Height", 0x104, kRange) +
                             integerNode("PayloadSize", 0x108, "") + enumerationNode("PixelFormat", 0x10C, formats) +
                             commandNode("AcquisitionStart", 0x110) + commandNode("AcquisitionStop", 0x114) +
                             integerNode("Speed", 0xFFFFFFF0, "<Min>7</Min><Max>9</Max>") +
                             enumerationNode("Mode", 0x11C, entry("Slow", 3) + entry("Fast", 5)));
}

class FileCamera {
public:
    explicit FileCamera(const std::string& text)
        : m_file(text)
        , m_library(("0," + m_file.path()).c_str())
        , m_camera(0)
    {
    }

    [[nodiscard]] const SimulatedCamera& operator*() const { return m_camera; }
    [[nodiscard]] const SimulatedCamera* operator->() const { return &m_camera; }

private:
    DescriptionFile m_file;
    Library m_library;
    SimulatedCamera m_camera;
};

TEST(FileCameraTest, InitialValuesAreWithinTheirRanges)
{
    const FileCamera camera(imagingCamera(entry("Mono8", 0x01080001)));
    EXPECT_EQ(camera->integer("Speed"), 7);
    EXPECT_EQ(camera->choice("Mode"), "Slow");
    EXPECT_EQ(camera->choice("PixelFormat"), "Mono8");
    EXPECT_EQ(camera->integer("Width"), 1280);
    EXPECT_EQ(camera->integer("Height"), 960);
}

TEST(FileCameraTest, InitialEntryIsAvailable)
{
    const std::string mode =
        "<EnumEntry Name=\"Absent\"><pIsImplemented>Off</pIsImplemented><Value>3</Value></EnumEntry>"
        "<EnumEntry Name=\"Locked\"><pIsAvailable>Off</pIsAvailable><Value>4</Value></EnumEntry>";
    const FileCamera camera(descriptionOf("Finch", "Mode",
                                          "<Integer Name=\"Off\"><Value>0</Value></Integer>" +
                                              enumerationNode("Mode", 0x100, mode + entry("Open", 5))));
    EXPECT_EQ(camera->choice("Mode"), "Open");
}

TEST(FileCameraTest, RegistersAreMemory)
{
    const FileCamera camera(imagingCamera(entry("Mono8", 0x01080001)));
    camera->setInteger("Speed", 9);
    camera->choose("Mode", "Fast");
    EXPECT_EQ(camera->integer("Speed"), 9);
    EXPECT_EQ(camera->choice("Mode"), "Fast");
    camera->execute("AcquisitionStart");
}

TEST(FileCameraTest, ImagesShowTheScene)
{
    const FileCamera camera(imagingCamera(entry("Mono8", 0x01080001) + entry("BayerRG12p", 0x010C0059)));
    const Picture first = takePicture(camera->handle());
    EXPECT_EQ(first.bytes.size(), 1280U * 960U);
    EXPECT_EQ(readFrameNumber(first), first.number);
    camera->setInteger("Width", 644);
    camera->setInteger("Height", 481);
    camera->choose("PixelFormat", "BayerRG12p");
    EXPECT_EQ(camera->integer("PayloadSize"), 644 * 481 * 3 / 2);
    const Picture second = takePicture(camera->handle());
    EXPECT_EQ(second.bytes.size(), 644U * 481U * 3 / 2);
}

TEST(FileCameraTest, ConstantSizesApplyToImages)
{
    const FileCamera camera(descriptionOf(
        "Owl", "Width Height PixelFormat PayloadSize AcquisitionStart AcquisitionStop",
        "<Integer Name=\"Width\"><Value>640</Value></Integer><Integer Name=\"Height\"><Value>480</Value></Integer>" +
            enumerationNode("PixelFormat", 0x10C, entry("Mono8", 0x01080001)) + integerNode("PayloadSize", 0x108, "") +
            commandNode("AcquisitionStart", 0x110) + commandNode("AcquisitionStop", 0x114)));
    EXPECT_EQ(camera->integer("Width"), 640);
    EXPECT_EQ(camera->integer("PayloadSize"), 640 * 480);
    EXPECT_EQ(takePicture(camera->handle()).bytes.size(), 640U * 480U);
}

TEST(FileCameraTest, ImagesMayBeOnePixelWideOrHigh)
{
    const FileCamera camera(imagingCamera(entry("Mono8", 0x01080001)));
    const struct {
        std::uint32_t width;
        std::uint32_t height;
    } sizes[] = {{1280, 1}, {1280, 2}, {1280, 3}, {1280, 4}, {1280, 5}, {1, 960}, {1, 1}};
    for (const auto& size : sizes) {
        camera->setInteger("Width", size.width);
        camera->setInteger("Height", size.height);
        EXPECT_EQ(takePicture(camera->handle()).bytes.size(), size.width * size.height)
            << size.width << " x " << size.height;
    }
}

// Formats that the camera cannot generate are replaced by another one with the same number of bits.
TEST(FileCameraTest, RowsMayEndWithinAGroupOfPixels)
{
    constexpr std::uint32_t kWidth = 641;
    constexpr std::uint32_t kHeight = 31;
    const struct {
        const char* format;
        std::uint32_t value;
        std::uint32_t bytes;
    } formats[] = {
        {"Mono8", 0x01080001, 641 * 31},
        {"Mono10p", 0x010A0046, (641 * 31 * 10 + 7) / 8},
        {"BayerRG12p", 0x010C0059, (641 * 31 * 12 + 7) / 8},
        {"Mono12Packed", 0x010C0006, 321 * 3 * 31},
        {"YUV422_8", 0x02100032, 321 * 4 * 31},
        {"YCbCr422_8_CbYCrY", 0x02100043, 321 * 4 * 31},
        {"YUV411_8_UYYVYY", 0x020C001E, 161 * 6 * 31},
        {"YCbCr420_8_YY_CbCr_Semiplanar", 0x020C0112, 641 * 31 + 642 * 16},
    };
    std::string entries;
    for (const auto& format : formats)
        entries += entry(format.format, format.value);
    const FileCamera camera(imagingCamera(entries));
    camera->setInteger("Width", kWidth);
    camera->setInteger("Height", kHeight);
    for (const auto& format : formats) {
        SCOPED_TRACE(format.format);
        camera->choose("PixelFormat", format.format);
        EXPECT_EQ(camera->integer("PayloadSize"), format.bytes);
        EXPECT_EQ(takePicture(camera->handle()).bytes.size(), format.bytes);
    }
}

TEST(FileCameraTest, ImagesOfAnUnknownFormatHaveTheRightSize)
{
    const FileCamera camera(imagingCamera(entry("BGR8", 0x02180015)));
    EXPECT_EQ(takePicture(camera->handle()).bytes.size(), 1280U * 960U * 3);
}

TEST(FileCameraTest, WithoutASizeThereAreNoImages)
{
    const FileCamera camera(descriptionOf("Mole", "Speed PayloadSize",
                                          integerNode("Speed", 0, "<Min>7</Min><Max>9</Max>") +
                                              integerNode("PayloadSize", 4, "<Min>1000</Min><Max>1000</Max>")));
    EXPECT_EQ(camera->integer("Speed"), 7);
    CAM_STRM_HANDLE stream = 0;
    ASSERT_EQ(Strm_OpenSimple(camera->handle(), &stream, nullptr, nullptr, 8, nullptr), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Start(stream, 8), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(Strm_Close(stream), CAM_API_STS_SUCCESS);
}

TEST(FileCameraTest, AbsurdSizesAreRefused)
{
    const std::string text = descriptionOf("Whale", "Width Height PayloadSize",
                                           integerNode("Width", 0, "<Min>4000000000</Min><Max>4000000000</Max>") +
                                               integerNode("Height", 4, "<Min>4000000000</Min><Max>4000000000</Max>") +
                                               integerNode("PayloadSize", 8, "<Min>1000</Min><Max>1000</Max>"));
    const FileCamera camera(text);
    EXPECT_EQ(camera->integer("Width"), 4000000000);
    CAM_STRM_HANDLE stream = 0;
    ASSERT_EQ(Strm_OpenSimple(camera->handle(), &stream, nullptr, nullptr, 8, nullptr), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Start(stream, 8), CAM_API_STS_NOT_IMPLEMENTED);
    EXPECT_EQ(Strm_Close(stream), CAM_API_STS_SUCCESS);
}

TEST(FileCameraTest, RowsThatDoNotFitMemoryAreErrors)
{
    if (!MemoryLimit::kPossible)
        GTEST_SKIP() << "sanitizers do not work with a memory limit";
    // The buffers fit the remaining memory, but a row does not.
    constexpr std::int64_t kWidth = 32LL * 1024 * 1024;
    const FileCamera camera(descriptionOf("Boa", "Width Height PixelFormat PayloadSize",
                                          integerNode("Width", 0x100, "<Min>1</Min><Max>100000000</Max>") +
                                              integerNode("Height", 0x104, "<Min>1</Min><Max>1</Max>") +
                                              integerNode("PayloadSize", 0x108, "") +
                                              enumerationNode("PixelFormat", 0x10C, entry("Mono8", 0x01080001))));
    camera->setInteger("Width", kWidth);
    CAM_STRM_HANDLE stream = 0;
    StreamRecorder recorder;
    const MemoryLimit limit(12 * kWidth);
    ASSERT_EQ(Strm_OpenSimple(camera->handle(), &stream, nullptr, nullptr, 1, nullptr), CAM_API_STS_SUCCESS);
    recorder.attachTo(stream);
    ASSERT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
    ASSERT_TRUE(recorder.waitForErrors(2));
    EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
    EXPECT_THAT(recorder.errors(), ::testing::Each(CAM_API_STS_NO_MEMORY));
    camera->setInteger("Width", 640);
    ASSERT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(recorder.waitForImages(2));
    EXPECT_EQ(Strm_Close(stream), CAM_API_STS_SUCCESS);
}

TEST(FileCameraTest, OpeningResetsTheCamera)
{
    const DescriptionFile file(imagingCamera(entry("Mono8", 0x01080001)));
    const Library library(("0," + file.path()).c_str());
    {
        SimulatedCamera(0).setInteger("Speed", 9);
    }
    EXPECT_EQ(SimulatedCamera(0).integer("Speed"), 7);
}

} // namespace
