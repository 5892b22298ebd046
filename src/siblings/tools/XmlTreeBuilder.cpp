#include "siblings/tools/XmlTreeBuilder.h"

#include "siblings/tools/Utf.h"
#include "siblings/tools/XmlStorage.h"

#include <cstring>
#include <pugixml.hpp>

XmlTreeBuilder::XmlTreeBuilder(XmlNode::Storage& storage, const std::vector<xml::XmlGate::Element>& elements)
    : m_storage(storage), m_elements(elements), m_lastAt(XmlDocument::kMaxAttributes)
{
}

XmlTreeBuilder::~XmlTreeBuilder() = default;

std::unique_ptr<XmlNode> XmlTreeBuilder::Build(std::string& text, std::string& reason)
{
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer_inplace(
        text.data(), text.size(), pugi::parse_escapes | pugi::parse_wconv_attribute, pugi::encoding_utf8);
    if (!result) {
        reason = result.description();
        return nullptr;
    }
    std::unique_ptr<XmlNode> root = MakeNode(document.document_element());
    if (root == nullptr || m_made != m_elements.size()) {
        reason = "the parser sees other elements than the gate";
        return nullptr;
    }
    return root;
}

// Recursion is bounded by the depth that the gate allows.
std::unique_ptr<XmlNode> XmlTreeBuilder::MakeNode(const pugi::xml_node& source)
{
    if (m_made == m_elements.size()) {
        return nullptr;
    }
    const xml::XmlGate::Element& element = m_elements[m_made++];
    auto node = std::unique_ptr<XmlNode>(new XmlNode(m_storage));
    if (m_lastTagUtf8 != source.name()) {
        m_lastTagUtf8 = source.name();
        m_lastTag = Utf8ToUtf16(m_lastTagUtf8);
    }
    node->tag = m_lastTag;
    node->m_line = element.line;
    node->m_values.reserve(element.attributes);
    node->children.reserve(element.children);
    MakeValues(source, *node);
    return MakeChildren(source, *node) ? std::move(node) : nullptr;
}

void XmlTreeBuilder::MakeValues(const pugi::xml_node& source, XmlNode& node)
{
    std::size_t position = 0;
    for (pugi::xml_attribute from = source.first_attribute(); from; from = from.next_attribute()) {
        const std::string_view utf8 = from.value();
        wchar* const text = utf8.empty() ? nullptr : m_storage.Allocate(utf8.size());
        const auto length = static_cast<std::size_t>(DecodeValidUtf8(utf8, text) - text);
        m_storage.Commit(length);
        node.m_values.push_back({InternedName(from.name(), position++), text, length});
    }
}

bool XmlTreeBuilder::MakeChildren(const pugi::xml_node& source, XmlNode& node)
{
    for (pugi::xml_node from = source.first_child(); from; from = from.next_sibling()) {
        std::unique_ptr<XmlNode> child = MakeNode(from);
        if (child == nullptr) {
            return false;
        }
        node.children.push_back(child.get());
        child.release();
    }
    return true;
}

const ZRBasicString* XmlTreeBuilder::InternedName(const char* name, std::size_t position)
{
    const std::string_view utf8 = name;
    Name& last = m_lastAt[position % m_lastAt.size()];
    if (last.interned != nullptr && last.utf8 == utf8) {
        return last.interned;
    }
    const auto [found, isNew] = m_names.try_emplace(utf8, nullptr);
    if (isNew) {
        found->second = m_storage.Intern(Utf8ToUtf16(utf8));
    }
    last = {utf8, found->second};
    return found->second;
}
