#include "cameralibs/genicam/description/DescriptionReader.h"

#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/EvaluationBudget.h"
#include "cameralibs/genicam/description/ElementTable.h"
#include "cameralibs/genicam/description/NodeProperties.h"
#include "cameralibs/genicam/description/XmlElement.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <string_view>
#include <utility>

namespace cameralibs {

using namespace Orvo;

namespace {

constexpr std::size_t kMaxName = 255;

/// To read more takes too much time and memory before anybody can look at the clock.
constexpr std::size_t kMaxSize = std::size_t{16} << 20;

std::string nameOf(xmlNode* element)
{
    std::string name = attribute(element, "Name");
    if (name.size() > kMaxName) {
        throw Failure(CAM_API_STS_GENICAM_ERR, "[" + name.substr(0, kMaxName) + "...] The name is longer than " +
                                                   std::to_string(kMaxName) + " bytes");
    }
    setAttribute(element, "Name", name);
    return name;
}

std::string symbolicName(const std::string& enumeration, const DescribedNode& entry)
{
    const std::string prefix = "EnumEntry_" + enumeration + "_";
    std::string symbolic = entry.symbolic;
    if (symbolic.empty())
        symbolic = entry.name.compare(0, prefix.size(), prefix) == 0 ? entry.name.substr(prefix.size()) : entry.name;
    if (symbolic.size() > kMaxName) {
        throw Failure(CAM_API_STS_GENICAM_ERR,
                      "[" + entry.name + "] The symbolic name is longer than " + std::to_string(kMaxName) + " bytes");
    }
    return symbolic;
}

std::string parserMessage()
{
    const xmlError* error = xmlGetLastError();
    if (error == nullptr || error->message == nullptr)
        return "no reason is known";
    return "line " + std::to_string(error->line) + ": " + trimmed(error->message);
}

} // namespace

DescriptionReader::DescriptionReader(const std::string& xml)
    : m_document(nullptr, &xmlFreeDoc)
    , m_description(std::make_shared<Description>())
{
    // Cameras pad their files with zeros.
    const std::size_t length = xml.find_last_not_of(std::string_view("\0 \t\r\n", 5)) + 1;
    if (length > kMaxSize)
        throw Failure(CAM_API_STS_GENICAM_ERR, "The description has more than " + std::to_string(kMaxSize) + " bytes");
    xmlResetLastError();
    m_document.reset(xmlReadMemory(xml.data(), static_cast<int>(length), nullptr, nullptr,
                                   XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOBLANKS));
    if (m_document == nullptr)
        throw Failure(CAM_API_STS_XML_LOAD_ERR, "The description is not well-formed: " + parserMessage());
}

std::shared_ptr<Description> DescriptionReader::read()
{
    xmlNode* root = xmlDocGetRootElement(m_document.get());
    if (elementName(root) != "RegisterDescription") {
        throw Failure(CAM_API_STS_GENICAM_ERR,
                      "The description's outermost element is <" + elementName(root) + ">, not <RegisterDescription>");
    }
    // No description needs one, and its entities could name files or grow without bound.
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
        EvaluationBudget::check();
        if (!isElement(child))
            continue;
        const std::string name = elementName(child);
        if (name == "Group") {
            readChildren(child);
        } else if (name == "StructReg") {
            readStructure(child);
        } else if (!attribute(child, "Name").empty()) {
            readNode(child, {});
        }
    }
}

// The entries of a structure share its address, length, port and access mode.
void DescriptionReader::readStructure(xmlNode* element)
{
    DescribedNode shared;
    shared.ownAccess = elementRow("StructEntry").access;
    readProperties(element, shared);
    for (xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (isElement(child) && elementName(child) == "StructEntry" && !attribute(child, "Name").empty())
            readNode(child, shared);
    }
}

void DescriptionReader::readNode(xmlNode* element, DescribedNode node)
{
    const ElementRow row = elementRow(elementName(element));
    node.element = row.element;
    node.type = row.type;
    if (row.element != Element::structEntry)
        node.ownAccess = row.access;
    node.name = nameOf(element);
    readProperties(element, node);
    forgetEarlier(node.name, element);
    const bool hasEntries = node.element == Element::enumeration;
    const NodeId id = m_description->add(std::move(node));
    if (hasEntries)
        readEntries(element, id);
}

void DescriptionReader::readEntries(xmlNode* element, NodeId enumeration)
{
    for (xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (!isElement(child) || elementName(child) != "EnumEntry")
            continue;
        EvaluationBudget::check();
        DescribedNode entry;
        entry.element = Element::enumEntry;
        entry.type = NODE_TYPE_ENUM_ENTRY;
        entry.ownAccess = elementRow("EnumEntry").access;
        entry.name = nameOf(child);
        readProperties(child, entry);
        entry.symbolic = symbolicName(m_description->node(enumeration).name, entry);
        const NodeId id = m_description->add(std::move(entry));
        m_description->node(enumeration).entries.push_back(id);
    }
}

// Of several nodes with one name the last counts; Aravis must not find the others.
void DescriptionReader::forgetEarlier(const std::string& name, xmlNode* element)
{
    xmlNode*& known = m_elements[name];
    if (known != nullptr)
        removeElement(known);
    known = element;
}

void DescriptionReader::resolveNames()
{
    for (NodeId id = 0; id < m_description->size(); ++id) {
        DescribedNode& node = m_description->node(id);
        for (Reference& reference : node.references) {
            reference.target = m_description->find(reference.name);
            if (reference.property == "pFeature" && reference.target != kNoNode)
                node.features.push_back(reference.target);
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

} // namespace cameralibs
