#pragma once

/// What every exported function does before and after its own work, and nobody else does: the library's state, handles
/// and pointers in the documented order, exceptions to statuses, the text of the last GenICam error.

#include "cameralibs/api/Camera.h"
#include "cameralibs/api/Stream.h"
#include "cameralibs/api/System.h"
#include "cameralibs/genicam/Failure.h"

#include <initializer_list>
#include <memory>

namespace orvo {

/// To be called in a catch block: the status of the exception, its text kept for Misc_GetLastGenICamError.
[[nodiscard]] Orvo::CAM_API_STATUS statusOfException() noexcept;

[[nodiscard]] std::shared_ptr<System> requireSystem();
[[nodiscard]] std::shared_ptr<Camera> requireCamera(const System& system, Orvo::CAM_HANDLE camera);
[[nodiscard]] std::shared_ptr<Stream> requireStream(const System& system, Orvo::CAM_STRM_HANDLE stream);
void requireAttached(const Camera& camera);
void requirePointers(std::initializer_list<const void*> pointers);

/// For the operations that would wait for the callback that calls them.
void refuseInsideCallback();

template <class Work> [[nodiscard]] Orvo::CAM_API_STATUS guarded(Work&& work) noexcept
{
    try {
        work();
        return Orvo::CAM_API_STS_SUCCESS;
    } catch (...) {
        return statusOfException();
    }
}

/// `work(System&)` on the initialised library.
template <class Work> [[nodiscard]] Orvo::CAM_API_STATUS onSystem(Work&& work) noexcept
{
    return guarded([&] { work(*requireSystem()); });
}

/// `work(System&, Camera&)` on an attached camera.
template <class Work> [[nodiscard]] Orvo::CAM_API_STATUS onCamera(Orvo::CAM_HANDLE handle, Work&& work) noexcept
{
    return onSystem([&](System& system) {
        const auto camera = requireCamera(system, handle);
        requireAttached(*camera);
        work(system, *camera);
    });
}

/// `work(Stream&)` on a stream of an attached camera.
template <class Work> [[nodiscard]] Orvo::CAM_API_STATUS onStream(Orvo::CAM_STRM_HANDLE handle, Work&& work) noexcept
{
    return onSystem([&](System& system) {
        const auto stream = requireStream(system, handle);
        requireAttached(stream->camera());
        work(*stream);
    });
}

/// `work(const Camera&, NodeId)`: what the description tells without the device, so it waits for nobody.
template <class Work>
[[nodiscard]] Orvo::CAM_API_STATUS onDescribedNode(Orvo::CAM_HANDLE handle, Orvo::CAM_NODE_HANDLE node,
                                                   std::initializer_list<const void*> pointers, Work&& work) noexcept
{
    return onCamera(handle, [&](System&, const Camera& camera) {
        const NodeId id = camera.nodeOf(node);
        requirePointers(pointers);
        work(camera, id);
    });
}

/// `work(NodeMap&, NodeId)` with the camera's node map to itself.
template <class Work>
[[nodiscard]] Orvo::CAM_API_STATUS onNode(Orvo::CAM_HANDLE handle, Orvo::CAM_NODE_HANDLE node,
                                          std::initializer_list<const void*> pointers, Work&& work) noexcept
{
    return onCamera(handle, [&](System&, Camera& camera) {
        const NodeId id = camera.nodeOf(node);
        requirePointers(pointers);
        camera.evaluate([&](NodeMap& nodes) { work(nodes, id); });
    });
}

} // namespace orvo
