#include "platform/ui/CTreeCtrl.h"

#include "platform/ui/UiText.h"

CTreeCtrl::CTreeCtrl(QWidget* parent, unsigned id) : QTreeWidget(parent)
{
    zr::ui::SetControlId(*this, id);
    setColumnCount(1);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    connect(this, &QTreeWidget::currentItemChanged, this, [this, target = parent](HTREEITEM item, HTREEITEM) {
        const zr::ui::NMTREEVIEW notice{{this, zr::ui::ControlId(*this), zr::ui::TVN_SELCHANGED}, item};
        zr::ui::SendNotify(target, notice.hdr);
    });
}

HTREEITEM CTreeCtrl::InsertItem(std::u16string_view text, const QIcon& image, HTREEITEM parent)
{
    HTREEITEM const item = parent != nullptr ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(this);
    SetItemText(item, text);
    SetItemImage(item, image);
    return item;
}

void CTreeCtrl::DeleteAllItems()
{
    clear();
}

void CTreeCtrl::SetItemText(HTREEITEM item, std::u16string_view text)
{
    item->setText(0, zr::ui::ToQt(text));
}

std::u16string CTreeCtrl::GetItemText(HTREEITEM item) const
{
    return zr::ui::FromQt(item->text(0));
}

void CTreeCtrl::SetItemImage(HTREEITEM item, const QIcon& image)
{
    item->setIcon(0, image);
}

void CTreeCtrl::SetItemData(HTREEITEM item, std::uintptr_t number)
{
    item->setData(0, Qt::UserRole, QVariant::fromValue<qulonglong>(number));
}

std::uintptr_t CTreeCtrl::GetItemData(HTREEITEM item) const
{
    return static_cast<std::uintptr_t>(item->data(0, Qt::UserRole).toULongLong());
}

void CTreeCtrl::SelectItem(HTREEITEM item)
{
    setCurrentItem(item);
    if (item == nullptr) {
        clearSelection();
        return;
    }
    scrollToItem(item);
}
