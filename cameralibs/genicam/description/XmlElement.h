#pragma once

#include <libxml/tree.h>

#include <string>

namespace cameralibs {

// Short cuts over libxml2 for elements that hold text.

[[nodiscard]] bool isElement(const xmlNode* node);
[[nodiscard]] std::string elementName(const xmlNode* element);

/// The text as it stands, entities replaced.
[[nodiscard]] std::string elementText(xmlNode* element);
void setElementText(xmlNode* element, const std::string& text);

void removeElement(xmlNode* element);

/// Without the white space around it; empty for an attribute that is not there.
[[nodiscard]] std::string attribute(xmlNode* element, const char* name);
void setAttribute(xmlNode* element, const char* name, const std::string& value);

[[nodiscard]] std::string trimmed(const std::string& text);

/// Decimal or, with 0x, hexadecimal, and nothing after it. False for anything else.
[[nodiscard]] bool toInteger(const std::string& text, long long& value);

} // namespace cameralibs
