#include "cameralibs/genicam/description/DescriptionReader.h"

#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/EvaluationBudget.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace cameralibs {

using namespace Orvo;

namespace {

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

constexpr ElementRow kUnknown{"", Element::unknown, NODE_TYPE_UNKNOWN, NODE_ACCESS_MODE_RO};

constexpr std::size_t kMaxName = 255;

/// Parsing cannot be interrupted, so the size bounds its time and memory.
constexpr std::size_t kMaxSize = std::size_t{16} << 20;

std::string nameOf(XmlElement element)
{
    std::string name(element.attribute("Name"));
    if (name.size() > kMaxName) {
        throw Failure(CAM_API_STS_GENICAM_ERR, "[" + name.substr(0, kMaxName) + "...] The name is longer than " +
                                                   std::to_string(kMaxName) + " bytes");
    }
    element.setAttribute("Name", name); // stripped of white space for Aravis, too
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

/// Cameras pad their description files with zeros.
std::string_view withoutPadding(const std::string& xml)
{
    const std::size_t length = xml.find_last_not_of(std::string_view("\0 \t\r\n", 5)) + 1;
    if (length > kMaxSize)
        throw Failure(CAM_API_STS_GENICAM_ERR, "The description has more than " + std::to_string(kMaxSize) + " bytes");
    return std::string_view(xml).substr(0, length);
}

} // namespace

const ElementRow& elementRow(std::string_view name)
{
    const auto* row = std::find_if(std::begin(kElements), std::end(kElements),
                                   [&](const ElementRow& candidate) { return name == candidate.name; });
    return row == std::end(kElements) ? kUnknown : *row;
}

DescriptionReader::DescriptionReader(const std::string& xml)
    : m_document(withoutPadding(xml))
    , m_description(std::make_shared<Description>())
{
}

std::shared_ptr<Description> DescriptionReader::read()
{
    // No description needs a DTD, and its entities could refer to files or expand without limit.
    if (m_document.declaresType())
        throw Failure(CAM_API_STS_GENICAM_ERR, "The description declares a document type");
    const XmlElement root = m_document.root();
    if (root.name() != "RegisterDescription") {
        const std::string name(root.name());
        throw Failure(CAM_API_STS_GENICAM_ERR,
                      "The description's outermost element is <" + name + ">, not <RegisterDescription>");
    }
    readChildren(root);
    resolveNames();
    m_description->setXml(m_document.serialise());
    return m_description;
}

void DescriptionReader::readChildren(XmlElement parent)
{
    for (XmlElement child = parent.firstChild(); child; child = child.next()) {
        EvaluationBudget::check();
        const std::string_view name = child.name();
        if (name == "Group") {
            readChildren(child);
        } else if (name == "StructReg") {
            readStructure(child);
        } else if (!child.attribute("Name").empty()) {
            readNode(child, {});
        }
    }
}

// The entries of a StructReg share its address, length, port and access mode.
void DescriptionReader::readStructure(XmlElement element)
{
    DescribedNode shared;
    shared.ownAccess = elementRow("StructEntry").access;
    readProperties(element, shared);
    for (XmlElement child = element.firstChild(); child; child = child.next()) {
        if (child.name() == "StructEntry" && !child.attribute("Name").empty())
            readNode(child, shared);
    }
}

void DescriptionReader::readNode(XmlElement element, DescribedNode node)
{
    const ElementRow row = elementRow(element.name());
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

void DescriptionReader::readEntries(XmlElement element, NodeId enumeration)
{
    for (XmlElement child = element.firstChild(); child; child = child.next()) {
        if (child.name() != "EnumEntry")
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

// If several nodes have the same name, the last one counts. Aravis must not find the earlier ones.
void DescriptionReader::forgetEarlier(const std::string& name, XmlElement element)
{
    XmlElement& known = m_elements[name];
    if (known)
        known.remove();
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

} // namespace cameralibs
