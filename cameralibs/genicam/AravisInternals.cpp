#include "cameralibs/genicam/AravisInternals.h"

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/base/Log.h"

#include <algorithm>
#include <atomic>
#include <string>

namespace cameralibs {

namespace {

void warn(std::string_view text)
{
    logText(Severity::warning, {}, [&] {
        return "Aravis " + std::to_string(arv_get_major_version()) + "." + std::to_string(arv_get_minor_version()) +
               "." + std::to_string(arv_get_micro_version()) + " " + std::string(text);
    });
}

/// The code of the error that evaluating the formula gives, if it gives one.
std::optional<int> errorCodeOf(const char* formula)
{
    const GObjectPointer<ArvEvaluator> evaluator(arv_evaluator_new(formula));
    GErrorPointer error;
    (void)arv_evaluator_evaluate_as_int64(evaluator.get(), error.out());
    return error ? std::optional<int>(error->code) : std::nullopt;
}

} // namespace

bool isDivisionByZero(const GError& error)
{
    static const std::optional<int> code = divisionByZeroCode(errorCodeOf("1/0"), errorCodeOf("1+"));
    return code == error.code;
}

std::optional<int> divisionByZeroCode(std::optional<int> division, std::optional<int> malformed)
{
    if (division && division != malformed)
        return division;
    warn("does not distinguish divisions by zero from other errors: formulas that may divide by zero count as "
         "malformed");
    return std::nullopt;
}

std::vector<std::size_t> matchEntries(const std::vector<std::string_view>& described,
                                      const std::vector<std::string_view>& listed)
{
    std::vector<std::size_t> matches;
    matches.reserve(listed.size());
    if (std::equal(described.rbegin(), described.rend(), listed.begin(), listed.end())) {
        for (std::size_t i = described.size(); i > 0; --i)
            matches.push_back(i - 1);
        return matches;
    }
    static std::atomic<bool> warned{false};
    if (!warned.exchange(true))
        warn("lists enumeration entries in an unexpected order: they are matched by name");
    for (const std::string_view name : listed) {
        const auto found = std::find(described.begin(), described.end(), name);
        matches.push_back(found == described.end() ? kNoMatch : static_cast<std::size_t>(found - described.begin()));
    }
    return matches;
}

} // namespace cameralibs
