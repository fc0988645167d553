#include "cameralibs/api/exports/Barrier.h"
#include "cameralibs/genicam/nodes/NodeOperations.h"

#include <string>

using namespace cameralibs;

namespace Orvo {

namespace {

/// `*value = read(nodes, id)`.
template <class Value, class Result>
CAM_API_STATUS give(CAM_HANDLE camera, CAM_NODE_HANDLE node, Result (*read)(const NodeMap&, NodeId), Value* value,
                    const char* function = __builtin_FUNCTION())
{
    return onNode(
        camera, node, {value}, [&](NodeMap& nodes, NodeId id) { *value = read(nodes, id); }, function);
}

} // namespace

extern "C" {

// The getters note the image sizes and formats that the program sees, so that every buffer has memory for such an
// image.

CAM_API_STATUS Nd_GetIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* value)
{
    return onNodeOfCamera(camera, node, {value}, [&](Camera& opened, NodeMap& nodes, NodeId id) {
        *value = readInteger(nodes, id);
        opened.reportedImages().note(id, *value);
    });
}

CAM_API_STATUS Nd_GetEnumIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* value)
{
    return onNodeOfCamera(camera, node, {value}, [&](Camera& opened, NodeMap& nodes, NodeId id) {
        *value = readEnumerationNumber(nodes, id);
        opened.reportedImages().note(id, *value);
    });
}

CAM_API_STATUS Nd_GetEnumStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return onNodeOfCamera(camera, node, {size}, [&](Camera& opened, NodeMap& nodes, NodeId id) {
        const std::string entry = readEnumerationName(nodes, id);
        opened.reportedImages().note(id, entry);
        giveText(entry, buffer, size);
    });
}

CAM_API_STATUS Nd_GetIntMin(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* value)
{
    return give(camera, node, integerMinimum, value);
}

CAM_API_STATUS Nd_GetIntMax(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* value)
{
    return give(camera, node, integerMaximum, value);
}

CAM_API_STATUS Nd_GetIntInc(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* value)
{
    return give(camera, node, integerIncrement, value);
}

CAM_API_STATUS Nd_GetFloatValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* value)
{
    return give(camera, node, readFloat, value);
}

CAM_API_STATUS Nd_GetFloatMin(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* value)
{
    return give(camera, node, floatMinimum, value);
}

CAM_API_STATUS Nd_GetFloatMax(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* value)
{
    return give(camera, node, floatMaximum, value);
}

CAM_API_STATUS Nd_GetFloatInc(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* value)
{
    return give(camera, node, floatIncrement, value);
}

CAM_API_STATUS Nd_GetFloatHasInc(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool* hasInc)
{
    return give(camera, node, floatHasIncrement, hasInc);
}

CAM_API_STATUS Nd_GetBoolValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool* value)
{
    return give(camera, node, readBoolean, value);
}

CAM_API_STATUS Nd_GetStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    return onNode(camera, node, {size},
                  [&](NodeMap& nodes, NodeId id) { giveText(readText(nodes, id), buffer, size); });
}

CAM_API_STATUS Nd_SetIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t value, bool verify)
{
    return onNode(camera, node, {}, [&](NodeMap& nodes, NodeId id) { writeInteger(nodes, id, value, verify); });
}

CAM_API_STATUS Nd_SetFloatValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, double value, bool verify)
{
    return onNode(camera, node, {}, [&](NodeMap& nodes, NodeId id) { writeFloat(nodes, id, value, verify); });
}

// The other types have neither a range nor an increment to verify.

CAM_API_STATUS Nd_SetBoolValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool value, bool)
{
    return onNode(camera, node, {}, [&](NodeMap& nodes, NodeId id) { writeBoolean(nodes, id, value); });
}

CAM_API_STATUS Nd_SetStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, const char* value, bool)
{
    return onNode(camera, node, {value}, [&](NodeMap& nodes, NodeId id) { writeText(nodes, id, value); });
}

CAM_API_STATUS Nd_SetEnumStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, const char* value, bool)
{
    return onNode(camera, node, {value}, [&](NodeMap& nodes, NodeId id) { writeEnumerationName(nodes, id, value); });
}

CAM_API_STATUS Nd_SetEnumIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t value, bool)
{
    return onNode(camera, node, {}, [&](NodeMap& nodes, NodeId id) { writeEnumerationNumber(nodes, id, value); });
}

CAM_API_STATUS Nd_CmdExecute(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool)
{
    return onNode(camera, node, {}, [](NodeMap& nodes, NodeId id) { executeCommand(nodes, id); });
}

} // extern "C"

} // namespace Orvo
