// The emulator itself: what it plays is what the standards say, and its faults are what they are called.

#include "tests/cameralibs/transport/usb/UsbFixture.h"

#include "tests/cameralibs/transport/usb/Faults.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>

using namespace Orvo;

namespace {

constexpr std::uint16_t kRead = 0x0800;
constexpr std::uint16_t kWrite = 0x0802;

template <class Number> void append(usb::Bytes& bytes, Number number)
{
    const auto* const begin = reinterpret_cast<const std::uint8_t*>(&number);
    bytes.insert(bytes.end(), begin, begin + sizeof number);
}

template <class Number> Number at(const usb::Bytes& bytes, std::size_t offset)
{
    Number number = 0;
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

usb::Bytes header(std::uint16_t code, std::size_t size)
{
    usb::Bytes bytes;
    append(bytes, std::uint32_t{0x43563355});
    append(bytes, std::uint16_t{0x4000});
    append(bytes, code);
    append(bytes, static_cast<std::uint16_t>(size));
    append(bytes, std::uint16_t{7});
    return bytes;
}

usb::Bytes readCommand(std::uint64_t address, std::uint16_t size)
{
    usb::Bytes bytes = header(kRead, 12);
    append(bytes, address);
    append(bytes, std::uint16_t{0});
    append(bytes, size);
    return bytes;
}

usb::Bytes writeCommand(std::uint64_t address, std::uint32_t value)
{
    usb::Bytes bytes = header(kWrite, 12);
    append(bytes, address);
    append(bytes, value);
    return bytes;
}

class UsbEmulatorTest : public ::testing::Test {
protected:
    UsbEmulatorTest() { m_camera.reset("U01", "<description/>"); }

    /// The next transfer of the stream.
    usb::Bytes next(std::size_t room)
    {
        usb::Bytes bytes(room);
        bytes.resize(m_camera.send(bytes.data(), room));
        return bytes;
    }

    std::unique_ptr<usb::CameraState> m_state = std::make_unique<usb::CameraState>();
    usb::FakeCamera m_camera{*m_state};
};

using UsbEmulatorBusTest = ListedUsb;

} // namespace

TEST_F(UsbEmulatorTest, AnswerRepeatsTheRequestsIdAndBringsTheData)
{
    const usb::Bytes answer = m_camera.execute(readCommand(usb::kWidth, 4));
    ASSERT_EQ(answer.size(), 16U);
    EXPECT_EQ(at<std::uint32_t>(answer, 0), 0x43563355U);
    EXPECT_EQ(at<std::uint16_t>(answer, usb::kStatusOffset), 0U);
    EXPECT_EQ(at<std::uint16_t>(answer, usb::kCommandOffset), kRead + 1);
    EXPECT_EQ(at<std::uint16_t>(answer, usb::kSizeOffset), 4U);
    EXPECT_EQ(at<std::uint16_t>(answer, usb::kIdOffset), 7U);
    EXPECT_EQ(at<std::uint32_t>(answer, usb::kHeaderSize), 320U);
}

TEST_F(UsbEmulatorTest, WriteChangesTheRegisterAndTellsItsSize)
{
    const usb::Bytes answer = m_camera.execute(writeCommand(usb::kWidth, 100));
    ASSERT_EQ(answer.size(), 16U);
    EXPECT_EQ(at<std::uint16_t>(answer, usb::kCommandOffset), kWrite + 1);
    EXPECT_EQ(at<std::uint16_t>(answer, usb::kHeaderSize + 2), 4U);
    EXPECT_EQ(m_camera.value(usb::kWidth), 100U);
    EXPECT_EQ(m_camera.value(usb::kStreamPayload), 100U * 240);
}

TEST_F(UsbEmulatorTest, AddressOfNothingIsRefused)
{
    for (const usb::Bytes& command : {readCommand(usb::kMemorySize, 4), readCommand(usb::kMemorySize - 2, 4),
                                      readCommand(~0ULL, 4), writeCommand(usb::kMemorySize, 1)})
        EXPECT_EQ(at<std::uint16_t>(m_camera.execute(command), usb::kStatusOffset), usb::kInvalidAddress);
}

TEST_F(UsbEmulatorTest, ManifestLeadsToTheDescription)
{
    const auto number = [&](std::uint64_t address) {
        return at<std::uint64_t>(m_camera.execute(readCommand(address, 8)), usb::kHeaderSize);
    };
    const std::uint64_t manifest = number(usb::kManifestAddress);
    EXPECT_EQ(number(manifest), 1U);
    const std::uint64_t size = number(manifest + usb::kEntrySize);
    const usb::Bytes answer =
        m_camera.execute(readCommand(number(manifest + usb::kEntryAddress), static_cast<std::uint16_t>(size)));
    EXPECT_EQ(std::string(answer.begin() + usb::kHeaderSize, answer.end()), "<description/>");
}

TEST_F(UsbEmulatorTest, ImageIsALeaderAPayloadAndATrailer)
{
    m_camera.setValue(usb::kWidth, 50);
    m_camera.setValue(usb::kHeight, 60);
    m_camera.setPayload(3000);
    for (std::uint64_t image = 0; image < 3; ++image) {
        const usb::Bytes leader = next(52);
        ASSERT_EQ(leader.size(), 52U);
        EXPECT_EQ(std::string(leader.begin(), leader.begin() + 4), "U3VL");
        EXPECT_EQ(at<std::uint64_t>(leader, 8), image);
        EXPECT_EQ(at<std::uint32_t>(leader, 32), 50U);
        EXPECT_EQ(next(2048).size(), 2048U);
        const usb::Bytes rest = next(2048);
        ASSERT_EQ(rest.size(), 952U);
        EXPECT_EQ(rest[0], static_cast<std::uint8_t>(image + 2048));
        const usb::Bytes trailer = next(32);
        ASSERT_EQ(trailer.size(), 32U);
        EXPECT_EQ(std::string(trailer.begin(), trailer.begin() + 4), "U3VT");
        EXPECT_EQ(at<std::uint64_t>(trailer, 8), image);
        EXPECT_EQ(at<std::uint16_t>(trailer, usb::kTrailerStatus), 0U);
        EXPECT_EQ(at<std::uint64_t>(trailer, 20), 3000U);
    }
}

TEST_F(UsbEmulatorTest, PacketThatDoesNotFitIsLost)
{
    EXPECT_EQ(next(51).size(), 0U);
    EXPECT_EQ(m_camera.nextPart(), usb::Part::Payload);
    EXPECT_EQ(next(1023).size(), 0U);
}

TEST_F(UsbEmulatorTest, TriggerModeSendsAnImageForEachTrigger)
{
    (void)m_camera.execute(writeCommand(0x30010, 1)); // AcquisitionStart
    m_camera.setValue(usb::kStreamControl, 1);
    EXPECT_TRUE(m_camera.sends());
    m_camera.setValue(usb::kTriggerMode, 1);
    EXPECT_FALSE(m_camera.sends());
    (void)m_camera.execute(writeCommand(usb::kTriggerSoftware, 1));
    EXPECT_TRUE(m_camera.sends());
    (void)next(52);
    EXPECT_TRUE(m_camera.sends()) << "an image that has begun is sent whole";
    while (m_camera.nextPart() != usb::Part::Leader)
        (void)next(1U << 20);
    EXPECT_FALSE(m_camera.sends());
}

TEST(UsbFaultTableTest, EachFaultHasANameOfItsOwn)
{
    std::set<std::string> names;
    for (const std::string& name : usb::faultNames())
        EXPECT_TRUE(names.insert(name).second) << name;
    EXPECT_GT(names.size(), 50U);
    EXPECT_FALSE(usb::setFault("no such fault"));
}

TEST(UsbFaultTableTest, EachFaultOfTheMemoryChangesIt)
{
    for (const usb::Fault& fault : usb::faults()) {
        const auto* const change = std::get_if<usb::MemoryFault>(&fault.show);
        if (change == nullptr)
            continue;
        auto before = std::make_unique<usb::CameraState>();
        usb::FakeCamera(*before).reset("U01", "<description/>");
        auto after = std::make_unique<usb::CameraState>();
        usb::FakeCamera camera(*after);
        camera.reset("U01", "<description/>");
        (*change)(camera);
        EXPECT_TRUE(before->memory != after->memory || before->description != after->description ||
                    before->oddPayload != after->oddPayload)
            << fault.name;
    }
}

TEST_F(UsbEmulatorBusTest, FaultEndsAfterItsTimesAndWithTheCamera)
{
    CAM_HANDLE camera = 0;
    ASSERT_EQ(open(&camera), CAM_API_STS_SUCCESS);
    const CAM_NODE_HANDLE width = nodeOf(camera, "Width");
    std::int64_t value = 0;
    ASSERT_TRUE(usb::setFault("status: busy", 2));
    EXPECT_EQ(Nd_GetIntValue(camera, width, &value), CAM_API_STS_BUSY);
    EXPECT_EQ(Nd_GetIntValue(camera, width, &value), CAM_API_STS_BUSY);
    EXPECT_EQ(usb::faultsShown(), 2);
    EXPECT_EQ(Nd_GetIntValue(camera, width, &value), CAM_API_STS_SUCCESS);
    ASSERT_TRUE(usb::setFault("no permission"));
    EXPECT_EQ(enumerate(), 0U);
    usb::plugIn();
    EXPECT_EQ(enumerate(), 1U);
}

TEST_F(UsbEmulatorBusTest, TwoCamerasStreamAtOnceAndAreUnpluggedOneByOne)
{
    usb::plugIn(1);
    ASSERT_EQ(enumerate(), 2U);
    CAM_INFO info = {};
    ASSERT_EQ(Cam_GetInformation(0, 1, &info), CAM_API_STS_SUCCESS);
    EXPECT_STREQ(info.serialNumber, "U02");
    CAM_HANDLE cameras[2] = {};
    CAM_SIGNAL_HANDLE lost[2] = {};
    for (std::uint32_t i = 0; i < 2; ++i) {
        ASSERT_EQ(Sys_CreateSignal(&lost[i]), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Cam_Open(i, &cameras[i], lost[i], 1, nullptr, 1), CAM_API_STS_SUCCESS);
    }
    setInt(cameras[1], "Width", 64);
    EXPECT_EQ(intOf(cameras[0], "Width"), 320);
    StreamRecorder first(cameras[0]);
    StreamRecorder second(cameras[1]);
    EXPECT_TRUE(first.waitForImages(10));
    EXPECT_TRUE(second.waitForImages(10));
    EXPECT_EQ(second.images().back().info.dataSize, 64U * 240);
    usb::unplug(1);
    EXPECT_EQ(Sys_WaitForSignal(lost[1], 30000), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_WaitForSignal(lost[0], 0), CAM_API_STS_TIMEOUT);
    EXPECT_TRUE(first.waitForImages(first.imageCount() + 10));
}

// As for a program that is started by hand.
TEST(UsbEnvironmentTest, NamesTheFaultAndTheNumberOfCameras)
{
    const auto search = [](const std::string& settings) {
        const std::string command =
            "env -u ORVO_FAKE_USB_BUS LD_PRELOAD=" FAKE_LIBUSB " " + settings + " " + LIST_CAMERAS;
        return std::system(command.c_str()); // NOLINT: the command is the test's own
    };
    EXPECT_EQ(WEXITSTATUS(search("")), 1);
    EXPECT_EQ(WEXITSTATUS(search("ORVO_FAKE_USB_CAMERAS=2")), 2);
    EXPECT_EQ(WEXITSTATUS(search("ORVO_FAKE_USB_CAMERAS=2 'ORVO_FAKE_USB_FAULT=no permission'")), 1);
}
