#include "tests/support/ScriptedNodeAccess.h"

using namespace scripted;
using Orvo::CAM_API_STATUS;

namespace {

using Node = NodeMap::Node;

CAM_API_STATUS checkReadable(const Node& node)
{
    if (isUnavailable(node.spec.access))
        return Orvo::CAM_API_STS_NOT_AVAILABLE;
    return node.spec.access == Orvo::NODE_ACCESS_MODE_WO ? Orvo::CAM_API_STS_NOT_READABLE : Orvo::CAM_API_STS_SUCCESS;
}

/// A property of any node, regardless of type and access.
template <typename Result, typename Read>
CAM_API_STATUS property(const char* operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node, Result* result,
                        Read read)
{
    return nodeCall(operation, camera, node, {number(camera), number(node), out(result)},
                    [&](const Node& found) -> CAM_API_STATUS {
                        if (result == nullptr)
                            return Orvo::CAM_API_STS_INVALID_PARAMETER;
                        *result = read(found.spec);
                        return Orvo::CAM_API_STS_SUCCESS;
                    });
}

/// A property of nodes of one type; the node need not be readable.
template <typename Result, typename Read>
CAM_API_STATUS typedProperty(const char* operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node,
                             Orvo::NodeType type, Result* result, Read read)
{
    return nodeCall(operation, camera, node, {number(camera), number(node), out(result)},
                    [&](const Node& found) -> CAM_API_STATUS {
                        if (result == nullptr || found.spec.type != type)
                            return Orvo::CAM_API_STS_INVALID_PARAMETER;
                        if (isUnavailable(found.spec.access))
                            return Orvo::CAM_API_STS_NOT_AVAILABLE;
                        *result = read(found.spec);
                        return Orvo::CAM_API_STS_SUCCESS;
                    });
}

template <typename Result, typename Read>
CAM_API_STATUS value(const char* operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node, Orvo::NodeType type,
                     Result* result, Read read)
{
    return nodeCall(operation, camera, node, {number(camera), number(node), out(result)},
                    [&](const Node& found) -> CAM_API_STATUS {
                        if (result == nullptr || found.spec.type != type)
                            return Orvo::CAM_API_STS_INVALID_PARAMETER;
                        if (const CAM_API_STATUS status = checkReadable(found))
                            return status;
                        *result = read(found.spec);
                        return Orvo::CAM_API_STS_SUCCESS;
                    });
}

template <typename Read>
CAM_API_STATUS textProperty(const char* operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node, char* buffer,
                            std::uint32_t* size, Read read)
{
    return nodeCall(operation, camera, node, {number(camera), number(node), out(buffer), out(size)},
                    [&](const Node& found) { return giveText(read(found), buffer, size); });
}

/// The handle of a category's feature or of an enumeration's entry.
CAM_API_STATUS childByIndex(const char* operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node,
                            Orvo::NodeType type, std::uint32_t index, Orvo::CAM_NODE_HANDLE* child)
{
    return nodeCall(operation, camera, node, {number(camera), number(node), number(index), out(child)},
                    [&](const Node& found) -> CAM_API_STATUS {
                        if (child == nullptr || found.spec.type != type || index >= found.children.size())
                            return Orvo::CAM_API_STS_INVALID_PARAMETER;
                        const std::size_t position = found.children[index];
                        *child = position == NodeMap::kNone ? 0 : world().nodeHandleBase + position + 1;
                        return *child == 0 ? Orvo::CAM_API_STS_NOT_FOUND : Orvo::CAM_API_STS_SUCCESS;
                    });
}

CAM_API_STATUS childCount(const char* operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node,
                          Orvo::NodeType type, std::uint32_t* count)
{
    return nodeCall(operation, camera, node, {number(camera), number(node), out(count)},
                    [&](const Node& found) -> CAM_API_STATUS {
                        if (count == nullptr || found.spec.type != type)
                            return Orvo::CAM_API_STS_INVALID_PARAMETER;
                        *count = static_cast<std::uint32_t>(found.children.size());
                        return Orvo::CAM_API_STS_SUCCESS;
                    });
}

} // namespace

