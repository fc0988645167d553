#include "tests/cameralibs/transport/usb/FakeUsbBus.h"

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

[[noreturn]] void giveUp(const char* what)
{
    std::perror(what);
    std::abort();
}

const std::string& description()
{
    // Read before a transport closes itself the file system.
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

void plugInto(Bus& bus)
{
    ++bus.generation;
    bus.present = 1;
    bus.answerSize = 0;
    bus.camera = {};
    FakeCamera(bus.camera, description()).reset();
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
    plugInto(bus);
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
    (void)description();
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

/// In a transport there is no file to open any more when the bus is first asked for.
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

FakeCamera LockedBus::camera() const
{
    return {m_bus.camera, description()};
}

void LockedBus::unplug()
{
    if (m_bus.present == 0)
        return;
    m_bus.present = 0;
    if (m_bus.announced != 0)
        m_bus.left = m_bus.generation;
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

void plugIn()
{
    const LockedBus bus;
    plugInto(*bus);
}

void unplug()
{
    LockedBus bus;
    bus.unplug();
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
    return bus.camera().value(address);
}

void setValue(std::uint64_t address, std::uint32_t value)
{
    const LockedBus bus;
    bus.camera().setValue(address, value);
}

int commands()
{
    const LockedBus bus;
    return bus->commands;
}

} // namespace usb
