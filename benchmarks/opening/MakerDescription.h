#pragma once

#include <cstddef>
#include <string>

/// A GenICam description with so many features, mixed from the node kinds that camera makers use and as wordy as
/// theirs. Each feature brings the nodes behind it: registers, limits, formulas, entries. 900 features come to 1.3 MB
/// with about 1,600 integers, 800 registers and 100 enumerations.
[[nodiscard]] std::string makerDescription(std::size_t features);
