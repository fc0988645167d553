#pragma once

#include <string_view>
#include <vector>

namespace cameralibs::simulated {

/// The files description/*.xml, compiled in: each is a Group of nodes.
[[nodiscard]] const std::vector<std::string_view>& descriptionFragments();

} // namespace cameralibs::simulated
