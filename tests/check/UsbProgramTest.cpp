// orvocam-check itself, with the emulated USB3 Vision camera and a made-up /sys.

#include "tests/check/MadeUpRoot.h"
#include "tests/check/ProgramRun.h"

#include "camera/OrvoCamApi.h"
#include "tests/cameralibs/transport/usb/FakeUsb.h"

#include <gmock/gmock.h>

#include <unistd.h>

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

MATCHER_P2(Says, severity, text, "")
{
    return arg["severity"] == severity && arg["text"].template get<std::string>().find(text) != std::string::npos;
}

class UsbProgramTest : public ::testing::Test {
protected:
    UsbProgramTest()
    {
        usb::unplug();
        usb::plugIn();
        m_root.plugInUsbCamera();
    }

    [[nodiscard]] ProgramRun run(const std::string& options = {}, const std::string& before = {}) const
    {
        return runCheck("--json --root " + m_root.path() + " " + options, before);
    }

    MadeUpRoot m_root;
};

} // namespace

TEST_F(UsbProgramTest, CameraThatWorksIsNoFinding)
{
    const ProgramRun found = run();
    EXPECT_EQ(found.status, 0) << found.output;
    EXPECT_THAT(found.linesOf("usb-device"), ElementsAre(Says("ok", "/dev/bus/usb/002/003, 5000 Mbit/s")));
    EXPECT_THAT(found.linesOf("usb-permission"), ElementsAre(Says("ok", "you may open it")));
    EXPECT_THAT(found.linesOf("usb-holder"), IsEmpty());
    EXPECT_THAT(found.linesOf("open"), ElementsAre(Says("ok", "opens")));
}

TEST_F(UsbProgramTest, StreamIsTried)
{
    const ProgramRun found = run("--stream");
    ASSERT_THAT(found.report()["cameras"], SizeIs(1)) << found.output;
    const json stream = found.report()["cameras"][0]["stream"];
    EXPECT_EQ(stream["status"], 0) << found.output;
    EXPECT_GT(stream["images"], 0);
    EXPECT_GT(stream["bytesPerSecond"], 0.0);
}

TEST_F(UsbProgramTest, CameraUnpluggedInTheTrialIsAFinding)
{
    ASSERT_TRUE(usb::setFault("unplugged in a payload"));
    const ProgramRun found = run("--stream");
    EXPECT_EQ(found.status, 1) << found.output;
    EXPECT_THAT(found.linesOf("images"), ElementsAre(Says("wrong", "its stream fails with 19 ")));
}

TEST_F(UsbProgramTest, CameraThatMayNotBeOpenedIsAFinding)
{
    m_root.forbidUsbCamera();
    std::string before;
    if (::geteuid() == 0) {
        // Root may open everything. Others may not look at the emulated bus, so there the real one is listed.
        // In a build that counts coverage, others cannot write the counters, and would say so.
        before = "env --unset=LD_PRELOAD GCOV_ERROR_FILE=/dev/null setpriv --reuid=65534 --regid=65534 --clear-groups";
        if (runCheck("--version", before).status != 0)
            GTEST_SKIP() << "this root cannot become another user";
    }
    usb::unplug(); // libusb does not list it either
    const ProgramRun found = run({}, before);
    EXPECT_EQ(found.status, 1) << found.output;
    EXPECT_THAT(found.linesOf("usb-permission"), ElementsAre(Says("wrong", "you may not open /dev/bus/usb/002/003")));
}

TEST_F(UsbProgramTest, CameraThatIsNotListedIsAFinding)
{
    usb::unplug();
    const ProgramRun found = run();
    EXPECT_EQ(found.status, 1) << found.output;
    EXPECT_THAT(found.linesOf("usb-holder"), ElementsAre(Says("wrong", "does not list it")));
}

TEST_F(UsbProgramTest, ProgramThatHasTheCameraIsNamed)
{
    m_root.link("/sys/bus/usb/devices/2-1:1.0/driver", "../../../../bus/usb/drivers/usbfs");
    m_root.startProgram(40, "grabber", 1, "/dev/bus/usb/002/003");
    ASSERT_TRUE(usb::setFault("claimed by another program"));
    const ProgramRun found = run();
    EXPECT_EQ(found.status, 1) << found.output;
    EXPECT_THAT(found.linesOf("open"), IsEmpty()) << "it would say the same again";
    EXPECT_THAT(found.linesOf("usb-holder"), ElementsAre(Says("wrong", "grabber (process 40)")));
}

TEST_F(UsbProgramTest, CameraThatDoesNotAnswerIsAFinding)
{
    usb::answerCommands(false);
    const ProgramRun found = run("--stream");
    usb::answerCommands(true);
    EXPECT_EQ(found.status, 1) << found.output;
    EXPECT_THAT(found.report()["cameras"], ElementsAre(::testing::Truly([](const json& camera) {
                    return camera["openStatus"] != 0 && !camera.contains("stream");
                })));
}

// Here, because it searches the network, too.
TEST_F(UsbProgramTest, LibraryThatIsAskedForGigeCamerasListsNoUsbCamera)
{
    for (const std::uint32_t layers : {Orvo::CAM_LAYER_GIGE_VISION, Orvo::CAM_LAYER_USB3_VISION}) {
        ASSERT_EQ(Orvo::Sys_Initialize(layers), Orvo::CAM_API_STS_SUCCESS);
        std::uint32_t count = 0;
        EXPECT_EQ(Orvo::Sys_GetNumOfCameras(&count), Orvo::CAM_API_STS_SUCCESS);
        EXPECT_EQ(count, layers == Orvo::CAM_LAYER_USB3_VISION ? 1U : 0U);
        EXPECT_EQ(Orvo::Sys_Terminate(), Orvo::CAM_API_STS_SUCCESS);
    }
}
