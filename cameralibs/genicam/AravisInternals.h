#pragma once

#include <arv.h>

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace cameralibs {

// The undocumented behaviour of Aravis that the evaluation of descriptions relies on; checked against Aravis 0.8.26.
// Each function checks at run time that the version in use behaves the same. If it does not, the function logs that
// once, and the library works without it. The transport has its own list in transport/AravisHooks.h.

/// Whether the error of an ArvEvaluator is a division by zero. Aravis does not export the code, so the first call
/// learns it from formulas. If a malformed formula gives the same code, the answer is always false.
[[nodiscard]] bool isDivisionByZero(const GError& error);

/// The code that isDivisionByZero() recognises, from the codes that a division by zero and a malformed formula give.
[[nodiscard]] std::optional<int> divisionByZeroCode(std::optional<int> division, std::optional<int> malformed);

/// Stands for an entry that has no match.
constexpr std::size_t kNoMatch = static_cast<std::size_t>(-1);

/// Aravis lists the entries of an enumeration in reverse order, and cannot find them by name. For each name that Aravis
/// lists, returns its index in `described`, or kNoMatch. If the order is different, matches by name; of several equal
/// names, the first one.
[[nodiscard]] std::vector<std::size_t> matchEntries(const std::vector<std::string_view>& described,
                                                    const std::vector<std::string_view>& listed);

} // namespace cameralibs
