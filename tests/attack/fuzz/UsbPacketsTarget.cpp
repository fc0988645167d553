// The library with a USB3 Vision camera that sends what it likes: answers to commands, and the packets of images. They
// reach the library through a real transport, which may crash.
//
// An input has some registers with their contents, then what happens to the packets of the emulated camera.

#include "camera/OrvoCamApi.h"
#include "tests/attack/fuzz/CameraUse.h"
#include "tests/attack/fuzz/FuzzInput.h"
#include "tests/cameralibs/transport/usb/FakeUsb.h"
#include "tests/cameralibs/transport/usb/FakeUsbCamera.h"

#include <chrono>
#include <cstdint>
#include <iterator>

using namespace Orvo;

namespace {

constexpr std::uint64_t kRegisters[] = {
    usb::kManifestAddress,
    usb::kManifest + usb::kEntrySchema,
    usb::kManifest + usb::kEntryAddress,
    usb::kManifest + usb::kEntrySize,
    usb::kMaximumCommand,
    usb::kMaximumAnswer,
    usb::kStreamInfo,
    usb::kStreamPayload,
    usb::kStreamLeaderSize,
    usb::kStreamTrailerSize,
    usb::kWidth,
    usb::kHeight,
    usb::kPixelFormat,
    usb::kPayloadSize,
    usb::kTriggerMode,
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    usb::unplug();
    usb::plugIn();
    FuzzInput input(data, size);
    for (std::size_t count = input.below(4); count > 0; --count) {
        const std::uint64_t address = kRegisters[input.below(std::size(kRegisters))];
        usb::setValue(address, input.number<std::uint32_t>());
    }
    usb::distortPackets(input.rest());
    REQUIRE(Sys_Initialize(CAM_LAYER_USB3_VISION) == CAM_API_STS_SUCCESS);
    std::uint32_t count = 0;
    REQUIRE(Sys_GetNumOfCameras(&count) == CAM_API_STS_SUCCESS && count == 1);
    const bool correct = size == 0;
    const unsigned images = useCamera(0, "DeviceUserID", correct ? kAnyTime : std::chrono::milliseconds(100));
    REQUIRE(images > 0 || !correct);
    REQUIRE(Sys_Terminate() == CAM_API_STS_SUCCESS);
    return 0;
}
