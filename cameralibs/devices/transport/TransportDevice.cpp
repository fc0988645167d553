#include "cameralibs/devices/transport/TransportDevice.h"

#include "cameralibs/base/ErrorStatus.h"
#include "cameralibs/devices/transport/TransportSource.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

using namespace cameralibs;
using namespace cameralibs::transport;

namespace {

/// A camera is lost if it leaves an access unanswered for 3 s, or keeps sending pending acknowledgements for 10 s.
constexpr Connection::Limits kAccess{std::chrono::seconds(3), std::chrono::seconds(10)};

// Instance memory comes zeroed from GObject, without constructors: plain members only.
struct OrvoTransportDevice {
    ArvDevice parent;
    Connection* connection;
};

struct OrvoTransportDeviceClass {
    ArvDeviceClass parent;
};

GType orvo_transport_device_get_type();

G_DEFINE_TYPE(OrvoTransportDevice, orvo_transport_device, ARV_TYPE_DEVICE)

Connection& connectionOf(ArvDevice* device)
{
    return *reinterpret_cast<OrvoTransportDevice*>(device)->connection;
}

/// The result of a register access.
struct Access {
    bool done = false;
    bool answered = true; ///< otherwise the transport is gone
    ArvDeviceError error = ARV_DEVICE_ERROR_NOT_CONNECTED;
    std::string text;

    /// Copies `size` bytes to `to`; a write has none.
    [[nodiscard]] Connection::ReplyKind readReply(const Packet& reply, char* to, std::size_t size)
    {
        const auto answer = reply.body<Done>(Kind::done);
        if (!answer)
            return Connection::ReplyKind::invalid;
        if (answer->status == 0) {
            if (reply.data().size() != size)
                return Connection::ReplyKind::invalid;
            std::copy_n(reply.data().begin(), size, to);
            done = true;
            return Connection::ReplyKind::last;
        }
        // Numbers beyond those of Aravis are invalid.
        const bool known = answer->status <= 1 + ARV_DEVICE_ERROR_PROTOCOL_ERROR_BUSY;
        error = known ? static_cast<ArvDeviceError>(answer->status - 1) : ARV_DEVICE_ERROR_UNKNOWN;
        text.assign(reply.data().substr(0, kMaxText));
        return Connection::ReplyKind::last;
    }

    /// An error that means a lost camera also ends its transport.
    [[nodiscard]] gboolean finish(Connection& connection, GError** to)
    {
        if (done)
            return TRUE;
        if (!answered)
            text = connection.reasonOfLoss();
        const GErrorPointer failure(g_error_new_literal(ARV_DEVICE_ERROR, error, text.c_str()));
        if (outcomeOf(failure, Attempted::reading).status == Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING)
            connection.endNow(text);
        g_set_error_literal(to, ARV_DEVICE_ERROR, error, text.c_str());
        return FALSE;
    }
};

// The callers are C functions, so no exception may propagate.
template <typename Work> gboolean barrier(GError** error, Work&& work)
{
    try {
        return work();
    } catch (...) {
        g_set_error_literal(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_UNKNOWN, "There is no more memory");
        return FALSE;
    }
}

gboolean readMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error)
{
    return barrier(error, [&] {
        Connection& connection = connectionOf(device);
        Access access;
        access.done = true;
        for (std::size_t at = 0; access.done && at < size; at += kMaxData) {
            char* const to = static_cast<char*>(buffer) + at;
            const std::size_t part = std::min<std::size_t>(size - at, kMaxData);
            access.done = false;
            access.answered =
                connection.request(Kind::read, Read{address + at, part}, kAccess,
                                   [&](const Packet& reply) { return access.readReply(reply, to, part); });
        }
        return access.finish(connection, error);
    });
}

