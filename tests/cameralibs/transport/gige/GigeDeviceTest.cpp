// The library with the GigE Vision camera of the tests, which behaves correctly here.

#include "tests/cameralibs/transport/gige/GigeDeviceFixture.h"

#include "tests/cameralibs/api/LockedImage.h"
#include "tests/cameralibs/devices/transport/Transports.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

using namespace Orvo;
using ::testing::ElementsAre;

namespace {

/// Of the UDP sockets in this network: the bytes that the kernel has received and the program has not.
std::size_t longestReceiveQueue()
{
    std::ifstream table("/proc/self/net/udp");
    std::string line;
    std::getline(table, line); // the headings
    std::size_t longest = 0;
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        std::string number, local, remote, state, queues;
        fields >> number >> local >> remote >> state >> queues;
        longest = std::max<std::size_t>(longest, std::stoul(queues.substr(queues.find(':') + 1), nullptr, 16));
    }
    return longest;
}

} // namespace

TEST_F(GigeDeviceTest, InformationIdentifiesTheCamera)
{
    list({"--serial", "S-17"});
    CAM_INFO info = {};
    ASSERT_EQ(Cam_GetInformation(0, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.link, CAM_LINK_GIGE_VISION);
    EXPECT_STREQ(info.vendorName, "Test Maker");
    EXPECT_STREQ(info.modelName, "GV-Test");
    EXPECT_STREQ(info.serialNumber, "S-17");
}

TEST_F(GigeDeviceTest, CameraThatAnswersASearchWithoutEndHidesNoOther)
{
    const ChildProcess endless({GIGE_CAMERA, "--address", "127.0.0.2", "--foreign-address", "127.0.0.4", "--serial",
                                "END", "--liar", "1", "--lie", "discovery-endless"});
    list({"--serial", "T1"}, 2);
}

// Otherwise the rest of the answer, such as the serial number, would be that of the camera that answered before.
TEST_F(GigeDeviceTest, IncompleteSearchAnswerIsNotCompletedFromAnotherCamera)
{
    const ChildProcess brief({GIGE_CAMERA, "--address", "127.0.0.2", "--foreign-address", "127.0.0.4", "--serial", "B",
                              "--discovery-answer", "64"});
    list({"--serial", "T1"}, 2);
    for (std::uint32_t i = 0; i < 2; ++i) {
        CAM_INFO info = {};
        ASSERT_EQ(Cam_GetInformation(0, i, &info), CAM_API_STS_SUCCESS);
        EXPECT_STREQ(info.serialNumber, i == 0 ? "02:00:7f:00:00:02" : "T1") << "its MAC address where it tells none";
    }
}

TEST_F(GigeDeviceTest, CamerasWithTheSameNameAndSerialNumberAreBothListed)
{
    const ChildProcess other({GIGE_CAMERA, "--address", "127.0.0.2", "--foreign-address", "127.0.0.4"});
    list({}, 2);
    ASSERT_EQ(tryToOpen(), CAM_API_STS_SUCCESS);
    CAM_HANDLE second = 0;
    ASSERT_EQ(Cam_Open(1, &second, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    setInt(m_camera, "Width", 64);
    EXPECT_EQ(intOf(second, "Width"), 512);
}

TEST_F(GigeDeviceTest, FeaturesAreReadAndWritten)
{
    open();
    EXPECT_THAT(featuresOf(m_camera, "Root"),
                ElementsAre("DeviceControl", "ImageFormatControl", "AcquisitionControl", "TransportLayerControl"));
    EXPECT_THAT(entriesOf(m_camera, "PixelFormat"), ElementsAre("Mono8", "Mono16", "RGB8"));
    setInt(m_camera, "Width", 320);
    setEntry(m_camera, "PixelFormat", "RGB8");
    EXPECT_EQ(intOf(m_camera, "PayloadSize"), 320 * 512 * 3);
    const CAM_NODE_HANDLE text = nodeOf(m_camera, "TestText");
    EXPECT_EQ(textOf(Nd_GetStrValue, m_camera, text), "as delivered");
    EXPECT_EQ(Nd_SetStrValue(m_camera, text, "changed"), CAM_API_STS_SUCCESS);
    EXPECT_EQ(textOf(Nd_GetStrValue, m_camera, text), "changed");
    const CAM_NODE_HANDLE rate = nodeOf(m_camera, "AcquisitionFrameRate");
    EXPECT_EQ(Nd_SetFloatValue(m_camera, rate, 12.5), CAM_API_STS_SUCCESS);
    double value = 0;
    EXPECT_EQ(Nd_GetFloatValue(m_camera, rate, &value), CAM_API_STS_SUCCESS);
    EXPECT_EQ(value, 12.5);
}

TEST_F(GigeDeviceTest, ZippedDescriptionIsRead)
{
    open({"--description", "zip"});
    EXPECT_EQ(intOf(m_camera, "Width"), 512);
}

TEST_F(GigeDeviceTest, LocalFilesAreNotReadAsDescriptions)
{
    for (const std::string scheme : {"File:", "file:", "File://"}) {
        ASSERT_NO_FATAL_FAILURE(list({"--url", scheme + GIGE_CAMERA_DESCRIPTION}));
        EXPECT_EQ(tryToOpen(), CAM_API_STS_XML_LOAD_ERR) << scheme;
        const char* text = nullptr;
        EXPECT_EQ(Misc_GetLastGenICamError(&text), CAM_API_STS_SUCCESS);
        EXPECT_THAT(text, ::testing::HasSubstr("refers to a local file")) << scheme;
    }
}

TEST_F(GigeDeviceTest, UnreadableDescriptionIsReportedAsSuch)
{
    for (const std::string url : {"Local:gv-test.xml;100000;3", "Local:gv-test.zip;100000;400", "Local:", "nonsense",
                                  "Http://127.0.0.1/gv-test.xml"}) {
        ASSERT_NO_FATAL_FAILURE(list({"--url", url}));
        EXPECT_EQ(tryToOpen(), CAM_API_STS_XML_LOAD_ERR) << url;
        const char* text = nullptr;
        EXPECT_EQ(Misc_GetLastGenICamError(&text), CAM_API_STS_SUCCESS);
        EXPECT_THAT(text, ::testing::HasSubstr("description")) << url;
    }
    ASSERT_NO_FATAL_FAILURE(list());
    m_device->kill();
    EXPECT_EQ(tryToOpen(), CAM_API_STS_CAMERA_NOT_RESPONDING);
}

TEST_F(GigeDeviceTest, ImagesAreThoseThatItSends)
{
    open();
    setInt(m_camera, "Width", 320);
    setInt(m_camera, "Height", 200);
    setEntry(m_camera, "PixelFormat", "RGB8");
    EXPECT_EQ(Nd_SetFloatValue(m_camera, nodeOf(m_camera, "AcquisitionFrameRate"), 200), CAM_API_STS_SUCCESS);
    openStream();
    for (int start = 0; start < 3; ++start) {
        ASSERT_NO_FATAL_FAILURE(expectImages(50));
        const LockedImage image(m_stream);
        const auto& bytes = image.lockedBytes();
        ASSERT_EQ(bytes.size(), 320U * 200 * 3);
        const StreamRecorder::Image last = m_recorder.images().back();
        ASSERT_EQ(last.slot, image.slot());
        for (std::size_t i = 0; i < bytes.size(); ++i)
            ASSERT_EQ(bytes[i], static_cast<std::uint8_t>(last.info.frameNumber + i)) << "byte " << i;
    }
}

TEST_F(GigeDeviceTest, PacketSizeIsTheLargestThatTheNetworkPasses)
{
    open({"--largest-packet", "5000"});
    EXPECT_EQ(intOf(m_camera, "GevSCPSPacketSize"), 1400);
    openStream();
    EXPECT_GT(intOf(m_camera, "GevSCPSPacketSize"), 4000);
    EXPECT_LE(intOf(m_camera, "GevSCPSPacketSize"), 5000);
    expectImages(3);
}

TEST_F(GigeDeviceTest, LostPacketsAreResent)
{
    open({"--lose-every", "100", "--largest-packet", "1400"});
    openStream();
    ASSERT_NO_FATAL_FAILURE(expectImages(20));
    // Each image lacks a packet that has to be resent.
    EXPECT_LT(m_recorder.errors().size(), 20U) << "a busy machine may give up some";
}

// On a busy machine the transport may not run while the camera sends the image.
TEST_F(GigeDeviceTest, FirstImageFitsIntoTheSocketBuffer)
{
    std::size_t largest = 0;
    std::ifstream("/proc/sys/net/core/rmem_max") >> largest;
    if (largest < 4'000'000)
        GTEST_SKIP() << "needs a net.core.rmem_max of 4 million or more";
    open({"--resend", "no"});
    setEntry(m_camera, "TriggerMode", "On");
    setInt(m_camera, "TestImageDelay", 1000);
    openStream();
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    execute(m_camera, "TriggerSoftware");
    ASSERT_THAT(transports(), ::testing::SizeIs(1));
    const pid_t transport = transports().front();
    ASSERT_EQ(::kill(transport, SIGSTOP), 0);
    EXPECT_TRUE(becomes([] { return longestReceiveQueue() >= 512UL * 512; })) << longestReceiveQueue();
    ASSERT_EQ(::kill(transport, SIGCONT), 0);
    EXPECT_TRUE(m_recorder.waitForImages(1));
    EXPECT_THAT(m_recorder.errors(), ::testing::IsEmpty());
}

TEST_F(GigeDeviceTest, SoftwareTriggerBringsOneImage)
{
    open();
    // If the kernel does not allow larger buffers, the image has to fit into the default one.
    setInt(m_camera, "Height", 64);
    setEntry(m_camera, "TriggerMode", "On");
    openStream();
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    for (std::size_t i = 1; i <= 3; ++i) {
        execute(m_camera, "TriggerSoftware");
        ASSERT_TRUE(m_recorder.waitForImages(i));
        EXPECT_EQ(m_recorder.images().size(), i);
    }
}

TEST_F(GigeDeviceTest, TerminatingReleasesControlAtOnce)
{
    open();
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_EQ(ChildProcess({CAMERA_HOLDER}).readLine(), "0");
}

TEST_F(GigeDeviceTest, CameraOfAProgramThatDiedCanBeOpened)
{
    list();
    ChildProcess other({CAMERA_HOLDER});
    ASSERT_EQ(other.readLine(), "0");
    EXPECT_EQ(tryToOpen(), CAM_API_STS_ACCESS_DENIED);
    other.kill();
    EXPECT_TRUE(becomes([this] { return tryToOpen() == CAM_API_STS_SUCCESS; })) << "when the heartbeat is missed";
}
