#include "cameralibs/genicam/description/Validator.h"

#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/EvaluationBudget.h"
#include "cameralibs/genicam/description/DescriptionReader.h"
#include "cameralibs/genicam/description/Graph.h"
#include "cameralibs/genicam/description/XmlDocument.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace cameralibs {

using namespace Orvo;

namespace {

[[noreturn]] void refuse(const DescribedNode& node, const std::string& reason)
{
    throw Failure(CAM_API_STS_GENICAM_ERR, "[" + node.name + "] " + reason);
}

// Categories

/// Features directly in Root have depth 1.
constexpr std::uint32_t kMaxDepth = 256;
/// Rows of a tree with all features. A category that is listed twice counts twice.
constexpr std::uint64_t kMaxRows = 65536;

void checkCategories(const Description& description)
{
    const NodeId root = description.find("Root");
    if (root == kNoNode || description.node(root).type != NODE_TYPE_CATEGORY)
        throw Failure(CAM_API_STS_GENICAM_ERR, "The description has no category named \"Root\"");
    const GraphReport report = examineGraph(description.size(), [&](std::size_t id) {
        const auto& features = description.node(static_cast<NodeId>(id)).features;
        return std::vector<std::size_t>(features.begin(), features.end());
    });
    if (report.onCycle)
        refuse(description.node(static_cast<NodeId>(*report.onCycle)), "The category contains itself");
    if (report.depth[root] - 1 > kMaxDepth)
        refuse(description.node(root), "The categories are nested more than " + std::to_string(kMaxDepth) + " deep");
    if (report.reached[root] - 1 > kMaxRows)
        refuse(description.node(root), "The categories list more than " + std::to_string(kMaxRows) + " features");
}

// Registers

constexpr long long kMaxLength = 65536;
constexpr long long kMaxIntegerLength = 8;

bool isRegister(Element element)
{
    switch (element) {
    case Element::intReg:
    case Element::maskedIntReg:
    case Element::structEntry:
    case Element::floatReg:
    case Element::stringReg:
    case Element::reg:
        return true;
    default:
        return false;
    }
}

[[noreturn]] void refuseNumber(const DescribedNode& node, const std::string& property, const char* reason)
{
    refuse(node, "<" + property + ">" + node.numbers.at(property) + "</" + property + "> " + reason);
}

/// Reads a number and checks its limits. nullopt if the node does not have the element.
std::optional<long long> number(const DescribedNode& node, const char* property, long long lowest, long long highest)
{
    const auto found = node.numbers.find(property);
    if (found == node.numbers.end())
        return std::nullopt;
    long long value = 0;
    if (!toInteger(found->second, value))
        refuseNumber(node, property, "is not a number");
    if (value < lowest || value > highest)
        refuseNumber(node, property, "is out of range");
    return value;
}

void checkBits(DescribedNode& node, std::optional<long long> length)
{
    const long long highest = 8 * std::min(length.value_or(kMaxIntegerLength), kMaxIntegerLength) - 1;
    const auto bit = number(node, "Bit", 0, highest);
    const auto lsb = number(node, "LSB", 0, highest);
    const auto msb = number(node, "MSB", 0, highest);
    if (!bit && !(lsb && msb))
        node.setFault("The bit range is missing");
}

void checkRegisters(Description& description)
{
    for (NodeId id = 0; id < description.size(); ++id) {
        DescribedNode& node = description.node(id);
        if (!isRegister(node.element))
            continue;
        const auto length = number(node, "Length", 1, kMaxLength);
        if (!length && node.link("pLength") == kNoNode)
            node.setFault("The length is missing");
        if (node.type == NODE_TYPE_INTEGER && length && *length > kMaxIntegerLength)
            node.setFault("An integer has at most 8 bytes");
        if (node.element == Element::floatReg && length && *length != 4 && *length != 8)
            node.setFault("A float has 4 or 8 bytes");
        if (node.element == Element::maskedIntReg || node.element == Element::structEntry)
            checkBits(node, length);
    }
}

// References

constexpr unsigned bitOf(NodeType type)
{
    return 1U << static_cast<unsigned>(type);
}

constexpr unsigned kInteger = bitOf(NODE_TYPE_INTEGER);
constexpr unsigned kFloat = bitOf(NODE_TYPE_FLOAT);
constexpr unsigned kBoolean = bitOf(NODE_TYPE_BOOLEAN);
constexpr unsigned kEnumeration = bitOf(NODE_TYPE_ENUMERATION);
constexpr unsigned kString = bitOf(NODE_TYPE_STRING);
constexpr unsigned kPort = bitOf(NODE_TYPE_PORT);

/// The kinds of node that Aravis can evaluate behind a reference. It reads all others as 0.
struct KindRow {
    std::string_view property;
    unsigned kinds;
};

constexpr KindRow kKinds[] = {
    {"pMin", kInteger | kFloat | kEnumeration},
    {"pMax", kInteger | kFloat | kEnumeration},
    {"pInc", kInteger | kFloat | kEnumeration},
    {"pIsImplemented", kInteger | kFloat | kEnumeration | kBoolean},
    {"pIsAvailable", kInteger | kFloat | kEnumeration | kBoolean},
    {"pIsLocked", kInteger | kFloat | kEnumeration | kBoolean},
    {"pIndex", kInteger | kEnumeration},
    {"pOffset", kInteger | kEnumeration},
    {"pValueIndexed", kInteger | kFloat | kEnumeration},
    {"pValueDefault", kInteger | kFloat | kEnumeration},
    {"pAddress", kInteger | kEnumeration},
    {"pLength", kInteger | kEnumeration},
    {"pVariable", kInteger | kFloat | kEnumeration},
    {"pCommandValue", kInteger | kEnumeration},
    {"pPort", kPort},
};

unsigned kindsBehindValue(NodeType type)
{
    switch (type) {
    case NODE_TYPE_FLOAT:
        return kInteger | kFloat | kEnumeration;
    case NODE_TYPE_STRING:
        return kString;
    default:
        return kInteger | kEnumeration;
    }
}

bool isUsable(const DescribedNode& node, const Reference& reference, const DescribedNode& target)
{
    if (reference.property == "pValue")
        return (kindsBehindValue(node.type) & bitOf(target.type)) != 0;
    const auto* row = std::find_if(std::begin(kKinds), std::end(kKinds),
                                   [&](const KindRow& candidate) { return reference.property == candidate.property; });
    return row == std::end(kKinds) || (row->kinds & bitOf(target.type)) != 0;
}

void checkReferences(Description& description)
{
    for (NodeId id = 0; id < description.size(); ++id) {
        DescribedNode& node = description.node(id);
        for (const Reference& reference : node.references) {
            // Categories may list missing features; they are skipped when the description is read.
            if (reference.property == "pFeature")
                continue;
            if (reference.target == kNoNode) {
                node.setFault(reference.property + " names \"" + reference.name + "\", which does not exist");
            } else if (!isUsable(node, reference, description.node(reference.target))) {
                node.setFault(reference.property + " names \"" + reference.name + "\", which has the wrong type");
            }
        }
    }
}

// Formulas

/// Aravis allocates more than a hundred bytes per byte of a formula.
constexpr std::size_t kMaxFormula = 65536;
constexpr std::size_t kMaxAllFormulas = 16 * kMaxFormula;

/// Returns the total size of a node's formulas in bytes.
std::size_t checkSize(const DescribedNode& node)
{
    std::size_t size = 0;
    for (const Formula& formula : node.formulas) {
        const std::size_t expanded = formula.expandedSize();
        const bool longExpression = std::any_of(formula.expressions.begin(), formula.expressions.end(),
                                                [](const auto& e) { return e.second.size() > kMaxFormula; });
        if (expanded > kMaxFormula || longExpression)
            refuse(node, "The formula has more than " + std::to_string(kMaxFormula) + " bytes");
        size += expanded;
    }
    return size;
}

/// Names such as "A.Max" refer to a limit, but Aravis would use the value instead.
bool asksForLimits(const std::string& variable)
{
    for (const char* suffix : {".Min", ".Max", ".Inc"}) {
        const std::size_t length = std::char_traits<char>::length(suffix);
        if (variable.size() > length && variable.compare(variable.size() - length, length, suffix) == 0)
            return true;
    }
    return false;
}

void checkFormula(DescribedNode& node, const Formula& formula)
{
    for (const auto& [variable, name] : formula.variables) {
        if (asksForLimits(variable))
            node.setFault("The variable \"" + variable + "\" cannot be evaluated");
    }
    // Any values do for a syntax check. A division by zero only means that these values do not suit the formula.
    const FormulaResult result = evaluate(formula, 1.0, [](const std::string&) { return 1.0; });
    if (!result.error.empty() && !result.divisionByZero)
        node.setFault("\"" + formula.text + "\": " + result.error);
}

void checkFormulas(Description& description)
{
    std::size_t size = 0;
    for (NodeId id = 0; id < description.size(); ++id) {
        DescribedNode& node = description.node(id);
        size += checkSize(node);
        if (size > kMaxAllFormulas)
            refuse(node, "The formulas up to here have more than " + std::to_string(kMaxAllFormulas) + " bytes");
        for (const Formula& formula : node.formulas) {
            checkFormula(node, formula);
            EvaluationBudget::check();
        }
    }
}

} // namespace

void validate(Description& description)
{
    checkCategories(description);
    checkRegisters(description);
    checkReferences(description);
    checkFormulas(description);
    checkEvaluation(description);
}

std::shared_ptr<const Description> readDescription(const std::string& xml)
{
    std::shared_ptr<Description> description = DescriptionReader(xml).read();
    validate(*description);
    return description;
}

} // namespace cameralibs
