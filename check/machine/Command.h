#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace check {

/// What a program prints to standard output. It is started without an environment, by its path. No value if it cannot
/// be started, fails, prints too much or has not ended in time; then it is killed.
[[nodiscard]] std::optional<std::string> outputOf(std::vector<std::string> command, std::chrono::milliseconds limit);

} // namespace check
