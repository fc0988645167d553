#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace cameralibs {

/// What a walk along the edges of a directed graph finds. Without a cycle only.
struct GraphReport {
    std::optional<std::size_t> onCycle; ///< a vertex on a cycle, where there is one
    std::vector<std::size_t> order;     ///< every vertex, after all that it leads to
    std::vector<std::uint32_t> depth;   ///< vertices on the longest way from here, itself included
    std::vector<std::uint64_t> reached; ///< weights met on all ways from here, its own included; stops at 2^32
};

/// `edges` gives the vertices that a vertex leads to, `weight` what it counts for. Uses no stack that grows with the
/// graph.
[[nodiscard]] GraphReport examineGraph(
    std::size_t vertices, const std::function<std::vector<std::size_t>(std::size_t)>& edges,
    const std::function<std::uint64_t(std::size_t)>& weight = [](std::size_t) { return 1U; });

} // namespace cameralibs
