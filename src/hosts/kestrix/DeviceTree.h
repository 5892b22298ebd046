// The devices of a document in their groups.
#pragma once

#include "siblings/tools/XmlDocument.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace zr::desktop {

// A plain value, made anew when the document changes.
class DeviceTree {
public:
    enum class Kind {
        Group,
        OtherDevices,  // holds the devices that no group lists
        Device,
        LoggedData,  // what is recorded of all devices; once, at the end
    };
    struct Node {
        Kind kind = Kind::Group;
        ZRBasicString text;                 // of a group its Id, of a device its name; empty for the others
        XmlNode* xml = nullptr;             // of a group: its node in the document. Not owned.
        std::size_t parent = 0;             // kNone at the top
        std::vector<std::size_t> children;  // groups before devices, each in the order of the document
    };
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    // groups: the `DeviceGroups` node, may be null; devices: the names that the registry knows. An entry that names no
    // such device is left out. A device may stand in several groups.
    DeviceTree() = default;
    DeviceTree(XmlNode* groups, const std::vector<ZRBasicString>& devices);

    // At the end of the top.
    void AddLoggedData() { Add({Kind::LoggedData, {}, nullptr, kNone, {}}); }

    [[nodiscard]] std::size_t Size() const { return m_nodes.size(); }
    // Zero-based; no range test.
    [[nodiscard]] const Node& operator[](std::size_t index) const { return m_nodes[index]; }
    // Those without a parent.
    [[nodiscard]] const std::vector<std::size_t>& Top() const { return m_top; }
    // The devices below a node, or the device itself; each once, in the order of the tree.
    [[nodiscard]] std::vector<ZRBasicString> DevicesOf(std::size_t index) const;
    // The first node of a device.
    [[nodiscard]] std::optional<std::size_t> FindDevice(const ZRBasicString& name) const;

    // The text that stands for a node in the settings, and the node that it stands for now.
    [[nodiscard]] ZRBasicString PathOf(std::size_t index) const;
    [[nodiscard]] std::optional<std::size_t> FindPath(const ZRBasicString& path) const;

    // Of a group, here and in the document.
    void Rename(std::size_t index, const ZRBasicString& text);

private:
    void AddGroup(XmlNode& group, std::size_t parent, const std::vector<ZRBasicString>& devices);
    std::size_t Add(Node node);

    std::vector<Node> m_nodes;
    std::vector<std::size_t> m_top;
};

}  // namespace zr::desktop
