#include "cameralibs/api/exports/Barrier.h"
#include "cameralibs/genicam/nodes/AccessRule.h"

using namespace cameralibs;

namespace Orvo {

namespace {

void requireType(const DescribedNode& node, NodeType type)
{
    throwUnless(node.type == type, CAM_API_STS_INVALID_PARAMETER);
}

CAM_API_STATUS giveNodeText(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::string DescribedNode::*text, char* buffer,
                            std::uint32_t* size, const char* function = __builtin_FUNCTION())
{
    return onDescribedNode(
        camera, node, {size},
        [&](const Camera& opened, NodeId id) { giveText(opened.description().node(id).*text, buffer, size); },
        function);
}

/// The handle of a node in the list.
CAM_NODE_HANDLE childAt(const Camera& camera, const std::vector<NodeId>& children, std::uint32_t index)
{
    throwUnless(index < children.size(), CAM_API_STS_INVALID_PARAMETER);
    return camera.handleOf(children[index]);
}

} // namespace

extern "C" {

CAM_API_STATUS Nd_GetNode(CAM_HANDLE camera, const char* name, CAM_NODE_HANDLE* node)
{
    return onCamera(camera, [&](System&, const Camera& opened) {
        requirePointers({name, node});
        *node = 0;
        const NodeId id = opened.description().find(name);
        throwUnless(id != kNoNode, CAM_API_STS_NOT_FOUND);
        *node = opened.handleOf(id);
    });
}

CAM_API_STATUS Nd_GetNumOfFeatures(CAM_HANDLE camera, CAM_NODE_HANDLE category, std::uint32_t* count)
{
    return onDescribedNode(camera, category, {count}, [&](const Camera& opened, NodeId id) {
        const DescribedNode& node = opened.description().node(id);
        requireType(node, NODE_TYPE_CATEGORY);
        *count = static_cast<std::uint32_t>(node.features.size());
    });
}

CAM_API_STATUS Nd_GetFeatureByIndex(CAM_HANDLE camera, CAM_NODE_HANDLE category, std::uint32_t index,
                                    CAM_NODE_HANDLE* child)
{
    return onDescribedNode(camera, category, {child}, [&](const Camera& opened, NodeId id) {
        const DescribedNode& node = opened.description().node(id);
        requireType(node, NODE_TYPE_CATEGORY);
        *child = childAt(opened, node.features, index);
    });
}

CAM_API_STATUS Nd_GetName(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return giveNodeText(camera, node, &DescribedNode::name, buffer, size);
}

CAM_API_STATUS Nd_GetDescription(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return giveNodeText(camera, node, &DescribedNode::description, buffer, size);
}

CAM_API_STATUS Nd_GetToolTip(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return giveNodeText(camera, node, &DescribedNode::toolTip, buffer, size);
}

CAM_API_STATUS Nd_GetUnit(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return giveNodeText(camera, node, &DescribedNode::unit, buffer, size);
}

CAM_API_STATUS Nd_GetType(CAM_HANDLE camera, CAM_NODE_HANDLE node, NodeType* type)
{
    return onDescribedNode(camera, node, {type},
                           [&](const Camera& opened, NodeId id) { *type = opened.description().node(id).type; });
}

CAM_API_STATUS Nd_GetAccessMode(CAM_HANDLE camera, CAM_NODE_HANDLE node, NodeAccessMode* mode)
{
    return onNode(camera, node, {mode}, [&](NodeMap& nodes, NodeId id) { *mode = accessMode(nodes, id); });
}

CAM_API_STATUS Nd_GetVisibility(CAM_HANDLE camera, CAM_NODE_HANDLE node, TC_NODE_VISIBILITY* visibility)
{
    return onDescribedNode(camera, node, {visibility}, [&](const Camera& opened, NodeId id) {
        *visibility = opened.description().node(id).visibility;
    });
}

CAM_API_STATUS Nd_GetRepresentation(CAM_HANDLE camera, CAM_NODE_HANDLE node, NodeRepresentation* representation)
{
    return onDescribedNode(camera, node, {representation}, [&](const Camera& opened, NodeId id) {
        const DescribedNode& described = opened.description().node(id);
        const bool number = described.type == NODE_TYPE_INTEGER || described.type == NODE_TYPE_FLOAT;
        *representation = number ? described.representation : NODE_REPRESENTATION_PURE_NUMBER;
    });
}

CAM_API_STATUS Nd_GetFloatDisplayNotation(CAM_HANDLE camera, CAM_NODE_HANDLE node, FloatDisplayNotation* notation)
{
    return onDescribedNode(camera, node, {notation}, [&](const Camera& opened, NodeId id) {
        const DescribedNode& described = opened.description().node(id);
        requireType(described, NODE_TYPE_FLOAT);
        *notation = described.notation;
    });
}

CAM_API_STATUS Nd_GetFloatDisplayPrecision(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* precision)
{
    return onDescribedNode(camera, node, {precision}, [&](const Camera& opened, NodeId id) {
        const DescribedNode& described = opened.description().node(id);
        requireType(described, NODE_TYPE_FLOAT);
        *precision = described.precision;
    });
}

CAM_API_STATUS Nd_GetNumOfEnumEntries(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::uint32_t* count)
{
    return onDescribedNode(camera, node, {count}, [&](const Camera& opened, NodeId id) {
        const DescribedNode& described = opened.description().node(id);
        requireType(described, NODE_TYPE_ENUMERATION);
        *count = static_cast<std::uint32_t>(described.entries.size());
    });
}

CAM_API_STATUS Nd_GetEnumEntryByIndex(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::uint32_t index,
                                      CAM_NODE_HANDLE* entry)
{
    return onDescribedNode(camera, node, {entry}, [&](const Camera& opened, NodeId id) {
        const DescribedNode& described = opened.description().node(id);
        requireType(described, NODE_TYPE_ENUMERATION);
        *entry = childAt(opened, described.entries, index);
    });
}

CAM_API_STATUS Nd_GetEnumEntryStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE entry, char* buffer, std::uint32_t* size)
{
    return onDescribedNode(camera, entry, {size}, [&](const Camera& opened, NodeId id) {
        const DescribedNode& described = opened.description().node(id);
        requireType(described, NODE_TYPE_ENUM_ENTRY);
        giveText(described.symbolic, buffer, size);
    });
}

} // extern "C"

} // namespace Orvo
