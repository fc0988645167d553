#include "cameralibs/api/exports/Barrier.h"

using namespace cameralibs;

namespace Orvo {

namespace {

void giveCameraInfo(const DeviceInfo& device, const std::string& userName, std::uint32_t index, CAM_INFO& info)
{
    info = {};
    info.link = device.link;
    giveAsciiField(device.vendor, info.vendorName, sizeof info.vendorName);
    giveAsciiField(device.model, info.modelName, sizeof info.modelName);
    giveAsciiField(device.serial, info.serialNumber, sizeof info.serialNumber);
    giveAsciiField(userName, info.userDefinedName, sizeof info.userDefinedName);
    info.cameraIndex = index;
}

} // namespace

extern "C" {

CAM_API_STATUS Cam_GetInformation(CAM_HANDLE camera, std::uint32_t cameraIndex, CAM_INFO* info)
{
    if (camera != 0) {
        return onCamera(camera, [&](System& system, const Camera& opened) {
            requirePointers({info});
            const System::Listing listing = system.listingOf(opened);
            giveCameraInfo(opened.info(), listing.userName, listing.index, *info);
        });
    }
    return onSystem([&](System& system) {
        const DeviceInfo device = system.listedCamera(cameraIndex);
        requirePointers({info});
        giveCameraInfo(device, device.userName, cameraIndex, *info);
    });
}

CAM_API_STATUS Cam_Open(std::uint32_t cameraIndex, CAM_HANDLE* camera, CAM_SIGNAL_HANDLE removalSignal, std::uint32_t,
                        void*, std::uint32_t)
{
    return onSystem([&](System& system) {
        Call::setCamera(system.listedCamera(cameraIndex).logName());
        system.openCamera(cameraIndex, removalSignal, camera);
    });
}

CAM_API_STATUS Cam_Close(CAM_HANDLE camera)
{
    return onSystem([&](System& system) {
        (void)requireCamera(system, camera);
        refuseInsideCallback();
        throwUnless(system.closeCamera(camera), CAM_API_STS_INVALID_CAMERA_HANDLE);
    });
}

} // extern "C"

} // namespace Orvo
