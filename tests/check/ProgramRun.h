#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

/// A run of orvocam-check from start to end.
struct ProgramRun {
    int status = -1;
    std::string output; ///< with what it writes to standard error

    /// The lines of one check, of JSON output.
    [[nodiscard]] std::vector<nlohmann::json> linesOf(const std::string& check) const;
    [[nodiscard]] nlohmann::json report() const;
};

/// Options as a shell takes them; `before` may set variables or name a program that starts it.
[[nodiscard]] ProgramRun runCheck(const std::string& options, const std::string& before = {});
