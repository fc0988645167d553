// orvocam-check itself, with GigE Vision cameras on a network of its own.

#include "tests/check/MadeUpRoot.h"
#include "tests/check/ProgramRun.h"

#include "tests/cameralibs/transport/ChildProcess.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <future>
#include <memory>

using nlohmann::json;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::HasSubstr;
using ::testing::Le;
using ::testing::Not;
using ::testing::SizeIs;

namespace {

MATCHER_P2(Says, severity, text, "")
{
    return arg["severity"] == severity && arg["text"].template get<std::string>().find(text) != std::string::npos;
}

class GigeProgramTest : public ::testing::Test {
protected:
    GigeProgramTest()
    {
        m_root.write("/proc/sys/net/core/rmem_max", "33554432\n");
        m_root.write("/sys/bus/pci/drivers", ""); // there is no USB
    }

    void plugIn(const std::vector<std::string>& command)
    {
        m_cameras.push_back(std::make_unique<ChildProcess>(command));
        // Aravis' fake camera prints nothing.
        if (command[0] != kFake) {
            ASSERT_NE(m_cameras.back()->readLine(), "");
        }
    }

    /// With the made-up files in place of the machine's.
    [[nodiscard]] ProgramRun run(const std::string& options = {}) const
    {
        return runCheck("--json --root " + m_root.path() + " " + options);
    }

    /// A busy machine may miss an answer.
    [[nodiscard]] ProgramRun runUntil(const std::function<bool(const ProgramRun&)>& good,
                                      const std::string& options = {}) const
    {
        ProgramRun last = run(options);
        for (int i = 0; i < 10 && !good(last); ++i)
            last = run(options);
        return last;
    }

    [[nodiscard]] ProgramRun runUntilListed(std::size_t cameras = 1, const std::string& options = {}) const
    {
        return runUntil(
            [cameras](const ProgramRun& run) {
                const json found = run.report().value("cameras", json::array());
                return found.size() == cameras && std::all_of(found.begin(), found.end(), [](const json& camera) {
                           return camera["listed"] == true && camera.contains("address");
                       });
            },
            options);
    }

    static constexpr const char* kFake = "arv-fake-gv-camera-0.8";
    MadeUpRoot m_root;
    std::vector<std::unique_ptr<ChildProcess>> m_cameras;
};

} // namespace

TEST_F(GigeProgramTest, NoCameraIsAFinding)
{
    const ProgramRun found = run();
    EXPECT_EQ(found.status, 1) << found.output;
    EXPECT_THAT(found.linesOf("camera"), ElementsAre(Says("wrong", "none is on USB")));
    EXPECT_EQ(found.report()["status"], 1);
}

// The second run opens the cameras again.
TEST_F(GigeProgramTest, CamerasThatWorkAreNoFindingAndAreClosedAgain)
{
    plugIn({kFake, "-i", "127.0.0.1"});
    plugIn({kFake, "-i", "127.0.0.2", "-s", "A99"});
    const ProgramRun found = runUntilListed(2);
    EXPECT_EQ(found.status, 0) << found.output;
    const json cameras = found.report()["cameras"];
    ASSERT_THAT(cameras, SizeIs(2));
    for (const json& camera : cameras) {
        EXPECT_EQ(camera["vendor"], "Aravis");
        EXPECT_EQ(camera["address"], camera["serialNumber"] == "A99" ? "127.0.0.2" : "127.0.0.1");
        EXPECT_EQ(camera["openStatus"], 0);
        EXPECT_FALSE(camera.contains("stream"));
    }
    EXPECT_THAT(found.linesOf("receive-buffer"), ElementsAre(Says("ok", "33554432")));

    ProgramRun again;
    for (int i = 0; i < 10 && again.status != 0; ++i)
        again = runCheck("--root " + m_root.path());
    EXPECT_EQ(again.status, 0) << again.output;
    EXPECT_THAT(again.output, AllOf(HasSubstr("ok     GigE camera Aravis Fake GV01: is listed at 127.0.0.1 on lo\n"),
                                    HasSubstr("ok     GigE camera Aravis Fake GV01: opens\n"),
                                    HasSubstr("\nNothing wrong was found.\n")));
}

