#include "cameralibs/api/exports/Barrier.h"
#include "cameralibs/base/AsciiField.h"

#include <arv.h>

#include <cstring>
#include <string>

using namespace cameralibs;

namespace Orvo {

extern "C" {

CAM_API_STATUS Sys_Initialize(std::uint32_t mask)
{
    return guarded([&] { throwIfFailed({System::initialize(mask), {}}); });
}

CAM_API_STATUS Sys_Terminate()
{
    return guarded([] {
        (void)requireSystem();
        refuseInsideCallback();
        throwIfFailed({System::terminate(), {}});
    });
}

CAM_API_STATUS Sys_GetInformation(CAM_SYSTEM_INFO* info)
{
    return onSystem([&](System&) {
        requirePointers({info});
        const std::string aravis = "Aravis " + std::to_string(arv_get_major_version()) + "." +
                                   std::to_string(arv_get_minor_version()) + "." +
                                   std::to_string(arv_get_micro_version());
        *info = {};
        setAsciiField(info->driverVersion, aravis);
        setAsciiField(info->u3vApi2Version, aravis);
        setAsciiField(info->u3vCamApiVersion, ORVO_LIBRARY_VERSION);
        setAsciiField(info->camApiVersion, ORVO_LIBRARY_VERSION);
    });
}

CAM_API_STATUS Sys_GetNumOfCameras(std::uint32_t* count)
{
    return onSystem([&](System& system) {
        requirePointers({count});
        *count = system.enumerate();
    });
}

CAM_API_STATUS Sys_CreateSignal(CAM_SIGNAL_HANDLE* signal)
{
    return onSystem([&](System& system) {
        requirePointers({signal});
        const Handle handle = newHandles();
        throwUnless(system.signals().add(handle, std::make_shared<Signal>()), CAM_API_STS_NOT_INITIALIZED);
        *signal = handle;
    });
}

CAM_API_STATUS Sys_CloseSignal(CAM_SIGNAL_HANDLE signal)
{
    return onSystem([&](System& system) {
        const auto closed = system.signals().take(signal);
        throwUnless(closed != nullptr, CAM_API_STS_INVALID_EVENT_HANDLE);
        closed->close(CAM_API_STS_INVALID_EVENT_HANDLE);
    });
}

CAM_API_STATUS Sys_WaitForSignal(CAM_SIGNAL_HANDLE signal, std::uint32_t timeoutMs)
{
    return guarded([&] {
        // Hold only the signal: an endless wait must not keep the system alive.
        const auto waited = requireSystem()->signals().find(signal);
        if (waited == nullptr) {
            (void)requireSystem(); // a concurrent Sys_Terminate removes the signals and is reported first
            throw Failure(CAM_API_STS_INVALID_EVENT_HANDLE);
        }
        throwIfFailed({waited->wait(timeoutMs), {}});
    });
}

CAM_API_STATUS Misc_GetLastGenICamError(const char** text)
{
    return guarded([&] {
        requirePointers({text});
        *text = lastGenICamError();
    });
}

} // extern "C"

} // namespace Orvo
