#include "NodeMap.h"

#include "cameralibs/api/ArvCall.h"

#include <utility>

namespace orvo {

using namespace Orvo;

NodeMap::NodeMap(std::shared_ptr<const Description> description, ArvDevice* device)
    : m_description(std::move(description))
    , m_gc(arv_gc_new(device, m_description->xml().data(), m_description->xml().size()))
    , m_nodes(m_description->size(), nullptr)
{
    throwUnless(m_gc != nullptr, CAM_API_STS_GENICAM_ERR);
    for (NodeId id = 0; id < m_description->size(); ++id)
        bind(id);
}

NodeMap::~NodeMap()
{
    g_object_unref(m_gc);
}

void NodeMap::bind(NodeId id)
{
    const DescribedNode& described = node(id);
    // Entries come with their enumeration; of nodes with one name only the last is in use.
    if (described.element == Element::enumEntry || m_description->find(described.name) != id)
        return;
    ArvGcNode* found = arv_gc_get_node(m_gc, described.name.c_str());
    if (!ARV_IS_GC_FEATURE_NODE(found))
        return;
    m_nodes[id] = ARV_GC_FEATURE_NODE(found);
    if (!ARV_IS_GC_ENUMERATION(found))
        return;
    // Aravis lists entries from the last to the first.
    auto entry = described.entries.rbegin();
    for (const GSList* item = arv_gc_enumeration_get_entries(ARV_GC_ENUMERATION(found));
         item != nullptr && entry != described.entries.rend(); item = item->next, ++entry)
        m_nodes[*entry] = ARV_GC_FEATURE_NODE(item->data);
}

ArvGcFeatureNode* NodeMap::evaluable(NodeId id) const
{
    if (!node(id).fault.empty())
        throw Failure(CAM_API_STS_GENICAM_ERR, node(id).fault);
    if (m_nodes[id] == nullptr)
        throw Failure(CAM_API_STS_GENICAM_ERR, "[" + node(id).name + "] The node cannot be evaluated");
    return m_nodes[id];
}

std::int64_t NodeMap::rawNumber(NodeId id) const
{
    ArvGcFeatureNode* feature = evaluable(id);
    switch (node(id).type) {
    case NODE_TYPE_INTEGER:
        return arvCall([&](GError** error) { return arv_gc_integer_get_value(ARV_GC_INTEGER(feature), error); });
    case NODE_TYPE_ENUMERATION:
        return arvCall(
            [&](GError** error) { return arv_gc_enumeration_get_int_value(ARV_GC_ENUMERATION(feature), error); });
    case NODE_TYPE_FLOAT: {
        const double number =
            arvCall([&](GError** error) { return arv_gc_float_get_value(ARV_GC_FLOAT(feature), error); });
        return number != 0.0 ? 1 : 0;
    }
    case NODE_TYPE_BOOLEAN: {
        const NodeId target = node(id).link("pValue");
        if (target != kNoNode)
            return rawNumber(target) == node(id).onValue ? 1 : 0;
        return arvCall([&](GError** error) { return arv_gc_boolean_get_value(ARV_GC_BOOLEAN(feature), error); }) ? 1
                                                                                                                 : 0;
    }
    default:
        throw Failure(CAM_API_STS_GENICAM_ERR, "[" + node(id).name + "] The node has no number");
    }
}

} // namespace orvo
