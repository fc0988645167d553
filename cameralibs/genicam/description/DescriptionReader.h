#pragma once

#include "cameralibs/genicam/description/Description.h"

#include <libxml/tree.h>

#include <map>
#include <memory>
#include <string>

namespace cameralibs {

/// Turns the text of a GenICam description into nodes. One use each.
class DescriptionReader {
public:
    /// Throws Failure(CAM_API_STS_XML_LOAD_ERR).
    explicit DescriptionReader(const std::string& xml);

    /// Throws Failure(CAM_API_STS_GENICAM_ERR).
    [[nodiscard]] std::shared_ptr<Description> read();

private:
    using Document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

    void readChildren(xmlNode* parent);
    void readStructure(xmlNode* element);
    void readNode(xmlNode* element, DescribedNode node);
    void readEntries(xmlNode* element, NodeId enumeration);
    void forgetEarlier(const std::string& name, xmlNode* element);
    void resolveNames();
    void serialise();

    Document m_document;
    std::shared_ptr<Description> m_description;
    std::map<std::string, xmlNode*> m_elements; ///< those that became nodes
};

} // namespace cameralibs
