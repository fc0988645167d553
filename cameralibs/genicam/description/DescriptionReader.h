#pragma once

#include "cameralibs/genicam/description/Description.h"
#include "cameralibs/genicam/description/XmlDocument.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace cameralibs {

/// Turns the text of a GenICam description into nodes. Each object is used once.
class DescriptionReader {
public:
    /// Throws Failure(CAM_API_STS_XML_LOAD_ERR).
    explicit DescriptionReader(const std::string& xml);

    /// Throws Failure(CAM_API_STS_GENICAM_ERR).
    [[nodiscard]] std::shared_ptr<Description> read();

private:
    void readChildren(XmlElement parent);
    void readStructure(XmlElement element);
    void readNode(XmlElement element, DescribedNode node);
    void readEntries(XmlElement element, NodeId enumeration);
    void forgetEarlier(const std::string& name, XmlElement element);
    void resolveNames();

    XmlDocument m_document;
    std::shared_ptr<Description> m_description;
    std::unordered_map<std::string, XmlElement> m_elements; ///< elements of nodes, by node name
};

/// The node type and default access mode of an element.
struct ElementRow {
    std::string_view name;
    Element element;
    Orvo::NodeType type;
    Orvo::NodeAccessMode access; ///< if the element does not specify one
};

/// The row of Element::unknown if the element is not a node.
[[nodiscard]] const ElementRow& elementRow(std::string_view name);

/// Reads the children of a node's element into `node`. Also strips the white space around names and numbers from the
/// elements themselves, so that Aravis reads the same.
void readProperties(XmlElement element, DescribedNode& node);

} // namespace cameralibs
