#include "cameralibs/api/exports/Barrier.h"

using namespace cameralibs;

namespace Orvo {

extern "C" {

CAM_API_STATUS Strm_OpenSimple(CAM_HANDLE camera, CAM_STRM_HANDLE* stream, std::uint32_t* maxImageSize, void*,
                               std::uint32_t bufferCount, void*)
{
    return onSystem([&](System& system) {
        const auto opened = requireCamera(system, camera);
        requireAttached(*opened);
        throwUnless(opened->stream() == nullptr, CAM_API_STS_ALREADY_OPENED);
        requirePointers({stream});
        const auto newStream = system.openStream(opened, bufferCount);
        *stream = newStream->handle();
        if (maxImageSize != nullptr)
            *maxImageSize = static_cast<std::uint32_t>(newStream->payload());
    });
}

CAM_API_STATUS Strm_Close(CAM_STRM_HANDLE stream)
{
    return onSystem([&](System& system) {
        (void)requireStream(system, stream);
        refuseInsideCallback();
        throwUnless(system.closeStream(stream), CAM_API_STS_INVALID_STREAM_HANDLE);
    });
}

CAM_API_STATUS Strm_SetCallbackImageAcquired(CAM_STRM_HANDLE stream, void* context,
                                             CAM_IMAGE_ACQUIRED_CALLBACK callback)
{
    return onStream(stream, [&](Stream& opened) { opened.setImageCallback({callback, context}); });
}

CAM_API_STATUS Strm_SetCallbackImageError(CAM_STRM_HANDLE stream, void* context, CAM_IMAGE_ERROR_CALLBACK callback)
{
    return onStream(stream, [&](Stream& opened) { opened.setErrorCallback({callback, context}); });
}

CAM_API_STATUS Strm_SetCallbackBufferBusy(CAM_STRM_HANDLE stream, void* context, CAM_BUFFER_BUSY_CALLBACK callback)
{
    return onStream(stream, [&](Stream& opened) { opened.setBusyCallback({callback, context}); });
}

CAM_API_STATUS Strm_Start(CAM_STRM_HANDLE stream, std::uint32_t)
{
    return onStream(stream, [](Stream& opened) { opened.start(); });
}

// Strm_Close, Strm_Stop and Strm_UnlockBuffer do their work and succeed even if the camera is unplugged.

CAM_API_STATUS Strm_Stop(CAM_STRM_HANDLE stream)
{
    return onSystem([&](System& system) {
        const auto opened = requireStream(system, stream);
        refuseInsideCallback();
        try {
            opened->stop();
        } catch (const Failure& failure) {
            if (failure.status() != CAM_API_STS_CAMERA_NOT_RESPONDING)
                throw;
        }
    });
}

CAM_API_STATUS Strm_GetCurrentBufferIndex(CAM_STRM_HANDLE stream, std::uint32_t* index)
{
    return onStream(stream, [&](Stream& opened) {
        requirePointers({index});
        *index = opened.slots().current();
    });
}

CAM_API_STATUS Strm_LockBuffer(CAM_STRM_HANDLE stream, std::uint32_t index, CAM_IMAGE_INFO* info)
{
    return onStream(stream, [&](Stream& opened) {
        requirePointers({info});
        *info = opened.slots().lock(index);
    });
}

CAM_API_STATUS Strm_UnlockBuffer(CAM_STRM_HANDLE stream, std::uint32_t index)
{
    return onSystem([&](System& system) {
        const auto opened = requireStream(system, stream);
        try {
            opened->slots().unlock(index);
        } catch (const Failure&) {
            if (!opened->camera().removed())
                throw;
        }
    });
}

} // extern "C"

} // namespace Orvo
