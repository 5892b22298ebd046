// Trees as text, for comparison in tests.
#pragma once

#include "siblings/tools/Utf.h"
#include "siblings/tools/XmlDocument.h"

#include <string>

namespace zr::test {

// Every tag, name and value of a node and of all below it, unambiguously; not the lines.
inline std::string DescribeTree(const XmlNode* node)
{
    if (node == nullptr) {
        return "(empty)";
    }
    const auto quoted = [](const ZRBasicString& text) {
        return std::to_string(text.Length()) + ":" + Utf16ToUtf8(text);
    };
    std::string description = "(" + quoted(node->tag);
    for (const ZRBasicString& name : node->ValueNames()) {
        description += " " + quoted(name) + "=" + quoted(node->Value(name.CStr(), u"(missing)"));
    }
    for (const XmlNode* child : node->children) {
        description += DescribeTree(child);
    }
    return description + ")";
}

inline std::string DescribeTree(const XmlDocument& document)
{
    return DescribeTree(document.root);
}

}  // namespace zr::test
