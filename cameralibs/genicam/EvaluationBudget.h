#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace cameralibs {

/// How much processor time the calling thread may take to evaluate a description while this lives; an inner one stands
/// in for an outer one. What a busy machine or a slow camera makes the thread wait does not count.
///
/// Nothing can interrupt Aravis in the middle of an evaluation. The validator bounds the steps of each; here the time
/// is looked at before and after.
class EvaluationBudget {
public:
    explicit EvaluationBudget(std::chrono::milliseconds limit) noexcept;
    ~EvaluationBudget();
    EvaluationBudget(const EvaluationBudget&) = delete;
    EvaluationBudget& operator=(const EvaluationBudget&) = delete;

    /// Time counts from here on, at the latest.
    void begin();

    // On a thread without a budget these do nothing. Both throw Failure(CAM_API_STS_GENICAM_ERR) once it is used up,
    // and go on to do so.

    /// To be called before so many steps are evaluated. Few steps are not timed: to read the clock takes as long as to
    /// read a register.
    static void expect(const std::string& node, std::uint64_t steps);

    /// To be called after each piece of work.
    static void check();

private:
    using Clock = std::chrono::steady_clock;

    void checkTime() const;

    EvaluationBudget* const m_outer;
    const std::chrono::milliseconds m_limit;
    std::uint64_t m_untimedSteps = 0;
    std::string m_node; ///< the last one that took many steps
    std::optional<std::chrono::nanoseconds> m_began;
    Clock::time_point m_beganOnTheWall;
};

} // namespace cameralibs
