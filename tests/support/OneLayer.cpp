// Linked into a program, or preloaded, it leaves the camera libraries the cameras of one layer only: no test operates a
// real camera that is connected to the machine or its network, or chooses the wrong one because of it.

#include "camera/OrvoCamApi.h"

#include <dlfcn.h>

// Stands before the camera library's own, which it calls.
extern "C" __attribute__((visibility("default"))) Orvo::CAM_API_STATUS Sys_Initialize(std::uint32_t mask)
{
    static const auto next = reinterpret_cast<decltype(&Orvo::Sys_Initialize)>(dlsym(RTLD_NEXT, "Sys_Initialize"));
    return next(mask & Orvo::ONLY_LAYER);
}
