#pragma once

#include "camera/OrvoCamApi.h"

#include <chrono>
#include <functional>
#include <future>

/// A call of the library that is to wait, on a thread of its own. A call that nothing ever wakes is left behind.
class WaitingCall {
public:
    using Call = std::function<Orvo::CAM_API_STATUS()>;

    /// Returns once the thread sleeps. The call refers to nothing that the test takes away.
    explicit WaitingCall(Call call);

    /// What the call returned; a failure where it does not return within a generous time.
    [[nodiscard]] Orvo::CAM_API_STATUS result();

private:
    [[nodiscard]] bool returned(std::chrono::seconds within) const;

    std::future<Orvo::CAM_API_STATUS> m_result;
};
