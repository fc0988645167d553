#pragma once

#include "cameralibs/transport/Channel.h"

#include <arv.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace cameralibs::transport {

/// Finds out within 4 s that a GigE Vision camera is gone, whereas Aravis' heartbeat needs 6 s. After a second
/// in which nothing came from the camera, the probe queries it over a separate socket. A silent stream alone is not a
/// removal, nor is a camera that hangs for less than 2 s. One that never answers queries is left to the heartbeat.
class GigeProbe {
public:
    explicit GigeProbe(ArvGvDevice* device);
    ~GigeProbe();
    GigeProbe(const GigeProbe&) = delete;
    GigeProbe& operator=(const GigeProbe&) = delete;

    /// Notes that the camera has sent an image. Answers to Aravis' commands are noted without it. Thread-safe.
    void noteSign() noexcept { m_lastSign.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed); }

private:
    void run();
    [[nodiscard]] bool hearsFromCamera();
    [[nodiscard]] bool query(std::uint16_t id) const;
    [[nodiscard]] bool waitForAnswer(std::uint16_t firstId, std::uint16_t lastId) const;
    [[nodiscard]] bool waitUntil(Clock::time_point time);
    [[nodiscard]] Clock::time_point lastSign() const noexcept;

    Descriptor m_socket; ///< none if the camera cannot be queried
    std::uint16_t m_lastId = 0;
    bool m_answersQueries = false;
    std::atomic<Clock::rep> m_lastSign;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_ended = false;
    std::thread m_thread;
};

} // namespace cameralibs::transport