namespace Orvo {

CAM_API_STATUS Nd_GetNode(CAM_HANDLE camera, const char* name, CAM_NODE_HANDLE* node)
{
    return world().call("Nd_GetNode", {number(camera), text(name), out(node)}, [&](auto&) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = world().checkCamera(camera))
            return status;
        if (name == nullptr || node == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        const std::size_t index = world().nodes.find(name);
        *node = index == NodeMap::kNone ? 0 : world().nodeHandleBase + index + 1;
        return *node == 0 ? CAM_API_STS_NOT_FOUND : CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Nd_GetNumOfFeatures(CAM_HANDLE camera, CAM_NODE_HANDLE category, std::uint32_t* count)
{
    return childCount("Nd_GetNumOfFeatures", camera, category, NODE_TYPE_CATEGORY, count);
}

CAM_API_STATUS Nd_GetFeatureByIndex(CAM_HANDLE camera, CAM_NODE_HANDLE category, std::uint32_t index,
                                    CAM_NODE_HANDLE* child)
{
    return childByIndex("Nd_GetFeatureByIndex", camera, category, NODE_TYPE_CATEGORY, index, child);
}

CAM_API_STATUS Nd_GetName(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return textProperty("Nd_GetName", camera, node, buffer, size, [](const Node& found) { return found.fullName; });
}

CAM_API_STATUS Nd_GetType(CAM_HANDLE camera, CAM_NODE_HANDLE node, NodeType* type)
{
    return property("Nd_GetType", camera, node, type, [](const NodeSpec& spec) { return spec.type; });
}

CAM_API_STATUS Nd_GetAccessMode(CAM_HANDLE camera, CAM_NODE_HANDLE node, NodeAccessMode* mode)
{
    return property("Nd_GetAccessMode", camera, node, mode, [](const NodeSpec& spec) { return spec.access; });
}

CAM_API_STATUS Nd_GetVisibility(CAM_HANDLE camera, CAM_NODE_HANDLE node, TC_NODE_VISIBILITY* visibility)
{
    return property("Nd_GetVisibility", camera, node, visibility, [](const NodeSpec& spec) { return spec.visibility; });
}

CAM_API_STATUS Nd_GetDescription(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return textProperty("Nd_GetDescription", camera, node, buffer, size,
                        [](const Node& found) { return found.spec.description; });
}

CAM_API_STATUS Nd_GetToolTip(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return textProperty("Nd_GetToolTip", camera, node, buffer, size,
                        [](const Node& found) { return found.spec.toolTip; });
}

CAM_API_STATUS Nd_GetUnit(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return textProperty("Nd_GetUnit", camera, node, buffer, size, [](const Node& found) { return found.spec.unit; });
}

CAM_API_STATUS Nd_GetRepresentation(CAM_HANDLE camera, CAM_NODE_HANDLE node, NodeRepresentation* representation)
{
    return property("Nd_GetRepresentation", camera, node, representation, [](const NodeSpec& spec) {
        const bool hasOne = spec.type == NODE_TYPE_INTEGER || spec.type == NODE_TYPE_FLOAT;
        return hasOne ? spec.representation : NODE_REPRESENTATION_PURE_NUMBER;
    });
}

CAM_API_STATUS Nd_GetFloatDisplayNotation(CAM_HANDLE camera, CAM_NODE_HANDLE node, FloatDisplayNotation* notation)
{
    return typedProperty("Nd_GetFloatDisplayNotation", camera, node, NODE_TYPE_FLOAT, notation,
                         [](const NodeSpec& spec) { return spec.notation; });
}

CAM_API_STATUS Nd_GetFloatDisplayPrecision(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* precision)
{
    return typedProperty("Nd_GetFloatDisplayPrecision", camera, node, NODE_TYPE_FLOAT, precision,
                         [](const NodeSpec& spec) { return spec.precision; });
}

CAM_API_STATUS Nd_GetIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* result)
{
    return value("Nd_GetIntValue", camera, node, NODE_TYPE_INTEGER, result,
                 [](const NodeSpec& spec) { return spec.intValue; });
}

CAM_API_STATUS Nd_GetIntMin(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* result)
{
    return typedProperty("Nd_GetIntMin", camera, node, NODE_TYPE_INTEGER, result,
                         [](const NodeSpec& spec) { return spec.intMin; });
}

CAM_API_STATUS Nd_GetIntMax(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* result)
{
    return typedProperty("Nd_GetIntMax", camera, node, NODE_TYPE_INTEGER, result,
                         [](const NodeSpec& spec) { return spec.intMax; });
}

CAM_API_STATUS Nd_GetIntInc(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* result)
{
    return typedProperty("Nd_GetIntInc", camera, node, NODE_TYPE_INTEGER, result,
                         [](const NodeSpec& spec) { return spec.intInc; });
}

CAM_API_STATUS Nd_GetFloatValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* result)
{
    return value("Nd_GetFloatValue", camera, node, NODE_TYPE_FLOAT, result,
                 [](const NodeSpec& spec) { return spec.floatValue; });
}

CAM_API_STATUS Nd_GetFloatMin(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* result)
{
    return typedProperty("Nd_GetFloatMin", camera, node, NODE_TYPE_FLOAT, result,
                         [](const NodeSpec& spec) { return spec.floatMin; });
}

CAM_API_STATUS Nd_GetFloatMax(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* result)
{
    return typedProperty("Nd_GetFloatMax", camera, node, NODE_TYPE_FLOAT, result,
                         [](const NodeSpec& spec) { return spec.floatMax; });
}

CAM_API_STATUS Nd_GetFloatInc(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* result)
{
    return nodeCall("Nd_GetFloatInc", camera, node, {number(camera), number(node), out(result)},
                    [&](const Node& found) -> CAM_API_STATUS {
                        if (result == nullptr || found.spec.type != NODE_TYPE_FLOAT)
                            return CAM_API_STS_INVALID_PARAMETER;
                        if (isUnavailable(found.spec.access))
                            return CAM_API_STS_NOT_AVAILABLE;
                        if (found.spec.floatHasInc == 0)
                            return CAM_API_STS_INVALID_PARAMETER;
                        *result = found.spec.floatInc;
                        return CAM_API_STS_SUCCESS;
                    });
}

CAM_API_STATUS Nd_GetFloatHasInc(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool* hasInc)
{
    auto* const byte = reinterpret_cast<std::uint8_t*>(hasInc);
    return typedProperty("Nd_GetFloatHasInc", camera, node, NODE_TYPE_FLOAT, byte,
                         [](const NodeSpec& spec) { return spec.floatHasInc; });
}

CAM_API_STATUS Nd_GetBoolValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool* result)
{
    auto* const byte = reinterpret_cast<std::uint8_t*>(result);
    return value("Nd_GetBoolValue", camera, node, NODE_TYPE_BOOLEAN, byte,
                 [](const NodeSpec& spec) { return spec.boolValue; });
}

