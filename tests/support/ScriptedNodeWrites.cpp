#include "tests/support/ScriptedNodeAccess.h"

#include <cmath>
#include <cstdint>

using namespace scripted;
using Orvo::CAM_API_STATUS;

namespace {

using Node = NodeMap::Node;

CAM_API_STATUS checkWritable(const Node& node)
{
    if (isUnavailable(node.spec.access))
        return Orvo::CAM_API_STS_NOT_AVAILABLE;
    return node.spec.access == Orvo::NODE_ACCESS_MODE_RO ? Orvo::CAM_API_STS_NOT_WRITABLE : Orvo::CAM_API_STS_SUCCESS;
}

bool accepts(const NodeSpec& spec, std::int64_t value)
{
    if (value < spec.intMin || value > spec.intMax)
        return false;
    const std::uint64_t distance = static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(spec.intMin);
    return spec.intInc <= 1 || distance % static_cast<std::uint64_t>(spec.intInc) == 0;
}

bool accepts(const NodeSpec& spec, double value)
{
    constexpr double kTolerance = 1e-6; // of a step
    if (std::isnan(value) || value < spec.floatMin || value > spec.floatMax)
        return false;
    if (spec.floatHasInc == 0 || spec.floatInc <= 0)
        return true;
    const double steps = (value - spec.floatMin) / spec.floatInc;
    return std::abs(steps - std::round(steps)) <= kTolerance;
}

/// Checks type and access, then lets `assign(Node&)` accept or refuse the value.
template <typename Assign>
CAM_API_STATUS write(const char* operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node, Orvo::NodeType type,
                     const Argument& value, bool verify, Assign assign)
{
    return nodeCall(operation, camera, node, {number(camera), number(node), value, flag(verify)},
                    [&](Node& found) -> CAM_API_STATUS {
                        if (found.spec.type != type)
                            return Orvo::CAM_API_STS_INVALID_PARAMETER;
                        if (const CAM_API_STATUS status = checkWritable(found))
                            return status;
                        if (!assign(found))
                            return Orvo::CAM_API_STS_INVALID_PARAMETER;
                        followNode(found);
                        return Orvo::CAM_API_STS_SUCCESS;
                    });
}

bool choose(Node& enumeration, std::size_t entry)
{
    if (entry == NodeMap::kNone || isUnavailable(world().nodes.at(entry).spec.access))
        return false;
    enumeration.spec.intValue = world().nodes.at(entry).spec.intValue;
    return true;
}

} // namespace

namespace Orvo {

CAM_API_STATUS Nd_SetIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t value, bool verify)
{
    return write("Nd_SetIntValue", camera, node, NODE_TYPE_INTEGER, integer(value), verify, [&](Node& found) {
        const bool accepted = !verify || accepts(found.spec, value);
        if (accepted)
            found.spec.intValue = value;
        return accepted;
    });
}

CAM_API_STATUS Nd_SetFloatValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, double value, bool verify)
{
    return write("Nd_SetFloatValue", camera, node, NODE_TYPE_FLOAT, real(value), verify, [&](Node& found) {
        const bool accepted = verify ? accepts(found.spec, value) : !std::isnan(value);
        if (accepted)
            found.spec.floatValue = value;
        return accepted;
    });
}

CAM_API_STATUS Nd_SetBoolValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool value, bool verify)
{
    return write("Nd_SetBoolValue", camera, node, NODE_TYPE_BOOLEAN, flag(value), verify, [&](Node& found) {
        found.spec.boolValue = value ? 1 : 0;
        return true;
    });
}

CAM_API_STATUS Nd_SetStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, const char* value, bool verify)
{
    return write("Nd_SetStrValue", camera, node, NODE_TYPE_STRING, text(value), verify, [&](Node& found) {
        if (value != nullptr)
            found.spec.strValue = value;
        return value != nullptr;
    });
}

CAM_API_STATUS Nd_SetEnumStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, const char* value, bool verify)
{
    return write("Nd_SetEnumStrValue", camera, node, NODE_TYPE_ENUMERATION, text(value), verify, [&](Node& found) {
        return value != nullptr && choose(found, world().nodes.entryByName(found, value));
    });
}

CAM_API_STATUS Nd_SetEnumIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t value, bool verify)
{
    return write("Nd_SetEnumIntValue", camera, node, NODE_TYPE_ENUMERATION, integer(value), verify,
                 [&](Node& found) { return choose(found, world().nodes.entryByValue(found, value)); });
}

CAM_API_STATUS Nd_CmdExecute(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool verify)
{
    return nodeCall("Nd_CmdExecute", camera, node, {number(camera), number(node), flag(verify)},
                    [&](Node& found) -> CAM_API_STATUS {
                        if (found.spec.type != NODE_TYPE_COMMAND)
                            return CAM_API_STS_INVALID_PARAMETER;
                        if (const CAM_API_STATUS status = checkWritable(found))
                            return status;
                        ++found.spec.executed;
                        return CAM_API_STS_SUCCESS;
                    });
}

} // namespace Orvo
