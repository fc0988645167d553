#pragma once

#include "cameralibs/api/Signal.h"

#include <atomic>
#include <memory>
#include <utility>

namespace cameralibs {

/// Whether a camera is gone. Its own object, because whoever finds out may outlive the camera. Any thread.
class Removal {
public:
    /// `signal` may be null.
    explicit Removal(std::shared_ptr<Signal> signal)
        : m_signal(std::move(signal))
    {
    }

    /// Who sees that the camera is gone finds the signal set, and the other way round.
    void note()
    {
        if (m_signal != nullptr) {
            m_signal->setTogetherWith(m_noted);
        } else {
            m_noted.store(true, std::memory_order_release);
        }
    }

    [[nodiscard]] bool noted() const noexcept { return m_noted.load(std::memory_order_acquire); }

private:
    std::shared_ptr<Signal> m_signal;
    std::atomic<bool> m_noted{false};
};

} // namespace cameralibs
