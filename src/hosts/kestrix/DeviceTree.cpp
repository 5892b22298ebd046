#include "hosts/kestrix/DeviceTree.h"

#include <algorithm>
#include <set>
#include <utility>

namespace zr::desktop {
namespace {

constexpr const wchar* kLoggedDataPath = u"\nlogged";  // of no device: the group above would have no name
constexpr wchar kPathSeparator = u'\n';  // stands in no name that a document can hold in one line of a tree

void CollectDevices(const DeviceTree& tree, std::size_t index, std::set<ZRBasicString>& seen,
                    std::vector<ZRBasicString>& devices)
{
    const DeviceTree::Node& node = tree[index];
    if (node.kind == DeviceTree::Kind::Device && seen.insert(node.text).second) {
        devices.push_back(node.text);
    }
    for (const std::size_t child : node.children) {
        CollectDevices(tree, child, seen, devices);
    }
}

}  // namespace

DeviceTree::DeviceTree(XmlNode* groups, const std::vector<ZRBasicString>& devices)
{
    if (groups != nullptr) {
        AddGroup(*groups, kNone, devices);
    }
    std::set<ZRBasicString> listed;
    for (const Node& node : m_nodes) {
        if (node.kind == Kind::Device) {
            listed.insert(node.text);
        }
    }
    std::size_t others = kNone;
    for (const ZRBasicString& device : devices) {
        if (!listed.insert(device).second) {
            continue;
        }
        if (others == kNone) {
            others = Add({Kind::OtherDevices, {}, nullptr, kNone, {}});
        }
        Add({Kind::Device, device, nullptr, others, {}});
    }
}

// The children of a group node; the node itself is in the tree already, unless it is the root.
void DeviceTree::AddGroup(XmlNode& group, std::size_t parent, const std::vector<ZRBasicString>& devices)
{
    if (XmlNode* const list = group.Node(u"Groups"); list != nullptr) {
        for (XmlNode* const child : list->children) {
            const std::size_t index = Add({Kind::Group, child->Value(u"Id", u""), child, parent, {}});
            AddGroup(*child, index, devices);
        }
    }
    if (const XmlNode* const list = std::as_const(group).Node(u"Devices"); list != nullptr) {
        std::set<ZRBasicString> here;
        for (const XmlNode* const entry : list->children) {
            const ZRBasicString name = entry->Value(u"Id", u"");
            const bool isKnown = std::find(devices.begin(), devices.end(), name) != devices.end();
            if (isKnown && here.insert(name).second) {
                Add({Kind::Device, name, nullptr, parent, {}});
            }
        }
    }
}

std::size_t DeviceTree::Add(Node node)
{
    const std::size_t index = m_nodes.size();
    (node.parent == kNone ? m_top : m_nodes[node.parent].children).push_back(index);
    m_nodes.push_back(std::move(node));
    return index;
}

std::vector<ZRBasicString> DeviceTree::DevicesOf(std::size_t index) const
{
    std::set<ZRBasicString> seen;
    std::vector<ZRBasicString> devices;
    CollectDevices(*this, index, seen, devices);
    return devices;
}

std::optional<std::size_t> DeviceTree::FindDevice(const ZRBasicString& name) const
{
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        if (m_nodes[i].kind == Kind::Device && m_nodes[i].text == name) {
            return i;
        }
    }
    return std::nullopt;
}

ZRBasicString DeviceTree::PathOf(std::size_t index) const
{
    if (m_nodes[index].kind == Kind::LoggedData) {
        return {kLoggedDataPath};
    }
    ZRBasicString path = m_nodes[index].text;
    for (std::size_t up = m_nodes[index].parent; up != kNone; up = m_nodes[up].parent) {
        path = m_nodes[up].text + kPathSeparator + path;
    }
    return path;
}

std::optional<std::size_t> DeviceTree::FindPath(const ZRBasicString& path) const
{
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        if (PathOf(i) == path) {
            return i;
        }
    }
    return std::nullopt;
}

void DeviceTree::Rename(std::size_t index, const ZRBasicString& text)
{
    Node& node = m_nodes[index];
    if (node.xml != nullptr) {
        node.text = text;
        node.xml->SetValue(u"Id", text);
    }
}

}  // namespace zr::desktop
