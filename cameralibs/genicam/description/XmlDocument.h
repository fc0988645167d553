#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

namespace cameralibs {

class XmlDocument;

/// An element of a document, which outlives it. What it returns lives as long as the document.
class XmlElement {
public:
    /// None.
    XmlElement() = default;
    [[nodiscard]] explicit operator bool() const noexcept { return m_document != nullptr; }

    [[nodiscard]] std::string_view name() const;

    /// All text within it, as it stands, entities replaced.
    [[nodiscard]] std::string_view text() const;
    void setText(std::string_view text);

    /// Without the white space around it; empty for an attribute that is not there.
    [[nodiscard]] std::string_view attribute(std::string_view name) const;
    void setAttribute(std::string_view name, std::string_view value);

    /// The elements in it. From one that was removed next() still leads on.
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

/// A parsed text. Its thousands of elements lie in a few large pieces of memory, because to allocate and free them one
/// by one takes longer than to parse the text. Comments, name spaces and the white space between elements are left out.
class XmlDocument {
public:
    /// Throws Failure(CAM_API_STS_XML_LOAD_ERR). Reads no further than a document type.
    explicit XmlDocument(std::string_view xml);
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    [[nodiscard]] bool declaresType() const noexcept { return m_declaresType; }

    /// None in a document that declares a type.
    [[nodiscard]] XmlElement root();

    /// What is left of the elements, in UTF-8.
    [[nodiscard]] std::string serialise() const;

private:
    friend class XmlElement;
    friend class XmlParser;

    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    struct Attribute {
        std::string_view name;
        std::string_view value;
    };

    /// An element, or a piece of text.
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

/// Decimal or, with 0x, hexadecimal, and nothing after it. False for anything else.
[[nodiscard]] bool toInteger(std::string_view text, long long& value);

} // namespace cameralibs
