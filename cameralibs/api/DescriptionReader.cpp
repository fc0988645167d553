#include "DescriptionReader.h"

#include "cameralibs/api/Failure.h"
#include "cameralibs/api/Validator.h"
#include "cameralibs/api/XmlElement.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <climits>
#include <iterator>
#include <string_view>

namespace orvo {

using namespace Orvo;

namespace {

struct ElementRow {
    const char* name;
    Element element;
    NodeType type;
    NodeAccessMode access;
};

constexpr ElementRow kElements[] = {
    {"Category", Element::category, NODE_TYPE_CATEGORY, NODE_ACCESS_MODE_RO},
    {"Integer", Element::integer, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RW},
    {"IntReg", Element::intReg, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RO},
    {"MaskedIntReg", Element::maskedIntReg, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RO},
    {"StructEntry", Element::structEntry, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RO},
    {"IntConverter", Element::intConverter, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RW},
    {"IntSwissKnife", Element::intSwissKnife, NODE_TYPE_INTEGER, NODE_ACCESS_MODE_RO},
    {"Boolean", Element::boolean, NODE_TYPE_BOOLEAN, NODE_ACCESS_MODE_RW},
    {"Command", Element::command, NODE_TYPE_COMMAND, NODE_ACCESS_MODE_RW},
    {"Float", Element::floating, NODE_TYPE_FLOAT, NODE_ACCESS_MODE_RW},
    {"FloatReg", Element::floatReg, NODE_TYPE_FLOAT, NODE_ACCESS_MODE_RO},
    {"Converter", Element::converter, NODE_TYPE_FLOAT, NODE_ACCESS_MODE_RW},
    {"SwissKnife", Element::swissKnife, NODE_TYPE_FLOAT, NODE_ACCESS_MODE_RO},
    {"String", Element::string, NODE_TYPE_STRING, NODE_ACCESS_MODE_RW},
    {"StringReg", Element::stringReg, NODE_TYPE_STRING, NODE_ACCESS_MODE_RO},
    {"Register", Element::reg, NODE_TYPE_REGISTER, NODE_ACCESS_MODE_RO},
    {"Enumeration", Element::enumeration, NODE_TYPE_ENUMERATION, NODE_ACCESS_MODE_RW},
    {"EnumEntry", Element::enumEntry, NODE_TYPE_ENUM_ENTRY, NODE_ACCESS_MODE_RO},
    {"Port", Element::port, NODE_TYPE_PORT, NODE_ACCESS_MODE_RW},
    {"Node", Element::node, NODE_TYPE_BASE, NODE_ACCESS_MODE_RO},
};

template <class Value> struct Token {
    const char* text;
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

/// `value` is left as it is by a text that is not in the table.
template <class Value, std::size_t N>
void assignToken(const Token<Value> (&table)[N], const std::string& text, Value& value)
{
    const auto row = std::find_if(std::begin(table), std::end(table), [&](const auto& r) { return text == r.text; });
    if (row != std::end(table))
        value = row->value;
}

constexpr ElementRow kUnknownElement{"", Element::unknown, NODE_TYPE_UNKNOWN, NODE_ACCESS_MODE_RO};

const ElementRow& elementRow(const std::string& name)
{
    const auto* row = std::find_if(std::begin(kElements), std::end(kElements),
                                   [&](const ElementRow& candidate) { return name == candidate.name; });
    return row == std::end(kElements) ? kUnknownElement : *row;
}

/// Children whose white space is part of what they say.
bool keepsWhiteSpace(const std::string& name)
{
    constexpr std::string_view kTexts[] = {"ToolTip", "Description", "DisplayName", "DocuURL", "Comment", "Value"};
    return std::find(std::begin(kTexts), std::end(kTexts), name) != std::end(kTexts);
}

/// Elements such as pValue; all of them, known or not, name a node.
bool isReference(const std::string& name)
{
    return name.size() > 1 && name[0] == 'p' && name[1] >= 'A' && name[1] <= 'Z';
}

void readProperty(const std::string& name, const std::string& text, DescribedNode& node)
{
    long long number = 0;
    if (name == "ToolTip")
        node.toolTip = text;
    else if (name == "Description")
        node.description = text;
    else if (name == "Unit")
        node.unit = text;
    else if (name == "Symbolic")
        node.symbolic = text;
    else if (name == "Visibility")
        assignToken(kVisibilities, text, node.visibility);
    else if (name == "Representation")
        assignToken(kRepresentations, text, node.representation);
    else if (name == "DisplayNotation")
        assignToken(kNotations, text, node.notation);
    else if (name == "DisplayPrecision" && toInteger(text, number))
        node.precision = number;
    else if (name == "AccessMode")
        assignToken(kAccessModes, text, node.ownAccess);
    else if (name == "ImposedAccessMode")
        assignToken(kAccessModes, text, node.imposedAccess);
    else if (name == "ChunkID" || name == "EventID")
        node.carriedByImages = true;
    else if (name == "OnValue" && toInteger(text, number))
        node.onValue = number;
    else if (name == "OffValue" && toInteger(text, number))
        node.offValue = number;
}

void readReference(xmlNode* element, const std::string& text, DescribedNode& node)
{
    Reference reference{elementName(element), text};
    if (long long index = 0; toInteger(attribute(element, "Index"), index))
        reference.index = index;
    node.references.push_back(std::move(reference));
    if (const std::string offset = attribute(element, "pOffset"); !offset.empty())
        node.references.push_back({"pOffset", offset});
}

/// Names and numbers lose the white space around them in the document itself, so that Aravis reads the same.
void readProperties(xmlNode* element, DescribedNode& node)
{
    for (xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (!isElement(child))
            continue;
        const std::string name = elementName(child);
        if (elementRow(name).element != Element::unknown) {
            // A formula within a register computes its address.
            if (elementRow(name).element == Element::intSwissKnife)
                readProperties(child, node);
            continue;
        }
        std::string text = elementText(child);
        if (!keepsWhiteSpace(name)) {
            if (const std::string shorter = trimmed(text); shorter != text) {
                setElementText(child, shorter);
                text = shorter;
            }
        }
        if (isReference(name))
            readReference(child, text, node);
        else
            readProperty(name, text, node);
    }
}

std::string entrySymbolic(const std::string& enumeration, const std::string& entry)
{
    const std::string prefix = "EnumEntry_" + enumeration + "_";
    return entry.compare(0, prefix.size(), prefix) == 0 ? entry.substr(prefix.size()) : entry;
}

} // namespace

DescriptionReader::DescriptionReader(const std::string& xml)
    : m_document(nullptr, &xmlFreeDoc)
    , m_description(std::make_shared<Description>())
{
    // Cameras pad their files with zeros.
    const std::size_t length = xml.find_last_not_of(std::string_view("\0 \t\r\n", 5)) + 1;
    throwUnless(length <= INT_MAX, CAM_API_STS_XML_LOAD_ERR);
    xmlResetLastError();
    m_document.reset(xmlReadMemory(xml.data(), static_cast<int>(length), nullptr, nullptr,
                                   XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (m_document == nullptr) {
        const xmlError* error = xmlGetLastError();
        const std::string reason = error != nullptr && error->message != nullptr ? trimmed(error->message) : "no text";
        const std::string line = error != nullptr ? std::to_string(error->line) : "0";
        throw Failure(CAM_API_STS_XML_LOAD_ERR, "The description is not well-formed: line " + line + ": " + reason);
    }
}

std::shared_ptr<Description> DescriptionReader::read()
{
    xmlNode* root = xmlDocGetRootElement(m_document.get());
    if (elementName(root) != "RegisterDescription")
        throw Failure(CAM_API_STS_GENICAM_ERR, "The description's outermost element is \"" + elementName(root) +
                                                   "\", not \"RegisterDescription\"");
    // Nothing that a description needs, and its entities could name files or grow without bound.
    if (m_document->intSubset != nullptr)
        throw Failure(CAM_API_STS_GENICAM_ERR, "The description declares a document type");
    readChildren(root);
    resolveNames();
    serialise();
    return m_description;
}

void DescriptionReader::readChildren(xmlNode* parent)
{
    for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
        if (!isElement(child))
            continue;
        const std::string name = elementName(child);
        if (name == "Group")
            readChildren(child);
        else if (name == "StructReg")
            readStructure(child);
        else if (!attribute(child, "Name").empty())
            readNode(child, {});
    }
}

// The entries of a structure share its address, port and access mode.
void DescriptionReader::readStructure(xmlNode* element)
{
    DescribedNode shared;
    readProperties(element, shared);
    for (xmlNode* child = element->children; child != nullptr; child = child->next)
        if (isElement(child) && elementName(child) == "StructEntry")
            readNode(child, shared.references);
}

void DescriptionReader::readNode(xmlNode* element, const std::vector<Reference>& inherited)
{
    const ElementRow& row = elementRow(elementName(element));
    DescribedNode node;
    node.element = row.element;
    node.type = row.type;
    node.ownAccess = row.access;
    node.name = attribute(element, "Name");
    node.references = inherited;
    setAttribute(element, "Name", node.name);
    readProperties(element, node);
    forgetEarlier(node.name, element);
    const bool hasEntries = node.element == Element::enumeration;
    const NodeId id = m_description->add(std::move(node));
    if (hasEntries)
        readEntries(element, id);
}

// Of several nodes with one name the last counts; Aravis must not find the others.
void DescriptionReader::forgetEarlier(const std::string& name, xmlNode* element)
{
    xmlNode*& known = m_elements[name];
    if (known != nullptr) {
        xmlUnlinkNode(known);
        xmlFreeNode(known);
    }
    known = element;
}

void DescriptionReader::readEntries(xmlNode* element, NodeId enumeration)
{
    for (xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (!isElement(child) || elementName(child) != "EnumEntry")
            continue;
        DescribedNode entry;
        entry.element = Element::enumEntry;
        entry.type = NODE_TYPE_ENUM_ENTRY;
        entry.ownAccess = NODE_ACCESS_MODE_RO;
        entry.name = attribute(child, "Name");
        setAttribute(child, "Name", entry.name);
        readProperties(child, entry);
        if (entry.symbolic.empty())
            entry.symbolic = entrySymbolic(m_description->node(enumeration).name, entry.name);
        const NodeId id = m_description->add(std::move(entry));
        m_description->node(enumeration).entries.push_back(id);
    }
}

void DescriptionReader::resolveNames()
{
    for (NodeId id = 0; id < m_description->size(); ++id) {
        DescribedNode& node = m_description->node(id);
        for (Reference& reference : node.references) {
            reference.target = m_description->find(reference.name);
            if (reference.property == "pFeature") {
                if (reference.target != kNoNode)
                    node.features.push_back(reference.target);
            } else if (reference.target == kNoNode && node.fault.empty()) {
                node.fault = "[" + node.name + "] " + reference.property + " names \"" + reference.name +
                             "\", which does not exist";
            }
        }
    }
}

void DescriptionReader::serialise()
{
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpMemoryEnc(m_document.get(), &text, &size, "UTF-8");
    const std::unique_ptr<xmlChar, void (*)(xmlChar*)> owner(text, [](xmlChar* p) { xmlFree(p); });
    throwUnless(text != nullptr, CAM_API_STS_NO_MEMORY);
    m_description->setXml(std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size)));
}

std::shared_ptr<const Description> readDescription(const std::string& xml)
{
    std::shared_ptr<Description> description = DescriptionReader(xml).read();
    validate(*description);
    return description;
}

} // namespace orvo
