#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace cameralibs {

/// Limits the processor time that the calling thread may spend on evaluating a description, as long as this object
/// lives. A nested budget replaces the outer one. Only processor time counts, so neither a busy machine nor a slow
/// camera uses it up.
///
/// An evaluation by Aravis cannot be interrupted. The validator bounds the steps of each evaluation; this class checks
/// the time before and after it.
class EvaluationBudget {
public:
    /// If `ending` becomes true, the evaluation ends with Failure(CAM_API_STS_NOT_INITIALIZED).
    explicit EvaluationBudget(std::chrono::milliseconds limit, const std::atomic<bool>* ending = nullptr) noexcept;
    ~EvaluationBudget();
    EvaluationBudget(const EvaluationBudget&) = delete;
    EvaluationBudget& operator=(const EvaluationBudget&) = delete;

    /// Starts the clock now. Without this call it starts after about a thousand steps.
    void begin();

    // Both do nothing on a thread without a budget. Once the budget is used up, every call throws
    // Failure(CAM_API_STS_GENICAM_ERR).

    /// To be called before `steps` steps are evaluated. Small numbers are not timed, because reading the clock takes as
    /// long as reading a register.
    static void expect(const std::string& node, std::uint64_t steps);

    /// To be called after each piece of work.
    static void check();

private:
    using Clock = std::chrono::steady_clock;

    void checkTime() const;

    EvaluationBudget* const m_outer;
    const std::chrono::milliseconds m_limit;
    const std::atomic<bool>* const m_ending;
    std::uint64_t m_untimedSteps = 0;
    std::string m_node; ///< the last node with many steps, for the error text
    std::optional<std::chrono::nanoseconds> m_processorTimeAtBegin;
    Clock::time_point m_wallTimeAtBegin;
};

} // namespace cameralibs
