// What libusb answers in a transport, on a bus with one USB3 Vision camera, or none.

#include "tests/cameralibs/transport/usb/FakeUsbBus.h"
#include "tests/cameralibs/transport/usb/LibUsb.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace usb {

using Clock = std::chrono::steady_clock;

/// A camera of one generation; the unplugged ones too, as handles of them may be around.
struct Device {
    std::uint32_t generation;
};

struct Handle {
    Device* device;
};

struct Context {
    struct Listener {
        int id;
        HotplugCallback callback;
        void* userData;
    };
    std::vector<Listener> listeners;
    std::uint32_t told = 0; ///< the last camera whose removal the listeners know of
};

namespace {

constexpr std::chrono::milliseconds kImagePeriod{5};

constexpr std::uint8_t kControlEndpoint = 1;
constexpr std::uint8_t kStreamEndpoint = 2;
constexpr std::uint8_t kIn = 0x80;

// The texts of the descriptors.
enum Text : std::uint8_t { MakerText = 1, ModelText, SerialText, GuidText, TextCount };
constexpr const char* kTexts[TextCount] = {"", "Fake Maker", "U3V-Fake", "U01", kGuid};

// What tells a USB3 Vision camera from other devices.
constexpr std::uint8_t kVisionClass = 0xef;
constexpr std::uint8_t kVisionSubClass = 5;
constexpr unsigned char kControlExtra[20] = {20, 0x24, 1, 0, 0, 0, 0, 0, 0, 0, 0, GuidText};
constexpr EndpointDescriptor kEndpoints[] = {{7, 5, kIn | kControlEndpoint, 2, 512, 0, 0, 0, nullptr, 0},
                                             {7, 5, kIn | kStreamEndpoint, 2, 1024, 0, 0, 0, nullptr, 0}};
constexpr InterfaceDescriptor kControlInterface = {
    9, 4, 0, 0, 1, kVisionClass, kVisionSubClass, 0, 0, &kEndpoints[0], kControlExtra, sizeof kControlExtra};
constexpr InterfaceDescriptor kStreamInterface = {
    9, 4, 1, 0, 1, kVisionClass, kVisionSubClass, 2, 0, &kEndpoints[1], nullptr, 0};
constexpr Interface kInterfaces[] = {{&kControlInterface, 1}, {&kStreamInterface, 1}};
ConfigurationDescriptor theConfiguration = {9, 2, 0, 2, 1, 0, 0, 0, kInterfaces, nullptr, 0};

/// What this process has of the bus. Never destroyed: threads of Aravis may outlive the end of main.
struct Local {
    std::mutex mutex;
    std::map<std::uint32_t, Device> devices; ///< by generation
    int lastListener = 0;
};

Local& local()
{
    static auto& theLocal = *std::make_unique<Local>().release();
    return theLocal;
}

Device* deviceOf(std::uint32_t generation)
{
    const std::lock_guard lock(local().mutex);
    return &local().devices.insert({generation, Device{generation}}).first->second;
}

bool isPresent(const LockedBus& bus, const Device& device)
{
    return bus->present != 0 && bus->generation == device.generation;
}

int sendCommand(LockedBus& bus, const Bytes& command)
{
    bus.pass(Moment::command);
    ++bus->commands;
    if (bus->commandsToUnplug != 0 && --bus->commandsToUnplug == 0) {
        bus.unplug();
        return kNoDevice;
    }
    if (bus->answered == 0)
        return 0;
    const Bytes answer = bus.camera().execute(command);
    std::copy(answer.begin(), answer.end(), bus->answer.begin());
    bus->answerSize = static_cast<std::uint32_t>(answer.size());
    return 0;
}

int fetchAnswer(LockedBus& bus, std::uint8_t* to, std::size_t room, int* transferred)
{
    bus.pass(Moment::answer);
    if (bus->answerSize == 0)
        return kTimeout;
    const std::size_t size = std::min<std::size_t>(bus->answerSize, room);
    std::copy_n(bus->answer.begin(), size, to);
    *transferred = static_cast<int>(size);
    bus->answerSize = 0;
    if (bus.camera().unplugs())
        bus.unplug();
    return 0;
}

int fetchPacket(LockedBus& bus, const Device& device, std::uint8_t* to, std::size_t room, int* transferred,
                Clock::time_point deadline)
{
    for (;;) {
        if (!isPresent(bus, device))
            return kNoDevice;
        FakeCamera camera = bus.camera();
        const Clock::time_point now = Clock::now();
        const bool imageBegins = camera.nextPart() == Part::Leader;
        const bool waits = imageBegins && now.time_since_epoch().count() < bus->camera.nextImage;
        if (camera.sends() && !waits) {
            bus.pass(Moment::packet);
            if (imageBegins)
                bus->camera.nextImage = (now + kImagePeriod).time_since_epoch().count();
            *transferred = static_cast<int>(camera.send(to, room));
            return *transferred == 0 ? kOverflow : 0;
        }
        if (now >= deadline)
            return kTimeout;
        bus.yield();
    }
}

} // namespace

} // namespace usb

using namespace usb;

