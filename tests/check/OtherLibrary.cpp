// Preloaded, it takes the place of the camera library: it lists as many cameras as OTHER_LIBRARY_CAMERAS says, none of
// which opens, and knows nothing about the one with the index OTHER_LIBRARY_UNKNOWN. Without the first variable every
// search fails.

#include "camera/OrvoCamApi.h"

#include <cstdlib>
#include <cstring>

using namespace Orvo;

namespace {

const char* setting(const char* name)
{
    return std::getenv(name); // NOLINT(concurrency-mt-unsafe): nobody changes the environment
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) CAM_API_STATUS Sys_GetNumOfCameras(std::uint32_t* count)
{
    const char* const cameras = setting("OTHER_LIBRARY_CAMERAS");
    if (cameras == nullptr)
        return CAM_API_STS_NO_MEMORY;
    *count = static_cast<std::uint32_t>(std::strtoul(cameras, nullptr, 10));
    return CAM_API_STS_SUCCESS;
}

__attribute__((visibility("default"))) CAM_API_STATUS Cam_GetInformation(CAM_HANDLE /*camera*/, std::uint32_t index,
                                                                         CAM_INFO* info)
{
    const char* const unknown = setting("OTHER_LIBRARY_UNKNOWN");
    if (unknown != nullptr && std::strtoul(unknown, nullptr, 10) == index)
        return CAM_API_STS_BUSY;
    info->link = CAM_LINK_GIGE_VISION;
    std::strcpy(info->modelName, "Other");
    return CAM_API_STS_SUCCESS;
}

__attribute__((visibility("default"))) CAM_API_STATUS Cam_Open(std::uint32_t /*index*/, CAM_HANDLE* /*camera*/,
                                                               CAM_SIGNAL_HANDLE /*signal*/, std::uint32_t /*option*/,
                                                               void* /*reserved*/, std::uint32_t /*accessMode*/)
{
    return CAM_API_STS_CAMERA_NOT_RESPONDING;
}

} // extern "C"
