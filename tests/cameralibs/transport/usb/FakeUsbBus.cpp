#include "tests/cameralibs/transport/usb/FakeUsbBus.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace usb {

namespace {

/// Where the bus lies, for a process that has been given one.
constexpr const char* kBusVariable = "ORVO_FAKE_USB_BUS";

// What a bus is like from the start.
constexpr const char* kFaultVariable = "ORVO_FAKE_USB_FAULT";     ///< name of a fault
constexpr const char* kCamerasVariable = "ORVO_FAKE_USB_CAMERAS"; ///< how many are plugged in

constexpr std::array<const char*, kPorts> kSerials = {"U01", "U02"};

[[noreturn]] void giveUp(const char* what)
{
    std::perror(what);
    std::abort();
}

const std::string& description()
{
    static const std::string text = [] {
        std::ifstream file(USB_CAMERA_DESCRIPTION);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }();
    return text;
}

Bus& map(int descriptor)
{
    void* const begin = ::mmap(nullptr, sizeof(Bus), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (begin == MAP_FAILED)
        giveUp("mmap");
    return *static_cast<Bus*>(begin);
}

void plugInto(Bus& bus, int port)
{
    Port& plugged = bus.ports.at(static_cast<std::size_t>(port));
    const std::uint32_t generation = plugged.generation;
    const std::uint32_t left = plugged.left;
    plugged = {};
    plugged.generation = generation + 1;
    plugged.left = left;
    plugged.present = 1;
    FakeCamera(plugged.camera).reset(kSerials.at(static_cast<std::size_t>(port)), description());
    if (port == 0) {
        bus.fault = -1;
        bus.distortionLeft = 0;
        bus.packetsToDistortion = 0;
    }
}

void setFaultOf(Bus& bus, const Fault& fault, int times)
{
    bus.fault = static_cast<std::int32_t>(&fault - faults().data());
    bus.faultTimes = times;
    if (const MemoryFault* const change = std::get_if<MemoryFault>(&fault.show)) {
        FakeCamera camera(bus.ports[0].camera);
        (*change)(camera);
        ++bus.faultsShown;
    }
}

/// What the environment says of a new bus. It is read before there are threads.
void prepare(Bus& bus)
{
    const char* const cameras = std::getenv(kCamerasVariable); // NOLINT(concurrency-mt-unsafe)
    const int count = cameras == nullptr ? 1 : std::atoi(cameras);
    for (int port = 0; port < std::min(count, kPorts); ++port)
        plugInto(bus, port);
    const char* const name = std::getenv(kFaultVariable); // NOLINT(concurrency-mt-unsafe)
    if (name == nullptr)
        return;
    const Fault* const fault = faultNamed(name);
    if (fault == nullptr) {
        std::fprintf(stderr, "%s: there is no fault \"%s\", but these:\n", kFaultVariable, name);
        for (const Fault& known : faults())
            std::fprintf(stderr, "  %s\n", known.name);
        std::exit(2); // NOLINT(concurrency-mt-unsafe)
    }
    setFaultOf(bus, *fault, kForEver);
}

Bus& makeBus()
{
    const int descriptor = ::memfd_create("usb", MFD_CLOEXEC);
    if (descriptor < 0 || ::ftruncate(descriptor, sizeof(Bus)) != 0)
        giveUp("memfd_create");
    Bus& bus = map(descriptor);
    pthread_mutexattr_t attributes;
    ::pthread_mutexattr_init(&attributes);
    ::pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    ::pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    ::pthread_mutex_init(&bus.mutex, &attributes);
    ::pthread_mutexattr_destroy(&attributes);
    bus.announced = 1;
    bus.answered = 1;
    bus.fault = -1;
    prepare(bus);
    const std::string path = "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(descriptor);
    ::setenv(kBusVariable, path.c_str(), 1); // NOLINT(concurrency-mt-unsafe): before there are threads
    ::setenv("LD_PRELOAD", FAKE_LIBUSB, 1);  // NOLINT(concurrency-mt-unsafe)
    return bus;
}

Bus& openBus(const char* path)
{
    const int descriptor = ::open(path, O_RDWR | O_CLOEXEC);
    if (descriptor < 0)
        giveUp(path);
    Bus& bus = map(descriptor);
    ::close(descriptor);
    return bus;
}

Bus& theBus()
{
    static Bus& bus = [&]() -> Bus& {
        const char* const given = std::getenv(kBusVariable); // NOLINT(concurrency-mt-unsafe)
        return given == nullptr ? makeBus() : openBus(given);
    }();
    return bus;
}

/// A transport has closed itself the file system when it first asks for the bus.
const Bus& openedEarly = theBus();

} // namespace

LockedBus::LockedBus()
    : m_bus(theBus())
{
    lock();
}

LockedBus::~LockedBus()
{
    ::pthread_mutex_unlock(&m_bus.mutex);
}

void LockedBus::lock()
{
    if (::pthread_mutex_lock(&m_bus.mutex) == EOWNERDEAD)
        ::pthread_mutex_consistent(&m_bus.mutex);
}

void LockedBus::yield()
{
    ::pthread_mutex_unlock(&m_bus.mutex);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    lock();
}

FakeCamera LockedBus::camera(int port) const
{
    return FakeCamera(m_bus.ports.at(static_cast<std::size_t>(port)).camera);
}

void LockedBus::plugIn(int port)
{
    plugInto(m_bus, port);
}

void LockedBus::unplug(int port)
{
    Port& plugged = m_bus.ports.at(static_cast<std::size_t>(port));
    if (plugged.present == 0)
        return;
    plugged.present = 0;
    if (m_bus.announced != 0)
        plugged.left = plugged.generation;
}

void LockedBus::setFault(const Fault& fault, int times)
{
    setFaultOf(m_bus, fault, times);
}

void LockedBus::countFault()
{
    ++m_bus.faultsShown;
    m_bus.faultTimes -= m_bus.faultTimes > 0 ? 1 : 0;
}

void LockedBus::pass(Moment moment)
{
    if (m_bus.signalMoment == moment && m_bus.momentsToSignal != 0 && --m_bus.momentsToSignal == 0) {
        const int signal = m_bus.signal;
        // One that only stops must not keep the bus.
        ::pthread_mutex_unlock(&m_bus.mutex);
        (void)std::raise(signal);
        lock();
    }
}

void plugIn(int port)
{
    LockedBus bus;
    bus.plugIn(port);
}

void unplug(int port)
{
    LockedBus bus;
    bus.unplug(port);
}

bool setFault(const std::string& name, int times)
{
    const Fault* const fault = faultNamed(name);
    LockedBus bus;
    bus->faultsShown = 0;
    if (fault != nullptr)
        bus.setFault(*fault, times);
    return fault != nullptr;
}

void clearFault()
{
    const LockedBus bus;
    bus->fault = -1;
}

void distortPackets(std::string_view input)
{
    const LockedBus bus;
    const std::size_t size = input.copy(reinterpret_cast<char*>(bus->distortion.data()), bus->distortion.size());
    bus->distortionSize = bus->distortionLeft = static_cast<std::uint32_t>(size);
}

int faultsShown()
{
    const LockedBus bus;
    return bus->faultsShown;
}

std::vector<std::string> faultNames()
{
    std::vector<std::string> names;
    for (const Fault& fault : faults())
        names.emplace_back(fault.name);
    return names;
}

void useAsynchronousMode(bool asynchronous)
{
    const LockedBus bus;
    bus->asynchronous = asynchronous ? 1 : 0;
}

int asynchronousTransfers()
{
    const LockedBus bus;
    return bus->asynchronousTransfers;
}

void unplugAtCommand(int n)
{
    const LockedBus bus;
    bus->commandsToUnplug = n;
}

void answerCommands(bool answered)
{
    const LockedBus bus;
    bus->answered = answered ? 1 : 0;
}

void announceRemoval(bool announced)
{
    const LockedBus bus;
    bus->announced = announced ? 1 : 0;
}

void signalAt(Moment moment, int n, int signal)
{
    const LockedBus bus;
    bus->signalMoment = moment;
    bus->momentsToSignal = n;
    bus->signal = signal;
}

bool signalSent()
{
    const LockedBus bus;
    return bus->momentsToSignal == 0;
}

std::uint32_t value(std::uint64_t address)
{
    const LockedBus bus;
    return bus.camera(0).value(address);
}

void setValue(std::uint64_t address, std::uint32_t value)
{
    const LockedBus bus;
    bus.camera(0).setValue(address, value);
}

std::uint64_t imagesSent()
{
    const LockedBus bus;
    return bus->ports[0].camera.image;
}

int commands()
{
    const LockedBus bus;
    return bus->commands;
}

} // namespace usb
