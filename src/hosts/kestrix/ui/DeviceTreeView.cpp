#include "hosts/kestrix/ui/DeviceTreeView.h"

#include "hosts/kestrix/ui/DevicePageView.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/ui/Images.h"

#include <map>
#include <QPainter>
#include <QPixmap>

namespace zr::desktop {
namespace {

constexpr int kIconSize = 18;
constexpr int kScales = 2;  // pictures are made for these device pixel ratios

// The picture of the thing, with that of its state in the lower right corner.
QIcon WithState(const QIcon& picture, DeviceState state)
{
    QIcon both;
    for (int scale = 1; scale <= kScales; ++scale) {
        QPixmap pixmap(kIconSize * scale, kIconSize * scale);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        const int side = pixmap.width();
        picture.paint(&painter, QRect(0, 0, side - 3 * scale, side - 3 * scale));
        const int badge = 11 * scale;
        StateIcon(state).paint(&painter, QRect(side - badge, side - badge, badge, badge));
        painter.end();
        pixmap.setDevicePixelRatio(scale);
        both.addPixmap(pixmap);
        both.addPixmap(pixmap, QIcon::Selected);  // else the style tints it
    }
    return both;
}

QString TextOf(const DeviceTree::Node& node)
{
    switch (node.kind) {
        case DeviceTree::Kind::OtherDevices:
            return LoadText(kTextTreeOtherDevices);
        case DeviceTree::Kind::LoggedData:
            return LoadText(kTextLoggedData);
        case DeviceTree::Kind::Group:
        case DeviceTree::Kind::Device:
            break;
    }
    return ToQt(node.text);
}

}  // namespace

DeviceTreeView::DeviceTreeView(QWidget* parent, unsigned id) : CTreeCtrl(parent, id)
{
    setIconSize({kIconSize, kIconSize});
    setAccessibleName(LoadText(kTextTreeDevices));
    setEditTriggers(NoEditTriggers);
    setTextElideMode(Qt::ElideRight);
    setIndentation(16);
    setFrameShape(QFrame::NoFrame);
    TakeColours();
    connect(this, &QTreeWidget::itemChanged, this, [this](HTREEITEM item, int) { Renamed(item); });
}

void DeviceTreeView::Show(const DeviceTree& tree)
{
    m_isFilling = true;
    DeleteAllItems();
    m_tree = tree;
    m_items.assign(tree.Size(), nullptr);
    m_states.assign(tree.Size(), DeviceState::NotAsked);
    for (const std::size_t node : tree.Top()) {
        Add(node, ui::TVI_ROOT);
    }
    m_isFilling = false;
}

void DeviceTreeView::Add(std::size_t node, HTREEITEM parent)
{
    const DeviceTree::Node& shown = m_tree[node];
    HTREEITEM const item = InsertItem(ui::FromQt(TextOf(shown)), QIcon(), parent);
    SetItemData(item, node);
    item->setToolTip(0, PlainTip(TextOf(shown)));
    if (shown.kind == DeviceTree::Kind::Group) {
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
    m_items[node] = item;
    for (const std::size_t child : shown.children) {
        Add(child, item);
    }
    if (shown.kind != DeviceTree::Kind::Device) {
        Expand(item);
    }
}

void DeviceTreeView::UpdateStates(const PlantWatch& watch)
{
    m_isFilling = true;
    std::map<std::pair<QString, DeviceState>, QIcon> icons;
    for (std::size_t node = 0; node < m_tree.Size(); ++node) {
        if (m_tree[node].kind == DeviceTree::Kind::LoggedData) {
            continue;
        }
        const DeviceState state = watch.StateOf(m_tree, node);
        if (state == m_states[node] && !m_items[node]->icon(0).isNull()) {
            continue;
        }
        m_states[node] = state;
        const bool isDevice = m_tree[node].kind == DeviceTree::Kind::Device;
        const DeviceWatch* const device = isDevice ? watch.Find(m_tree[node].text) : nullptr;
        const QString picture = device != nullptr ? ToQt(device->Driver().ImageName()) : QStringLiteral("folder");
        QIcon& icon = icons[{picture, state}];
        if (icon.isNull()) {
            icon = WithState(ui::NamedImage(picture), state);
        }
        ShowState(node, icon, StateText(state));
    }
    m_isFilling = false;
}

void DeviceTreeView::UpdateLoggedData(DeviceState badge, const QString& text)
{
    for (const std::size_t node : m_tree.Top()) {
        if (m_tree[node].kind != DeviceTree::Kind::LoggedData) {
            continue;
        }
        HTREEITEM const item = m_items[node];
        if (badge == m_states[node] && item->data(0, Qt::AccessibleDescriptionRole).toString() == text) {
            return;
        }
        m_isFilling = true;
        m_states[node] = badge;
        ShowState(node, WithState(ui::NamedImage(QStringLiteral("period")), badge), text);
        m_isFilling = false;
    }
}

QString DeviceTreeView::NodeText(std::size_t node) const
{
    return TextOf(m_tree[node]);
}

void DeviceTreeView::ShowState(std::size_t node, const QIcon& icon, const QString& text)
{
    SetItemImage(m_items[node], icon);
    m_items[node]->setToolTip(0, PlainTip(TextOf(m_tree[node]) + QStringLiteral(": ") + text));
    // For screen readers, which see no pictures.
    m_items[node]->setData(0, Qt::AccessibleDescriptionRole, text);
}

std::size_t DeviceTreeView::SelectedNode() const
{
    HTREEITEM const item = GetSelectedItem();
    return item != nullptr ? static_cast<std::size_t>(GetItemData(item)) : DeviceTree::kNone;
}

void DeviceTreeView::SelectNode(std::size_t node)
{
    SelectItem(node < m_items.size() ? m_items[node] : nullptr);
}

void DeviceTreeView::EditSelectedGroup()
{
    const std::size_t node = SelectedNode();
    if (node != DeviceTree::kNone && m_tree[node].kind == DeviceTree::Kind::Group) {
        editItem(m_items[node], 0);
    }
}

void DeviceTreeView::Renamed(HTREEITEM item)
{
    if (m_isFilling) {
        return;
    }
    const auto node = static_cast<std::size_t>(GetItemData(item));
    const QString text = item->text(0).trimmed();
    m_isFilling = true;
    if (text.isEmpty()) {
        item->setText(0, TextOf(m_tree[node]));
    } else if (text != TextOf(m_tree[node])) {
        m_tree.Rename(node, FromQt(text));
        item->setText(0, text);
        if (m_onRename) {
            m_onRename();
        }
    }
    m_isFilling = false;
}

}  // namespace zr::desktop
