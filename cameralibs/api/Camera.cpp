#include "cameralibs/api/Camera.h"

#include "cameralibs/api/HandleTable.h"
#include "cameralibs/api/Stream.h"
#include "cameralibs/base/Log.h"
#include "cameralibs/genicam/nodes/NodeOperations.h"

#include <utility>

namespace cameralibs {

using namespace Orvo;

Camera::Camera(std::uint32_t index, DeviceInfo info, std::shared_ptr<Removal> removal, std::unique_ptr<Device> device,
               std::shared_ptr<const Description> description)
    : m_handle(newHandles())
    , m_index(index)
    , m_info(std::move(info))
    , m_name(m_info.logName())
    , m_removal(std::move(removal))
    , m_description(std::move(description))
    , m_firstNode(newHandles(m_description->size()))
    , m_device(std::move(device))
    , m_nodes(std::make_unique<NodeMap>(m_description, m_device->registers()))
    , m_reportedImages(*m_description)
{
    m_device->useNodes(*m_nodes);
}

Camera::~Camera()
{
    release();
}

void Camera::setRecord(const CAM_INFO& record)
{
    const std::lock_guard lock(m_recordMutex);
    m_record = record;
}

void Camera::copyRecord(CAM_INFO& record) const
{
    const std::lock_guard lock(m_recordMutex);
    record = m_record;
}

NodeId Camera::nodeOf(CAM_NODE_HANDLE node) const
{
    // For a handle below the first one the subtraction wraps round to a large number, which fails the check.
    const CAM_NODE_HANDLE index = node - m_firstNode;
    throwUnless(index < m_description->size(), CAM_API_STS_INVALID_NODE_HANDLE);
    return static_cast<NodeId>(index);
}

void Camera::execute(const char* command)
{
    evaluate([&](NodeMap& nodes) {
        const NodeId node = nodes.description().find(command);
        if (node != kNoNode)
            executeCommand(nodes, node);
    });
}

void Camera::lockTransportLayer(bool locked)
{
    try {
        evaluate([&](NodeMap& nodes) {
            const NodeId node = nodes.description().find("TLParamsLocked");
            if (node != kNoNode)
                writeInteger(nodes, node, locked ? 1 : 0, false);
        });
    } catch (const Failure& failure) {
        // A camera that refuses to write TLParamsLocked protects its settings itself.
        if (failure.status() == CAM_API_STS_CAMERA_NOT_RESPONDING)
            throw;
    }
}

void Camera::stopAcquisition()
{
    try {
        execute("AcquisitionStop");
    } catch (const Failure& failure) {
        // Many cameras refuse to stop when they are not acquiring.
        if (failure.status() == CAM_API_STS_CAMERA_NOT_RESPONDING)
            throw;
    }
    lockTransportLayer(false);
}

std::shared_ptr<Stream> Camera::stream() const
{
    const std::lock_guard lock(m_streamMutex);
    return m_stream;
}

void Camera::attachStream(const std::shared_ptr<Stream>& stream)
{
    const std::lock_guard lock(m_streamMutex);
    throwUnless(!m_closing, CAM_API_STS_INVALID_CAMERA_HANDLE);
    throwUnless(m_stream == nullptr, CAM_API_STS_ALREADY_OPENED);
    m_stream = stream;
}

void Camera::detachStream(const Stream& stream)
{
    const std::lock_guard lock(m_streamMutex);
    if (m_stream.get() == &stream)
        m_stream = nullptr;
}

std::shared_ptr<Stream> Camera::beginClosing()
{
    const std::lock_guard lock(m_streamMutex);
    m_closing = true;
    return m_stream;
}

bool Camera::closing() const
{
    const std::lock_guard lock(m_streamMutex);
    return m_closing;
}

void Camera::hurry(std::chrono::steady_clock::time_point end)
{
    const std::lock_guard lock(m_streamMutex);
    if (!m_closing)
        m_device->hurry(end);
}

void Camera::relax()
{
    const std::lock_guard lock(m_streamMutex);
    if (!m_closing)
        m_device->relax();
}

void Camera::release()
{
    const std::lock_guard lock(m_mutex);
    // The node map refers to the device without owning it, so it goes first.
    m_nodes.reset();
    m_device.reset();
    m_released.store(true, std::memory_order_release);
}

void Camera::requireDevice() const
{
    throwUnless(m_device != nullptr, CAM_API_STS_INVALID_CAMERA_HANDLE);
    throwUnless(!removed(), CAM_API_STS_CAMERA_NOT_RESPONDING);
}

void Camera::noteFailure(const Failure& failure)
{
    if (failure.status() == CAM_API_STS_CAMERA_NOT_RESPONDING) {
        if (m_removal->note())
            logText(Severity::warning, m_name, [&] { return "lost: " + failure.text(); });
    } else if (removed()) {
        throw Failure(CAM_API_STS_CAMERA_NOT_RESPONDING);
    }
}

} // namespace cameralibs
