#include "platform/ui/CListCtrl.h"

#include "platform/ui/UiText.h"

#include <algorithm>
#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <vector>

class CListCtrl::Lines : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;

    struct Line {
        QString text;
        std::uintptr_t number = 0;
    };

    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(lines.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(titles.size());
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!Has(index.row()) || index.column() != 0) {
            return {};
        }
        const QString& text = lines[static_cast<std::size_t>(index.row())].text;
        if (role == Qt::ToolTipRole) {
            // Escaped, so that a name never acts as markup; a paragraph, so that a long text is broken into lines.
            return QString(QStringLiteral("<p>") + text.toHtmlEscaped() + QStringLiteral("</p>"));
        }
        return role == Qt::DisplayRole ? QVariant(text) : QVariant();
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        const bool isTitle = orientation == Qt::Horizontal && section >= 0 && section < columnCount();
        if (isTitle && role == Qt::TextAlignmentRole) {
            return int{Qt::AlignLeft | Qt::AlignVCenter};
        }
        return isTitle && role == Qt::DisplayRole ? QVariant(titles[static_cast<std::size_t>(section)]) : QVariant();
    }

    [[nodiscard]] bool Has(int row) const { return row >= 0 && row < rowCount(); }
    void InsertColumn(int index, QString title)
    {
        beginInsertColumns({}, index, index);
        titles.insert(titles.begin() + index, std::move(title));
        endInsertColumns();
    }
    void InsertLine(int index, QString text)
    {
        if (!isQuiet) {
            beginInsertRows({}, index, index);
        }
        lines.insert(lines.begin() + index, Line{std::move(text), 0});
        if (!isQuiet) {
            endInsertRows();
        }
    }
    void Clear()
    {
        if (!isQuiet) {
            beginResetModel();
        }
        lines.clear();
        if (!isQuiet) {
            endResetModel();
        }
    }
    void SetQuiet(bool quiet)
    {
        if (quiet == isQuiet) {
            return;
        }
        isQuiet = quiet;
        quiet ? beginResetModel() : endResetModel();
    }

    std::vector<QString> titles;
    std::vector<Line> lines;
    bool isQuiet = false;
};

CListCtrl::CListCtrl(QWidget* parent, unsigned id) : QTreeView(parent), m_lines(new Lines(this)), m_target(parent)
{
    zr::ui::SetControlId(*this, id);
    setModel(m_lines);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setSelectionMode(SingleSelection);
    setSelectionBehavior(SelectItems);
    setEditTriggers(NoEditTriggers);
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    header()->setMinimumSectionSize(0);
}

CListCtrl::~CListCtrl() = default;

int CListCtrl::InsertColumn(int index, std::u16string_view title)
{
    const int place = std::clamp(index, 0, m_lines->columnCount());
    m_lines->InsertColumn(place, zr::ui::ToQt(title));
    return place;
}

void CListCtrl::SetColumnWidth(int column, int width)
{
    setColumnWidth(column, std::max(width, 0));
}

int CListCtrl::InsertItem(int index, std::u16string_view text)
{
    const int place = std::clamp(index, 0, m_lines->rowCount());
    m_lines->InsertLine(place, zr::ui::ToQt(text));
    return place;
}

void CListCtrl::SetItemData(int index, std::uintptr_t number)
{
    if (m_lines->Has(index)) {
        m_lines->lines[static_cast<std::size_t>(index)].number = number;
    }
}

std::uintptr_t CListCtrl::GetItemData(int index) const
{
    return m_lines->Has(index) ? m_lines->lines[static_cast<std::size_t>(index)].number : 0;
}

std::u16string CListCtrl::GetItemText(int index, int column) const
{
    return zr::ui::FromQt(m_lines->data(m_lines->index(index, column), Qt::DisplayRole).toString());
}

int CListCtrl::GetItemCount() const
{
    return m_lines->rowCount();
}

void CListCtrl::DeleteAllItems()
{
    m_lines->Clear();
}

void CListCtrl::SetItemState(int index, unsigned state, unsigned mask)
{
    if (!m_lines->Has(index) || (mask & zr::ui::LVIS_SELECTED) == 0) {
        return;
    }
    const QModelIndex line = m_lines->index(index, 0);
    if ((state & zr::ui::LVIS_SELECTED) != 0) {
        selectionModel()->setCurrentIndex(line, QItemSelectionModel::ClearAndSelect);
    } else {
        selectionModel()->select(line, QItemSelectionModel::Deselect);
    }
}

unsigned CListCtrl::GetItemState(int index, unsigned mask) const
{
    const bool isSelected = m_lines->Has(index) && selectionModel()->isSelected(m_lines->index(index, 0));
    return isSelected ? mask & zr::ui::LVIS_SELECTED : 0;
}

unsigned CListCtrl::SetExtendedStyle(unsigned mask, unsigned value)
{
    const unsigned before = m_extendedStyle;
    m_extendedStyle = mask == 0 ? value : (before & ~mask) | (value & mask);
    const bool wholeLine = (m_extendedStyle & zr::ui::LVS_EX_FULLROWSELECT) != 0;
    setSelectionBehavior(wholeLine ? SelectRows : SelectItems);
    viewport()->update();
    return before;
}

void CListCtrl::SetRedraw(bool redraw)
{
    if (redraw == !m_lines->isQuiet) {
        return;
    }
    if (!redraw) {
        m_scrolledTo = verticalScrollBar()->value();
    }
    m_lines->SetQuiet(!redraw);
    if (redraw) {
        doItemsLayout();
        verticalScrollBar()->setValue(m_scrolledTo);
    }
}

int CListCtrl::GetCountPerPage() const
{
    const int line = m_lines->rowCount() > 0 ? rowHeight(m_lines->index(0, 0)) : fontMetrics().height();
    return viewport()->height() / std::max(line, 1);
}

void CListCtrl::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QTreeView::selectionChanged(selected, deselected);
    for (const QModelIndex& line : deselected.indexes()) {
        Notify(line.row(), 0, zr::ui::LVIS_SELECTED);
    }
    for (const QModelIndex& line : selected.indexes()) {
        Notify(line.row(), zr::ui::LVIS_SELECTED, 0);
    }
}

void CListCtrl::Notify(int index, unsigned newState, unsigned oldState)
{
    const zr::ui::NMLISTVIEW notice{
        {this, zr::ui::ControlId(*this), zr::ui::LVN_ITEMCHANGED}, index, newState, oldState};
    zr::ui::SendNotify(m_target, notice.hdr);
}

void CListCtrl::keyPressEvent(QKeyEvent* event)
{
    const bool isStep = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    if (isStep && m_lines->rowCount() > 0 && !selectionModel()->hasSelection()) {
        SetItemState(std::max(currentIndex().row(), 0), zr::ui::LVIS_SELECTED, zr::ui::LVIS_SELECTED);
        return;
    }
    QTreeView::keyPressEvent(event);
}

void CListCtrl::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QTreeView::drawRow(painter, option, index);
    if ((m_extendedStyle & zr::ui::LVS_EX_GRIDLINES) != 0) {
        painter->setPen(palette().color(QPalette::Midlight));
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    }
}
