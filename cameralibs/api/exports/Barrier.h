#pragma once

/// The common frame of all exported functions: it checks the library's state, the handles and the pointers in the
/// documented order, copies texts to the caller, turns exceptions into statuses and keeps the text of the last GenICam
/// error.

#include "cameralibs/api/Camera.h"
#include "cameralibs/api/Stream.h"
#include "cameralibs/api/System.h"
#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/EvaluationBudget.h"

#include <chrono>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

namespace cameralibs {

/// The exported function that runs on this thread: its name and camera for the diagnostic log, and its evaluation
/// budget.
class Call {
public:
    explicit Call(const char* function) noexcept;
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /// Sets the camera of the current call, as soon as it is known.
    static void setCamera(const std::string& name);

    /// The status of the current exception; to be called in a catch block. Logs the text, and keeps that of a GenICam
    /// error for Misc_GetLastGenICamError.
    [[nodiscard]] Orvo::CAM_API_STATUS statusOfException() const noexcept;

private:
    void logFailure(Orvo::CAM_API_STATUS status, std::string_view text) const noexcept;
    [[nodiscard]] Orvo::CAM_API_STATUS logged(Orvo::CAM_API_STATUS status, std::string_view text) const noexcept;

    static constexpr std::chrono::milliseconds kLimit{50};

    const char* const m_function;
    Call* const m_outer; ///< a host program's log writer may call into the library
    EvaluationBudget m_budget{kLimit};
    std::string m_camera;
};

/// The text of the calling thread's last GenICam error, empty if there was none. Valid until the thread's next one.
[[nodiscard]] const char* lastGenICamError() noexcept;

[[nodiscard]] std::shared_ptr<System> requireSystem();
[[nodiscard]] std::shared_ptr<Camera> requireCamera(const System& system, Orvo::CAM_HANDLE camera);
[[nodiscard]] std::shared_ptr<Stream> requireStream(const System& system, Orvo::CAM_STRM_HANDLE stream);
void requireAttached(const Camera& camera);
void requirePointers(std::initializer_list<const void*> pointers);

/// For operations that would deadlock in a callback, because they wait for it to return.
void refuseInsideCallback();

/// Implements the `(char* buffer, uint32_t* size)` convention of the camera API; `size` must not be null. The text is
/// made valid UTF-8. Throws Failure(CAM_API_STS_BUFFER_TOO_SMALL) if the buffer is too small; `*size` is then the
/// required size.
void giveText(const std::string& text, char* buffer, std::uint32_t* size);

// The last parameter of each function is the name of the exported function; by default, that of the caller.

template <class Work>
[[nodiscard]] Orvo::CAM_API_STATUS guarded(Work&& work, const char* function = __builtin_FUNCTION()) noexcept
{
    const Call call(function);
    try {
        work();
        return Orvo::CAM_API_STS_SUCCESS;
    } catch (...) {
        return call.statusOfException();
    }
}

/// Calls `work(System&)` on the initialised library.
template <class Work>
[[nodiscard]] Orvo::CAM_API_STATUS onSystem(Work&& work, const char* function = __builtin_FUNCTION()) noexcept
{
    return guarded(
        [&] {
            const auto system = requireSystem();
            try {
                work(*system);
            } catch (...) {
                // A concurrent Sys_Terminate removes the handles one by one: report it instead of an invalid handle.
                throwUnless(System::current() == system, Orvo::CAM_API_STS_NOT_INITIALIZED);
                throw;
            }
        },
        function);
}

/// Calls `work(System&, Camera&)` on an attached camera.
template <class Work>
[[nodiscard]] Orvo::CAM_API_STATUS onCamera(Orvo::CAM_HANDLE handle, Work&& work,
                                            const char* function = __builtin_FUNCTION()) noexcept
{
    return onSystem(
        [&](System& system) {
            const auto camera = requireCamera(system, handle);
            requireAttached(*camera);
            work(system, *camera);
        },
        function);
}

/// Calls `work(Stream&)` on a stream of an attached camera.
template <class Work>
[[nodiscard]] Orvo::CAM_API_STATUS onStream(Orvo::CAM_STRM_HANDLE handle, Work&& work,
                                            const char* function = __builtin_FUNCTION()) noexcept
{
    return onSystem(
        [&](System& system) {
            const auto stream = requireStream(system, handle);
            requireAttached(stream->camera());
            work(*stream);
        },
        function);
}

/// Calls `work(const Camera&, NodeId)` for what the description alone answers. Does not wait for the device.
template <class Work>
[[nodiscard]] Orvo::CAM_API_STATUS onDescribedNode(Orvo::CAM_HANDLE handle, Orvo::CAM_NODE_HANDLE node,
                                                   std::initializer_list<const void*> pointers, Work&& work,
                                                   const char* function = __builtin_FUNCTION()) noexcept
{
    return onCamera(
        handle,
        [&](System&, const Camera& camera) {
            const NodeId id = camera.nodeOf(node);
            requirePointers(pointers);
            work(camera, id);
        },
        function);
}

/// Calls `work(Camera&, NodeMap&, NodeId)` with exclusive access to the camera's node map.
template <class Work>
[[nodiscard]] Orvo::CAM_API_STATUS onNodeOfCamera(Orvo::CAM_HANDLE handle, Orvo::CAM_NODE_HANDLE node,
                                                  std::initializer_list<const void*> pointers, Work&& work,
                                                  const char* function = __builtin_FUNCTION()) noexcept
{
    return onCamera(
        handle,
        [&](System&, Camera& camera) {
            const NodeId id = camera.nodeOf(node);
            requirePointers(pointers);
            camera.evaluate([&](NodeMap& nodes) { work(camera, nodes, id); });
        },
        function);
}

/// The same without the camera: `work(NodeMap&, NodeId)`.
template <class Work>
[[nodiscard]] Orvo::CAM_API_STATUS onNode(Orvo::CAM_HANDLE handle, Orvo::CAM_NODE_HANDLE node,
                                          std::initializer_list<const void*> pointers, Work&& work,
                                          const char* function = __builtin_FUNCTION()) noexcept
{
    return onNodeOfCamera(
        handle, node, pointers, [&](Camera&, NodeMap& nodes, NodeId id) { work(nodes, id); }, function);
}

} // namespace cameralibs
