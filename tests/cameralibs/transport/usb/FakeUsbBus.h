#pragma once

#include "tests/cameralibs/transport/usb/FakeUsb.h"
#include "tests/cameralibs/transport/usb/FakeUsbCamera.h"

#include <array>
#include <cstdint>

#include <pthread.h>

namespace usb {

/// The memory that all processes on the bus share. No pointers: it lies at another address in each.
struct Bus {
    pthread_mutex_t mutex; ///< robust, as a transport may be killed at any moment

    std::uint32_t generation; ///< counts the cameras that were plugged in
    std::uint32_t present;    ///< whether the last one is still there
    std::uint32_t left;       ///< the last one whose removal was announced
    std::uint32_t announced;
    std::uint32_t answered;
    std::int32_t commands;
    std::int32_t commandsToUnplug; ///< 0: it stays

    Moment signalMoment;
    std::int32_t momentsToSignal; ///< 0: none is to be sent
    std::int32_t signal;

    CameraState camera;
    std::array<std::uint8_t, 4096> answer; ///< to the last command, until it is fetched
    std::uint32_t answerSize;
};

/// The bus, locked. A process that has not been given one makes it, and gives it to the processes it starts.
class LockedBus {
public:
    LockedBus();
    ~LockedBus();
    LockedBus(const LockedBus&) = delete;
    LockedBus& operator=(const LockedBus&) = delete;

    Bus* operator->() const noexcept { return &m_bus; }
    Bus& operator*() const noexcept { return m_bus; }

    /// Lets others on the bus for a moment.
    void yield();

    [[nodiscard]] FakeCamera camera() const;

    void unplug();

    /// Sends this process the signal that is due at this moment, if any.
    void pass(Moment moment);

private:
    void lock();

    Bus& m_bus;
};

} // namespace usb
