#pragma once

#include "check/cameras/CameraSearch.h"

#include <ostream>
#include <string>
#include <vector>

namespace check {

enum class Severity {
    good,
    note, ///< nothing that keeps images away by itself
    wrong,
    failed, ///< could not look
};

/// What a check has to say. Texts may hold what a camera says of itself; cures, which users copy into a shell, must
/// not.
struct Line {
    Severity severity = Severity::good;
    std::string subject;
    std::string text;
    std::string cure{};  ///< empty where nothing is to be done
    std::string check{}; ///< the name of the check
};

/// 0 where nothing is wrong, 1 with findings, 2 where something could not be looked at.
[[nodiscard]] int exitStatusOf(const std::vector<Line>& lines);

/// One line each, in ASCII: other characters, which might be commands to the terminal, are shown as escapes.
void writeText(std::ostream& to, const std::vector<Line>& lines);

void writeJson(std::ostream& to, const std::vector<Line>& lines, const std::vector<Camera>& cameras,
               const std::string& version);

} // namespace check
