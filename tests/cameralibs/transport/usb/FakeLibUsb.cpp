// What libusb answers in a transport, on a bus with some USB3 Vision cameras, or none.

#include "tests/cameralibs/transport/usb/FakeUsbBus.h"
#include "tests/cameralibs/transport/usb/LibUsb.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <deque>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <dlfcn.h>

namespace usb {

using Clock = std::chrono::steady_clock;

/// A camera of one generation; the unplugged ones too, as handles of them may be around.
struct Device {
    int port;
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
    std::array<std::uint32_t, kPorts> told = {}; ///< the last camera of each port whose removal the listeners know of
};

namespace {

constexpr std::chrono::milliseconds kImagePeriod{5};

constexpr std::uint8_t kControlEndpoint = 1;
constexpr std::uint8_t kStreamEndpoint = 2;
constexpr std::uint8_t kIn = 0x80;

// The texts of the descriptors.
enum Text : std::uint8_t { MakerText = 1, ModelText, SerialText, GuidText, TextCount };
constexpr const char* kTexts[kPorts][TextCount] = {{"", "Fake Maker", "U3V-Fake", "U01", kGuid},
                                                   {"", "Fake Maker", "U3V-Fake", "U02", "FA4E00000002"}};

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

constexpr struct {
    int error;
    const char* name;
} kErrorNames[] = {
    {kIo, "LIBUSB_ERROR_IO"},
    {kAccess, "LIBUSB_ERROR_ACCESS"},
    {kNoDevice, "LIBUSB_ERROR_NO_DEVICE"},
    {kNotFound, "LIBUSB_ERROR_NOT_FOUND"},
    {kBusy, "LIBUSB_ERROR_BUSY"},
    {kTimeout, "LIBUSB_ERROR_TIMEOUT"},
    {kOverflow, "LIBUSB_ERROR_OVERFLOW"},
    {kPipe, "LIBUSB_ERROR_PIPE"},
};

/// What this process has of the bus. Never destroyed: threads of Aravis may outlive the end of main.
struct Local {
    std::mutex mutex;
    std::map<std::pair<int, std::uint32_t>, Device> devices; ///< by port and generation
    int lastListener = 0;

