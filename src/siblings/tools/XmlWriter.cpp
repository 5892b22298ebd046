#include "siblings/tools/XmlWriter.h"

#include "platform/Unicode.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/XmlCharacters.h"
#include "siblings/tools/XmlStorage.h"

#include <algorithm>

namespace {

// Fit to stand in a one-line reason.
std::string Quoted(const ZRBasicString& name)
{
    std::string text = "\"" + Utf16ToUtf8(name) + "\"";
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    return text;
}

}  // namespace

bool XmlWriter::Write(const XmlNode& root)
{
    m_text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    if (!Begin(root)) {
        return false;
    }
    while (!m_open.empty()) {
        Open& open = m_open.back();
        if (open.nextChild == open.node->children.size()) {
            End(*open.node);
            continue;
        }
        if (!Begin(*open.node->children[open.nextChild++])) {
            return false;
        }
    }
    return m_text.size() <= XmlDocument::kMaxBytes || Refuse("the document would be too large to be read again");
}

bool XmlWriter::Refuse(std::string reason)
{
    m_reason = std::move(reason);
    m_text.clear();
    return false;
}

bool XmlWriter::Begin(const XmlNode& node)
{
    if (m_open.size() == XmlDocument::kMaxDepth) {
        return Refuse("elements are nested deeper than " + std::to_string(XmlDocument::kMaxDepth));
    }
    if (!xml::IsName(node.tag)) {
        return Refuse(Quoted(node.tag) + " can't be the tag of an element");
    }
    if (node.m_values.size() > XmlDocument::kMaxAttributes) {
        return Refuse("more than " + std::to_string(XmlDocument::kMaxAttributes) + " values in an element");
    }
    m_text.append(2 * m_open.size(), ' ').append("<").append(Utf16ToUtf8(node.tag));
    for (const XmlNode::NamedValue& value : node.m_values) {
        if (!xml::IsName(*value.name)) {
            return Refuse(Quoted(*value.name) + " can't be the name of a value");
        }
        m_text.append(" ").append(Utf16ToUtf8(*value.name)).append("=\"");
        Value({value.text, value.length});
        m_text += '"';
    }
    m_text += node.children.empty() ? "/>\n" : ">\n";
    if (!node.children.empty()) {
        m_open.push_back({&node, 0});
    }
    return true;
}

void XmlWriter::End(const XmlNode& node)
{
    m_open.pop_back();
    m_text.append(2 * m_open.size(), ' ').append("</").append(Utf16ToUtf8(node.tag)).append(">\n");
}

void XmlWriter::Value(std::u16string_view text)
{
    const wchar* const end = text.data() + text.size();
    for (const wchar* at = text.data(); at != end;) {
        const zr::UnicodeStep step = zr::NextUtf16(at, end);
        Character(step.scalar);
        at += step.length;
    }
}

void XmlWriter::Character(char32_t scalar)
{
    switch (scalar) {
        case U'&':
            m_text += "&amp;";
            return;
        case U'<':
            m_text += "&lt;";
            return;
        case U'>':
            m_text += "&gt;";
            return;
        case U'"':
            m_text += "&quot;";
            return;
        // By reference, since a reader makes blanks of literal ones.
        case U'\t':
        case U'\n':
        case U'\r':
            m_text.append("&#").append(std::to_string(static_cast<unsigned>(scalar))).append(";");
            return;
        default:
            break;
    }
    if (xml::IsC1Control(scalar)) {
        m_text.append("&#").append(std::to_string(static_cast<unsigned>(scalar))).append(";");
        return;
    }
    zr::AppendUtf8(xml::IsCharacter(scalar) ? scalar : zr::kReplacementCharacter, m_text);
}
