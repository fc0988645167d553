#pragma once

#include <cstddef>
#include <string>

/// A GenICam description with so many features, mixed from the node kinds that camera makers use and as wordy as
/// theirs. Each feature brings the nodes behind it: registers, limits, formulas, entries. 820 features come to 1.34 MB
/// with 1,596 integers, 820 registers and 92 enumerations.
[[nodiscard]] std::string makerDescription(std::size_t features);
