// The way from accepted text to the tree.
#pragma once

#include "siblings/tools/XmlDocument.h"
#include "siblings/tools/XmlGate.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pugi {
class xml_node;
}

// Parses text that the gate has accepted and makes nodes of it. One use only.
class XmlTreeBuilder {
public:
    // The storage is not owned and must outlive the nodes. The elements are those of the gate for the same text.
    XmlTreeBuilder(XmlNode::Storage& storage, const std::vector<xml::XmlGate::Element>& elements);
    ~XmlTreeBuilder();
    XmlTreeBuilder(const XmlTreeBuilder&) = delete;
    XmlTreeBuilder& operator=(const XmlTreeBuilder&) = delete;

    // The root, null if the parser refuses what the gate let through; reason then says so. The text is used up.
    std::unique_ptr<XmlNode> Build(std::string& text, std::string& reason);

private:
    std::unique_ptr<XmlNode> MakeNode(const pugi::xml_node& source);
    void MakeValues(const pugi::xml_node& source, XmlNode& node);
    bool MakeChildren(const pugi::xml_node& source, XmlNode& node);
    const ZRBasicString* InternedName(const char* name, std::size_t position);

    struct Name {
        std::string_view utf8;
        const ZRBasicString* interned = nullptr;
    };

    XmlNode::Storage& m_storage;
    const std::vector<xml::XmlGate::Element>& m_elements;
    std::size_t m_made = 0;
    std::unordered_map<std::string_view, const ZRBasicString*> m_names;
    std::vector<Name> m_lastAt;  // the last name at each position in an element; mostly the next one's too
    std::string_view m_lastTagUtf8;
    ZRBasicString m_lastTag;
};
