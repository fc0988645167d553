#include "cameralibs/genicam/nodes/NodeMap.h"

#include "cameralibs/genicam/AravisInternals.h"
#include "cameralibs/genicam/nodes/ArvCall.h"

#include <string_view>
#include <utility>

namespace cameralibs {

using namespace Orvo;

namespace {

/// Aravis allocates as many bytes as a register's length node returns, so that value needs a limit.
constexpr std::int64_t kMaxLength = 65536;

} // namespace

NodeMap::NodeMap(std::shared_ptr<const Description> description, ArvDevice* device)
    : m_description(std::move(description))
    , m_gc(arv_gc_new(device, m_description->xml().data(), m_description->xml().size()))
    , m_features(m_description->size(), nullptr)
{
    if (m_gc == nullptr)
        throw Failure(CAM_API_STS_GENICAM_ERR, "The description cannot be evaluated");
    // This library implements caching and access checks; the elements that Aravis needs for them have been removed.
    arv_gc_set_register_cache_policy(m_gc.get(), ARV_REGISTER_CACHE_POLICY_DISABLE);
    arv_gc_set_access_check_policy(m_gc.get(), ARV_ACCESS_CHECK_POLICY_DISABLE);
    for (NodeId id = 0; id < m_description->size(); ++id) {
        EvaluationBudget::check();
        bind(id);
    }
}

void NodeMap::check(NodeId id, Question question) const
{
    const Answerable& answerable = node(id).to(question);
    if (answerable.faulty != kNoNode)
        refuse(id, answerable.faulty, node(answerable.faulty).fault);
    EvaluationBudget::expect(node(id).name, answerable.steps);
    if (!answerable.needsChecks)
        return;
    std::set<std::size_t> done;
    checkNow(id, {id, question}, done);
}

ArvGcFeatureNode* NodeMap::feature(NodeId id) const
{
    if (m_features[id] == nullptr)
        throw Failure(CAM_API_STS_GENICAM_ERR, "[" + node(id).name + "] The node cannot be evaluated");
    return m_features[id];
}

std::int64_t NodeMap::rawInteger(NodeId id) const
{
    ArvGcFeatureNode* const aravis = feature(id);
    const NodeId behind = node(id).link("pValue");
    switch (node(id).type) {
    case NODE_TYPE_INTEGER:
        return arvRead([&](GError** error) { return arv_gc_integer_get_value(ARV_GC_INTEGER(aravis), error); });
    case NODE_TYPE_ENUMERATION:
        return arvRead(
            [&](GError** error) { return arv_gc_enumeration_get_int_value(ARV_GC_ENUMERATION(aravis), error); });
    case NODE_TYPE_BOOLEAN:
        // Aravis compares only 32 bits of OnValue and OffValue.
        if (behind != kNoNode)
            return rawInteger(behind) == node(id).onValue ? 1 : 0;
        return arvRead([&](GError** error) { return arv_gc_boolean_get_value(ARV_GC_BOOLEAN(aravis), error); });
    default:
        return rawNumber(id) != 0.0 ? 1 : 0;
    }
}

double NodeMap::rawNumber(NodeId id) const
{
    if (node(id).type != NODE_TYPE_FLOAT)
        return static_cast<double>(rawInteger(id));
    return arvRead([&](GError** error) { return arv_gc_float_get_value(ARV_GC_FLOAT(feature(id)), error); });
}

void NodeMap::checkConversion(NodeId id, double value) const
{
    for (NodeId at = id; at != kNoNode; at = node(at).link("pValue")) {
        for (const Formula& formula : node(at).formulas) {
            if (formula.input != "FROM" || !formula.mayFail())
                continue;
            EvaluationBudget::expect(node(at).name, node(at).to(Question::value).steps);
            const FormulaResult result = evaluateNow(formula, value);
            if (!result.error.empty()) {
                throw Failure(CAM_API_STS_GENICAM_ERR,
                              "[" + node(at).name + "] \"" + formula.text + "\": " + result.error);
            }
            value = result.number;
        }
    }
}

void NodeMap::bind(NodeId id)
{
    const DescribedNode& described = node(id);
    // Entries are bound with their enumeration. If several nodes have the same name, only the last one is used.
    if (described.element == Element::enumEntry || m_description->find(described.name) != id)
        return;
    ArvGcNode* const found = arv_gc_get_node(m_gc.get(), described.name.c_str());
    if (!ARV_IS_GC_FEATURE_NODE(found))
        return;
    m_features[id] = ARV_GC_FEATURE_NODE(found);
    if (ARV_IS_GC_ENUMERATION(found))
        bindEntries(described, ARV_GC_ENUMERATION(found));
}

void NodeMap::bindEntries(const DescribedNode& described, ArvGcEnumeration* enumeration)
{
    std::vector<std::string_view> names;
    for (const NodeId entry : described.entries)
        names.push_back(node(entry).name);
    std::vector<ArvGcFeatureNode*> listed;
    std::vector<std::string_view> listedNames;
    for (const GSList* item = arv_gc_enumeration_get_entries(enumeration); item != nullptr; item = item->next) {
        auto* const entry = ARV_GC_FEATURE_NODE(item->data);
        const char* const name = arv_gc_feature_node_get_name(entry);
        listed.push_back(entry);
        listedNames.emplace_back(name != nullptr ? name : "");
    }
    const std::vector<std::size_t> matches = matchEntries(names, listedNames);
    for (std::size_t i = 0; i < matches.size(); ++i) {
        if (matches[i] != kNoMatch)
            m_features[described.entries[matches[i]]] = listed[i];
    }
}

// Depth first, so that a check can rely on the nodes it depends on.
void NodeMap::checkNow(NodeId asked, const Evaluation& evaluation, std::set<std::size_t>& done) const
{
    const Answerable& answerable = node(evaluation.node).to(evaluation.question);
    if (!answerable.needsChecks || !done.insert(evaluation.vertex()).second)
        return;
    for (const Evaluation& behind : dependencies(*m_description, evaluation))
        checkNow(asked, behind, done);
    // Even a cheap check counts, because there may be many.
    EvaluationBudget::expect(node(evaluation.node).name, answerable.checksItself ? answerable.steps : 1);
    if (answerable.checksItself) {
        if (const std::string error = errorNow(evaluation.node); !error.empty())
            refuse(asked, evaluation.node, error);
    }
}

void NodeMap::refuse(NodeId asked, NodeId failing, const std::string& error) const
{
    throw Failure(CAM_API_STS_GENICAM_ERR, (failing == asked ? "" : "[" + node(asked).name + "] ") + error);
}

std::string NodeMap::errorNow(NodeId id) const
{
    const std::string name = "[" + node(id).name + "] ";
    if (const NodeId length = node(id).link("pLength"); length != kNoNode) {
        const std::int64_t bytes = rawInteger(length);
        if (bytes < 1 || bytes > kMaxLength)
            return name + "No register has " + std::to_string(bytes) + " bytes";
    }
    for (const Formula& formula : node(id).formulas) {
        if (!formula.input.empty() || !formula.mayFail())
            continue;
        if (const FormulaResult result = evaluateNow(formula, 0.0); !result.error.empty())
            return name + "\"" + formula.text + "\": " + result.error;
    }
    return {};
}

FormulaResult NodeMap::evaluateNow(const Formula& formula, double input) const
{
    FormulaResult result =
        evaluate(formula, input, [this](const std::string& name) { return rawNumber(m_description->find(name)); });
    EvaluationBudget::check();
    return result;
}

} // namespace cameralibs
