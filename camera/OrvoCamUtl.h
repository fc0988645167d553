#pragma once

/// The binary interface of the camera utility library, libOrvoCamUtl_64.so.1: pixel conversion, and shortcuts to the
/// features that a viewer needs. Every operation has C linkage, may be called from any thread and throws nothing.

#include "OrvoCamApi.h"

namespace Orvo {

/// The value of GetCamTriggerSource for the software trigger.
constexpr std::uint32_t CAM_TRIGGER_SOURCE_SOFTWARE = 64;

extern "C" {

/// Prepares the tables of ConvImage. May be called any number of times, before or after Sys_Initialize.
ORVO_CAM_EXPORT CAM_API_STATUS PrepareLUT();

/// Converts one image to B, G, R, 255 per pixel, the byte order of 32-bit ARGB on x86-64, rows without padding.
/// `dstFormat` is 0, `srcPixelFormat` a PFNC value, `option` is ignored; `dst` holds width x height x 4 bytes.
/// Returns CAM_API_STS_NOT_IMPLEMENTED for another `dstFormat` or an unsupported source, and
/// CAM_API_STS_INVALID_PARAMETER for a size of zero or a result of 2^32 bytes or more; then nothing is written. Does
/// not need Sys_Initialize.
ORVO_CAM_EXPORT CAM_API_STATUS ConvImage(std::uint32_t dstFormat, std::uint32_t srcPixelFormat, std::uint32_t option,
                                         void* dst, const void* src, std::uint32_t width, std::uint32_t height);

/// In pixels.
ORVO_CAM_EXPORT CAM_API_STATUS GetCamWidth(CAM_HANDLE camera, std::uint32_t* width);
ORVO_CAM_EXPORT CAM_API_STATUS GetCamHeight(CAM_HANDLE camera, std::uint32_t* height);

/// The PFNC value.
ORVO_CAM_EXPORT CAM_API_STATUS GetCamPixelFormat(CAM_HANDLE camera, std::uint32_t* pixelFormat);
ORVO_CAM_EXPORT CAM_API_STATUS GetCamTriggerMode(CAM_HANDLE camera, bool* on);

/// CAM_TRIGGER_SOURCE_SOFTWARE for the software trigger, whatever its number in the camera; otherwise the camera's
/// number.
ORVO_CAM_EXPORT CAM_API_STATUS GetCamTriggerSource(CAM_HANDLE camera, std::uint32_t* source);
ORVO_CAM_EXPORT CAM_API_STATUS ExecuteCamSoftwareTrigger(CAM_HANDLE camera);

/// 0 while the handle names an attached camera.
ORVO_CAM_EXPORT CAM_API_STATUS GetCamIndexFromCamHandle(CAM_HANDLE camera, std::uint32_t* cameraIndex);

} // extern "C"

} // namespace Orvo