    /// Asynchronous transfers in their order, and whether they are to be cancelled.
    std::deque<std::pair<AsynchronousTransfer*, bool>> transfers;
};

Local& local()
{
    static auto& theLocal = *std::make_unique<Local>().release();
    return theLocal;
}

Device* deviceOf(int port, std::uint32_t generation)
{
    const std::lock_guard lock(local().mutex);
    return &local().devices.insert({{port, generation}, Device{port, generation}}).first->second;
}

std::int64_t inNanoseconds(Clock::time_point time)
{
    return std::chrono::nanoseconds(time.time_since_epoch()).count();
}

Port& portOf(const LockedBus& bus, const Device& device)
{
    return bus->ports.at(static_cast<std::size_t>(device.port));
}

bool isPresent(const LockedBus& bus, const Device& device)
{
    const Port& port = portOf(bus, device);
    return port.present != 0 && port.generation == device.generation;
}

std::uint32_t haltBit(std::uint8_t endpoint)
{
    return 1U << ((endpoint & 0xfU) + ((endpoint & kIn) != 0 ? 16 : 0));
}

bool isHalted(const LockedBus& bus, const Device& device, std::uint8_t endpoint)
{
    return (portOf(bus, device).halted & haltBit(endpoint)) != 0;
}

/// What a transfer that fails leaves behind.
int fail(LockedBus& bus, const Device& device, std::uint8_t endpoint, int result)
{
    if (result == kPipe)
        portOf(bus, device).halted |= haltBit(endpoint);
    return result;
}

void store(Port& port, const Answer& answer)
{
    if (port.answerCount == port.answers.size())
        return;
    StoredAnswer& stored = port.answers.at(port.answerCount++);
    stored.size = static_cast<std::uint32_t>(std::min(answer.bytes.size(), stored.bytes.size()));
    std::copy_n(answer.bytes.begin(), stored.size, stored.bytes.begin());
    stored.result = answer.result;
    stored.due = inNanoseconds(Clock::now() + answer.after);
    stored.period = answer.forEver ? std::chrono::nanoseconds(answer.after).count() : 0;
}

int sendCommand(LockedBus& bus, const Device& device, const Bytes& command)
{
    bus.pass(Moment::command);
    ++bus->commands;
    if (bus->commandsToUnplug != 0 && --bus->commandsToUnplug == 0) {
        bus.unplug(device.port);
        return kNoDevice;
    }
    if (bus->answered == 0)
        return 0;
    Port& port = portOf(bus, device);
    Exchange exchange{command, {}};
    const auto* const fault = bus.fault<AnswerFault>(device.port);
    exchange.answers.push_back({bus.camera(device.port).execute(command)});
    if (fault != nullptr) {
        (*fault)(exchange);
        bus.countFault();
        port.answerCount = 0; // of what came again and again
    }
    bus.distort(device.port, exchange.answers);
    if (exchange.result != 0)
        return fail(bus, device, kControlEndpoint, exchange.result);
    if (exchange.unplugged)
        bus.unplug(device.port);
    for (const Answer& answer : exchange.answers)
        store(port, answer);
    return 0;
}

/// The next answer, once it is due.
int takeAnswer(LockedBus& bus, const Device& device, std::uint8_t* to, std::size_t room, int* transferred)
{
    Port& port = portOf(bus, device);
    StoredAnswer& next = port.answers.front();
    const int result = next.size > room && next.result == 0 ? kOverflow : next.result;
    const std::size_t size = std::min<std::size_t>(next.size, room);
    std::copy_n(next.bytes.begin(), size, to);
    *transferred = static_cast<int>(size);
    if (next.period != 0) {
        next.due = inNanoseconds(Clock::now()) + next.period;
    } else {
        std::copy(port.answers.begin() + 1, port.answers.begin() + port.answerCount, port.answers.begin());
        --port.answerCount;
    }
    if (bus.camera(device.port).unplugs())
        bus.unplug(device.port);
    return fail(bus, device, kIn | kControlEndpoint, result);
}

int fetchAnswer(LockedBus& bus, const Device& device, std::uint8_t* to, std::size_t room, int* transferred,
                Clock::time_point deadline)
{
    bus.pass(Moment::answer);
    for (;;) {
        if (!isPresent(bus, device))
            return kNoDevice;
        if (isHalted(bus, device, kIn | kControlEndpoint))
            return kPipe;
        const Port& port = portOf(bus, device);
        if (port.answerCount != 0 && port.answers.front().due <= inNanoseconds(Clock::now()))
            return takeAnswer(bus, device, to, room, transferred);
        // A camera that was told not to answer does not make the tests wait for that.
        if (Clock::now() >= deadline || bus->answered == 0)
            return kTimeout;
        bus.yield();
    }
}

/// What distortPackets() has asked for.
void distort(LockedBus& bus, const Device& device, StreamTransfer& transfer)
{
    struct Packet {
        Bytes bytes;
        std::chrono::milliseconds after{0};
    };
    std::vector<Packet> packets(1);
    // Where in a payload makes no difference.
    constexpr std::size_t kMostDistorted = 4096;
    const std::size_t before = std::min(transfer.size, kMostDistorted);
    packets[0].bytes.assign(transfer.data, transfer.data + before);
    bus.distort(device.port, packets);
    transfer.skipped = packets.empty();
    if (packets.empty())
        return;
    const Packet& packet = packets[0];
    std::copy_n(packet.bytes.begin(), std::min(packet.bytes.size(), transfer.room), transfer.data);
    if (packet.bytes.size() != before)
        transfer.size = std::min(packet.bytes.size(), transfer.room);
    if (packet.bytes.size() > transfer.room)
        transfer.result = kOverflow;
    if (packet.after.count() > 0)
        portOf(bus, device).camera.nextPart = inNanoseconds(Clock::now() + packet.after);
}

/// Shows the fault in what the camera has just sent. True where the transfer takes place.
bool spoil(LockedBus& bus, const Device& device, StreamTransfer& transfer)
{
    const auto* const fault = bus.fault<StreamFault>(device.port);
    if (fault == nullptr)
        return true;
    (*fault)(transfer);
    if (transfer.part == Part::Trailer)
        bus.countFault();
    portOf(bus, device).camera.nextPart = inNanoseconds(Clock::now() + transfer.pause);
    if (transfer.unplugged) {
        transfer.result = kNoDevice;
        bus.countFault();
        bus.unplug(device.port);
    }
    return !transfer.skipped;
}

constexpr int kNotYet = 1;

/// A transfer from the stream endpoint, or kNotYet.
int takePacket(LockedBus& bus, const Device& device, std::uint8_t* to, std::size_t room, int* transferred)
{
    for (;;) {
        if (!isPresent(bus, device))
            return kNoDevice;
        if (isHalted(bus, device, kIn | kStreamEndpoint))
            return kPipe;
        FakeCamera camera = bus.camera(device.port);
        CameraState& state = portOf(bus, device).camera;
        const Clock::time_point now = Clock::now();
        const Part part = camera.nextPart();
        if (!camera.sends() || inNanoseconds(now) < (part == Part::Leader ? state.nextImage : state.nextPart))
            return kNotYet;
        bus.pass(Moment::packet);
        if (part == Part::Leader) {
            // At the full rate after a delay, too, but not faster.
            const std::int64_t period = std::chrono::nanoseconds(kImagePeriod).count();
            state.nextImage = std::max(state.nextImage + period, inNanoseconds(now));
            state.nextPart = 0;
        }
        StreamTransfer transfer{part, state.image, to, 0, room};
        transfer.size = camera.send(to, room);
        transfer.result = transfer.size == 0 ? kOverflow : 0;
        distort(bus, device, transfer);
        if (transfer.skipped || !spoil(bus, device, transfer))
            continue;
        *transferred = static_cast<int>(transfer.size);
        return fail(bus, device, kIn | kStreamEndpoint, transfer.result);
    }
}

int fetchPacket(LockedBus& bus, const Device& device, std::uint8_t* to, std::size_t room, int* transferred,
                Clock::time_point deadline)
{
    for (;;) {
        const int result = takePacket(bus, device, to, room, transferred);
        if (result != kNotYet)
            return result;
        if (Clock::now() >= deadline)
            return kTimeout;
        bus.yield();
    }
}

AsynchronousTransfer::Status statusOf(int result)
{
    switch (result) {
    case 0:
        return AsynchronousTransfer::completed;
    case kNoDevice:
        return AsynchronousTransfer::noDevice;
    case kPipe:
        return AsynchronousTransfer::stall;
    case kOverflow:
        return AsynchronousTransfer::overflow;
    default:
        return AsynchronousTransfer::error;
    }
}

/// Completes those asynchronous transfers whose time has come. Their callbacks run without a lock.
bool completeTransfers()
{
    std::vector<AsynchronousTransfer*> done;
    {
        LockedBus bus;
        const std::lock_guard lock(local().mutex);
        auto& transfers = local().transfers;
        while (!transfers.empty()) {
            const auto [transfer, cancelled] = transfers.front();
            transfer->transferred = 0;
            const int result = cancelled
                                   ? 0
                                   : takePacket(bus, *transfer->handle->device, transfer->data,
                                                static_cast<std::size_t>(transfer->length), &transfer->transferred);
            if (result == kNotYet)
                break;
            transfer->status = cancelled ? AsynchronousTransfer::cancelled : statusOf(result);
            ++bus->asynchronousTransfers;
            transfers.pop_front();
            done.push_back(transfer);
        }
    }
    for (AsynchronousTransfer* const transfer : done)
        transfer->callback(transfer);
    return !done.empty();
}

/// Tells the listeners of devices that have left.
bool tellRemovals(Context& context)
{
    std::vector<Device*> left;
    {
        const LockedBus bus;
        for (int port = 0; port < kPorts; ++port) {
            std::uint32_t& told = context.told.at(static_cast<std::size_t>(port));
            const std::uint32_t last = bus->ports.at(static_cast<std::size_t>(port)).left;
            if (last > told)
                left.push_back(deviceOf(port, last));
            told = std::max(told, last);
        }
    }
    std::unique_lock lock(local().mutex);
    const std::vector<Context::Listener> listeners = context.listeners;
    lock.unlock();
    for (Device* const device : left) {
        for (const auto& listener : listeners)
            listener.callback(&context, device, kDeviceLeft, listener.userData);
    }
    return !left.empty();
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

const char* libusb_error_name(int error)
{
    const auto* const found = std::find_if(std::begin(kErrorNames), std::end(kErrorNames),
                                           [&](const auto& row) { return row.error == error; });
    return found == std::end(kErrorNames) ? "LIBUSB_ERROR_OTHER" : found->name;
}

ssize_t libusb_get_device_list(Context*, Device*** list)
{
    LockedBus bus;
    bus.pass(Moment::listing);
    auto devices = std::make_unique<Device*[]>(kPorts + 1);
    int count = 0;
    for (int port = 0; port < kPorts; ++port) {
        const Port& plugged = bus->ports.at(static_cast<std::size_t>(port));
        if (plugged.present != 0)
            devices[static_cast<std::size_t>(count++)] = deviceOf(port, plugged.generation);
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
    LockedBus bus;
    if (!isPresent(bus, *device))
        return kNoDevice;
    if (const auto* const fault = bus.fault<SystemFault>(device->port); fault != nullptr && fault->open != 0) {
        bus.countFault();
        return fault->open;
    }
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

int libusb_get_string_descriptor_ascii(Handle* handle, std::uint8_t text, unsigned char* to, int)
{
    const std::string content = text < TextCount ? kTexts[handle->device->port][text] : "";
    std::memcpy(to, content.c_str(), content.size() + 1);
    return static_cast<int>(content.size());
}

int libusb_set_auto_detach_kernel_driver(Handle*, int)
{
    return 0;
}

int libusb_claim_interface(Handle* handle, int)
{
    LockedBus bus;
    const auto* const fault = bus.fault<SystemFault>(handle->device->port);
    if (fault == nullptr || fault->claim == 0)
        return 0;
    bus.countFault();
    return fault->claim;
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

int libusb_clear_halt(Handle* handle, unsigned char endpoint)
{
    const LockedBus bus;
    portOf(bus, *handle->device).halted &= ~haltBit(endpoint);
    return isPresent(bus, *handle->device) ? 0 : kNoDevice;
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
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    if (endpoint == (kIn | kStreamEndpoint))
        return fetchPacket(bus, device, data, size, transferred, deadline);
    if ((endpoint & kIn) != 0)
        return fetchAnswer(bus, device, data, size, transferred, deadline);
    if (isHalted(bus, device, endpoint))
        return kPipe;
    *transferred = length;
    return sendCommand(bus, device, Bytes(data, data + size));
}

int libusb_hotplug_register_callback(Context* context, int, int, int, int, int, HotplugCallback callback,
                                     void* userData, int* id)
{
    const LockedBus bus;
    const std::lock_guard lock(local().mutex);
    context->listeners.push_back({++local().lastListener, callback, userData});
    for (std::size_t port = 0; port < bus->ports.size(); ++port)
        context->told[port] = bus->ports[port].generation - (bus->ports[port].present != 0 ? 1 : 0);
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
    for (;;) {
        const bool told = tellRemovals(*context);
        if (completeTransfers() || told || Clock::now() >= end)
            return 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

AsynchronousTransfer* libusb_alloc_transfer(int)
{
    return std::make_unique<AsynchronousTransfer>().release();
}

void libusb_free_transfer(AsynchronousTransfer* transfer)
{
    const std::unique_ptr<AsynchronousTransfer> owned(transfer);
}

int libusb_submit_transfer(AsynchronousTransfer* transfer)
{
    const LockedBus bus;
    if (!isPresent(bus, *transfer->handle->device))
        return kNoDevice;
    const std::lock_guard lock(local().mutex);
    local().transfers.emplace_back(transfer, false);
    return 0;
}

int libusb_cancel_transfer(AsynchronousTransfer* transfer)
{
    const std::lock_guard lock(local().mutex);
    auto& transfers = local().transfers;
    const auto found =
        std::find_if(transfers.begin(), transfers.end(), [&](const auto& it) { return it.first == transfer; });
    if (found == transfers.end())
        return kNotFound;
    // The others that were submitted before it still wait for what the camera sends.
    std::rotate(transfers.begin(), found, found + 1);
    transfers.front().second = true;
    return 0;
}

/// Aravis' own, which decides how the transport streams: the transport always wants synchronous transfers.
void arv_uv_device_set_usb_mode(void* device, int mode)
{
    constexpr int kAsynchronous = 1;
    const LockedBus bus;
    const auto original = reinterpret_cast<void (*)(void*, int)>(::dlsym(RTLD_NEXT, "arv_uv_device_set_usb_mode"));
    original(device, bus->asynchronous != 0 ? kAsynchronous : mode);
}

} // extern "C"
