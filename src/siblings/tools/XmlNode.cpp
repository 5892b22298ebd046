#include "siblings/tools/XmlPath.h"
#include "siblings/tools/XmlStorage.h"

#include <algorithm>
#include <utility>

namespace {

std::u16string_view ViewOf(const wchar* text)
{
    return text != nullptr ? std::u16string_view(text) : std::u16string_view();
}

bool Equals(const XmlNode& node, std::u16string_view tag)
{
    return node.tag.Text() == tag;
}

// The text with each %s replaced by the next argument and %% by "%". A %s too many stays as it stands.
ZRBasicString Filled(std::u16string_view format, const ZRBasicString*& next, const ZRBasicString* end)
{
    ZRBasicString result;
    for (std::size_t i = 0; i < format.size(); ++i) {
        const wchar following = format[i] == u'%' && i + 1 < format.size() ? format[i + 1] : u'\0';
        if (following == u's' && next != end) {
            result += *next++;
            ++i;
            continue;
        }
        result += format[i];
        i += following == u'%' ? 1U : 0U;
    }
    return result;
}

}  // namespace

XmlDocument::XmlNode::~XmlNode()
{
    // Without recursion, since a tree made in memory may be of any depth.
    std::vector<XmlNode*> pending = std::move(children);
    while (!pending.empty()) {
        XmlNode* const node = pending.back();
        pending.pop_back();
        pending.insert(pending.end(), node->children.begin(), node->children.end());
        node->children.clear();
        delete node;
    }
}

XmlDocument::XmlNode::NamedValue* XmlDocument::XmlNode::Find(std::u16string_view name)
{
    const auto found = std::find_if(m_values.begin(), m_values.end(),
                                    [name](const NamedValue& value) { return value.name->Text() == name; });
    return found != m_values.end() ? &*found : nullptr;
}

const XmlDocument::XmlNode::NamedValue* XmlDocument::XmlNode::Find(std::u16string_view name) const
{
    return const_cast<XmlNode*>(this)->Find(name);
}

const XmlDocument::XmlNode* XmlDocument::XmlNode::Child(std::u16string_view childTag) const
{
    const auto found =
        std::find_if(children.begin(), children.end(), [&](const XmlNode* child) { return Equals(*child, childTag); });
    return found != children.end() ? *found : nullptr;
}

const XmlDocument::XmlNode* XmlDocument::XmlNode::Child(std::u16string_view childTag, std::u16string_view name,
                                                        std::u16string_view value) const
{
    const auto found = std::find_if(children.begin(), children.end(), [&](const XmlNode* child) {
        const NamedValue* const candidate = Equals(*child, childTag) ? child->Find(name) : nullptr;
        return candidate != nullptr && std::u16string_view(candidate->text, candidate->length) == value;
    });
    return found != children.end() ? *found : nullptr;
}

const XmlDocument::XmlNode* XmlDocument::XmlNode::Node(const wchar* path) const
{
    std::u16string_view rest = ViewOf(path);
    const XmlNode* node = this;
    do {
        XmlPathStep step;
        if (!TakePathStep(rest, step)) {
            return nullptr;
        }
        node = step.hasCondition ? node->Child(step.tag, step.name, step.value) : node->Child(step.tag);
    } while (node != nullptr && !rest.empty());
    return node;
}

XmlDocument::XmlNode* XmlDocument::XmlNode::Node(const wchar* path)
{
    return const_cast<XmlNode*>(std::as_const(*this).Node(path));
}

XmlDocument::XmlNode* XmlDocument::XmlNode::NodeFilled(const wchar* format, std::initializer_list<ZRBasicString> texts)
{
    // The format is taken apart before it is filled, so that no argument is ever read as syntax.
    std::u16string_view rest = ViewOf(format);
    const ZRBasicString* next = texts.begin();
    const XmlNode* node = this;
    do {
        XmlPathStep step;
        if (!TakePathStep(rest, step)) {
            return nullptr;
        }
        const ZRBasicString childTag = Filled(step.tag, next, texts.end());
        const ZRBasicString name = Filled(step.name, next, texts.end());
        const ZRBasicString value = Filled(step.value, next, texts.end());
        node = step.hasCondition ? node->Child(childTag, name, value) : node->Child(childTag);
    } while (node != nullptr && !rest.empty());
    return const_cast<XmlNode*>(node);
}

ZRBasicString XmlDocument::XmlNode::Value(const wchar* name, const wchar* fallback) const
{
    const NamedValue* const value = Find(ViewOf(name));
    return value != nullptr ? ZRBasicString(value->text, value->length) : ZRBasicString(fallback);
}

bool XmlDocument::XmlNode::HasValue(const wchar* name) const
{
    return Find(ViewOf(name)) != nullptr;
}

void XmlDocument::XmlNode::SetValue(const wchar* name, const ZRBasicString& value)
{
    NamedValue* slot = Find(ViewOf(name));
    if (slot == nullptr) {
        m_values.push_back({m_storage.Intern(ViewOf(name)), nullptr, 0});
        slot = &m_values.back();
    }
    if (value.Length() <= slot->length) {
        // In its own room, so that a value that is set again and again takes no more.
        std::copy_n(value.CStr(), value.Length(), slot->text);
    } else {
        slot->text = m_storage.Store(value.Text());
    }
    slot->length = value.Length();
}

bool XmlDocument::XmlNode::EraseTag(const wchar* name)
{
    const NamedValue* const value = Find(ViewOf(name));
    if (value == nullptr) {
        return false;
    }
    m_values.erase(m_values.begin() + (value - m_values.data()));
    return true;
}

std::vector<ZRBasicString> XmlDocument::XmlNode::ValueNames() const
{
    std::vector<ZRBasicString> names;
    names.reserve(m_values.size());
    for (const NamedValue& value : m_values) {
        names.push_back(*value.name);
    }
    return names;
}

XmlDocument::XmlNode* XmlDocument::XmlNode::NewChild(const wchar* childTag)
{
    auto child = std::unique_ptr<XmlNode>(new XmlNode(m_storage));
    child->tag = ZRBasicString(childTag);
    children.push_back(child.get());
    return child.release();
}

void XmlDocument::XmlNode::RemoveChild(XmlNode* child)
{
    const auto found = std::find(children.begin(), children.end(), child);
    if (child == nullptr || found == children.end()) {
        return;
    }
    children.erase(found);
    delete child;
}
