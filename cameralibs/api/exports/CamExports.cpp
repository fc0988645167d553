#include "cameralibs/api/exports/Barrier.h"

using namespace cameralibs;

namespace Orvo {

extern "C" {

CAM_API_STATUS Cam_GetInformation(CAM_HANDLE camera, std::uint32_t cameraIndex, CAM_INFO* info)
{
    if (camera != 0) {
        return onCamera(camera, [&](System&, const Camera& opened) {
            requirePointers({info});
            opened.copyRecord(*info);
        });
    }
    return onSystem([&](System& system) {
        const CAM_INFO record = system.record(cameraIndex);
        requirePointers({info});
        *info = record;
    });
}

CAM_API_STATUS Cam_Open(std::uint32_t cameraIndex, CAM_HANDLE* camera, CAM_SIGNAL_HANDLE removalSignal, std::uint32_t,
                        void*, std::uint32_t)
{
    return onSystem([&](System& system) {
        Call::setCamera(system.nameForLog(cameraIndex));
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
