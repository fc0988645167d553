// What libusb answers on a bus with one USB3 Vision camera, or none.

#include "FakeUsb.h"
#include "FakeUsbCamera.h"
#include "LibUsb.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <fstream>
#include <iterator>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace usb {

using Clock = std::chrono::steady_clock;

struct Device {
    FakeCamera camera;
    bool present = true;
    Bytes answer; ///< to the last command, until it is fetched
    Clock::time_point nextImage;
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
    std::vector<Device*> left; ///< what the listeners are still to be told
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

std::string description()
{
    std::ifstream file(USB_CAMERA_DESCRIPTION);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Everything, behind one lock.
struct Bus {
    Bus() { plugIn(); }

    void plugIn() { devices.push_back(Device{FakeCamera(description()), true, {}, {}}); }

    void unplug(Device& device)
    {
        if (!device.present)
            return;
        device.present = false;
        for (Context* context : contexts) {
            if (announced)
                context->left.push_back(&device);
        }
        changed.notify_all();
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::list<Device> devices; ///< the unplugged ones too, as handles of them may be around
    std::vector<Context*> contexts;
    bool announced = true;
    bool answered = true;
    int removalsTold = 0;
    int commands = 0;
    int commandsToUnplug = 0; ///< 0: it stays
    int lastListener = 0;
};

/// Never destroyed: threads of Aravis may outlive the end of main.
Bus& bus()
{
    static auto& theBus = *std::make_unique<Bus>().release();
    return theBus;
}

thread_local bool thisThreadTells = false;

int sendCommand(Device& device, const Bytes& command)
{
    ++bus().commands;
    if (bus().commandsToUnplug != 0 && --bus().commandsToUnplug == 0) {
        bus().unplug(device);
        return kNoDevice;
    }
    if (bus().answered)
        device.answer = device.camera.execute(command);
    return 0;
}

int fetchAnswer(Device& device, std::uint8_t* to, std::size_t room, int* transferred)
{
    if (device.answer.empty())
        return kTimeout;
    const std::size_t size = std::min(device.answer.size(), room);
    std::copy_n(device.answer.begin(), size, to);
    *transferred = static_cast<int>(size);
    device.answer.clear();
    if (device.camera.unplugs())
        bus().unplug(device);
    return 0;
}

int fetchPacket(std::unique_lock<std::mutex>& lock, Device& device, std::uint8_t* to, std::size_t room,
                int* transferred, Clock::time_point deadline)
{
    for (;;) {
        if (!device.present)
            return kNoDevice;
        const Clock::time_point now = Clock::now();
        const bool imageBegins = device.camera.nextPart() == FakeCamera::Part::Leader;
        const bool waits = imageBegins && now < device.nextImage;
        if (device.camera.sends() && !waits) {
            if (imageBegins)
                device.nextImage = now + kImagePeriod;
            *transferred = static_cast<int>(device.camera.send(to, room));
            return *transferred == 0 ? kOverflow : 0;
        }
        if (now >= deadline)
            return kTimeout;
        bus().changed.wait_until(lock, device.camera.sends() ? std::min(deadline, device.nextImage) : deadline);
    }
}

} // namespace

void plugIn()
{
    const std::lock_guard lock(bus().mutex);
    bus().plugIn();
}

void unplug()
{
    const std::lock_guard lock(bus().mutex);
    bus().unplug(bus().devices.back());
}

void unplugAtCommand(int n)
{
    const std::lock_guard lock(bus().mutex);
    bus().commandsToUnplug = n;
}

void answerCommands(bool answered)
{
    const std::lock_guard lock(bus().mutex);
    bus().answered = answered;
}

void announceRemoval(bool announced)
{
    const std::lock_guard lock(bus().mutex);
    bus().announced = announced;
}

bool tellsOfRemoval()
{
    return thisThreadTells;
}

int removalsTold()
{
    const std::lock_guard lock(bus().mutex);
    return bus().removalsTold;
}

std::uint32_t value(std::uint64_t address)
{
    const std::lock_guard lock(bus().mutex);
    return bus().devices.back().camera.value(address);
}

void setValue(std::uint64_t address, std::uint32_t value)
{
    const std::lock_guard lock(bus().mutex);
    bus().devices.back().camera.setValue(address, value);
}

int commands()
{
    const std::lock_guard lock(bus().mutex);
    return bus().commands;
}

} // namespace usb

using namespace usb;

extern "C" {

int libusb_init(Context** context)
{
    const std::lock_guard lock(bus().mutex);
    *context = std::make_unique<Context>().release();
    bus().contexts.push_back(*context);
    return 0;
}

void libusb_exit(Context* context)
{
    const std::lock_guard lock(bus().mutex);
    auto& contexts = bus().contexts;
    contexts.erase(std::remove(contexts.begin(), contexts.end(), context), contexts.end());
    const std::unique_ptr<Context> owned(context);
}

const char* libusb_error_name(int)
{
    return "fake error";
}

ssize_t libusb_get_device_list(Context*, Device*** list)
{
    const std::lock_guard lock(bus().mutex);
    auto devices = std::make_unique<Device*[]>(bus().devices.size() + 1);
    ssize_t count = 0;
    for (Device& device : bus().devices) {
        if (device.present)
            devices[static_cast<std::size_t>(count++)] = &device;
    }
    *list = devices.release();
    return count;
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
    std::unique_lock lock(bus().mutex);
    *transferred = 0;
    Device& device = *handle->device;
    const auto size = static_cast<std::size_t>(length);
    if (!device.present)
        return kNoDevice;
    if (endpoint == (kIn | kStreamEndpoint)) {
        const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
        return fetchPacket(lock, device, data, size, transferred, deadline);
    }
    if ((endpoint & kIn) != 0)
        return fetchAnswer(device, data, size, transferred);
    *transferred = length;
    const int result = sendCommand(device, Bytes(data, data + size));
    bus().changed.notify_all();
    return result;
}

int libusb_hotplug_register_callback(Context* context, int, int, int, int, int, HotplugCallback callback,
                                     void* userData, int* id)
{
    const std::lock_guard lock(bus().mutex);
    context->listeners.push_back({++bus().lastListener, callback, userData});
    if (id != nullptr)
        *id = bus().lastListener;
    return 0;
}

void libusb_hotplug_deregister_callback(Context* context, int id)
{
    const std::lock_guard lock(bus().mutex);
    auto& listeners = context->listeners;
    listeners.erase(std::remove_if(listeners.begin(), listeners.end(), [id](const auto& it) { return it.id == id; }),
                    listeners.end());
}

int libusb_handle_events_timeout(Context* context, timeval* timeout)
{
    std::unique_lock lock(bus().mutex);
    const auto time = std::chrono::seconds(timeout->tv_sec) + std::chrono::microseconds(timeout->tv_usec);
    bus().changed.wait_for(lock, time, [&] { return !context->left.empty(); });
    const std::vector<Device*> left = std::exchange(context->left, {});
    const std::vector<Context::Listener> listeners = context->listeners;
    lock.unlock();
    for (Device* device : left) {
        thisThreadTells = true;
        for (const auto& listener : listeners)
            listener.callback(context, device, kDeviceLeft, listener.userData);
        thisThreadTells = false;
        lock.lock();
        ++bus().removalsTold;
        lock.unlock();
    }
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
