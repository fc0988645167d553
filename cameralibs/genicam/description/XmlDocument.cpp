#include "cameralibs/genicam/description/XmlDocument.h"

#include "cameralibs/base/Outcome.h"
#include "cameralibs/base/QuietXml.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <memory>

namespace cameralibs {

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

bool isBlank(std::string_view text)
{
    return text.find_first_not_of(kWhiteSpace) == std::string_view::npos;
}

std::string_view viewOf(const xmlChar* text)
{
    return reinterpret_cast<const char*>(text);
}

void escape(std::string_view text, std::string& xml)
{
    for (;;) {
        const std::size_t at = text.find_first_of("&<>\"\t\r\n");
        xml += text.substr(0, at);
        if (at == std::string_view::npos)
            return;
        xml += "&#" + std::to_string(static_cast<int>(text[at])) + ';';
        text.remove_prefix(at + 1);
    }
}

} // namespace

/// Receives the SAX events of libxml2. Exceptions must not propagate through the C code that calls the handlers, so
/// they are stored and rethrown.
class XmlParser {
public:
    XmlParser(XmlDocument& document, std::string_view xml)
        : m_document(document)
        , m_context(xmlCreateMemoryParserCtxt(xml.data(), static_cast<int>(xml.size())), &free)
    {
    }

    void parse()
    {
        if (m_context == nullptr)
            throw malformed();
        (void)xmlCtxtUseOptions(m_context.get(), XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
        xmlSAXHandler handler = {};
        handler.initialized = XML_SAX2_MAGIC;
        handler.internalSubset = [](void* self, const xmlChar*, const xmlChar*, const xmlChar*) { of(self).onType(); };
        handler.startElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                                    const xmlChar**, int attributes, int, const xmlChar** fields) {
            of(self).guarded([&](XmlParser& parser) { parser.onStart(name, fields, attributes); });
        };
        handler.endElementNs = [](void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
            of(self).guarded([&](XmlParser& parser) { parser.onEnd(); });
        };
        handler.characters = handler.cdataBlock = [](void* self, const xmlChar* text, int size) {
            of(self).guarded([&](XmlParser& parser) {
                parser.m_text.append(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
            });
        };
        *m_context->sax = handler;
        m_context->userData = this;
        (void)xmlParseDocument(m_context.get());
        if (m_exception)
            std::rethrow_exception(m_exception);
        if (!m_document.m_declaresType && m_context->wellFormed == 0)
            throw malformed();
    }

private:
    static void free(xmlParserCtxt* context)
    {
        xmlFreeDoc(context->myDoc);
        xmlFreeParserCtxt(context);
    }

    static XmlParser& of(void* self) { return *static_cast<XmlParser*>(self); }

    template <class Work> void guarded(Work&& work) noexcept
    {
        if (m_exception)
            return;
        try {
            work(*this);
        } catch (...) {
            m_exception = std::current_exception();
            xmlStopParser(m_context.get());
        }
    }

    void onType()
    {
        m_document.m_declaresType = true;
        xmlStopParser(m_context.get());
    }

    void onStart(const xmlChar* name, const xmlChar** fields, int attributes)
    {
        flush(isBlank(m_text));
        XmlDocument::Item item;
        item.name = m_document.keep(viewOf(name));
        item.firstAttribute = static_cast<std::uint32_t>(m_document.m_attributes.size());
        // Each attribute has five fields: name, prefix, name space, begin and end of the value.
        for (int i = 0; i < attributes; ++i, fields += 5) {
            if (fields[1] != nullptr)
                continue;
            const std::string_view value(reinterpret_cast<const char*>(fields[3]),
                                         static_cast<std::size_t>(fields[4] - fields[3]));
            m_document.m_attributes.push_back({m_document.keep(viewOf(fields[0])), m_document.keep(value)});
            ++item.attributes;
        }
        m_open.push_back(m_document.append(m_open.empty() ? XmlDocument::kNone : m_open.back(), item));
    }

    void onEnd()
    {
        // White space is kept only if it is the whole content of the element.
        flush(m_document.m_items[m_open.back()].firstChild != XmlDocument::kNone && isBlank(m_text));
        m_open.pop_back();
    }

    /// Stores the text, which libxml2 delivers in pieces.
    void flush(bool dropped)
    {
        if (!dropped && !m_text.empty()) {
            XmlDocument::Item item;
            item.text = m_document.keep(m_text);
            (void)m_document.append(m_open.back(), item);
        }
        m_text.clear();
    }

    [[nodiscard]] Failure malformed() const
    {
        const xmlError* const error = m_context != nullptr ? xmlCtxtGetLastError(m_context.get()) : nullptr;
        std::string reason = "no reason is known";
        if (error != nullptr && error->message != nullptr)
            reason = "line " + std::to_string(error->line) + ": " + std::string(trimmed(error->message));
        return Failure(Orvo::CAM_API_STS_XML_LOAD_ERR, "The description is not well-formed: " + reason);
    }

    XmlDocument& m_document;
    const QuietXml m_quiet; // from before the context exists, because creating it reads the first bytes
    const std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxt*)> m_context;
    std::vector<std::uint32_t> m_open;
    std::string m_text; ///< text since the last tag
    std::exception_ptr m_exception;
};

