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

/// A node's place in its description.
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

/// What can be asked of a node. A range does not enter a value: Width's maximum may depend on OffsetX and OffsetX's on
/// Width.
enum class Question : std::size_t { value, range, access };
constexpr std::size_t kQuestions = 3;

/// One element that names another node, such as <pValue>Width</pValue>.
struct Reference {
    std::string property; ///< the element's name
    std::string name;     ///< the name it gives
    NodeId target = kNoNode;
    std::int64_t index = 0; ///< of a <pValueIndexed>: the index it is for
};

/// Whether a question can be answered at all, and whether something has to be looked at before Aravis is asked: it
/// takes some errors for a value of 0, and others end the process.
struct Answerable {
    NodeId faulty = kNoNode;   ///< the node whose fault prevents it
    bool needsChecks = false;  ///< a node behind the answer may fail while it is evaluated
    bool checksItself = false; ///< this one may
    std::uint64_t steps = 0;   ///< that Aravis takes to answer, at most
};

/// A node as its description tells it, without the device.
struct DescribedNode {
    Element element = Element::unknown;
    Orvo::NodeType type = Orvo::NODE_TYPE_UNKNOWN;
    std::string name;
    std::string toolTip;
    std::string description;
    std::string unit;
    std::string symbolic; ///< of an entry: its symbolic name
    Orvo::TC_NODE_VISIBILITY visibility = Orvo::NODE_VISIBILITY_BEGINNER;
    Orvo::NodeRepresentation representation = Orvo::NODE_REPRESENTATION_PURE_NUMBER;
    Orvo::FloatDisplayNotation notation = Orvo::FLOAT_DISPLAY_NOTATION_AUTOMATIC;
    std::int64_t precision = 6;

    Orvo::NodeAccessMode ownAccess = Orvo::NODE_ACCESS_MODE_RW; ///< before anything else is looked at
    Orvo::NodeAccessMode imposedAccess = Orvo::NODE_ACCESS_MODE_RW;
    bool carriedByImages = false; ///< of a port: its registers come with images or events, not from the device
    std::int64_t onValue = 1;
    std::int64_t offValue = 0;
    std::optional<std::int64_t> entryValue;     ///< of an entry whose value is a number
    std::map<std::string, std::string> numbers; ///< <Length>, <LSB>, <MSB> and <Bit> as they stand
    std::vector<std::int64_t> constantIndices;  ///< of the <ValueIndexed> elements: constants of the node itself
    std::vector<Formula> formulas;

    std::vector<NodeId> features; ///< of a category, in the order of the description
    std::vector<NodeId> entries;  ///< of an enumeration, in the order of the description
    std::vector<Reference> references;
    std::string fault; ///< what makes the node unusable; empty where nothing does
    std::array<Answerable, kQuestions> questions;

    /// The node that the first element of this name refers to, kNoNode without one.
    [[nodiscard]] NodeId link(std::string_view property) const;

    [[nodiscard]] Answerable& to(Question question) { return questions[static_cast<std::size_t>(question)]; }
    [[nodiscard]] const Answerable& to(Question question) const
    {
        return questions[static_cast<std::size_t>(question)];
    }

    /// Keeps the first reason that is given.
    void setFault(const std::string& reason);
};

/// The nodes of one camera. Does not change once it is read, so that any thread may look at it.
class Description {
public:
    [[nodiscard]] std::size_t size() const noexcept { return m_nodes.size(); }
    [[nodiscard]] const DescribedNode& node(NodeId id) const { return m_nodes[id]; }
    [[nodiscard]] DescribedNode& node(NodeId id) { return m_nodes[id]; }

    /// kNoNode for an unknown name. Entries of enumerations are found through their enumeration only.
    [[nodiscard]] NodeId find(const std::string& name) const;

    [[nodiscard]] NodeId add(DescribedNode node);

    /// The description in the form that Aravis reads.
    [[nodiscard]] const std::string& xml() const noexcept { return m_xml; }
    void setXml(std::string xml);

private:
    std::vector<DescribedNode> m_nodes;
    std::unordered_map<std::string, NodeId> m_byName;
    std::string m_xml;
};

/// Throws Failure: CAM_API_STS_XML_LOAD_ERR for a text that is not well-formed, CAM_API_STS_GENICAM_ERR for what cannot
/// be used, with a text that names the node.
[[nodiscard]] std::shared_ptr<const Description> readDescription(const std::string& xml);

} // namespace cameralibs
