#include "cameralibs/api/exports/Barrier.h"

#include "camera/StatusName.h"
#include "cameralibs/base/Log.h"

#include <glib.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>

namespace cameralibs {

using namespace Orvo;

namespace {

thread_local Call* current = nullptr;

std::string& lastError()
{
    thread_local std::string text;
    return text;
}

/// Programs poll until these statuses change, so they are not logged.
bool isPollingResult(CAM_API_STATUS status)
{
    return status == CAM_API_STS_TIMEOUT || status == CAM_API_STS_NOT_READY;
}

// Registers pad texts with NUL: the text ends at the first one.
std::string validUtf8(const std::string& text)
{
    const std::size_t length = std::min(text.find('\0'), text.size());
    const std::unique_ptr<char, decltype(&g_free)> valid(g_utf8_make_valid(text.data(), static_cast<gssize>(length)),
                                                         g_free);
    return valid.get();
}

} // namespace

Call::Call(const char* function) noexcept
    : m_function(function)
    , m_outer(current)
{
    current = this;
}

Call::~Call()
{
    current = m_outer;
}

void Call::setCamera(const std::string& name)
{
    if (logs(Severity::warning))
        current->m_camera = name;
}

// Without a text the status tells the caller everything, so the entry goes to the debug level.
void Call::logFailure(CAM_API_STATUS status, std::string_view text) const noexcept
{
    if (isPollingResult(status))
        return;
    // A failing feature does not mean that the camera has a problem.
    const bool ofNode = std::strncmp(m_function, "Nd_", 3) == 0;
    const Severity withReason = ofNode ? Severity::info : Severity::warning;
    logText(text.empty() ? Severity::debug : withReason, m_camera, [&] {
        return std::string(m_function) + ": " + std::to_string(status) + " " + cameraStatusName(status) +
               (text.empty() ? "" : ": ") + std::string(text);
    });
}

CAM_API_STATUS Call::logged(CAM_API_STATUS status, std::string_view text) const noexcept
{
    logFailure(status, text);
    return status;
}

CAM_API_STATUS Call::statusOfException() const noexcept
{
    try {
        throw;
    } catch (const Failure& failure) {
        logFailure(failure.status(), failure.text());
        if (failure.status() == CAM_API_STS_GENICAM_ERR || failure.status() == CAM_API_STS_XML_LOAD_ERR) {
            try {
                lastError() = errorText(failure.text());
            } catch (const std::bad_alloc&) {
                return CAM_API_STS_NO_MEMORY;
            }
        }
        return failure.status();
    } catch (const std::bad_alloc& error) {
        return logged(CAM_API_STS_NO_MEMORY, error.what());
    } catch (const std::length_error& error) {
        return logged(CAM_API_STS_NO_MEMORY, error.what());
    } catch (const std::exception& error) {
        return logged(CAM_API_STS_UNSUCCESSFUL, error.what());
    } catch (...) {
        return logged(CAM_API_STS_UNSUCCESSFUL, "");
    }
}

const char* lastGenICamError() noexcept
{
    return lastError().c_str();
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
    Call::setCamera(camera->name());
    return camera;
}

std::shared_ptr<Stream> requireStream(const System& system, CAM_STRM_HANDLE handle)
{
    std::shared_ptr<Stream> stream = system.streams().find(handle);
    throwUnless(stream != nullptr, CAM_API_STS_INVALID_STREAM_HANDLE);
    Call::setCamera(stream->camera().name());
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

void giveText(const std::string& text, char* buffer, std::uint32_t* size)
{
    const std::string valid = validUtf8(text);
    const auto need = static_cast<std::uint32_t>(valid.size() + 1);
    const std::uint32_t capacity = *size;
    *size = need;
    if (buffer == nullptr)
        return;
    throwUnless(capacity >= need, CAM_API_STS_BUFFER_TOO_SMALL);
    std::memcpy(buffer, valid.c_str(), need);
}

} // namespace cameralibs
