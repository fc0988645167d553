// Preloaded, it makes every search for cameras fail.

#include "camera/OrvoCamApi.h"

extern "C" __attribute__((visibility("default"))) Orvo::CAM_API_STATUS Sys_GetNumOfCameras(std::uint32_t* /*count*/)
{
    return Orvo::CAM_API_STS_NO_MEMORY;
}
