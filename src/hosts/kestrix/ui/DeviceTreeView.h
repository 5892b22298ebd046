// The tree of groups and devices, with the state of each.
#pragma once

#include "hosts/kestrix/DeviceTree.h"
#include "hosts/kestrix/PlantWatch.h"
#include "hosts/kestrix/ui/Theme.h"
#include "platform/ui/CTreeCtrl.h"

#include <functional>
#include <utility>
#include <vector>

namespace zr::desktop {

// Shows a DeviceTree; the parent is told of a selection as by any tree. UI thread only.
class DeviceTreeView : public CTreeCtrl {
public:
    DeviceTreeView(QWidget* parent, unsigned id);

    // The tree is copied. Groups are open.
    void Show(const DeviceTree& tree);
    // Pictures by the states of the devices.
    void UpdateStates(const PlantWatch& watch);

    // As it is shown.
    [[nodiscard]] QString NodeText(std::size_t node) const;
    // Of the node of logged data, if there is one.
    void UpdateLoggedData(DeviceState badge, const QString& text);

    // Those in force; to be called when they have changed.
    void TakeColours() { setPalette(TreePalette()); }

    [[nodiscard]] const DeviceTree& Tree() const { return m_tree; }
    // DeviceTree::kNone when none is selected.
    [[nodiscard]] std::size_t SelectedNode() const;
    void SelectNode(std::size_t node);
    // The name of the selected group is typed anew.
    void EditSelectedGroup();
    // Called when the user has renamed a group, which changes the document.
    void OnRename(std::function<void()> listener) { m_onRename = std::move(listener); }

    [[nodiscard]] QSize sizeHint() const override { return {230, 400}; }

private:
    void Add(std::size_t node, HTREEITEM parent);
    void ShowState(std::size_t node, const QIcon& icon, const QString& text);
    // Of a group, whose text was edited.
    void Renamed(HTREEITEM item);

    DeviceTree m_tree;
    std::vector<HTREEITEM> m_items;     // by node
    std::vector<DeviceState> m_states;  // as shown, by node
    bool m_isFilling = false;
    std::function<void()> m_onRename;
};

}  // namespace zr::desktop
