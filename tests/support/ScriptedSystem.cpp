#include "tests/support/ScriptedWorld.h"

#include <chrono>
#include <cstring>

using namespace scripted;

namespace {

constexpr std::uint32_t kWaitWithoutEnd = 0xFFFFFFFF;

Orvo::CAM_API_STATUS uninitialised()
{
    return world().initialised ? Orvo::CAM_API_STS_SUCCESS : Orvo::CAM_API_STS_NOT_INITIALIZED;
}

Orvo::CAM_API_STATUS attachedIndex(std::uint32_t cameraIndex, std::size_t& index)
{
    if (cameraIndex >= world().listed.size())
        return Orvo::CAM_API_STS_INVALID_CAMERA_INDEX;
    index = world().listed[cameraIndex];
    return Orvo::CAM_API_STS_SUCCESS;
}

void fillInformation(const CameraSpec& spec, std::uint32_t cameraIndex, Orvo::CAM_INFO& info)
{
    std::memset(&info, 0, sizeof info);
    info.link = spec.link;
    fillField(info.vendorName, sizeof info.vendorName, spec.vendor);
    fillField(info.modelName, sizeof info.modelName, spec.model);
    fillField(info.serialNumber, sizeof info.serialNumber, spec.serial);
    fillField(info.userDefinedName, sizeof info.userDefinedName, spec.userName);
    info.cameraIndex = cameraIndex;
}

} // namespace

namespace scripted {

void setCameras(std::vector<CameraSpec> cameras)
{
    const std::lock_guard lock(world().mutex);
    world().cameras.clear();
    for (CameraSpec& spec : cameras)
        world().cameras.push_back({std::move(spec)});
}

void setGenICamError(std::string text)
{
    const std::lock_guard lock(world().mutex);
    world().genICamError = std::move(text);
}

void setSystemInformation(const std::string& driver, const std::string& u3vApi2, const std::string& u3vCamApi,
                          const std::string& camApi)
{
    const std::lock_guard lock(world().mutex);
    Orvo::CAM_SYSTEM_INFO& info = world().systemInformation;
    std::memset(&info, 'X', sizeof info);
    const auto fill = [](auto& field, const std::string& text) {
        if (text.size() < sizeof field) {
            fillField(field, sizeof field, text);
        } else {
            std::memcpy(field, text.data(), sizeof field);
        }
    };
    fill(info.driverVersion, driver);
    fill(info.u3vApi2Version, u3vApi2);
    fill(info.u3vCamApiVersion, u3vCamApi);
    fill(info.camApiVersion, camApi);
}

void unplug()
{
    const std::lock_guard lock(world().mutex);
    OpenCamera& camera = world().camera;
    if (camera.handle == 0)
        return;
    const auto signal = world().signals.find(camera.removalSignal);
    if (signal != world().signals.end())
        signal->second = true;
    camera.unplugged = true;
    if (camera.attachedIndex < world().cameras.size())
        world().cameras[camera.attachedIndex].unplugged = true;
    world().changed.notify_all();
}

void plugIn()
{
    const std::lock_guard lock(world().mutex);
    for (AttachedCamera& camera : world().cameras)
        camera.unplugged = false;
}

} // namespace scripted

