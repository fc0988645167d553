#include "cameralibs/devices/simulated/registers/RegisterDevice.h"

#include <cstddef>
#include <iterator>

namespace {

using cameralibs::simulated::AccessResult;
using cameralibs::simulated::RegisterSpace;

// GObject zeroes the instance but calls no constructors, so all members must be trivial.
struct OrvoRegisterDevice {
    ArvDevice parent;
    RegisterSpace* space;
    const char* description;
    std::size_t descriptionSize;
};

struct OrvoRegisterDeviceClass {
    ArvDeviceClass parent;
};

GType orvo_register_device_get_type();

G_DEFINE_TYPE(OrvoRegisterDevice, orvo_register_device, ARV_TYPE_DEVICE)

OrvoRegisterDevice* self(ArvDevice* device)
{
    return reinterpret_cast<OrvoRegisterDevice*>(device);
}

struct ErrorRow {
    ArvDeviceError code;
    const char* text;
};

// Indexed by AccessResult; the entry of Done is not used.
constexpr ErrorRow kErrors[] = {
    {ARV_DEVICE_ERROR_UNKNOWN, ""},
    {ARV_DEVICE_ERROR_NOT_CONNECTED, "The camera is not connected"},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_INVALID_ADDRESS, "There is no register at this address"},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_WRITE_PROTECT, "The register cannot be written"},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_ACCESS_DENIED, "The camera refuses register accesses"},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_INVALID_PARAMETER, "The camera refuses this value"},
    {ARV_DEVICE_ERROR_UNKNOWN, "The camera has an internal error"},
};

gboolean answer(AccessResult result, GError** error)
{
    if (result == AccessResult::Done)
        return TRUE;
    const ErrorRow& row = kErrors[static_cast<std::size_t>(result)];
    g_set_error_literal(error, ARV_DEVICE_ERROR, row.code, row.text);
    return FALSE;
}

// Exceptions must not propagate into the calling C code.
template <typename Access> gboolean guardedAnswer(Access&& access, GError** error)
{
    AccessResult result = AccessResult::Failed;
    try {
        result = access();
    } catch (...) {
        // For example, no memory for a page of registers.
    }
    return answer(result, error);
}

gboolean readMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error)
{
    return guardedAnswer([&] { return self(device)->space->read(address, buffer, size); }, error);
}

// Older versions of Aravis pass void*, newer ones const void*.
template <typename Buffer>
gboolean writeMemory(ArvDevice* device, guint64 address, guint32 size, Buffer* buffer, GError** error)
{
    return guardedAnswer([&] { return self(device)->space->write(address, buffer, size); }, error);
}

gboolean readRegister(ArvDevice* device, guint64 address, guint32* value, GError** error)
{
    return readMemory(device, address, sizeof *value, value, error);
}

gboolean writeRegister(ArvDevice* device, guint64 address, guint32 value, GError** error)
{
    return writeMemory<void>(device, address, sizeof value, &value, error);
}

const char* description(ArvDevice* device, std::size_t* size)
{
    *size = self(device)->descriptionSize;
    return self(device)->description;
}

// The library makes its own node map from the description.
ArvGc* noNodeMap(ArvDevice*)
{
    return nullptr;
}

// Images come from FrameGenerator.
ArvStream* noStream(ArvDevice*, ArvStreamCallback, void*, GDestroyNotify, GError** error)
{
    g_set_error_literal(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_NO_STREAM_CHANNEL, "No stream channel");
    return nullptr;
}

void orvo_register_device_class_init(OrvoRegisterDeviceClass* klass)
{
    ArvDeviceClass& device = klass->parent;
    device.create_stream = noStream;
    device.get_genicam_xml = description;
    device.get_genicam = noNodeMap;
    device.read_memory = readMemory;
    device.write_memory = writeMemory;
    device.read_register = readRegister;
    device.write_register = writeRegister;
}

void orvo_register_device_init(OrvoRegisterDevice*) {}

} // namespace

namespace cameralibs::simulated {

GObjectPointer<ArvDevice> makeRegisterDevice(RegisterSpace& space, std::string_view description)
{
    auto* const device = static_cast<OrvoRegisterDevice*>(g_object_new(orvo_register_device_get_type(), nullptr));
    device->space = &space;
    device->description = description.data();
    device->descriptionSize = description.size();
    return GObjectPointer<ArvDevice>(&device->parent);
}

} // namespace cameralibs::simulated
