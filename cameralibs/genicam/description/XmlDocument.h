#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

namespace cameralibs {

class XmlDocument;

/// Refers to an element of a document. It and everything it returns are valid as long as the document.
class XmlElement {
public:
    /// No element.
    XmlElement() = default;
    [[nodiscard]] explicit operator bool() const noexcept { return m_document != nullptr; }

    [[nodiscard]] std::string_view name() const;

    /// The unmodified text of the element and its children, with entities resolved.
    [[nodiscard]] std::string_view text() const;
    void setText(std::string_view text);

    /// The attribute without surrounding white space, empty if it is missing.
    [[nodiscard]] std::string_view attribute(std::string_view name) const;
    void setAttribute(std::string_view name, std::string_view value);

    /// Iterate over the child elements. next() also works on a removed element.
    [[nodiscard]] XmlElement firstChild() const;
    [[nodiscard]] XmlElement next() const;
    void remove();

private:
    friend class XmlDocument;

    XmlElement(XmlDocument& document, std::uint32_t item)
        : m_document(&document)
        , m_item(item)
    {
    }

    XmlDocument* m_document = nullptr;
    std::uint32_t m_item = 0;
};

/// A parsed XML document. Its thousands of elements are stored in a few large blocks of memory, because allocating and
/// freeing them one by one takes longer than parsing. Comments, name spaces and white space between elements are
/// dropped.
class XmlDocument {
public:
    /// Stops at a document type declaration. Throws Failure(CAM_API_STS_XML_LOAD_ERR).
    explicit XmlDocument(std::string_view xml);
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    [[nodiscard]] bool declaresType() const noexcept { return m_declaresType; }

    /// No element if the document declares a type.
    [[nodiscard]] XmlElement root();

    /// The elements that have not been removed, in UTF-8.
    [[nodiscard]] std::string serialise() const;

private:
    friend class XmlElement;
    friend class XmlParser;

    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    struct Attribute {
        std::string_view name;
        std::string_view value;
    };

    /// An element or a piece of text.
    struct Item {
        std::string_view name; ///< empty for text
        std::string_view text;
        std::uint32_t firstAttribute = 0;
        std::uint32_t attributes = 0;
        std::uint32_t firstChild = kNone;
        std::uint32_t lastChild = kNone;
        std::uint32_t next = kNone;
        bool removed = false;
    };

    [[nodiscard]] std::string_view keep(std::string_view text);
    std::uint32_t append(std::uint32_t parent, const Item& item);
    [[nodiscard]] std::uint32_t elementFrom(std::uint32_t item) const;
    void appendText(std::uint32_t item, std::string& text) const;
    void serialise(std::uint32_t item, std::string& xml) const;

    std::pmr::monotonic_buffer_resource m_memory;
    std::vector<Item> m_items;
    std::vector<Attribute> m_attributes;
    bool m_declaresType = false;
};

[[nodiscard]] std::string_view trimmed(std::string_view text);

/// Parses a decimal number, or a hexadecimal one with the prefix 0x. False if the text is anything else.
[[nodiscard]] bool toInteger(std::string_view text, long long& value);

} // namespace cameralibs
