#include "Graph.h"

#include <algorithm>
#include <utility>

namespace orvo {

namespace {

constexpr std::uint64_t kMaxReached = std::uint64_t{1} << 32;

enum class Mark : std::uint8_t { unseen, open, done };

struct Step {
    std::size_t vertex;
    std::vector<std::size_t> edges;
    std::size_t next = 0;
};

} // namespace

GraphReport examineGraph(std::size_t vertices, const std::function<std::vector<std::size_t>(std::size_t)>& edges)
{
    GraphReport report{std::nullopt, std::vector<std::uint32_t>(vertices, 1), std::vector<std::uint64_t>(vertices, 1)};
    std::vector<Mark> marks(vertices, Mark::unseen);
    for (std::size_t start = 0; start < vertices; ++start) {
        if (marks[start] != Mark::unseen)
            continue;
        std::vector<Step> path;
        marks[start] = Mark::open;
        path.push_back({start, edges(start)});
        while (!path.empty()) {
            Step& step = path.back();
            if (step.next == step.edges.size()) {
                for (const std::size_t target : step.edges) {
                    report.depth[step.vertex] = std::max(report.depth[step.vertex], report.depth[target] + 1);
                    report.reached[step.vertex] =
                        std::min(report.reached[step.vertex] + report.reached[target], kMaxReached);
                }
                marks[step.vertex] = Mark::done;
                path.pop_back();
                continue;
            }
            const std::size_t target = step.edges[step.next++];
            if (marks[target] == Mark::open) {
                report.onCycle = target;
                return report;
            }
            if (marks[target] == Mark::unseen) {
                marks[target] = Mark::open;
                path.push_back({target, edges(target)});
            }
        }
    }
    return report;
}

} // namespace orvo
