#include "platform/ui/CVirtualListCtrl.h"

#include "platform/ui/UiText.h"

#include <algorithm>
#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

namespace {

constexpr int kTitleLines = 3;  // that a title is broken into at most
constexpr int kRowPadding = 6;

// Titles break at blanks; the header is as high as the most lines ask for.
class TitleHeader : public QHeaderView {
public:
    explicit TitleHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent)
    {
        setSectionsMovable(true);
        setStretchLastSection(false);
        setMinimumSectionSize(0);
        setHighlightSections(false);
        setSectionsClickable(false);
        setDefaultAlignment(Qt::AlignCenter | static_cast<Qt::Alignment>(Qt::TextWordWrap));
        setTextElideMode(Qt::ElideRight);
    }

    QSize sizeHint() const override
    {
        const int line = fontMetrics().lineSpacing();
        m_known.resize(static_cast<std::size_t>(count()));
        int lines = 1;
        for (int i = 0; i < count(); ++i) {
            lines = std::max(lines, LinesOf(i));
        }
        return {QHeaderView::sizeHint().width(), std::min(lines, kTitleLines) * line + 2 * kMargin};
    }

    void reset() override
    {
        m_known.clear();
        QHeaderView::reset();
    }

protected:
    void changeEvent(QEvent* event) override
    {
        m_known.clear();
        QHeaderView::changeEvent(event);
    }

private:
    static constexpr int kMargin = 4;

    // A title at a width.
    struct Known {
        int width = -1;
        int lines = 0;
    };

    // Measured once a width: every column that comes or is widened asks for all of them.
    int LinesOf(int section) const
    {
        Known& known = m_known[static_cast<std::size_t>(section)];
        if (known.width != sectionSize(section)) {
            const QString title = model()->headerData(section, Qt::Horizontal).toString();
            const QRect room(0, 0, std::max(sectionSize(section) - 2 * kMargin, 1), 1);
            known.width = sectionSize(section);
            known.lines =
                fontMetrics().boundingRect(room, Qt::TextWordWrap, title).height() / fontMetrics().lineSpacing();
        }
        return known.lines;
    }

    mutable std::vector<Known> m_known;
};

}  // namespace

class CVirtualListCtrl::Rows : public QAbstractTableModel {
public:
    explicit Rows(QWidget* list, QWidget* target) : QAbstractTableModel(list), m_list(list), m_target(target) {}

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : m_count; }
    int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_titles.size());
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (role == Qt::TextAlignmentRole) {
            return static_cast<int>((index.column() == 0 ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
        }
        return role == Qt::DisplayRole ? QVariant(Text(index.row(), index.column())) : QVariant();
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        const bool isTitle = orientation == Qt::Horizontal && section >= 0 && section < columnCount();
        if (!isTitle) {
            return {};
        }
        const QString& title = m_titles[static_cast<std::size_t>(section)];
        if (role == Qt::ToolTipRole) {
            // Escaped, so that a name never acts as markup.
            return QString(QStringLiteral("<p>") + title.toHtmlEscaped() + QStringLiteral("</p>"));
        }
        return role == Qt::DisplayRole ? QVariant(title) : QVariant();
    }

    [[nodiscard]] QString Text(int row, int column) const
    {
        if (row < 0 || row >= m_count || column < 0 || column >= columnCount()) {
            return {};
        }
        const zr::ui::NMLVDISPINFO notice{
            {m_list, zr::ui::ControlId(*m_list), zr::ui::LVN_GETDISPINFO}, zr::ui::LVIF_TEXT, row, column, {}};
        zr::ui::SendNotify(m_target, notice.hdr);
        return zr::ui::ToQt(notice.text);
    }
    void Clear()
    {
        beginResetModel();
        m_titles.clear();
        m_count = 0;
        endResetModel();
    }
    void Append(QString title)
    {
        const int place = columnCount();
        beginInsertColumns({}, place, place);
        m_titles.push_back(std::move(title));
        endInsertColumns();
    }
    void SetCount(int count)
    {
        if (count < m_count) {
            beginRemoveRows({}, count, m_count - 1);
            m_count = count;
            endRemoveRows();
        } else if (count > m_count) {
            beginInsertRows({}, m_count, count - 1);
            m_count = count;
            endInsertRows();
        }
    }

private:
    QWidget* m_list;
    QWidget* m_target;
    std::vector<QString> m_titles;
    int m_count = 0;
};