TEST_F(GigeProgramTest, StreamIsTried)
{
    plugIn({GIGE_CAMERA});
    const ProgramRun found = runUntilListed(1, "--stream");
    ASSERT_THAT(found.report()["cameras"], SizeIs(1)) << found.output;
    const json camera = found.report()["cameras"][0];
    const json& stream = camera["stream"];
    EXPECT_EQ(stream["status"], 0) << found.output;
    EXPECT_GT(stream["images"], 0);
    EXPECT_GT(stream["imagesPerSecond"], 0.0);
    EXPECT_GT(stream["bytesPerSecond"], 0.0);
    EXPECT_GE(stream["seconds"], 2.0);
    EXPECT_EQ(stream["packetSize"], 8000) << "the largest that this camera's network carries";
    EXPECT_THAT(found.linesOf("images"), SizeIs(1));
}

TEST_F(GigeProgramTest, IncompleteImagesAreAFinding)
{
    plugIn({kFake, "-i", "127.0.0.1", "-r", "100"});
    const ProgramRun found = runUntilListed(1, "--stream");
    EXPECT_EQ(found.status, 1) << found.output;
    EXPECT_THAT(found.linesOf("images"), ElementsAre(Says("wrong", " incomplete")));
    EXPECT_GT(found.report()["cameras"][0]["stream"]["incomplete"], 0);
}

// The programs of the machine itself are looked at without the made-up files.
TEST_F(GigeProgramTest, ProgramThatControlsTheCameraIsNamed)
{
    plugIn({kFake, "-i", "127.0.0.1"});
    ChildProcess other({CAMERA_HOLDER});
    ASSERT_EQ(other.readLine(), "0");
    ProgramRun found;
    for (int i = 0; i < 10 && found.output.find("camera_holder") == std::string::npos; ++i)
        found = runCheck("--json");
    EXPECT_NE(found.status, 0) << found.output; // 2 on a machine without USB
    EXPECT_THAT(found.linesOf("open"), ElementsAre(Says("wrong", "another program controls it (2052")));
    EXPECT_THAT(found.linesOf("open"), ElementsAre(Says("wrong", "camera_holder (process ")))
        << "beside the programs of other tests";
}

TEST_F(GigeProgramTest, TwoSearchesAtATimeDoNotDisturbEachOther)
{
    std::future<ProgramRun> other = std::async(std::launch::async, [this] { return run(); });
    for (const ProgramRun& found : {run(), other.get()}) {
        EXPECT_THAT(found.output, Not(HasSubstr("already in use")));
        EXPECT_EQ(found.status, 1) << found.output;
    }
}

TEST_F(GigeProgramTest, CameraInAnotherNetworkIsAFinding)
{
    plugIn({ANSWERS, "--address", "169.254.20.20", "--mask", "255.255.0.0"});
    const ProgramRun found = runUntil([](const ProgramRun& run) { return !run.linesOf("address").empty(); });
    EXPECT_EQ(found.status, 1) << found.output;
    ASSERT_THAT(found.linesOf("address"), ElementsAre(Says("wrong", "169.254.20.20 is outside the network of lo")));
    EXPECT_THAT(found.linesOf("address")[0]["cure"].get<std::string>(),
                HasSubstr("sudo ip address add 169.254.1.10/16 dev lo"));
}

TEST_F(GigeProgramTest, CameraWithoutARouteToThisMachineIsFoundByItsBroadcast)
{
    plugIn({ANSWERS, "--address", "10.0.0.20", "--to-all"});
    const ProgramRun found = runUntil([](const ProgramRun& run) { return !run.linesOf("address").empty(); });
    EXPECT_THAT(found.linesOf("address"), ElementsAre(Says("wrong", "10.0.0.20 is outside")));
    EXPECT_THAT(found.linesOf("camera"), ElementsAre(Says("wrong", "the camera library does not list it")))
        << "it does not ask for broadcast answers";
}

// Such as a camera with two network ports.
TEST_F(GigeProgramTest, AddressesOfOneMacAddressAreAllTold)
{
    plugIn({ANSWERS, "--address", "10.0.0.20", "--to-all", "--count", "2", "--same-mac"});
    const ProgramRun found = runUntil([](const ProgramRun& run) { return !run.linesOf("address").empty(); });
    EXPECT_THAT(found.linesOf("address"), ::testing::UnorderedElementsAre(Says("wrong", "10.0.0.20 is outside"),
                                                                          Says("wrong", "10.0.0.21 is outside")));
}

