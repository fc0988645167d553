#pragma once

#include "check/cameras/CameraSearch.h"

#include <ostream>
#include <string>
#include <vector>

namespace check {

enum class Severity {
    good,
    note, ///< may matter, but does not keep images away by itself
    wrong,
    failed, ///< could not be checked
};

/// One result of a check. Subject and text may contain texts of a camera. The cure must not, because users copy it into
/// a shell.
struct Line {
    Severity severity = Severity::good;
    std::string subject;
    std::string text;
    std::string cure{};  ///< empty if there is nothing to do
    std::string check{}; ///< the name of the check
};

/// 0 if nothing is wrong, 1 with findings, 2 if something could not be checked.
[[nodiscard]] int exitStatusOf(const std::vector<Line>& lines);

/// Writes each on a line of its own. Characters other than printable ASCII could control the terminal and are escaped.
void writeText(std::ostream& to, const std::vector<Line>& lines);

void writeJson(std::ostream& to, const std::vector<Line>& lines, const std::vector<Camera>& cameras,
               const std::string& version);

} // namespace check
