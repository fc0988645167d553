#pragma once

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/genicam/description/Description.h"

#include <arv.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace cameralibs {

/// The nodes of an opened camera, evaluated on its device. Not thread-safe, because Aravis keeps state in its nodes.
/// All functions throw Failure.
class NodeMap {
public:
    /// `device` must outlive the map. Not to be constructed concurrently, because Aravis parses one description at a
    /// time.
    NodeMap(std::shared_ptr<const Description> description, ArvDevice* device);
    NodeMap(const NodeMap&) = delete;
    NodeMap& operator=(const NodeMap&) = delete;

    [[nodiscard]] const Description& description() const noexcept { return *m_description; }
    [[nodiscard]] const DescribedNode& node(NodeId id) const { return m_description->node(id); }

    /// Throws if Aravis cannot answer the question. To be called before Aravis evaluates the node.
    void check(NodeId id, Question question) const;

    /// The node of Aravis.
    [[nodiscard]] ArvGcFeatureNode* feature(NodeId id) const;

    // The value as flags, selectors and formulas use it, regardless of the access mode. check() comes first.
    [[nodiscard]] std::int64_t rawInteger(NodeId id) const;
    [[nodiscard]] double rawNumber(NodeId id) const;

    /// Throws if a converter between the node and the device cannot convert `value`. Aravis would ignore the formula's
    /// error and write a wrong value.
    void checkConversion(NodeId id, double value) const;

private:
    void bind(NodeId id);
    void bindEntries(const DescribedNode& described, ArvGcEnumeration* enumeration);
    void checkNow(NodeId asked, const Evaluation& evaluation, std::set<std::size_t>& done) const;
    [[noreturn]] void refuse(NodeId asked, NodeId failing, const std::string& error) const;

    /// Empty if there is no error.
    [[nodiscard]] std::string errorNow(NodeId id) const;
    [[nodiscard]] FormulaResult evaluateNow(const Formula& formula, double input) const;

    const std::shared_ptr<const Description> m_description;
    const GObjectPointer<ArvGc> m_gc;
    std::vector<ArvGcFeatureNode*> m_features; ///< indexed by NodeId; owned by m_gc
};

} // namespace cameralibs