namespace Orvo {

CAM_API_STATUS Sys_Initialize(std::uint32_t mask)
{
    return world().call("Sys_Initialize", {number(mask)}, [](auto&) -> CAM_API_STATUS {
        return std::exchange(world().initialised, true) ? CAM_API_STS_ALREADY_INITIALIZED : CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Sys_Terminate()
{
    return world().call("Sys_Terminate", {}, [](auto&) -> CAM_API_STATUS {
        World& w = world();
        if (!w.initialised)
            return CAM_API_STS_NOT_INITIALIZED;
        if (w.inCallback())
            return CAM_API_STS_INVALID_PARAMETER;
        w.closeCamera();
        w.signals.clear();
        w.listed.clear();
        w.initialised = false;
        w.changed.notify_all();
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Sys_GetInformation(CAM_SYSTEM_INFO* info)
{
    return world().call("Sys_GetInformation", {out(info)}, [&](auto&) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = uninitialised())
            return status;
        if (info == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        *info = world().systemInformation;
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Sys_GetNumOfCameras(std::uint32_t* count)
{
    return world().call("Sys_GetNumOfCameras", {out(count)}, [&](auto&) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = uninitialised())
            return status;
        if (count == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        World& w = world();
        w.listed.clear();
        for (std::size_t i = 0; i < w.cameras.size(); ++i) {
            if (!w.cameras[i].unplugged)
                w.listed.push_back(i);
        }
        *count = static_cast<std::uint32_t>(w.listed.size());
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Sys_CreateSignal(CAM_SIGNAL_HANDLE* signal)
{
    return world().call("Sys_CreateSignal", {out(signal)}, [&](auto&) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = uninitialised())
            return status;
        if (signal == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        *signal = ++world().lastSignal;
        world().signals[*signal] = false;
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Sys_CloseSignal(CAM_SIGNAL_HANDLE signal)
{
    return world().call("Sys_CloseSignal", {number(signal)}, [&](auto&) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = uninitialised())
            return status;
        world().changed.notify_all();
        return world().signals.erase(signal) == 0 ? CAM_API_STS_INVALID_EVENT_HANDLE : CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Sys_WaitForSignal(CAM_SIGNAL_HANDLE signal, std::uint32_t timeoutMs)
{
    return world().call("Sys_WaitForSignal", {number(signal), number(timeoutMs)}, [&](auto& lock) -> CAM_API_STATUS {
        const auto closed = [&] { return world().signals.count(signal) == 0; };
        const auto decided = [&] { return closed() || world().signals[signal]; };
        if (const CAM_API_STATUS status = uninitialised())
            return status;
        if (timeoutMs == kWaitWithoutEnd) {
            world().changed.wait(lock, decided);
        } else if (!decided()) {
            world().changed.wait_for(lock, std::chrono::milliseconds(timeoutMs), decided);
        }
        if (closed())
            return CAM_API_STS_INVALID_EVENT_HANDLE;
        return world().signals[signal] ? CAM_API_STS_SUCCESS : CAM_API_STS_TIMEOUT;
    });
}

CAM_API_STATUS Cam_GetInformation(CAM_HANDLE camera, std::uint32_t cameraIndex, CAM_INFO* info)
{
    return world().call(
        "Cam_GetInformation", {number(camera), number(cameraIndex), out(info)}, [&](auto&) -> CAM_API_STATUS {
            if (const CAM_API_STATUS status = uninitialised())
                return status;
            const OpenCamera& open = world().camera;
            std::size_t index = open.attachedIndex;
            const CAM_API_STATUS status = camera == 0 ? attachedIndex(cameraIndex, index) : world().checkCamera(camera);
            if (status != CAM_API_STS_SUCCESS)
                return status;
            if (info == nullptr || index >= world().cameras.size())
                return CAM_API_STS_INVALID_PARAMETER;
            fillInformation(world().cameras[index].spec, camera == 0 ? cameraIndex : open.cameraIndex, *info);
            return CAM_API_STS_SUCCESS;
        });
}

CAM_API_STATUS Cam_Open(std::uint32_t cameraIndex, CAM_HANDLE* camera, CAM_SIGNAL_HANDLE removalSignal,
                        std::uint32_t openOption, void* reserved, std::uint32_t accessMode)
{
    return world().call(
        "Cam_Open",
        {number(cameraIndex), out(camera), number(removalSignal), number(openOption), in(reserved), number(accessMode)},
        [&](auto&) -> CAM_API_STATUS {
            World& w = world();
            std::size_t index = 0;
            if (const CAM_API_STATUS status = uninitialised())
                return status;
            if (const CAM_API_STATUS status = attachedIndex(cameraIndex, index))
                return status;
            if (index >= w.cameras.size() || w.cameras[index].unplugged)
                return CAM_API_STS_CAMERA_NOT_RESPONDING;
            if (w.camera.handle != 0)
                return CAM_API_STS_ALREADY_OPENED;
            if (removalSignal != 0 && w.signals.count(removalSignal) == 0)
                return CAM_API_STS_INVALID_EVENT_HANDLE;
            if (camera == nullptr)
                return CAM_API_STS_INVALID_PARAMETER;
            if (removalSignal != 0)
                w.signals[removalSignal] = false;
            w.camera = {++w.lastCamera, index, cameraIndex, removalSignal, false};
            w.nodeHandleBase += kNodeHandlesPerOpening;
            *camera = w.camera.handle;
            return CAM_API_STS_SUCCESS;
        });
}

CAM_API_STATUS Cam_Close(CAM_HANDLE camera)
{
    return world().call("Cam_Close", {number(camera)}, [&](auto&) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = world().checkCameraKnown(camera))
            return status;
        if (world().inCallback())
            return CAM_API_STS_INVALID_PARAMETER;
        world().closeCamera();
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Misc_GetLastGenICamError(const char** text)
{
    return world().call("Misc_GetLastGenICamError", {out(text)}, [&](auto&) -> CAM_API_STATUS {
        if (text == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        *text = world().genICamError.c_str();
        return CAM_API_STS_SUCCESS;
    });
}

} // namespace Orvo
