#include "cameralibs/genicam/nodes/NodeOperations.h"

#include "cameralibs/genicam/nodes/AccessRule.h"
#include "cameralibs/genicam/nodes/ArvCall.h"

#include <algorithm>
#include <optional>

namespace cameralibs {

using namespace Orvo;

namespace {

ArvGcEnumeration* enumerationNode(const NodeMap& nodes, NodeId id)
{
    throwUnless(nodes.node(id).type == NODE_TYPE_ENUMERATION, CAM_API_STS_INVALID_PARAMETER);
    return ARV_GC_ENUMERATION(nodes.feature(id));
}

/// The value of an entry; nullopt if it cannot be determined, so that the entry never matches.
std::optional<std::int64_t> entryNumber(const NodeMap& nodes, NodeId entry)
{
    const DescribedNode& described = nodes.node(entry);
    if (described.entryValue || described.to(Question::value).faulty != kNoNode)
        return described.entryValue;
    nodes.check(entry, Question::value);
    ArvGcEnumEntry* node = ARV_GC_ENUM_ENTRY(nodes.feature(entry));
    return arvRead([&](GError** error) { return arv_gc_enum_entry_get_value(node, error); });
}

bool canBeChosen(const NodeMap& nodes, NodeId entry)
{
    return accessMode(nodes, entry) == NODE_ACCESS_MODE_RO;
}

/// The entry with this value, or kNoNode. If several entries have it, an available one.
NodeId entryOf(const NodeMap& nodes, NodeId id, std::int64_t number)
{
    std::vector<NodeId> candidates;
    for (const NodeId entry : nodes.node(id).entries) {
        if (entryNumber(nodes, entry) == number)
            candidates.push_back(entry);
    }
    if (candidates.empty())
        return kNoNode;
    if (candidates.size() == 1)
        return candidates.front();
    const auto chosen =
        std::find_if(candidates.begin(), candidates.end(), [&](NodeId entry) { return canBeChosen(nodes, entry); });
    return chosen != candidates.end() ? *chosen : candidates.front();
}

/// Aravis evaluates all entries before it writes.
void expectEntries(const NodeMap& nodes, NodeId id)
{
    std::uint64_t steps = 0;
    for (const NodeId entry : nodes.node(id).entries)
        steps += nodes.node(entry).to(Question::value).steps + nodes.node(entry).to(Question::access).steps;
    EvaluationBudget::expect(nodes.node(id).name, steps);
}

void choose(NodeMap& nodes, NodeId id, ArvGcEnumeration* node, NodeId entry)
{
    throwUnless(entry != kNoNode && canBeChosen(nodes, entry), CAM_API_STS_INVALID_PARAMETER);
    nodes.check(entry, Question::value);
    const std::int64_t number = entryNumber(nodes, entry).value();
    expectEntries(nodes, id);
    arvWrite([&](GError** error) { return arv_gc_enumeration_set_int_value(node, number, error); });
}

} // namespace

std::int64_t readEnumerationNumber(const NodeMap& nodes, NodeId id)
{
    (void)enumerationNode(nodes, id);
    requireReadable(nodes, id);
    nodes.check(id, Question::value);
    return nodes.rawInteger(id);
}

std::string readEnumerationName(const NodeMap& nodes, NodeId id)
{
    const std::int64_t number = readEnumerationNumber(nodes, id);
    const NodeId entry = entryOf(nodes, id, number);
    if (entry == kNoNode) {
        throw Failure(CAM_API_STS_GENICAM_ERR,
                      "[" + nodes.node(id).name + "] No entry has the value " + std::to_string(number));
    }
    return nodes.node(entry).symbolic;
}

void writeEnumerationNumber(NodeMap& nodes, NodeId id, std::int64_t value)
{
    ArvGcEnumeration* node = enumerationNode(nodes, id);
    requireWritable(nodes, id);
    nodes.check(id, Question::value);
    choose(nodes, id, node, entryOf(nodes, id, value));
}

void writeEnumerationName(NodeMap& nodes, NodeId id, const std::string& symbolic)
{
    ArvGcEnumeration* node = enumerationNode(nodes, id);
    requireWritable(nodes, id);
    nodes.check(id, Question::value);
    const auto& entries = nodes.node(id).entries;
    const auto entry = std::find_if(entries.begin(), entries.end(),
                                    [&](NodeId candidate) { return nodes.node(candidate).symbolic == symbolic; });
    choose(nodes, id, node, entry == entries.end() ? kNoNode : *entry);
}

} // namespace cameralibs
