#include "camera/OrvoCamUtl.h"

#include <array>
#include <limits>
#include <string_view>

// Short cuts written on the exported camera API only: another maker's library behind its soname serves as well.

namespace Orvo {

namespace {

using IntegerGetter = CAM_API_STATUS (*)(CAM_HANDLE, CAM_NODE_HANDLE, std::int64_t*);

// A feature whose value is a 32-bit number.
CAM_API_STATUS readNumber(CAM_HANDLE camera, const char* feature, IntegerGetter getter, std::uint32_t* number)
{
    CAM_NODE_HANDLE node = 0;
    if (const CAM_API_STATUS status = Nd_GetNode(camera, feature, &node); status != CAM_API_STS_SUCCESS) {
        return status;
    }
    if (number == nullptr) {
        return CAM_API_STS_INVALID_PARAMETER;
    }
    std::int64_t value = 0;
    if (const CAM_API_STATUS status = getter(camera, node, &value); status != CAM_API_STS_SUCCESS) {
        return status;
    }
    if (value < 0 || value > std::numeric_limits<std::uint32_t>::max()) {
        return CAM_API_STS_INVALID_PARAMETER;
    }
    *number = static_cast<std::uint32_t>(value);
    return CAM_API_STS_SUCCESS;
}

// Whether an enumeration stands at the entry of this name. The numbers behind the names of the standard are the
// camera's own.
CAM_API_STATUS standsAt(CAM_HANDLE camera, const char* feature, std::string_view entry, bool* result)
{
    CAM_NODE_HANDLE node = 0;
    if (const CAM_API_STATUS status = Nd_GetNode(camera, feature, &node); status != CAM_API_STS_SUCCESS) {
        return status;
    }
    if (result == nullptr) {
        return CAM_API_STS_INVALID_PARAMETER;
    }
    std::array<char, 256> name{};
    auto size = static_cast<std::uint32_t>(name.size());
    if (const CAM_API_STATUS status = Nd_GetEnumStrValue(camera, node, name.data(), &size);
        status != CAM_API_STS_SUCCESS) {
        return status;
    }
    *result = entry == name.data();
    return CAM_API_STS_SUCCESS;
}

} // namespace

CAM_API_STATUS GetCamWidth(CAM_HANDLE camera, std::uint32_t* width)
{
    return readNumber(camera, "Width", Nd_GetIntValue, width);
}

CAM_API_STATUS GetCamHeight(CAM_HANDLE camera, std::uint32_t* height)
{
    return readNumber(camera, "Height", Nd_GetIntValue, height);
}

CAM_API_STATUS GetCamPixelFormat(CAM_HANDLE camera, std::uint32_t* pixelFormat)
{
    return readNumber(camera, "PixelFormat", Nd_GetEnumIntValue, pixelFormat);
}

CAM_API_STATUS GetCamTriggerMode(CAM_HANDLE camera, bool* on)
{
    return standsAt(camera, "TriggerMode", "On", on);
}

CAM_API_STATUS GetCamTriggerSource(CAM_HANDLE camera, std::uint32_t* source)
{
    bool software = false;
    const CAM_API_STATUS status =
        standsAt(camera, "TriggerSource", "Software", source == nullptr ? nullptr : &software);
    if (status != CAM_API_STS_SUCCESS) {
        return status;
    }
    if (software) {
        *source = CAM_TRIGGER_SOURCE_SOFTWARE;
        return CAM_API_STS_SUCCESS;
    }
    return readNumber(camera, "TriggerSource", Nd_GetEnumIntValue, source);
}

CAM_API_STATUS ExecuteCamSoftwareTrigger(CAM_HANDLE camera)
{
    CAM_NODE_HANDLE trigger = 0;
    if (const CAM_API_STATUS status = Nd_GetNode(camera, "TriggerSoftware", &trigger); status != CAM_API_STS_SUCCESS) {
        return status;
    }
    return Nd_CmdExecute(camera, trigger);
}

CAM_API_STATUS GetCamIndexFromCamHandle(CAM_HANDLE camera, std::uint32_t* cameraIndex)
{
    // Cam_GetInformation takes handle 0 for "by index". Any other operation tells what is wrong with it. Image
    // callbacks call this for every image, so that a second look-up would cost them half as much again.
    if (camera == 0) {
        CAM_NODE_HANDLE root = 0;
        return Nd_GetNode(camera, "Root", &root);
    }
    CAM_INFO info{};
    if (const CAM_API_STATUS status = Cam_GetInformation(camera, 0, &info); status != CAM_API_STS_SUCCESS) {
        return status;
    }
    if (cameraIndex == nullptr) {
        return CAM_API_STS_INVALID_PARAMETER;
    }
    *cameraIndex = info.cameraIndex;
    return CAM_API_STS_SUCCESS;
}

} // namespace Orvo