std::string_view XmlElement::name() const
{
    return m_document->m_items[m_item].name;
}

std::string_view XmlElement::text() const
{
    const XmlDocument::Item& item = m_document->m_items[m_item];
    if (item.firstChild == XmlDocument::kNone)
        return {};
    const XmlDocument::Item& first = m_document->m_items[item.firstChild];
    if (item.firstChild == item.lastChild && first.name.empty())
        return first.text;
    std::string all;
    m_document->appendText(m_item, all);
    return m_document->keep(all);
}

void XmlElement::setText(std::string_view text)
{
    XmlDocument::Item& item = m_document->m_items[m_item];
    item.firstChild = item.lastChild = XmlDocument::kNone;
    XmlDocument::Item content;
    content.text = m_document->keep(text);
    (void)m_document->append(m_item, content);
}

std::string_view XmlElement::attribute(std::string_view name) const
{
    const XmlDocument::Item& item = m_document->m_items[m_item];
    const auto begin = m_document->m_attributes.begin() + item.firstAttribute;
    const auto found = std::find_if(begin, begin + item.attributes, [&](const auto& a) { return a.name == name; });
    return found == begin + item.attributes ? std::string_view() : trimmed(found->value);
}

void XmlElement::setAttribute(std::string_view name, std::string_view value)
{
    const XmlDocument::Item& item = m_document->m_items[m_item];
    const auto begin = m_document->m_attributes.begin() + item.firstAttribute;
    const auto found = std::find_if(begin, begin + item.attributes, [&](const auto& a) { return a.name == name; });
    if (found != begin + item.attributes && found->value != value)
        found->value = m_document->keep(value);
}

XmlElement XmlElement::firstChild() const
{
    const std::uint32_t child = m_document->elementFrom(m_document->m_items[m_item].firstChild);
    return child == XmlDocument::kNone ? XmlElement() : XmlElement(*m_document, child);
}

XmlElement XmlElement::next() const
{
    const std::uint32_t sibling = m_document->elementFrom(m_document->m_items[m_item].next);
    return sibling == XmlDocument::kNone ? XmlElement() : XmlElement(*m_document, sibling);
}

void XmlElement::remove()
{
    m_document->m_items[m_item].removed = true;
}

XmlDocument::XmlDocument(std::string_view xml)
    : m_memory(xml.size() + 1)
{
    XmlParser(*this, xml).parse();
}

XmlElement XmlDocument::root()
{
    return m_items.empty() ? XmlElement() : XmlElement(*this, 0);
}

std::string XmlDocument::serialise() const
{
    std::string xml;
    serialise(0, xml);
    return xml;
}

std::string_view XmlDocument::keep(std::string_view text)
{
    if (text.empty())
        return {};
    auto* const copy = static_cast<char*>(m_memory.allocate(text.size(), 1));
    std::copy(text.begin(), text.end(), copy);
    return {copy, text.size()};
}

std::uint32_t XmlDocument::append(std::uint32_t parent, const Item& item)
{
    const auto id = static_cast<std::uint32_t>(m_items.size());
    m_items.push_back(item);
    if (parent != kNone) {
        Item& element = m_items[parent];
        (element.firstChild == kNone ? element.firstChild : m_items[element.lastChild].next) = id;
        element.lastChild = id;
    }
    return id;
}

std::uint32_t XmlDocument::elementFrom(std::uint32_t item) const
{
    while (item != kNone && (m_items[item].name.empty() || m_items[item].removed))
        item = m_items[item].next;
    return item;
}

void XmlDocument::appendText(std::uint32_t item, std::string& text) const
{
    text += m_items[item].text;
    for (std::uint32_t child = m_items[item].firstChild; child != kNone; child = m_items[child].next) {
        if (!m_items[child].removed)
            appendText(child, text);
    }
}

void XmlDocument::serialise(std::uint32_t item, std::string& xml) const
{
    const Item& element = m_items[item];
    if (element.removed)
        return;
    if (element.name.empty()) {
        escape(element.text, xml);
        return;
    }
    (xml += '<') += element.name;
    for (std::uint32_t i = 0; i < element.attributes; ++i) {
        const Attribute& attribute = m_attributes[element.firstAttribute + i];
        ((xml += ' ') += attribute.name) += "=\"";
        escape(attribute.value, xml);
        xml += '"';
    }
    xml += '>';
    for (std::uint32_t child = element.firstChild; child != kNone; child = m_items[child].next)
        serialise(child, xml);
    ((xml += "</") += element.name) += '>';
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(kWhiteSpace);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kWhiteSpace) - begin + 1);
}

bool toInteger(std::string_view text, long long& value)
{
    // Base 0 would parse a leading zero as octal.
    const std::size_t digits = text.find_first_not_of("+-");
    const bool prefixed =
        digits != std::string_view::npos && (text.substr(digits, 2) == "0x" || text.substr(digits, 2) == "0X");
    const std::string terminated(text);
    errno = 0;
    char* end = nullptr;
    const int base = prefixed ? 16 : 10;
    value = std::strtoll(terminated.c_str(), &end, base);
    if (errno == ERANGE && base == 16) {
        errno = 0;
        value = static_cast<long long>(std::strtoull(terminated.c_str(), &end, base));
    }
    return !text.empty() && *end == '\0' && errno == 0;
}

} // namespace cameralibs