extern "C" {

int libusb_init(Context** context)
{
    *context = std::make_unique<Context>().release();
    return 0;
}

void libusb_exit(Context* context)
{
    const std::unique_ptr<Context> owned(context);
}

const char* libusb_error_name(int)
{
    return "fake error";
}

ssize_t libusb_get_device_list(Context*, Device*** list)
{
    LockedBus bus;
    bus.pass(Moment::listing);
    auto devices = std::make_unique<Device*[]>(2);
    const bool present = bus->present != 0;
    if (present)
        devices[0] = deviceOf(bus->generation);
    *list = devices.release();
    return present ? 1 : 0;
}

void libusb_free_device_list(Device** list, int)
{
    const std::unique_ptr<Device*[]> owned(list);
}

int libusb_get_device_descriptor(Device*, DeviceDescriptor* descriptor)
{
    *descriptor = {};
    descriptor->deviceClass = kVisionClass;
    descriptor->subClass = 2;
    descriptor->protocol = 1;
    descriptor->manufacturerText = MakerText;
    descriptor->productText = ModelText;
    descriptor->serialText = SerialText;
    return 0;
}

int libusb_get_config_descriptor(Device*, std::uint8_t, ConfigurationDescriptor** descriptor)
{
    *descriptor = &theConfiguration;
    return 0;
}

void libusb_free_config_descriptor(ConfigurationDescriptor*) {}

int libusb_open(Device* device, Handle** handle)
{
    *handle = std::make_unique<Handle>(Handle{device}).release();
    return 0;
}

void libusb_close(Handle* handle)
{
    const std::unique_ptr<Handle> owned(handle);
}

Device* libusb_get_device(Handle* handle)
{
    return handle->device;
}

int libusb_get_string_descriptor_ascii(Handle*, std::uint8_t text, unsigned char* to, int)
{
    const std::string content = text < TextCount ? kTexts[text] : "";
    std::memcpy(to, content.c_str(), content.size() + 1);
    return static_cast<int>(content.size());
}

int libusb_set_auto_detach_kernel_driver(Handle*, int)
{
    return 0;
}

int libusb_claim_interface(Handle*, int)
{
    return 0;
}

int libusb_release_interface(Handle*, int)
{
    return 0;
}

int libusb_control_transfer(Handle*, std::uint8_t, std::uint8_t, std::uint16_t, std::uint16_t, unsigned char*,
                            std::uint16_t, unsigned)
{
    return 0;
}

int libusb_clear_halt(Handle*, unsigned char)
{
    return 0;
}

int libusb_bulk_transfer(Handle* handle, unsigned char endpoint, unsigned char* data, int length, int* transferred,
                         unsigned timeoutMs)
{
    LockedBus bus;
    *transferred = 0;
    Device& device = *handle->device;
    const auto size = static_cast<std::size_t>(length);
    if (!isPresent(bus, device))
        return kNoDevice;
    if (endpoint == (kIn | kStreamEndpoint)) {
        const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
        return fetchPacket(bus, device, data, size, transferred, deadline);
    }
    if ((endpoint & kIn) != 0)
        return fetchAnswer(bus, data, size, transferred);
    *transferred = length;
    return sendCommand(bus, Bytes(data, data + size));
}

int libusb_hotplug_register_callback(Context* context, int, int, int, int, int, HotplugCallback callback,
                                     void* userData, int* id)
{
    const LockedBus bus;
    const std::lock_guard lock(local().mutex);
    context->listeners.push_back({++local().lastListener, callback, userData});
    context->told = bus->present != 0 ? bus->generation - 1 : bus->generation;
    if (id != nullptr)
        *id = local().lastListener;
    return 0;
}

void libusb_hotplug_deregister_callback(Context* context, int id)
{
    const std::lock_guard lock(local().mutex);
    auto& listeners = context->listeners;
    listeners.erase(std::remove_if(listeners.begin(), listeners.end(), [id](const auto& it) { return it.id == id; }),
                    listeners.end());
}

int libusb_handle_events_timeout(Context* context, timeval* timeout)
{
    const auto end = Clock::now() + std::chrono::seconds(timeout->tv_sec) + std::chrono::microseconds(timeout->tv_usec);
    std::uint32_t left = 0;
    {
        LockedBus bus;
        while (bus->left <= context->told && Clock::now() < end)
            bus.yield();
        left = bus->left;
    }
    if (left <= context->told)
        return 0;
    context->told = left;
    std::unique_lock lock(local().mutex);
    const std::vector<Context::Listener> listeners = context->listeners;
    lock.unlock();
    for (const auto& listener : listeners)
        listener.callback(context, deviceOf(left), kDeviceLeft, listener.userData);
    return 0;
}

// Transfers that complete by themselves, later: a stream that asks for them gets no images.

void* libusb_alloc_transfer(int)
{
    return std::make_unique<std::uint8_t[]>(256).release();
}

void libusb_free_transfer(void* transfer)
{
    const std::unique_ptr<std::uint8_t[]> owned(static_cast<std::uint8_t*>(transfer));
}

int libusb_submit_transfer(void*)
{
    return kNotSupported;
}

int libusb_cancel_transfer(void*)
{
    return kNotSupported;
}

} // extern "C"
