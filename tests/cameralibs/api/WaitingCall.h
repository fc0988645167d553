#pragma once

#include "camera/OrvoCamApi.h"

#include <chrono>
#include <functional>
#include <future>

/// A blocking call of the library on a separate thread. A call that never returns is abandoned.
class WaitingCall {
public:
    using Call = std::function<Orvo::CAM_API_STATUS()>;

    /// Returns once the thread sleeps. The call must not refer to objects of the test, because it may outlive them.
    explicit WaitingCall(Call call);

    /// The result of the call. Fails the test if it does not return within a generous time.
    [[nodiscard]] Orvo::CAM_API_STATUS result();

private:
    [[nodiscard]] bool returned(std::chrono::seconds within) const;

    std::future<Orvo::CAM_API_STATUS> m_result;
};
