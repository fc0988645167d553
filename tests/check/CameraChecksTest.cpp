#include "tests/check/Views.h"

using namespace check;
using namespace Orvo;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

View viewOf(const Camera& camera)
{
    View view = workingView();
    view.search.cameras = {camera};
    return view;
}

View viewAfter(CAM_API_STATUS opened)
{
    Camera camera = workingCamera();
    camera.opened = opened;
    return viewOf(camera);
}

/// What is said of a camera outside the network of its interface.
Lines linesAbout(std::uint32_t address, std::uint32_t mask)
{
    Camera camera = workingCamera("G1", address);
    camera.answer->mask = mask;
    return checkAddresses(viewOf(camera));
}

/// 50 images of 1 MB in 2 s.
StreamResult goodStream()
{
    StreamResult stream;
    stream.images = 50;
    stream.bytes = 50'000'000;
    stream.seconds = 2;
    return stream;
}

} // namespace

TEST(CameraChecksTest, WorkingCamerasAreFine)
{
    const View view = workingView();
    for (const auto check : {checkCameras, checkAddresses, checkOpening, checkImages})
        EXPECT_THAT(check(view), Each(IsFine()));
    EXPECT_THAT(checkCameras(view), Contains(IsLine(Severity::good,
                                                    "GigE camera Maker Model G1: is listed at "
                                                    "192.168.5.20 on enp3s0",
                                                    "")));
}

TEST(CameraChecksTest, NameThatTheUserGaveIsShown)
{
    Camera camera = workingCamera();
    camera.userName = "left";
    EXPECT_EQ(nameOf(camera), "GigE camera Maker Model G1 \"left\"");
}

TEST(CameraChecksTest, NoCameraIsWrong)
{
    EXPECT_THAT(checkCameras(viewWithoutCameras()), ElementsAre(IsLine(Severity::wrong, "none", "cable")));
    View view = viewWithoutCameras();
    view.machine.usbDevices = {workingDevice()};
    EXPECT_THAT(checkCameras(view), IsEmpty());
}

TEST(CameraChecksTest, SearchThatFailedCouldNotLook)
{
    View view = viewWithoutCameras();
    view.search.failures = {"Sys_Initialize fails"};
    EXPECT_THAT(checkCameras(view), ElementsAre(IsLine(Severity::failed, "Sys_Initialize fails", "")));
    view = workingView();
    view.search.notOpened = 3;
    EXPECT_THAT(checkCameras(view), Contains(IsLine(Severity::failed, "3 listed cameras are not opened", "")));
}

TEST(CameraChecksTest, FailureOfTheLibraryDoesNotHideCamerasThatAnswer)
{
    View view = viewWithoutCameras();
    view.search.failures = {"Sys_Initialize fails"};
    view.search.cameras = {workingCamera()};
    view.search.cameras.front().listed = false;
    EXPECT_THAT(checkCameras(view),
                ElementsAre(IsLine(Severity::failed, "Sys_Initialize fails", ""),
                            IsLine(Severity::good, "Model G1: answers at 192.168.5.20 on enp3s0", "")));
}

TEST(CameraChecksTest, CameraThatOnlyAnswersIsWrong)
{
    Camera camera = workingCamera();
    camera.listed = false;
    EXPECT_THAT(checkCameras(viewOf(camera)), ElementsAre(IsLine(Severity::wrong, "does not list it", "firewall")));
}

TEST(CameraChecksTest, AddressOutsideTheNetworkIsWrong)
{
    const auto cureOf = [](std::uint32_t address, std::uint32_t mask) {
        const Lines lines = linesAbout(address, mask);
        EXPECT_THAT(lines, ElementsAre(IsLine(Severity::wrong, "is outside the network of enp3s0", "")));
        return lines.empty() ? std::string() : lines.front().cure;
    };
    EXPECT_THAT(cureOf(0xa9fe1414, 0xffff0000),
                HasSubstr("ip address add 169.254.1.10/16 dev enp3s0, if nothing else has"));
    EXPECT_THAT(cureOf(0xc0a8060a, 0xffffff00), HasSubstr("192.168.6.11/24 ")) << "the tenth is the camera's";
    EXPECT_THAT(cureOf(0x08080809, 0xffffff00), Not(HasSubstr("ip address"))) << "a public network";
    EXPECT_THAT(cureOf(0x0a000014, 0xff000000), HasSubstr("10.0.0.10/24 ")) << "not the whole of somebody's network";
    EXPECT_THAT(cureOf(0x0a000014, 0xff00ff00), HasSubstr("10.0.0.10/24 ")) << "a mask with gaps";
    EXPECT_THAT(cureOf(0x0a000014, 0xffffffff), HasSubstr("10.0.0.10/24 "));
    EXPECT_THAT(cureOf(0x0a000014, 0), HasSubstr("10.0.0.10/24 "));
}

