#include "cameralibs/genicam/description/XmlElement.h"

#include <cerrno>
#include <cstdlib>
#include <memory>

namespace cameralibs {

namespace {

const xmlChar* xmlText(const char* text)
{
    return reinterpret_cast<const xmlChar*>(text);
}

std::string taken(xmlChar* text)
{
    const std::unique_ptr<xmlChar, void (*)(xmlChar*)> owner(text, [](xmlChar* p) { xmlFree(p); });
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text));
}

} // namespace

bool isElement(const xmlNode* node)
{
    return node->type == XML_ELEMENT_NODE;
}

std::string elementName(const xmlNode* element)
{
    return reinterpret_cast<const char*>(element->name);
}

std::string elementText(xmlNode* element)
{
    return taken(xmlNodeGetContent(element));
}

void setElementText(xmlNode* element, const std::string& text)
{
    xmlNodeSetContent(element, nullptr);
    xmlNodeAddContent(element, xmlText(text.c_str()));
}

void removeElement(xmlNode* element)
{
    xmlUnlinkNode(element);
    xmlFreeNode(element);
}

std::string attribute(xmlNode* element, const char* name)
{
    return trimmed(taken(xmlGetNoNsProp(element, xmlText(name))));
}

void setAttribute(xmlNode* element, const char* name, const std::string& value)
{
    xmlSetProp(element, xmlText(name), xmlText(value.c_str()));
}

std::string trimmed(const std::string& text)
{
    constexpr const char* kWhiteSpace = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(kWhiteSpace);
    if (begin == std::string::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kWhiteSpace) - begin + 1);
}

bool toInteger(const std::string& text, long long& value)
{
    // Base 0 would read a leading zero as octal.
    const std::size_t digits = text.find_first_not_of("+-");
    const bool hexadecimal = digits != std::string::npos && text.compare(digits, 2, "0x") == 0;
    const bool hexadecimalUpper = digits != std::string::npos && text.compare(digits, 2, "0X") == 0;
    errno = 0;
    char* end = nullptr;
    const int base = hexadecimal || hexadecimalUpper ? 16 : 10;
    value = std::strtoll(text.c_str(), &end, base);
    if (errno == ERANGE && base == 16) {
        errno = 0;
        value = static_cast<long long>(std::strtoull(text.c_str(), &end, base));
    }
    return !text.empty() && *end == '\0' && errno == 0;
}

} // namespace cameralibs
