#include "tests/support/OpenedCamera.h"

#include <atomic>

#include <dlfcn.h>

namespace {

std::atomic<Orvo::CAM_HANDLE> lastOpened{0};

/// Looks up a feature of the camera and applies an operation to it.
template <typename Action> Orvo::CAM_API_STATUS onNode(const char* name, const Action& action)
{
    Orvo::CAM_NODE_HANDLE node = 0;
    const Orvo::CAM_API_STATUS status = Orvo::Nd_GetNode(lastOpened, name, &node);
    return status == Orvo::CAM_API_STS_SUCCESS ? action(node) : status;
}

} // namespace

namespace opened {

Orvo::CAM_HANDLE camera()
{
    return lastOpened;
}

Orvo::CAM_API_STATUS execute(const char* command)
{
    return onNode(command, [](Orvo::CAM_NODE_HANDLE node) { return Orvo::Nd_CmdExecute(lastOpened, node); });
}

Orvo::CAM_API_STATUS set(const char* enumeration, const char* entry)
{
    return onNode(enumeration,
                  [&](Orvo::CAM_NODE_HANDLE node) { return Orvo::Nd_SetEnumStrValue(lastOpened, node, entry); });
}

Orvo::CAM_API_STATUS set(const char* integer, std::int64_t value)
{
    return onNode(integer, [&](Orvo::CAM_NODE_HANDLE node) { return Orvo::Nd_SetIntValue(lastOpened, node, value); });
}

} // namespace opened

// Overrides the camera library's function and calls it.
extern "C" __attribute__((visibility("default"))) Orvo::CAM_API_STATUS
Cam_Open(std::uint32_t cameraIndex, Orvo::CAM_HANDLE* camera, Orvo::CAM_SIGNAL_HANDLE removalSignal,
         std::uint32_t openOption, void* reserved, std::uint32_t accessMode)
{
    static const auto next = reinterpret_cast<decltype(&Orvo::Cam_Open)>(dlsym(RTLD_NEXT, "Cam_Open"));
    const Orvo::CAM_API_STATUS status = next(cameraIndex, camera, removalSignal, openOption, reserved, accessMode);
    if (status == Orvo::CAM_API_STS_SUCCESS)
        lastOpened = *camera;
    return status;
}
