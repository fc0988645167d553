#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/description/Graph.h"
#include "cameralibs/genicam/description/Validator.h"

namespace cameralibs {

using namespace Orvo;

namespace {

/// Features directly in Root have depth 1.
constexpr std::uint32_t kMaxDepth = 256;
/// Rows of a tree with all features. A category that is listed twice counts twice.
constexpr std::uint64_t kMaxRows = 65536;

} // namespace

void checkCategories(const Description& description)
{
    const NodeId root = description.find("Root");
    if (root == kNoNode || description.node(root).type != NODE_TYPE_CATEGORY)
        throw Failure(CAM_API_STS_GENICAM_ERR, "The description has no category named \"Root\"");
    const GraphReport report = examineGraph(description.size(), [&](std::size_t id) {
        const auto& features = description.node(static_cast<NodeId>(id)).features;
        return std::vector<std::size_t>(features.begin(), features.end());
    });
    if (report.onCycle) {
        throw Failure(CAM_API_STS_GENICAM_ERR, "[" + description.node(static_cast<NodeId>(*report.onCycle)).name +
                                                   "] The category contains itself");
    }
    if (report.depth[root] - 1 > kMaxDepth) {
        throw Failure(CAM_API_STS_GENICAM_ERR,
                      "[Root] The categories are nested more than " + std::to_string(kMaxDepth) + " deep");
    }
    if (report.reached[root] - 1 > kMaxRows) {
        throw Failure(CAM_API_STS_GENICAM_ERR,
                      "[Root] The categories list more than " + std::to_string(kMaxRows) + " features");
    }
}

} // namespace cameralibs
