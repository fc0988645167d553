#include "cameralibs/genicam/nodes/NodeOperations.h"

#include "cameralibs/genicam/nodes/AccessRule.h"
#include "cameralibs/genicam/nodes/ArvCall.h"

namespace cameralibs {

using namespace Orvo;

namespace {

ArvGcFeatureNode* nodeOfType(const NodeMap& nodes, NodeId id, NodeType type)
{
    throwUnless(nodes.node(id).type == type, CAM_API_STS_INVALID_PARAMETER);
    return nodes.feature(id);
}

} // namespace

std::string readText(const NodeMap& nodes, NodeId id)
{
    ArvGcString* node = ARV_GC_STRING(nodeOfType(nodes, id, NODE_TYPE_STRING));
    requireReadable(nodes, id);
    nodes.check(id, Question::value);
    const char* text = arvRead([&](GError** error) { return arv_gc_string_get_value(node, error); });
    return text == nullptr ? "" : text;
}

void writeText(NodeMap& nodes, NodeId id, const char* text)
{
    ArvGcString* node = ARV_GC_STRING(nodeOfType(nodes, id, NODE_TYPE_STRING));
    requireWritable(nodes, id);
    nodes.check(id, Question::value);
    arvWrite([&](GError** error) { arv_gc_string_set_value(node, text, error); });
}

bool readBoolean(const NodeMap& nodes, NodeId id)
{
    (void)nodeOfType(nodes, id, NODE_TYPE_BOOLEAN);
    requireReadable(nodes, id);
    nodes.check(id, Question::value);
    return nodes.rawInteger(id) != 0;
}

void writeBoolean(NodeMap& nodes, NodeId id, bool value)
{
    ArvGcFeatureNode* const node = nodeOfType(nodes, id, NODE_TYPE_BOOLEAN);
    requireWritable(nodes, id);
    nodes.check(id, Question::value);
    const NodeId behind = nodes.node(id).link("pValue");
    if (behind == kNoNode) {
        arvWrite([&](GError** error) { arv_gc_boolean_set_value(ARV_GC_BOOLEAN(node), value ? TRUE : FALSE, error); });
        return;
    }
    // Aravis writes only 32 bits of OnValue and OffValue.
    const std::int64_t number = value ? nodes.node(id).onValue : nodes.node(id).offValue;
    nodes.checkConversion(behind, static_cast<double>(number));
    arvWrite([&](GError** error) { arv_gc_integer_set_value(ARV_GC_INTEGER(nodes.feature(behind)), number, error); });
}

void executeCommand(NodeMap& nodes, NodeId id)
{
    ArvGcCommand* node = ARV_GC_COMMAND(nodeOfType(nodes, id, NODE_TYPE_COMMAND));
    requireWritable(nodes, id);
    nodes.check(id, Question::value);
    arvWrite([&](GError** error) { arv_gc_command_execute(node, error); });
}

} // namespace cameralibs
