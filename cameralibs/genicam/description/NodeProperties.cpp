#include "cameralibs/genicam/description/DescriptionReader.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace cameralibs {

using namespace Orvo;

namespace {

template <class Value> struct Token {
    std::string_view text;
    Value value;
};

constexpr Token<TC_NODE_VISIBILITY> kVisibilities[] = {
    {"Beginner", NODE_VISIBILITY_BEGINNER},
    {"Expert", NODE_VISIBILITY_EXPERT},
    {"Guru", NODE_VISIBILITY_GURU},
    {"Invisible", NODE_VISIBILITY_INVISIBLE},
};
constexpr Token<NodeRepresentation> kRepresentations[] = {
    {"Linear", NODE_REPRESENTATION_LINEAR},          {"Logarithmic", NODE_REPRESENTATION_LOGARITHMIC},
    {"Boolean", NODE_REPRESENTATION_BOOLEAN},        {"PureNumber", NODE_REPRESENTATION_PURE_NUMBER},
    {"HexNumber", NODE_REPRESENTATION_HEX_NUMBER},   {"IPV4Address", NODE_REPRESENTATION_IPV4_ADDRESS},
    {"MACAddress", NODE_REPRESENTATION_MAC_ADDRESS},
};
constexpr Token<FloatDisplayNotation> kNotations[] = {
    {"Automatic", FLOAT_DISPLAY_NOTATION_AUTOMATIC},
    {"Fixed", FLOAT_DISPLAY_NOTATION_FIXED},
    {"Scientific", FLOAT_DISPLAY_NOTATION_SCIENTIFIC},
};
constexpr Token<NodeAccessMode> kAccessModes[] = {
    {"RO", NODE_ACCESS_MODE_RO},
    {"WO", NODE_ACCESS_MODE_WO},
    {"RW", NODE_ACCESS_MODE_RW},
};
constexpr std::string_view kKeptWhiteSpace[] = {"ToolTip", "Description", "DisplayName", "DocuURL", "Comment", "Value"};
/// Elements that Aravis does not need: texts for display, and caching and access rules, which this library implements.
/// They are removed, because Aravis creates several objects per element.
constexpr std::string_view kNotForAravis[] = {
    "ToolTip",        "Description",     "DisplayName",       "DocuURL",   "Visibility",   "Unit",
    "Representation", "DisplayNotation", "DisplayPrecision",  "pFeature",  "pSelected",    "PollingTime",
    "Cachable",       "AccessMode",      "ImposedAccessMode", "pIsLocked", "pInvalidator",
};
constexpr std::string_view kAvailability[] = {"pIsImplemented", "pIsAvailable"};
constexpr std::string_view kNumbers[] = {"Length", "LSB", "MSB", "Bit"};

template <std::size_t N> bool contains(const std::string_view (&names)[N], std::string_view name)
{
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

/// `value` does not change if the text is not in the table.
template <class Value, std::size_t N>
void assignToken(const Token<Value> (&table)[N], std::string_view text, Value& value)
{
    const auto row = std::find_if(std::begin(table), std::end(table), [&](const auto& r) { return text == r.text; });
    if (row != std::end(table))
        value = row->value;
}

/// Every element with a name such as pValue refers to a node, known or not.
bool isReference(std::string_view name)
{
    return name.size() > 1 && name[0] == 'p' && name[1] >= 'A' && name[1] <= 'Z';
}

void readReference(XmlElement element, std::string_view text, DescribedNode& node)
{
    Reference reference{std::string(element.name()), std::string(text)};
    if (long long index = 0; toInteger(element.attribute("Index"), index))
        reference.index = index;
    node.references.push_back(std::move(reference));
    if (const std::string_view offset = element.attribute("pOffset"); !offset.empty())
        node.references.push_back({"pOffset", std::string(offset)});
}

void readTextOrToken(std::string_view name, std::string_view text, DescribedNode& node)
{
    if (name == "ToolTip") {
        node.toolTip = text;
    } else if (name == "Description") {
        node.description = text;
    } else if (name == "Unit") {
        node.unit = text;
    } else if (name == "Symbolic") {
        node.symbolic = text;
    } else if (name == "Visibility") {
        assignToken(kVisibilities, text, node.visibility);
    } else if (name == "Representation") {
        assignToken(kRepresentations, text, node.representation);
    } else if (name == "DisplayNotation") {
        assignToken(kNotations, text, node.notation);
    } else if (name == "AccessMode") {
        assignToken(kAccessModes, text, node.ownAccess);
    } else if (name == "ImposedAccessMode") {
        assignToken(kAccessModes, text, node.imposedAccess);
    } else if (name == "ChunkID" || name == "EventID") {
        node.carriedByImages = true;
    } else if (contains(kNumbers, name)) {
        node.numbers[std::string(name)] = text;
    }
}

void readNumber(std::string_view name, std::string_view text, DescribedNode& node)
{
    long long number = 0;
    if (!toInteger(trimmed(text), number))
        return;
    if (name == "DisplayPrecision") {
        node.precision = number;
    } else if (name == "OnValue") {
        node.onValue = number;
    } else if (name == "OffValue") {
        node.offValue = number;
    } else if (name == "Value" && node.element == Element::enumEntry) {
        node.entryValue = number;
    }
}

/// Aravis accepts booleans only as 0 or 1.
void normaliseBoolean(XmlElement element, std::string_view text)
{
    if (trimmed(text) == "true") {
        element.setText("1");
    } else if (trimmed(text) == "false") {
        element.setText("0");
    }
}

/// The common and the individual parts of an element's formulas.
struct FormulaParts {
    Formula common;
    std::string formula;
    std::string to;
    std::string from;

    void read(XmlElement element, std::string_view text)
    {
        const std::string_view name = element.name();
        if (name == "pVariable") {
            common.variables.emplace_back(element.attribute("Name"), text);
        } else if (name == "Constant") {
            common.constants.emplace_back(element.attribute("Name"), text);
        } else if (name == "Expression") {
            common.expressions.emplace_back(element.attribute("Name"), text);
        } else if (name == "Formula") {
            formula = text;
        } else if (name == "FormulaTo") {
            to = text;
        } else if (name == "FormulaFrom") {
            from = text;
        }
    }

    void addTo(DescribedNode& node, Element element)
    {
        const bool integer = element == Element::intSwissKnife || element == Element::intConverter;
        common.kind = integer ? Formula::Kind::integer : Formula::Kind::floating;
        if (element == Element::intSwissKnife || element == Element::swissKnife)
            add(node, formula, "");
        if (element == Element::intConverter || element == Element::converter) {
            add(node, to, "FROM");
            add(node, from, "TO");
        }
    }

private:
    void add(DescribedNode& node, std::string_view text, const char* input) const
    {
        node.formulas.push_back(common);
        node.formulas.back().text = text;
        node.formulas.back().input = input;
    }
};

/// The text of an element. Also strips insignificant white space from the element itself, so that Aravis reads the
/// same.
std::string_view readText(XmlElement element)
{
    const std::string_view text = element.text();
    if (contains(kKeptWhiteSpace, element.name()))
        return text;
    const std::string_view shorter = trimmed(text);
    if (shorter.size() != text.size())
        element.setText(shorter);
    return shorter;
}

void readChildren(XmlElement element, DescribedNode& node, Element kind);

void readChild(XmlElement child, DescribedNode& node, FormulaParts& parts)
{
    const std::string_view name = child.name();
    if (const Element inner = elementRow(name).element; inner != Element::unknown) {
        // A nested formula computes a register's address. Other nested nodes, such as entries, are read separately.
        if (inner == Element::intSwissKnife)
            readChildren(child, node, inner);
        return;
    }
    const std::string_view text = readText(child);
    parts.read(child, text);
    if (isReference(name)) {
        readReference(child, text, node);
    } else {
        if (long long index = 0; name == "ValueIndexed" && toInteger(child.attribute("Index"), index))
            node.constantIndices.push_back(index);
        readTextOrToken(name, text, node);
        readNumber(name, text, node);
        if (name == "Value" && node.element == Element::boolean)
            normaliseBoolean(child, text);
    }
    // Aravis needs the availability of enumeration entries.
    const bool entry = node.element == Element::enumEntry;
    if (contains(kNotForAravis, name) || (!entry && contains(kAvailability, name)))
        child.remove();
}

void readChildren(XmlElement element, DescribedNode& node, Element kind)
{
    FormulaParts parts;
    for (XmlElement child = element.firstChild(); child; child = child.next())
        readChild(child, node, parts);
    parts.addTo(node, kind);
}

} // namespace

void readProperties(XmlElement element, DescribedNode& node)
{
    readChildren(element, node, node.element);
}

} // namespace cameralibs
