// The gate that every document passes before a parser sees it.
#pragma once

#include "siblings/tools/XmlEncoding.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace xml {

// Tests UTF-8 text, in one pass and with a stack of its own, against what the tree holds: well-formed XML 1.0 without
// a document type, whose elements hold elements only. All else is refused, the first fault by line and reason.
// Use: construct, Check() once, then read the outcome. Not thread-safe.
class XmlGate {
public:
    // An accepted element, in the order of the start tags.
    struct Element {
        std::uint32_t line;  // of its start tag, one-based
        std::uint32_t children;
        std::uint32_t attributes;
    };
    // So that hostile text within the size limit can't claim memory without bound.
    static constexpr std::size_t kMaxElements = 4'000'000;

    // The text is not owned and must outlive this. The encoding is the one that the bytes had, which is what a
    // declaration has to name.
    XmlGate(std::string_view text, Encoding encoding);

    // False when the text is refused.
    bool Check();

    [[nodiscard]] const std::vector<Element>& Elements() const { return m_elements; }
    // Of a refused text: one-based line and reason.
    [[nodiscard]] std::size_t Line() const { return m_line; }
    [[nodiscard]] const std::string& Reason() const { return m_reason; }

private:
    struct Open {
        std::string_view name;
        std::size_t index;  // in m_elements
    };

    bool Refuse(std::string reason);
    bool RefuseCharacter();
    // Of the character at hand; 0 when it is broken or not allowed.
    [[nodiscard]] std::size_t AllowedLength() const;
    [[nodiscard]] bool StartsWith(std::string_view text) const;
    bool Skip(std::string_view text);
    bool SkipSpace();

    bool Declaration();
    bool DeclarationPart(std::string_view name, std::string_view& value);
    bool Markup();
    bool ExclamationMark();
    bool Comment();
    bool Instruction();
    bool StartTag();
    bool BeginElement(std::string_view name, const char* where);
    bool Attributes(bool& isClosed);
    bool Attribute();
    bool Value();
    bool Reference();
    bool CharacterReference(const char* digits, const char* end);
    bool EndTag();
    bool End();
    bool Name(const char* what, std::string_view& name);
    bool NoDoubledAttribute();
    // One character of a comment, an instruction or a value.
    bool Character();

    const char* m_begin;
    const char* m_at;
    const char* m_end;
    const char* m_countedTo;  // line ends before it are in m_linesBefore
    std::size_t m_linesBefore = 0;
    Encoding m_encoding;
    std::vector<Open> m_open;
    std::vector<Element> m_elements;
    std::vector<std::string_view> m_names;   // of the attributes of the element at hand
    std::vector<std::string_view> m_sorted;  // room for the test of doubled ones
    std::size_t m_line = 0;
    std::string m_reason;
};

}  // namespace xml
