#pragma once

#include "tests/attack/fuzz/PacketDistortion.h"
#include "tests/cameralibs/transport/usb/FakeUsb.h"
#include "tests/cameralibs/transport/usb/FakeUsbCamera.h"
#include "tests/cameralibs/transport/usb/Faults.h"

#include <array>
#include <cstdint>
#include <variant>

#include <pthread.h>

namespace usb {

/// An answer on its way, see Faults.h.
struct StoredAnswer {
    std::array<std::uint8_t, 1040> bytes;
    std::uint32_t size;
    std::int32_t result;
    std::int64_t due;    ///< nanoseconds of the steady clock
    std::int64_t period; ///< until it comes again; 0: it does not
};

/// What is plugged in, or was.
struct Port {
    std::uint32_t generation; ///< counts the cameras that were plugged in here
    std::uint32_t present;    ///< whether the last one is still there
    std::uint32_t left;       ///< the last one whose removal was announced
    CameraState camera;

    std::array<StoredAnswer, 8> answers; ///< that were not fetched yet
    std::uint32_t answerCount;
    std::uint32_t halted; ///< a bit for each endpoint
};

/// The memory that all processes on the bus share. No pointers: it lies at another address in each.
struct Bus {
    pthread_mutex_t mutex; ///< robust, as a transport may be killed at any moment

    std::array<Port, kPorts> ports;
    std::uint32_t announced;
    std::uint32_t answered;
    std::int32_t commands;
    std::int32_t commandsToUnplug; ///< 0: it stays
    std::uint32_t asynchronous;
    std::int32_t asynchronousTransfers;

    std::int32_t fault;      ///< in the table, -1 for none; of the camera at port 0
    std::int32_t faultTimes; ///< left
    std::int32_t faultsShown;

    std::array<std::uint8_t, 4096> distortion; ///< the input of distortPackets()
    std::uint32_t distortionSize;
    std::uint32_t distortionLeft;
    std::uint8_t packetsToDistortion;

    Moment signalMoment;
    std::int32_t momentsToSignal; ///< 0: none is to be sent
    std::int32_t signal;
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

    [[nodiscard]] FakeCamera camera(int port) const;

    void plugIn(int port);
    void unplug(int port);

    void setFault(const Fault& fault, int times);

    /// The fault that is to be shown now, if it is of this kind; null without one.
    template <class Kind> [[nodiscard]] const Kind* fault(int port) const
    {
        if (port != 0 || m_bus.fault < 0 || m_bus.faultTimes == 0)
            return nullptr;
        return std::get_if<Kind>(&faults()[static_cast<std::size_t>(m_bus.fault)].show);
    }

    /// One time less is left.
    void countFault();

    /// What distortPackets() has asked for, if this is the camera.
    template <class Packets> void distort(int port, Packets& packets)
    {
        if (port != 0 || (m_bus.distortionLeft == 0 && m_bus.packetsToDistortion == 0))
            return;
        const std::uint8_t* const end = m_bus.distortion.data() + m_bus.distortionSize;
        PacketDistortion distortion(FuzzInput(end - m_bus.distortionLeft, m_bus.distortionLeft),
                                    m_bus.packetsToDistortion);
        distortion.distort(packets);
        m_bus.distortionLeft = static_cast<std::uint32_t>(distortion.left());
        m_bus.packetsToDistortion = distortion.correct();
    }

    /// Sends this process the signal that is due at this moment, if any.
    void pass(Moment moment);

private:
    void lock();

    Bus& m_bus;
};

} // namespace usb