TEST(CameraChecksTest, OwnAddressIsSuggestedForPrivateNetworksOnly)
{
    const auto isSuggestedFor = [](std::uint32_t address) {
        const Lines lines = linesAbout(address, 0xffffff00);
        EXPECT_THAT(lines,
                    ElementsAre(IsLine(Severity::wrong, "is outside the network", "of the interface's network")));
        return !lines.empty() && lines.front().cure.find("ip address add") != std::string::npos;
    };
    struct Network {
        std::uint32_t first;
        std::uint32_t last;
    };
    // RFC 1918 and RFC 3927.
    constexpr Network kPrivate[] = {
        {0x0a000000, 0x0affffff}, {0xac100000, 0xac1fffff}, {0xc0a80000, 0xc0a8ffff}, {0xa9fe0000, 0xa9feffff}};
    for (const Network& network : kPrivate) {
        EXPECT_FALSE(isSuggestedFor(network.first - 1)) << textOf(network.first - 1);
        EXPECT_TRUE(isSuggestedFor(network.first)) << textOf(network.first);
        EXPECT_TRUE(isSuggestedFor(network.last)) << textOf(network.last);
        EXPECT_FALSE(isSuggestedFor(network.last + 1)) << textOf(network.last + 1);
    }
}

TEST(CameraChecksTest, SuggestedAddressIsInTheCamerasNetworkUnlessThatIsUnusual)
{
    const auto isSuggested = [](const char* own, std::uint32_t mask) {
        EXPECT_THAT(linesAbout(0x0a141e28, mask), ElementsAre(IsLine(Severity::wrong, "10.20.30.40 is outside", own)));
    };
    isSuggested(" 10.20.30.10/24 ", 0xfffe0000);
    isSuggested(" 10.20.0.10/16 ", 0xffff0000);
    isSuggested(" 10.20.0.10/17 ", 0xffff8000);
    isSuggested(" 10.20.30.10/24 ", 0xffffff00);
    isSuggested(" 10.20.30.42/28 ", 0xfffffff0);
    isSuggested(" 10.20.30.10/24 ", 0xfffffff8);
}

// Two interfaces in one network would hide the camera from the system, or the other machines there.
TEST(CameraChecksTest, NoAddressIsSuggestedInTheNetworkOfAnotherInterface)
{
    View view = viewOf(workingCamera("G1", 0x0a000014));
    view.search.cameras.front().answer->mask = 0xffff0000;
    const auto isSuggested = [&] {
        const Lines lines = checkAddresses(view);
        EXPECT_THAT(lines, ElementsAre(IsLine(Severity::wrong, "is outside", "of the interface's network")));
        return !lines.empty() && lines.front().cure.find("ip address add") != std::string::npos;
    };
    EXPECT_TRUE(isSuggested());
    view.machine.interfaces->push_back(workingInterface("wlan0", 0x0a01022a));
    EXPECT_TRUE(isSuggested()) << "10.1.2.0/24 is outside 10.0.0.0/16";
    view.machine.interfaces->back().addresses = {{0x0a00022a, 24}};
    EXPECT_FALSE(isSuggested()) << "10.0.2.0/24 is inside";
    view.machine.interfaces->back().addresses = {{0x0a01022a, 8}};
    EXPECT_FALSE(isSuggested()) << "10.0.0.0/8 contains it";
}

TEST(CameraChecksTest, AddressThatIsMissingOrTakenIsWrong)
{
    EXPECT_THAT(checkAddresses(viewOf(workingCamera("G1", 0))),
                ElementsAre(IsLine(Severity::wrong, "no address", "DHCP")));
    View view = workingView();
    view.search.cameras = {workingCamera("G1"), workingCamera("G2")};
    EXPECT_THAT(checkAddresses(view),
                ElementsAre(IsLine(Severity::wrong, "G1: another camera has its address 192.168.5.20", "of its own"),
                            IsLine(Severity::wrong, "G2: another camera has its address", "of its own")));
}

TEST(CameraChecksTest, ReasonsForNotOpeningHaveTheirCures)
{
    const auto line = [](const char* text, const char* cure) {
        return ElementsAre(IsLine(Severity::wrong, text, cure));
    };
    EXPECT_THAT(checkOpening(viewAfter(CAM_API_STS_BUSY)),
                line("another program has it (2053 CAM_API_STS_BUSY)", "close"));
    EXPECT_THAT(checkOpening(viewAfter(CAM_API_STS_CAMERA_NOT_RESPONDING)), line("does not answer", "cable"));
    EXPECT_THAT(checkOpening(viewAfter(CAM_API_STS_XML_LOAD_ERR)), line("cannot be read", "firmware"));
    EXPECT_THAT(checkOpening(viewAfter(CAM_API_STS_UNEXPECTED_BUFFER_SIZE)),
                line("cannot be opened: 4101 CAM_API_STS_UNEXPECTED_BUFFER_SIZE", "ORVO_CAMERA_LOG"));
    View view = viewAfter(CAM_API_STS_GENICAM_ERR);
    view.search.cameras.front().whyNot = "[Width] a cycle";
    EXPECT_THAT(checkOpening(view), line("cannot be used (258 CAM_API_STS_GENICAM_ERR): [Width] a cycle", "firmware"));
}