// `Buffer` is void in older versions of Aravis and const void in newer ones.
template <typename Buffer>
gboolean writeMemory(ArvDevice* device, guint64 address, guint32 size, Buffer* buffer, GError** error)
{
    return barrier(error, [&] {
        Connection& connection = connectionOf(device);
        Access access;
        access.done = true;
        for (std::size_t at = 0; access.done && at < size; at += kMaxData) {
            const std::string_view part(static_cast<const char*>(buffer) + at,
                                        std::min<std::size_t>(size - at, kMaxData));
            access.done = false;
            access.answered = connection.request(
                Kind::write, Write{address + at}, kAccess,
                [&](const Packet& reply) { return access.readReply(reply, nullptr, 0); }, part);
        }
        return access.finish(connection, error);
    });
}

// Values are big-endian, as in GigE Vision. Node maps do not use these two; they access memory.
gboolean readRegister(ArvDevice* device, guint64 address, guint32* value, GError** error)
{
    return readMemory(device, address, sizeof *value, value, error);
}

gboolean writeRegister(ArvDevice* device, guint64 address, guint32 value, GError** error)
{
    return writeMemory<void>(device, address, sizeof value, &value, error);
}

// Whoever opens the camera makes the node map from its description.
const char* noDescription(ArvDevice*, std::size_t* size)
{
    *size = 0;
    return nullptr;
}

ArvGc* noNodeMap(ArvDevice*)
{
    return nullptr;
}

ArvStream* noStream(ArvDevice*, ArvStreamCallback, void*, GDestroyNotify, GError** error)
{
    g_set_error_literal(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_NO_STREAM_CHANNEL, "No stream channel");
    return nullptr;
}

void orvo_transport_device_class_init(OrvoTransportDeviceClass* klass)
{
    ArvDeviceClass& device = klass->parent;
    device.create_stream = noStream;
    device.get_genicam_xml = noDescription;
    device.get_genicam = noNodeMap;
    device.read_memory = readMemory;
    device.write_memory = writeMemory;
    device.read_register = readRegister;
    device.write_register = writeRegister;
}

void orvo_transport_device_init(OrvoTransportDevice*) {}

ArvDevice* makeRegisters(Connection& connection)
{
    auto* const device = static_cast<OrvoTransportDevice*>(g_object_new(orvo_transport_device_get_type(), nullptr));
    device->connection = &connection;
    return &device->parent;
}

} // namespace

namespace cameralibs {

using namespace Orvo;

TransportDevice::TransportDevice(DeviceInfo info, std::shared_ptr<Connection> connection)
    : m_info(std::move(info))
    , m_connection(std::move(connection))
    , m_registers(makeRegisters(*m_connection))
{
}

Outcome TransportDevice::description(std::string& xml)
{
    xml.clear();
    std::uint64_t total = 0;
    do {
        const auto append = [&](const Packet& reply) {
            const auto described = reply.body<Described>(Kind::described);
            // Each part but the last must have the maximum size, so that the number of parts is limited.
            if (!described || (xml.empty() ? described->total > kMaxDescription : described->total != total) ||
                reply.data().size() != std::min<std::uint64_t>(described->total - xml.size(), kMaxData))
                return Connection::ReplyKind::invalid;
            total = described->total;
            xml.append(reply.data());
            return Connection::ReplyKind::last;
        };
        if (!m_connection->request(Kind::describe, Describe{xml.size()}, kAccess, append))
            return {CAM_API_STS_CAMERA_NOT_RESPONDING, m_connection->reasonOfLoss()};
    } while (xml.size() < total);
    if (xml.empty())
        return {CAM_API_STS_XML_LOAD_ERR, "The camera gives no description"};
    return {};
}

Outcome TransportDevice::openSource(FrameSink& sink, const ImageMemory& memory,
                                    const std::vector<FrameBuffer*>& buffers, std::unique_ptr<FrameSource>& source)
{
    Outcome outcome =
        m_connection->requestDone(Kind::openSource, OpenSource{memory.size()}, kAccess, memory.descriptor());
    if (outcome.ok())
        source = std::make_unique<TransportSource>(m_connection, sink, memory, buffers);
    return outcome;
}

} // namespace cameralibs
