#include "TextOperations.h"

#include "cameralibs/api/AccessRule.h"
#include "cameralibs/api/ArvCall.h"

namespace orvo {

using namespace Orvo;

namespace {

ArvGcFeatureNode* nodeOfType(const NodeMap& nodes, NodeId id, NodeType type)
{
    throwUnless(nodes.node(id).type == type, CAM_API_STS_INVALID_PARAMETER);
    return nodes.evaluable(id);
}

} // namespace

std::string readText(const NodeMap& nodes, NodeId id)
{
    ArvGcString* node = ARV_GC_STRING(nodeOfType(nodes, id, NODE_TYPE_STRING));
    requireReadable(nodes, id);
    const char* text = arvCall([&](GError** error) { return arv_gc_string_get_value(node, error); });
    return text == nullptr ? "" : text;
}

void writeText(NodeMap& nodes, NodeId id, const char* text)
{
    ArvGcString* node = ARV_GC_STRING(nodeOfType(nodes, id, NODE_TYPE_STRING));
    requireWritable(nodes, id);
    arvCall([&](GError** error) { arv_gc_string_set_value(node, text, error); });
}

bool readBoolean(const NodeMap& nodes, NodeId id)
{
    (void)nodeOfType(nodes, id, NODE_TYPE_BOOLEAN);
    requireReadable(nodes, id);
    return nodes.rawNumber(id) != 0;
}

void writeBoolean(NodeMap& nodes, NodeId id, bool value)
{
    ArvGcBoolean* node = ARV_GC_BOOLEAN(nodeOfType(nodes, id, NODE_TYPE_BOOLEAN));
    requireWritable(nodes, id);
    arvCall([&](GError** error) { arv_gc_boolean_set_value(node, value ? TRUE : FALSE, error); });
}

void executeCommand(NodeMap& nodes, NodeId id)
{
    ArvGcCommand* node = ARV_GC_COMMAND(nodeOfType(nodes, id, NODE_TYPE_COMMAND));
    requireWritable(nodes, id);
    arvCall([&](GError** error) { arv_gc_command_execute(node, error); });
}

} // namespace orvo
