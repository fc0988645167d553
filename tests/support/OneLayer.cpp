// Linked or preloaded, it restricts the camera libraries to a single layer: no test operates a real camera connected to
// the machine or its network, or picks the wrong camera because of it.

#include "camera/OrvoCamApi.h"

#include <dlfcn.h>

// Overrides the camera library's function and calls it.
extern "C" __attribute__((visibility("default"))) Orvo::CAM_API_STATUS Sys_Initialize(std::uint32_t mask)
{
    static const auto next = reinterpret_cast<decltype(&Orvo::Sys_Initialize)>(dlsym(RTLD_NEXT, "Sys_Initialize"));
    return next(mask & Orvo::ONLY_LAYER);
}
