#include "siblings/tools/ui/ZRLayout.h"

#include <algorithm>
#include <QGroupBox>
#include <QPointer>
#include <QStyle>
#include <QStyleOptionGroupBox>
#include <QWidgetItem>
#include <utility>

namespace {

constexpr int kUnitsPerLine = 8;

// The frame and the title of a box, around what is in it.
QMargins MarginsOf(const QGroupBox& box, int gap)
{
    QStyleOptionGroupBox option;
    option.initFrom(&box);
    option.text = box.title();
    option.lineWidth = 1;
    option.rect = QRect(0, 0, 1000, 1000);
    option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
    const QRect inside = box.style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxContents, &box);
    return QMargins(inside.left() + gap, inside.top() + gap, option.rect.right() - inside.right() + gap,
                    option.rect.bottom() - inside.bottom() + gap);
}

}  // namespace

// What a box layout places: a control, a nested layout or a gap, with a size of ours along the layout.
class ZRLayout::Item : public QLayoutItem {
public:
    explicit Item(Qt::Orientation orientation) : m_orientation(orientation) {}
    Item(Qt::Orientation orientation, QWidget& control)
        : m_orientation(orientation), m_control(&control), m_controlItem(std::make_unique<QWidgetItem>(&control))
    {
    }
    Item(Qt::Orientation orientation, std::unique_ptr<ZRLayout> layout, QGroupBox* box)
        : m_orientation(orientation), m_layout(std::move(layout)), m_frame(box)
    {
    }

    static constexpr int kAsInside = -1;  // as the inside asks
    void SetAlong(int pixels) { m_along = pixels; }
    void Refresh() const
    {
        if (m_layout) {
            m_layout->Refresh();
        }
    }

    [[nodiscard]] bool isEmpty() const override
    {
        return m_controlItem != nullptr && (m_control.isNull() || m_controlItem->isEmpty());
    }
    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
    [[nodiscard]] QSize sizeHint() const override { return WithAlong(Inner(&QLayoutItem::sizeHint)); }
    [[nodiscard]] QSize minimumSize() const override { return WithAlong(Inner(&QLayoutItem::minimumSize)); }
    [[nodiscard]] QSize maximumSize() const override { return WithAlong(QSize(QLAYOUTSIZE_MAX, QLAYOUTSIZE_MAX)); }
    [[nodiscard]] QRect geometry() const override { return m_geometry; }
    void setGeometry(const QRect& rectangle) override
    {
        m_geometry = rectangle;
        if (m_layout != nullptr) {
            if (m_frame != nullptr) {
                m_frame->setGeometry(rectangle);
            }
            m_layout->m_box->setGeometry(rectangle.marginsRemoved(FrameMargins()));
        } else if (!m_control.isNull()) {
            m_control->setGeometry(CentredAcross(rectangle));
        }
    }

private:
    [[nodiscard]] QMargins FrameMargins() const
    {
        return m_frame != nullptr ? MarginsOf(*m_frame, ToPixels(kGap, *m_frame) / 2) : QMargins();
    }
    [[nodiscard]] QSize Inner(QSize (QLayoutItem::*measure)() const) const
    {
        if (m_layout != nullptr) {
            return ((*m_layout->m_box).*measure)().grownBy(FrameMargins());
        }
        return m_control.isNull() ? QSize(0, 0) : ((*m_controlItem).*measure)();
    }
    [[nodiscard]] QSize WithAlong(QSize size) const
    {
        if (m_along != kAsInside) {
            (m_orientation == Qt::Horizontal ? size.rwidth() : size.rheight()) = m_along;
        }
        return size;
    }
    [[nodiscard]] QRect CentredAcross(QRect rectangle) const
    {
        const QSizePolicy policy = m_control->sizePolicy();
        const QSize asked = m_control->sizeHint();
        if (m_orientation == Qt::Horizontal && (policy.verticalPolicy() & QSizePolicy::GrowFlag) == 0 &&
            asked.height() < rectangle.height()) {
            rectangle.setTop(rectangle.top() + (rectangle.height() - asked.height()) / 2);
            rectangle.setHeight(asked.height());
        } else if (m_orientation == Qt::Vertical && (policy.horizontalPolicy() & QSizePolicy::GrowFlag) == 0 &&
                   asked.width() < rectangle.width()) {
            rectangle.setLeft(rectangle.left() + (rectangle.width() - asked.width()) / 2);
            rectangle.setWidth(asked.width());
        }
        return rectangle;
    }