CAM_API_STATUS Nd_GetStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return nodeCall("Nd_GetStrValue", camera, node, {number(camera), number(node), out(buffer), out(size)},
                    [&](const Node& found) -> CAM_API_STATUS {
                        if (size == nullptr || found.spec.type != NODE_TYPE_STRING)
                            return CAM_API_STS_INVALID_PARAMETER;
                        const CAM_API_STATUS status = checkReadable(found);
                        return status != 0 ? status : giveText(found.spec.strValue, buffer, size);
                    });
}

CAM_API_STATUS Nd_GetEnumStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return nodeCall("Nd_GetEnumStrValue", camera, node, {number(camera), number(node), out(buffer), out(size)},
                    [&](const Node& found) -> CAM_API_STATUS {
                        if (size == nullptr || found.spec.type != NODE_TYPE_ENUMERATION)
                            return CAM_API_STS_INVALID_PARAMETER;
                        if (const CAM_API_STATUS status = checkReadable(found))
                            return status;
                        const std::size_t entry = world().nodes.entryByValue(found, found.spec.intValue);
                        if (entry == NodeMap::kNone)
                            return CAM_API_STS_GENICAM_ERR;
                        return giveText(world().nodes.at(entry).spec.name, buffer, size);
                    });
}

CAM_API_STATUS Nd_GetEnumIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* result)
{
    return value("Nd_GetEnumIntValue", camera, node, NODE_TYPE_ENUMERATION, result,
                 [](const NodeSpec& spec) { return spec.intValue; });
}

CAM_API_STATUS Nd_GetNumOfEnumEntries(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::uint32_t* count)
{
    return childCount("Nd_GetNumOfEnumEntries", camera, node, NODE_TYPE_ENUMERATION, count);
}

CAM_API_STATUS Nd_GetEnumEntryByIndex(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::uint32_t index,
                                      CAM_NODE_HANDLE* entry)
{
    return childByIndex("Nd_GetEnumEntryByIndex", camera, node, NODE_TYPE_ENUMERATION, index, entry);
}

CAM_API_STATUS Nd_GetEnumEntryStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE entry, char* buffer, std::uint32_t* size)
{
    return nodeCall("Nd_GetEnumEntryStrValue", camera, entry, {number(camera), number(entry), out(buffer), out(size)},
                    [&](const Node& found) -> CAM_API_STATUS {
                        if (found.spec.type != NODE_TYPE_ENUM_ENTRY)
                            return CAM_API_STS_INVALID_PARAMETER;
                        return giveText(found.spec.name, buffer, size);
                    });
}

} // namespace Orvo
