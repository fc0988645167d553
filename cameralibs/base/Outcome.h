#pragma once

#include "camera/OrvoCamApi.h"

#include <exception>
#include <string>
#include <utility>

namespace cameralibs {

/// A status with its explanation, which may be empty.
struct Outcome {
    Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS;
    std::string text;

    [[nodiscard]] bool ok() const noexcept { return status == Orvo::CAM_API_STS_SUCCESS; }
};

/// Carries a status from the failing code to the barrier at the exported function. Never leaves the library.
class Failure : public std::exception {
public:
    explicit Failure(Orvo::CAM_API_STATUS status, std::string text = {})
        : m_outcome{status, std::move(text)}
    {
    }
    explicit Failure(Outcome outcome)
        : m_outcome(std::move(outcome))
    {
    }

    [[nodiscard]] Orvo::CAM_API_STATUS status() const noexcept { return m_outcome.status; }
    [[nodiscard]] const std::string& text() const noexcept { return m_outcome.text; }
    [[nodiscard]] const char* what() const noexcept override { return m_outcome.text.c_str(); }

private:
    Outcome m_outcome;
};

inline void throwUnless(bool condition, Orvo::CAM_API_STATUS status)
{
    if (!condition)
        throw Failure(status);
}

inline void throwIfFailed(Outcome outcome)
{
    if (!outcome.ok())
        throw Failure(std::move(outcome));
}

/// An error text, truncated to 1,000 bytes including its terminating NUL. Valid UTF-8 stays valid.
[[nodiscard]] std::string errorText(std::string text);

} // namespace cameralibs
