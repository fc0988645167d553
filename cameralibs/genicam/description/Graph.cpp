#include "cameralibs/genicam/description/Graph.h"

#include <algorithm>

namespace cameralibs {

namespace {

constexpr std::uint64_t kMaxReached = std::uint64_t{1} << 32;

enum class Mark : std::uint8_t { unseen, open, done };

struct Step {
    std::size_t vertex;
    std::vector<std::size_t> edges;
    std::size_t next = 0;
};

void leave(const Step& step, GraphReport& report)
{
    std::uint32_t& depth = report.depth[step.vertex];
    std::uint64_t& reached = report.reached[step.vertex];
    for (const std::size_t target : step.edges) {
        depth = std::max(depth, report.depth[target] + 1);
        reached = std::min(reached + report.reached[target], kMaxReached);
    }
    report.order.push_back(step.vertex);
}

} // namespace

GraphReport examineGraph(std::size_t vertices, const std::function<std::vector<std::size_t>(std::size_t)>& edges,
                         const std::function<std::uint64_t(std::size_t)>& weight)
{
    GraphReport report;
    report.depth.assign(vertices, 1);
    for (std::size_t vertex = 0; vertex < vertices; ++vertex)
        report.reached.push_back(std::min(weight(vertex), kMaxReached));
    std::vector<Mark> marks(vertices, Mark::unseen);
    std::vector<Step> path;
    for (std::size_t start = 0; start < vertices; ++start) {
        if (marks[start] != Mark::unseen)
            continue;
        marks[start] = Mark::open;
        path.push_back({start, edges(start)});
        while (!path.empty()) {
            Step& step = path.back();
            if (step.next == step.edges.size()) {
                leave(step, report);
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

} // namespace cameralibs