    Qt::Orientation m_orientation;
    int m_along = kAsInside;  // pixels
    QPointer<QWidget> m_control;
    std::unique_ptr<QWidgetItem> m_controlItem;
    std::unique_ptr<ZRLayout> m_layout;
    QGroupBox* m_frame = nullptr;
    QRect m_geometry;
};

int ZRLayout::ToPixels(int units, const QWidget& window)
{
    return (units * window.fontMetrics().height() + kUnitsPerLine / 2) / kUnitsPerLine;
}

ZRLayout::ZRLayout(QWidget& window, QBoxLayout::Direction direction)
    : m_window(window), m_box(std::make_unique<QBoxLayout>(direction))
{
    m_box->setSpacing(0);
    m_box->setContentsMargins(0, 0, 0, 0);
    // What the percentages leave; always the last item.
    m_box->addItem(new QSpacerItem(0, 0));
}

ZRLayout::~ZRLayout() = default;

void ZRLayout::AddGap(Size size)
{
    Add(std::make_unique<Item>(Along()), size);
}

void ZRLayout::AddControl(QWidget& control, Size size)
{
    Add(std::make_unique<Item>(Along(), control), size);
}

void ZRLayout::AddLayout(std::unique_ptr<ZRLayout> layout, Size size)
{
    Add(std::make_unique<Item>(Along(), std::move(layout), nullptr), size);
}

void ZRLayout::AddBox(QGroupBox& box, std::unique_ptr<ZRLayout> layout, Size size)
{
    box.lower();
    Add(std::make_unique<Item>(Along(), std::move(layout), &box), size);
}

Qt::Orientation ZRLayout::Along() const
{
    return m_box->direction() == QBoxLayout::LeftToRight ? Qt::Horizontal : Qt::Vertical;
}

void ZRLayout::Add(std::unique_ptr<Item> item, Size size)
{
    m_entries.push_back({item.get(), size});
    m_box->insertItem(m_box->count() - 1, item.release());
}

void ZRLayout::Refresh() const
{
    int rest = 100;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        const auto& [item, size] = m_entries[i];
        item->Refresh();
        if (item->isEmpty()) {
            item->SetAlong(0);
            m_box->setStretch(static_cast<int>(i), 0);
            continue;
        }
        item->SetAlong(size.m_kind == Size::Kind::Fixed ? ToPixels(size.m_amount, m_window) : Item::kAsInside);
        const int percent = size.m_kind == Size::Kind::Percent ? size.m_amount : 0;
        m_box->setStretch(static_cast<int>(i), percent);
        rest -= percent;
    }
    m_box->setStretch(m_box->count() - 1, std::max(rest, 0));
    m_box->invalidate();
}

void ZRLayout::Fill(const QRect& rectangle)
{
    Refresh();
    m_box->setGeometry(rectangle);
}

QSize ZRLayout::NeededSize() const
{
    Refresh();
    return m_box->minimumSize();
}

ZRHoritzontalLayout::ZRHoritzontalLayout(QWidget& window) : ZRLayout(window, QBoxLayout::LeftToRight) {}

ZRVerticalLayout::ZRVerticalLayout(QWidget& window) : ZRLayout(window, QBoxLayout::TopToBottom) {}

ZRControlBoxButtonsLayout::ZRControlBoxButtonsLayout(QWidget& window, QWidget& control, QGroupBox& box,
                                                     const std::vector<QWidget*>& buttons)
    : ZRVerticalLayout(window)
{
    auto row = std::make_unique<ZRHoritzontalLayout>(window);
    for (QWidget* const button : buttons) {
        if (button != buttons.front()) {
            row->AddGap();
        }
        row->AddControl(*button, Size::Percent(100));
    }
    auto stack = std::make_unique<ZRVerticalLayout>(window);
    stack->AddControl(control, Size::Percent(100));
    stack->AddGap();
    stack->AddLayout(std::move(row), Size::Natural());
    AddBox(box, std::move(stack), Size::Percent(100));
}
