#pragma once

#include "camera/OrvoCamApi.h"

#include <chrono>
#include <functional>

// What the interface promises for the time that calls take.
constexpr std::chrono::seconds kListing{3};
constexpr std::chrono::seconds kOpening{20}; ///< which needs many accesses
constexpr std::chrono::seconds kAccess{10};  ///< with pending acknowledgements
constexpr std::chrono::seconds kClosing{1};
constexpr std::chrono::seconds kAtOnce{0};

/// Whether it is one of the statuses that there are.
[[nodiscard]] bool hasName(Orvo::CAM_API_STATUS status);

/// Calls of the library that have to come back in time with a status that has a name. What does not is told on
/// standard output and counted; a call that does not come back at all ends the process.
class Watched {
public:
    [[nodiscard]] Orvo::CAM_API_STATUS call(const char* what, std::chrono::seconds limit,
                                            const std::function<Orvo::CAM_API_STATUS()>& operation);

    /// Another rule that is broken.
    void complain(const char* format, ...) __attribute__((format(printf, 2, 3)));

    [[nodiscard]] int complaints() const { return m_complaints; }

private:
    int m_complaints = 0;
};
