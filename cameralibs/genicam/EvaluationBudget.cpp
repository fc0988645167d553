#include "cameralibs/genicam/EvaluationBudget.h"

#include "cameralibs/base/Outcome.h"

#include <ctime>

namespace cameralibs {

namespace {

/// This many steps take a few tenths of a millisecond.
constexpr std::uint64_t kUntimedSteps = 1024;

thread_local EvaluationBudget* current = nullptr;

std::chrono::nanoseconds processorTime()
{
    timespec time{};
    (void)::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

EvaluationBudget::EvaluationBudget(std::chrono::milliseconds limit, const std::atomic<bool>* ending) noexcept
    : m_outer(current)
    , m_limit(limit)
    , m_ending(ending)
{
    current = this;
}

EvaluationBudget::~EvaluationBudget()
{
    current = m_outer;
}

void EvaluationBudget::begin()
{
    m_wallTimeAtBegin = Clock::now();
    m_processorTimeAtBegin = processorTime();
}

void EvaluationBudget::expect(const std::string& node, std::uint64_t steps)
{
    if (current == nullptr)
        return;
    if (steps > kUntimedSteps)
        current->m_node = node;
    if (current->m_processorTimeAtBegin) {
        current->checkTime();
        return;
    }
    current->m_untimedSteps += steps;
    if (current->m_untimedSteps > kUntimedSteps)
        current->begin();
}

void EvaluationBudget::check()
{
    if (current != nullptr && current->m_processorTimeAtBegin)
        current->checkTime();
}

// Processor time never exceeds wall time, whose clock is cheaper to read, so check that one first.
void EvaluationBudget::checkTime() const
{
    throwUnless(m_ending == nullptr || !*m_ending, Orvo::CAM_API_STS_NOT_INITIALIZED);
    if (Clock::now() - m_wallTimeAtBegin <= m_limit || processorTime() - *m_processorTimeAtBegin <= m_limit)
        return;
    throw Failure(Orvo::CAM_API_STS_GENICAM_ERR, (m_node.empty() ? "" : "[" + m_node + "] ") +
                                                     "The evaluation of the description takes more than " +
                                                     std::to_string(m_limit.count()) + " ms of processor time");
}

} // namespace cameralibs
