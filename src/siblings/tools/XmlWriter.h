// The way from the tree to text.
#pragma once

#include "siblings/tools/XmlDocument.h"

#include <string>
#include <vector>

// Writes a tree as UTF-8 text that the gate accepts and that gives the same tree when it is read again. One use only.
class XmlWriter {
public:
    // False, with a reason, for a tree that could not be read again: a tag or name that is no name of XML, or a limit
    // of XmlDocument passed. What XML can't carry in a value (NUL, most control characters, unpaired surrogates,
    // U+FFFE, U+FFFF) is written as U+FFFD.
    bool Write(const XmlNode& root);

    [[nodiscard]] const std::string& Text() const { return m_text; }
    [[nodiscard]] const std::string& Reason() const { return m_reason; }

private:
    struct Open {
        const XmlNode* node;
        std::size_t nextChild;
    };

    bool Refuse(std::string reason);
    bool Begin(const XmlNode& node);
    void End(const XmlNode& node);
    void Value(std::u16string_view text);
    void Character(char32_t scalar);

    std::vector<Open> m_open;
    std::string m_text;
    std::string m_reason;
};