CVirtualListCtrl::CVirtualListCtrl(QWidget* parent, unsigned id) : QTableView(parent), m_rows(new Rows(this, parent))
{
    zr::ui::SetControlId(*this, id);
    setHorizontalHeader(new TitleHeader(this));
    setModel(m_rows);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setHorizontalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    FitToFont();
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this] { updateGeometries(); });
}

CVirtualListCtrl::~CVirtualListCtrl() = default;

void CVirtualListCtrl::FitToFont()
{
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowPadding);
}

void CVirtualListCtrl::changeEvent(QEvent* event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        FitToFont();
    }
}

bool CVirtualListCtrl::ScrollSideways(const QKeyEvent& event)
{
    const bool isLeft = event.key() == Qt::Key_Left;
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::ControlModifier || (!isLeft && event.key() != Qt::Key_Right)) {
        return false;
    }
    horizontalScrollBar()->triggerAction(isLeft ? QAbstractSlider::SliderSingleStepSub
                                                : QAbstractSlider::SliderSingleStepAdd);
    return true;
}

// Home and End go to the first and last row, as in every list; a table would go along the row.
void CVirtualListCtrl::keyPressEvent(QKeyEvent* event)
{
    if (ScrollSideways(*event)) {
        return;
    }
    if (!currentIndex().isValid() && GetItemCount() > 0) {
        selectionModel()->setCurrentIndex(m_rows->index(0, 0), QItemSelectionModel::NoUpdate);
    }
    if (event->key() == Qt::Key_Home || event->key() == Qt::Key_End) {
        GoToEnd(*event);
        return;
    }
    QTableView::keyPressEvent(event);
}

void CVirtualListCtrl::GoToEnd(const QKeyEvent& event)
{
    QKeyEvent whole(event.type(), event.key(), event.modifiers() | Qt::ControlModifier);
    m_goesToEnd = (event.modifiers() & Qt::ControlModifier) == 0;
    QTableView::keyPressEvent(&whole);
    m_goesToEnd = false;
    if ((event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) == 0 && currentIndex().isValid()) {
        // Also where the row was the current one before.
        selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
}

// What is added to the key so that it goes to the end doesn't keep the selection as it is.
QItemSelectionModel::SelectionFlags CVirtualListCtrl::selectionCommand(const QModelIndex& index,
                                                                       const QEvent* event) const
{
    if (m_goesToEnd && event != nullptr && event->type() == QEvent::KeyPress) {
        const auto& key = dynamic_cast<const QKeyEvent&>(*event);
        const QKeyEvent plain(key.type(), key.key(), key.modifiers() & ~Qt::ControlModifier);
        return QTableView::selectionCommand(index, &plain);
    }
    return QTableView::selectionCommand(index, event);
}

void CVirtualListCtrl::DeleteAllColumns()
{
    m_rows->Clear();
}

void CVirtualListCtrl::InsertColumn(std::u16string_view title, int width)
{
    m_rows->Append(zr::ui::ToQt(title));
    horizontalHeader()->resizeSection(GetColumnCount() - 1, std::max(width, 0));
}

void CVirtualListCtrl::SetColumnOrder(int column, int order)
{
    const int from = GetColumnOrder(column);
    if (from >= 0 && order >= 0 && order < GetColumnCount()) {
        horizontalHeader()->moveSection(from, order);
    }
}

int CVirtualListCtrl::GetColumnOrder(int column) const
{
    return column >= 0 && column < GetColumnCount() ? horizontalHeader()->visualIndex(column) : -1;
}

int CVirtualListCtrl::GetColumnWidth(int column) const
{
    return column >= 0 && column < GetColumnCount() ? horizontalHeader()->sectionSize(column) : 0;
}

int CVirtualListCtrl::GetColumnCount() const
{
    return m_rows->columnCount();
}

void CVirtualListCtrl::SetItemCountEx(int count)
{
    m_rows->SetCount(std::max(count, 0));
    viewport()->update();
}

int CVirtualListCtrl::GetItemCount() const
{
    return m_rows->rowCount();
}

std::u16string CVirtualListCtrl::GetItemText(int row, int column) const
{
    return zr::ui::FromQt(m_rows->Text(row, column));
}

std::vector<std::pair<int, int>> CVirtualListCtrl::GetSelectedRanges() const
{
    std::vector<std::pair<int, int>> ranges;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        ranges.emplace_back(range.top(), range.bottom());
    }
    return ranges;
}

int CVirtualListCtrl::GetStringWidth(std::u16string_view text) const
{
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    return fontMetrics().horizontalAdvance(zr::ui::ToQt(text)) + 2 * margin;
}
