#include "Barrier.h"

#include "cameralibs/api/LastError.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace orvo {

using namespace Orvo;

CAM_API_STATUS statusOfException() noexcept
{
    try {
        throw;
    } catch (const Failure& failure) {
        if (failure.status() == CAM_API_STS_GENICAM_ERR || failure.status() == CAM_API_STS_XML_LOAD_ERR) {
            try {
                setLastGenICamError(failure.text());
            } catch (const std::bad_alloc&) {
                return CAM_API_STS_NO_MEMORY;
            }
        }
        return failure.status();
    } catch (const std::bad_alloc&) {
        return CAM_API_STS_NO_MEMORY;
    } catch (const std::length_error&) {
        return CAM_API_STS_NO_MEMORY;
    } catch (...) {
        return CAM_API_STS_UNSUCCESSFUL;
    }
}

std::shared_ptr<System> requireSystem()
{
    std::shared_ptr<System> system = System::current();
    throwUnless(system != nullptr, CAM_API_STS_NOT_INITIALIZED);
    return system;
}

std::shared_ptr<Camera> requireCamera(const System& system, CAM_HANDLE handle)
{
    std::shared_ptr<Camera> camera = system.cameras().find(handle);
    throwUnless(camera != nullptr, CAM_API_STS_INVALID_CAMERA_HANDLE);
    return camera;
}

std::shared_ptr<Stream> requireStream(const System& system, CAM_STRM_HANDLE handle)
{
    std::shared_ptr<Stream> stream = system.streams().find(handle);
    throwUnless(stream != nullptr, CAM_API_STS_INVALID_STREAM_HANDLE);
    return stream;
}

void requireAttached(const Camera& camera)
{
    throwUnless(!camera.removed(), CAM_API_STS_CAMERA_NOT_RESPONDING);
}

void requirePointers(std::initializer_list<const void*> pointers)
{
    throwUnless(std::find(pointers.begin(), pointers.end(), nullptr) == pointers.end(), CAM_API_STS_INVALID_PARAMETER);
}

void refuseInsideCallback()
{
    throwUnless(!Stream::insideCallback(), CAM_API_STS_INVALID_PARAMETER);
}

} // namespace orvo
