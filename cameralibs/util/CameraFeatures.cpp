#include "camera/OrvoCamUtl.h"

#include <array>
#include <limits>
#include <string_view>

// Convenience functions that use only the exported camera API, so that they also work with another implementation of
// it.

namespace Orvo {

namespace {

using IntegerGetter = CAM_API_STATUS (*)(CAM_HANDLE, CAM_NODE_HANDLE, std::int64_t*);

// Reads a feature whose value is a 32-bit number.
CAM_API_STATUS readNumber(CAM_HANDLE camera, const char* feature, IntegerGetter getter, std::uint32_t* number)
{
    CAM_NODE_HANDLE node = 0;
    if (const CAM_API_STATUS status = Nd_GetNode(camera, feature, &node); status != CAM_API_STS_SUCCESS)
        return status;
    if (number == nullptr)
        return CAM_API_STS_INVALID_PARAMETER;
    std::int64_t value = 0;
    if (const CAM_API_STATUS status = getter(camera, node, &value); status != CAM_API_STS_SUCCESS)
        return status;
    if (value < 0 || value > std::numeric_limits<std::uint32_t>::max())
        return CAM_API_STS_INVALID_PARAMETER;
    *number = static_cast<std::uint32_t>(value);
    return CAM_API_STS_SUCCESS;
}

// Whether the enumeration has this entry selected. Compares names, because the standard does not define the numbers.
CAM_API_STATUS hasEntrySelected(CAM_HANDLE camera, const char* feature, std::string_view entry, bool* result)
{
    CAM_NODE_HANDLE node = 0;
    if (const CAM_API_STATUS status = Nd_GetNode(camera, feature, &node); status != CAM_API_STS_SUCCESS)
        return status;
    if (result == nullptr)
        return CAM_API_STS_INVALID_PARAMETER;
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
    return hasEntrySelected(camera, "TriggerMode", "On", on);
}

CAM_API_STATUS GetCamTriggerSource(CAM_HANDLE camera, std::uint32_t* source)
{
    bool software = false;
    const CAM_API_STATUS status =
        hasEntrySelected(camera, "TriggerSource", "Software", source == nullptr ? nullptr : &software);
    if (status != CAM_API_STS_SUCCESS)
        return status;
    if (software) {
        *source = CAM_TRIGGER_SOURCE_SOFTWARE;
        return CAM_API_STS_SUCCESS;
    }
    return readNumber(camera, "TriggerSource", Nd_GetEnumIntValue, source);
}

CAM_API_STATUS ExecuteCamSoftwareTrigger(CAM_HANDLE camera)
{
    CAM_NODE_HANDLE trigger = 0;
    if (const CAM_API_STATUS status = Nd_GetNode(camera, "TriggerSoftware", &trigger); status != CAM_API_STS_SUCCESS)
        return status;
    return Nd_CmdExecute(camera, trigger);
}

CAM_API_STATUS GetCamIndexFromCamHandle(CAM_HANDLE camera, std::uint32_t* cameraIndex)
{
    // Cam_GetInformation would treat handle 0 as "use the index", so another function reports the error. Other handles
    // need no second look-up, which would cost image callbacks half as much time again.
    if (camera == 0) {
        CAM_NODE_HANDLE root = 0;
        return Nd_GetNode(camera, "Root", &root);
    }
    CAM_INFO info; // NOLINT(cppcoreguidelines-pro-type-member-init): Cam_GetInformation fills it
    if (const CAM_API_STATUS status = Cam_GetInformation(camera, 0, &info); status != CAM_API_STS_SUCCESS)
        return status;
    if (cameraIndex == nullptr)
        return CAM_API_STS_INVALID_PARAMETER;
    *cameraIndex = info.cameraIndex;
    return CAM_API_STS_SUCCESS;
}

} // namespace Orvo
