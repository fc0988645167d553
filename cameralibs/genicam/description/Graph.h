#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace cameralibs {

/// Properties of a directed graph. If there is a cycle, only `onCycle` is meaningful.
struct GraphReport {
    std::optional<std::size_t> onCycle; ///< a vertex on a cycle, if there is one
    std::vector<std::size_t> order;     ///< topological order: every vertex after those it leads to
    std::vector<std::uint32_t> depth;   ///< vertices on the longest path that starts at this vertex
    std::vector<std::uint64_t> reached; ///< sum of the weights on all paths from this vertex; saturates at 2^32
};

/// `edges` returns the direct successors of a vertex. Not recursive, so that a deep graph cannot overflow the stack.
[[nodiscard]] GraphReport examineGraph(
    std::size_t vertices, const std::function<std::vector<std::size_t>(std::size_t)>& edges,
    const std::function<std::uint64_t(std::size_t)>& weight = [](std::size_t) { return 1U; });

} // namespace cameralibs
