#pragma once

#include "camera/OrvoCamApi.h"
#include "cameralibs/genicam/description/Formula.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace cameralibs {

/// Index of a node in its description.
using NodeId = std::uint32_t;
constexpr NodeId kNoNode = 0xFFFFFFFF;

/// The elements of a GenICam description that are nodes.
enum class Element {
    category,
    integer,
    intReg,
    maskedIntReg,
    structEntry,
    intConverter,
    intSwissKnife,
    boolean,
    command,
    floating,
    floatReg,
    converter,
    swissKnife,
    string,
    stringReg,
    reg,
    enumeration,
    enumEntry,
    port,
    node,
    unknown,
};

/// What can be asked about a node. Value and range are separate, because reading a value does not need the range:
/// Width's maximum may depend on OffsetX, and OffsetX's maximum on Width, without a cycle.
enum class Question : std::size_t { value, range, access };
constexpr std::size_t kQuestions = 3;

/// An element that refers to another node, such as <pValue>Width</pValue>.
struct Reference {
    std::string property; ///< name of the element
    std::string name;     ///< name of the other node
    NodeId target = kNoNode;
    std::int64_t index = 0; ///< the Index attribute of a <pValueIndexed>
};

/// Whether a question can be answered, and whether it needs checks before Aravis evaluates it. Aravis turns some errors
/// into the value 0, and others crash the process.
struct Answerable {
    NodeId faulty = kNoNode;   ///< the node whose fault prevents an answer
    bool needsChecks = false;  ///< evaluating this node or one it depends on may fail
    bool checksItself = false; ///< evaluating this node may fail
    std::uint64_t steps = 0;   ///< upper limit of Aravis' evaluation steps
};

/// The static properties of a node, known without the device.
struct DescribedNode {
    Element element = Element::unknown;
    Orvo::NodeType type = Orvo::NODE_TYPE_UNKNOWN;
    std::string name;
    std::string toolTip;
    std::string description;
    std::string unit;
    std::string symbolic; ///< symbolic name of an enumeration entry
    Orvo::TC_NODE_VISIBILITY visibility = Orvo::NODE_VISIBILITY_BEGINNER;
    Orvo::NodeRepresentation representation = Orvo::NODE_REPRESENTATION_PURE_NUMBER;
    Orvo::FloatDisplayNotation notation = Orvo::FLOAT_DISPLAY_NOTATION_AUTOMATIC;
    std::int64_t precision = 6;

    Orvo::NodeAccessMode ownAccess = Orvo::NODE_ACCESS_MODE_RW; ///< without the effects of other nodes
    Orvo::NodeAccessMode imposedAccess = Orvo::NODE_ACCESS_MODE_RW;
    bool carriedByImages = false; ///< of a port for chunk or event data: its registers are not on the device
    std::int64_t onValue = 1;
    std::int64_t offValue = 0;
    std::optional<std::int64_t> entryValue;     ///< constant value of an enumeration entry
    std::map<std::string, std::string> numbers; ///< texts of <Length>, <LSB>, <MSB> and <Bit>
    std::vector<std::int64_t> constantIndices;  ///< indices of the <ValueIndexed> constants
    std::vector<Formula> formulas;

    std::vector<NodeId> features; ///< of a category, in document order
    std::vector<NodeId> entries;  ///< of an enumeration, in document order
    std::vector<Reference> references;
    std::string fault; ///< why the node is unusable; empty if it is usable
    std::array<Answerable, kQuestions> questions;

    /// The target of the first reference with this name, or kNoNode.
    [[nodiscard]] NodeId link(std::string_view property) const;

    [[nodiscard]] Answerable& to(Question question) { return questions[static_cast<std::size_t>(question)]; }
    [[nodiscard]] const Answerable& to(Question question) const
    {
        return questions[static_cast<std::size_t>(question)];
    }

    /// The first reason is kept.
    void setFault(const std::string& reason);
};

/// The nodes of one camera. Immutable once read, so any thread may use it.
class Description {
public:
    [[nodiscard]] std::size_t size() const noexcept { return m_nodes.size(); }
    [[nodiscard]] const DescribedNode& node(NodeId id) const { return m_nodes[id]; }
    [[nodiscard]] DescribedNode& node(NodeId id) { return m_nodes[id]; }

    /// kNoNode if the name is unknown. Enumeration entries are not found by name, only through their enumeration.
    [[nodiscard]] NodeId find(const std::string& name) const;

    [[nodiscard]] NodeId add(DescribedNode node);

    /// The normalised description for Aravis.
    [[nodiscard]] const std::string& xml() const noexcept { return m_xml; }
    void setXml(std::string xml);

private:
    std::vector<DescribedNode> m_nodes;
    std::unordered_map<std::string, NodeId> m_byName;
    std::string m_xml;
};

/// A question about a node: a vertex of the graph of all evaluations.
struct Evaluation {
    NodeId node;
    Question question;

    [[nodiscard]] std::size_t vertex() const noexcept { return node * kQuestions + static_cast<std::size_t>(question); }
    [[nodiscard]] static Evaluation of(std::size_t vertex) noexcept
    {
        return {static_cast<NodeId>(vertex / kQuestions), static_cast<Question>(vertex % kQuestions)};
    }
};

/// The evaluations that this one needs directly. References to missing nodes are skipped.
[[nodiscard]] std::vector<Evaluation> dependencies(const Description& description, const Evaluation& evaluation);

/// Reads and validates a description. Throws Failure: CAM_API_STS_XML_LOAD_ERR if it is not well-formed,
/// CAM_API_STS_GENICAM_ERR with the name of the node if it cannot be used.
[[nodiscard]] std::shared_ptr<const Description> readDescription(const std::string& xml);

} // namespace cameralibs