TEST(CameraChecksTest, ProgramThatControlsTheCameraIsNamed)
{
    View view = viewAfter(CAM_API_STS_ACCESS_DENIED);
    EXPECT_THAT(checkOpening(view), ElementsAre(IsLine(Severity::wrong, "another machine", "close")));
    view.machine.cameraPrograms = {{42, "grabber"}};
    EXPECT_THAT(checkOpening(view), ElementsAre(IsLine(Severity::wrong, "grabber (process 42)", "close")));
}

TEST(CameraChecksTest, TriggerIsNoted)
{
    Camera camera = workingCamera();
    camera.waitsForTrigger = true;
    EXPECT_THAT(checkOpening(viewOf(camera)),
                ElementsAre(IsFine(), IsLine(Severity::note, "TriggerMode is On", "TriggerMode to Off")));
}

TEST(CameraChecksTest, FiguresOfAStreamAreTold)
{
    Camera camera = workingCamera();
    camera.stream = goodStream();
    camera.stream->packetSize = 1400;
    EXPECT_THAT(checkImages(viewOf(camera)),
                ElementsAre(IsLine(Severity::good,
                                   "50 images in 2.0 s, 0 lost, 0 incomplete; 25.0 images a second, "
                                   "25.0 MB a second, packets of 1400 bytes",
                                   "")));
}

TEST(CameraChecksTest, StreamThatDoesNotStartHasNoFigures)
{
    Camera camera = workingCamera();
    camera.stream.emplace().status = CAM_API_STS_BUSY;
    EXPECT_EQ(checkImages(viewOf(camera)).front().text, "its stream does not start: 2053 CAM_API_STS_BUSY");
    camera.stream->seconds = 0.5;
    EXPECT_THAT(checkImages(viewOf(camera)).front().text, HasSubstr("BUSY; 0 images in 0.5 s"));
}

TEST(CameraChecksTest, ImagesThatDoNotComeHaveTheirCures)
{
    bool small = false; // the receive buffer
    const auto cureOf = [&small](const Camera& camera) {
        View view = viewOf(camera);
        if (small)
            view.machine.receiveBuffer = 212992;
        const Lines lines = checkImages(view);
        EXPECT_THAT(lines, ElementsAre(IsLine(Severity::wrong, "", "")));
        return lines.empty() ? std::string() : lines.front().cure;
    };
    Camera camera = workingCamera();
    camera.stream.emplace();
    EXPECT_THAT(cureOf(camera), HasSubstr("firewall"));
    camera.waitsForTrigger = true;
    EXPECT_THAT(cureOf(camera), HasSubstr("TriggerMode to Off"));
    camera.stream->incomplete = 20;
    EXPECT_THAT(cureOf(camera), HasSubstr("GevSCPSPacketSize"));
    camera.stream->images = 30;
    EXPECT_THAT(cureOf(camera), HasSubstr("ip -s link show dev enp3s0"));
    camera.bufferErrors = 7;
    EXPECT_THAT(cureOf(camera), HasSubstr("overflowed 7 times, although it is as large as"));
    small = true;
    EXPECT_THAT(cureOf(camera), HasSubstr("overflowed 7 times: sudo sysctl -w net.core.rmem_max=33554432"));
    camera.stream = goodStream();
    camera.stream->lost = 1;
    EXPECT_THAT(cureOf(camera), HasSubstr("rmem_max"));
    camera.stream->lost = 0;
    camera.stream->status = CAM_API_STS_CAMERA_NOT_RESPONDING;
    EXPECT_THAT(cureOf(camera), HasSubstr("ORVO_CAMERA_LOG"));
    camera = listedAs(workingDevice());
    camera.stream.emplace();
    EXPECT_THAT(cureOf(camera), HasSubstr("USB speed"));
    camera.waitsForTrigger = true;
    EXPECT_THAT(cureOf(camera), HasSubstr("TriggerMode to Off"));
}

TEST(CameraChecksTest, EveryLineHasTheNameOfItsCheck)
{
    const Lines lines = runChecks(workingView());
    EXPECT_THAT(lines, SizeIs(::testing::Gt(8U)));
    for (const Line& line : lines)
        EXPECT_FALSE(line.check.empty()) << line.subject;
    EXPECT_EQ(lines.front().check, "interface");
    EXPECT_EQ(lines.back().check, "open");
    EXPECT_EQ(exitStatusOf(lines), 0);
}

TEST(CameraChecksTest, EveryFindingOfABrokenMachineHasACure)
{
    View view = viewWithoutCameras();
    view.machine.interfaces->front().addresses.clear();
    view.machine.usbDevices = {workingDevice()};
    view.machine.usbDevices->front().allowed = false;
    view.machine.usbDevices->front().speed = 480;
    view.machine.usbDevices->front().driver = "usbfs";
    view.machine.usbMemory = 16;
    view.search.cameras = {workingCamera("G1", 0x0a000001)};
    view.search.cameras.front().opened = CAM_API_STS_ACCESS_DENIED;
    view.search.cameras.front().stream.emplace();
    const Lines lines = runChecks(view);
    EXPECT_EQ(exitStatusOf(lines), 1);
    for (const Line& line : lines) {
        if (line.severity == Severity::wrong) {
            EXPECT_FALSE(line.cure.empty()) << line.subject << ": " << line.text;
        }
    }
}