TEST_F(GigeProgramTest, BrokenAnswersAreIgnoredAndTextsDoNotReachTheTerminal)
{
    plugIn({ANSWERS, "--address", "10.0.0.20", "--to-all", "--broken", "--serial", "\\x1b[2J\\x07\\xff"});
    ProgramRun found;
    for (int i = 0; i < 10 && found.output.find("Answers Only") == std::string::npos; ++i)
        found = runCheck("--root " + m_root.path());
    EXPECT_THAT(found.output, AllOf(HasSubstr("Answers Only \\x1b[2J\\x07\\xff: answers at 10.0.0.20 on lo"),
                                    Not(HasSubstr("\x1b")), Not(HasSubstr("\x07"))));
    const std::string::size_type first = found.output.find(": answers at ");
    EXPECT_EQ(found.output.find(": answers at ", first + 1), std::string::npos) << found.output;
}

TEST_F(GigeProgramTest, LyingCamerasEndNothing)
{
    int address = 1;
    for (const char* const lie : {"discovery-endless", "discovery-garbage", "garbage-description"})
        plugIn({GIGE_CAMERA, "--address", "127.0.0." + std::to_string(address++), "--liar", "1", "--lie", lie});
    const ProgramRun found = run();
    EXPECT_THAT(found.status, AllOf(Ge(0), Le(2))) << found.output;
    EXPECT_TRUE(found.report().contains("lines"));
}

TEST_F(GigeProgramTest, CameraThatSendsOnlyLeadersIsAFinding)
{
    plugIn({GIGE_CAMERA, "--liar", "1", "--lie", "only-leaders"});
    const ProgramRun found = runUntilListed(1, "--stream");
    EXPECT_EQ(found.status, 1) << found.output;
    EXPECT_THAT(found.linesOf("images"), ElementsAre(Says("wrong", "images in ")));
}

TEST_F(GigeProgramTest, SearchThatFailsCouldNotLook)
{
    const ProgramRun found = runCheck("--json", "LD_PRELOAD=" OTHER_LIBRARY);
    EXPECT_EQ(found.status, 2) << found.output;
    EXPECT_THAT(found.linesOf("camera"), ElementsAre(Says("failed", "Sys_GetNumOfCameras fails with 15")));
}

TEST_F(GigeProgramTest, TransportThatDoesNotStartCouldNotLook)
{
    const ProgramRun found = runCheck("--json", "ORVO_CAMERA_TRANSPORT=/nowhere/transport");
    EXPECT_EQ(found.status, 2) << found.output;
    EXPECT_THAT(found.linesOf("camera"),
                ElementsAre(Says("failed", "No real cameras are listed: /nowhere/transport cannot be started")));
}

TEST_F(GigeProgramTest, NumberOfCamerasHasABound)
{
    const ProgramRun found = runCheck("--json", "OTHER_LIBRARY_CAMERAS=4294967295 LD_PRELOAD=" OTHER_LIBRARY);
    EXPECT_EQ(found.status, 2);
    EXPECT_THAT(found.report()["cameras"], SizeIs(1000));
    EXPECT_THAT(found.linesOf("open"), SizeIs(16));
    EXPECT_THAT(found.linesOf("camera"), Contains(Says("failed", "4294967279 listed cameras are not opened")));
}

TEST_F(GigeProgramTest, CameraWithoutInformationCouldNotBeLookedAt)
{
    const ProgramRun found =
        runCheck("--json", "OTHER_LIBRARY_CAMERAS=2 OTHER_LIBRARY_UNKNOWN=0 LD_PRELOAD=" OTHER_LIBRARY);
    EXPECT_EQ(found.status, 2);
    EXPECT_THAT(found.linesOf("camera"),
                ElementsAre(Says("failed", "Cam_GetInformation fails with 2053"), Says("ok", "is listed")));
}

TEST_F(GigeProgramTest, ReportThatCannotBeWrittenCouldNotLook)
{
    const ProgramRun found = runCheck("--help >/dev/full");
    EXPECT_EQ(found.status, 2);
}

TEST_F(GigeProgramTest, OptionsAreChecked)
{
    for (const char* const options : {"--help", "--version"}) {
        const ProgramRun found = runCheck(options);
        EXPECT_EQ(found.status, 0) << options;
        EXPECT_THAT(found.output, HasSubstr("orvocam-check")) << options;
    }
    EXPECT_THAT(runCheck("--version").output, ::testing::EndsWith(" " VERSION "\n"));
    for (const char* const options : {"--strem", "-x", "camera", "--root", "--json=yes"}) {
        const ProgramRun found = runCheck(options);
        EXPECT_EQ(found.status, 2) << options;
        EXPECT_THAT(found.output, HasSubstr("--help'")) << options;
    }
}
