#pragma once

#include "cameralibs/genicam/description/Dependencies.h"
#include "cameralibs/genicam/description/Description.h"

#include <arv.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace cameralibs {

/// The nodes of an opened camera, ready to be evaluated on its device. One thread at a time: Aravis keeps results
/// within its nodes. All throw Failure.
class NodeMap {
public:
    /// The device outlives the map. Construct one at a time per process.
    NodeMap(std::shared_ptr<const Description> description, ArvDevice* device);
    NodeMap(const NodeMap&) = delete;
    NodeMap& operator=(const NodeMap&) = delete;

    [[nodiscard]] const Description& description() const noexcept { return *m_description; }
    [[nodiscard]] const DescribedNode& node(NodeId id) const { return m_description->node(id); }

    /// Comes before Aravis is asked: whether it can answer.
    void check(NodeId id, Question question) const;

    /// Aravis' node.
    [[nodiscard]] ArvGcFeatureNode* feature(NodeId id) const;

    // What flags, selectors and formulas take from a node, whatever its access mode. Checked before.
    [[nodiscard]] std::int64_t rawInteger(NodeId id) const;
    [[nodiscard]] double rawNumber(NodeId id) const;

    /// `value` as the converters on its way to the device take it. Aravis writes what it can make of a formula's error.
    void checkConversion(NodeId id, double value) const;

private:
    void bind(NodeId id);
    void checkNow(NodeId asked, const Evaluation& evaluation, std::set<std::size_t>& done) const;
    [[noreturn]] void refuse(NodeId asked, NodeId failing, const std::string& error) const;

    /// Empty without one.
    [[nodiscard]] std::string errorNow(NodeId id) const;
    [[nodiscard]] FormulaResult evaluateNow(const Formula& formula, double input) const;

    struct Unref {
        void operator()(ArvGc* gc) const { g_object_unref(gc); }
    };

    const std::shared_ptr<const Description> m_description;
    const std::unique_ptr<ArvGc, Unref> m_gc;
    std::vector<ArvGcFeatureNode*> m_features; ///< by NodeId; they belong to m_gc
};

} // namespace cameralibs
