#include "tests/check/Views.h"

using namespace check;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST(UsbChecksTest, WorkingCameraIsFine)
{
    const View view = workingView();
    for (const auto check : {checkUsbDevices, checkUsbPermission, checkUsbSpeed, checkUsbHolders, checkUsbMemory})
        EXPECT_THAT(check(view), Each(IsFine()));
    EXPECT_THAT(checkUsbDevices(view), ElementsAre(IsLine(Severity::good,
                                                          "USB camera Maker Model U1: /dev/bus/usb/002/003, "
                                                          "5000 Mbit/s",
                                                          "")));
}

TEST(UsbChecksTest, MachineWithoutUsbIsNotedAndOneThatDoesNotTellCouldNotBeLookedAt)
{
    View view = workingView();
    view.machine.usbDevices.reset();
    EXPECT_THAT(checkUsbDevices(view), ElementsAre(IsLine(Severity::failed, "/sys does not list", "")));
    view.machine.withoutUsb = true;
    EXPECT_THAT(checkUsbDevices(view), ElementsAre(IsLine(Severity::note, "this machine has none", "")));
    view.machine.withoutUsb = false;
    view.machine.usbDevices.emplace();
    EXPECT_THAT(checkUsbDevices(view), ElementsAre(IsLine(Severity::good, "no device", "")));
}

TEST(UsbChecksTest, MissingPermissionIsWrong)
{
    View view = workingView();
    view.machine.usbDevices->front().allowed = false;
    const auto line = [](const char* cure) { return IsLine(Severity::wrong, "you may not open /dev/bus/usb", cure); };
    EXPECT_THAT(checkUsbPermission(view), ElementsAre(line("udevadm trigger")));
    view.machine.inPlugdev = false;
    EXPECT_THAT(checkUsbPermission(view), ElementsAre(line("usermod -aG plugdev")));
    view.machine.udevRule = false;
    EXPECT_THAT(checkUsbPermission(view), ElementsAre(line("liborvocam1")));
    view.machine.usbDevices->front().hasNode = false;
    EXPECT_THAT(checkUsbPermission(view),
                ElementsAre(IsLine(Severity::wrong, "there is no /dev/bus/usb", "container")));
}

TEST(UsbChecksTest, SlowLinkIsWrong)
{
    View view = workingView();
    view.machine.usbDevices->front().speed = 480;
    EXPECT_THAT(checkUsbSpeed(view), ElementsAre(IsLine(Severity::wrong, "connected at 480 Mbit/s", "USB 3 cable")));
    view.machine.usbDevices->front().speed.reset();
    EXPECT_THAT(checkUsbSpeed(view), IsEmpty());
}

TEST(UsbChecksTest, ProgramThatHasTheCameraIsNamed)
{
    View view = workingView();
    UsbDevice& device = view.machine.usbDevices->front();
    device.driver = "usbfs";
    EXPECT_THAT(checkUsbHolders(view), IsEmpty()) << "it has been released since, as the camera opens";
    view.search.cameras.front().opened = Orvo::CAM_API_STS_BUSY;
    EXPECT_THAT(checkUsbHolders(view),
                ElementsAre(IsLine(Severity::wrong, "one of another user", "sudo orvocam-check")));
    view.machine.root = true;
    EXPECT_THAT(checkUsbHolders(view),
                ElementsAre(IsLine(Severity::wrong, "one that is not visible here", "container")));
    device.holders = {{42, "grabber"}, {43, "other"}};
    EXPECT_THAT(checkUsbHolders(view),
                ElementsAre(IsLine(Severity::wrong, "grabber (process 42), other (process 43)", "close")));
    device.driver = "uvcvideo";
    device.controlInterface = "2-1:1.0";
    EXPECT_THAT(checkUsbHolders(view),
                ElementsAre(IsLine(Severity::wrong, "driver uvcvideo has it",
                                   "echo 2-1:1.0 | sudo tee /sys/bus/usb/drivers/uvcvideo/unbind")));
}

TEST(UsbChecksTest, CameraThatIsNotListedIsWrong)
{
    View view = workingView();
    view.search.cameras.front().serial = "other";
    EXPECT_THAT(checkUsbHolders(view), ElementsAre(IsLine(Severity::wrong, "does not list it", "ORVO_CAMERA_LOG")));
    // Other checks report these.
    view.machine.usbDevices->front().allowed = false;
    EXPECT_THAT(checkUsbHolders(view), IsEmpty());
    view.machine.usbDevices->front().allowed = true;
    view.search.failures = {"the search failed"};
    EXPECT_THAT(checkUsbHolders(view), IsEmpty());
}

TEST(UsbChecksTest, HeldCameraIsOneFinding)
{
    View view = workingView();
    view.machine.usbDevices->front().driver = "usbfs";
    for (const auto status : {Orvo::CAM_API_STS_BUSY, Orvo::CAM_API_STS_ACCESS_DENIED}) {
        view.search.cameras = {listedAs(workingDevice())};
        view.search.cameras.front().opened = status;
        EXPECT_THAT(checkUsbHolders(view), SizeIs(1));
        EXPECT_THAT(checkOpening(view), IsEmpty());
    }
    view.search.cameras.front().opened = Orvo::CAM_API_STS_XML_LOAD_ERR;
    EXPECT_THAT(checkUsbHolders(view), IsEmpty()) << "it was not held when it was opened";
    EXPECT_THAT(checkOpening(view), SizeIs(1));
    view.machine.usbDevices->front().driver.clear();
    view.search.cameras.front().opened = Orvo::CAM_API_STS_BUSY;
    EXPECT_THAT(checkUsbHolders(view), IsEmpty());
    EXPECT_THAT(checkOpening(view), SizeIs(1)) << "nothing else tells it";
}

TEST(UsbChecksTest, LittleMemoryIsWrongIfATrialFails)
{
    View view = workingView();
    view.machine.usbMemory = 16;
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsLine(Severity::note, "16 MiB", "echo 256 | sudo tee")));
    auto& stream = view.search.cameras.front().stream.emplace();
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsLine(Severity::note, "16 MiB", "echo 256 | sudo tee")))
        << "no image, perhaps because no trigger comes";
    stream.images = 50;
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsLine(Severity::good, "16 MiB", "")));
    stream.incomplete = 1;
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsLine(Severity::wrong, "16 MiB", "echo 256 | sudo tee")));
    stream.incomplete = 0;
    stream.lost = 1;
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsLine(Severity::wrong, "16 MiB", "echo 256 | sudo tee")));
    stream.lost = 0;
    stream.status = Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING;
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsLine(Severity::good, "16 MiB", "")))
        << "a camera that was unplugged says nothing of the memory";
    stream.status = Orvo::CAM_API_STS_NO_MEMORY;
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsLine(Severity::wrong, "16 MiB", "echo 256 | sudo tee")));
    view.search.cameras.front().link = Orvo::CAM_LINK_GIGE_VISION;
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsLine(Severity::note, "16 MiB", "")))
        << "a GigE camera needs none of it";
    view.machine.usbMemory = 128;
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsFine()));
}

TEST(UsbChecksTest, MemoryMattersToUsbCamerasOnly)
{
    View view = viewWithoutCameras();
    view.machine.usbMemory = 16;
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsFine()));
    view.machine.usbMemory.reset();
    EXPECT_THAT(checkUsbMemory(view), IsEmpty());
    view = workingView();
    view.machine.usbMemory.reset();
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsLine(Severity::failed, "cannot be read", "")));
    view.machine.usbMemory = 0;
    EXPECT_THAT(checkUsbMemory(view), ElementsAre(IsLine(Severity::good, "no limit", "")));
}
