#include "cameralibs/api/Failure.h"
#include "cameralibs/api/Graph.h"
#include "cameralibs/api/Validator.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

namespace orvo {

using namespace Orvo;

namespace {

/// What can be asked of a node. Legal descriptions have Width's maximum depend on OffsetX and OffsetX's on Width: a
/// range does not enter a value, so the three are told apart.
enum Question : std::size_t { value, range, access, questions };

struct PropertyRow {
    const char* property;
    Question of;     ///< the question that needs the reference
    Question target; ///< what is asked of the node it names
};

constexpr PropertyRow kProperties[] = {
    {"pValue", value, value},
    {"pIndex", value, value},
    {"pValueIndexed", value, value},
    {"pValueDefault", value, value},
    {"pOffset", value, value},
    {"pAddress", value, value},
    {"pLength", value, value},
    {"pVariable", value, value},
    {"pCommandValue", value, value},
    {"pMin", range, value},
    {"pMax", range, value},
    {"pInc", range, value},
    {"pValue", range, range},
    {"pIsImplemented", access, value},
    {"pIsAvailable", access, value},
    {"pIsLocked", access, value},
    {"pValue", access, access},
    {"pIndex", access, value},
    {"pValueIndexed", access, access},
};

/// Each step of an evaluation takes room on the stack, and each reads what it needs anew.
constexpr std::uint32_t kMaxDepth = 256;
constexpr std::uint64_t kMaxSteps = 65536;

std::vector<std::size_t> questionsBehind(const Description& description, std::size_t vertex)
{
    std::vector<std::size_t> edges;
    for (const Reference& reference : description.node(static_cast<NodeId>(vertex / questions)).references) {
        if (reference.target == kNoNode)
            continue;
        for (const PropertyRow& row : kProperties)
            if (row.of == vertex % questions && reference.property == row.property)
                edges.push_back(reference.target * questions + row.target);
    }
    return edges;
}

[[noreturn]] void refuse(const Description& description, std::size_t vertex, const char* reason)
{
    const DescribedNode& node = description.node(static_cast<NodeId>(vertex / questions));
    throw Failure(CAM_API_STS_GENICAM_ERR, "[" + node.name + "] " + reason);
}

} // namespace

void checkEvaluation(const Description& description)
{
    const GraphReport report = examineGraph(description.size() * questions,
                                            [&](std::size_t vertex) { return questionsBehind(description, vertex); });
    if (report.onCycle)
        refuse(description, *report.onCycle, "The node's evaluation needs itself");
    for (std::size_t vertex = 0; vertex < report.depth.size(); ++vertex) {
        if (report.depth[vertex] > kMaxDepth)
            refuse(description, vertex, "The node's evaluation is nested too deep");
        if (report.reached[vertex] > kMaxSteps)
            refuse(description, vertex, "The node's evaluation takes too many steps");
    }
}

} // namespace orvo
