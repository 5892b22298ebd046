// Rows and stacks of controls and gaps that fill a rectangle.
#pragma once

#include <memory>
#include <QBoxLayout>
#include <vector>

class QGroupBox;

// Base of the rows and the stacks. Built once on a window from gaps, controls and nested layouts, in order, then told
// the rectangle to fill whenever the window's size changes. All controls of a layout and of what is nested in it have
// that window as their parent. Nothing stands between two items but the gaps that are put there.
//
// Across its direction an item fills the layout, except that a control that can't grow stands in the middle. A control
// that is hidden takes no room. UI thread only.
class ZRLayout {
public:
    // The room of an item along the layout's direction.
    class Size {
    public:
        // In layout units: an eighth of the height of the window's font each, so that a layout grows with the font.
        static constexpr Size Fixed(int units) { return {Kind::Fixed, units}; }
        // Of what the items of fixed size leave free; not less than a control needs, while there is room. Percentages
        // that sum up to less than 100 leave the rest at the end; to more: they count in proportion.
        static constexpr Size Percent(int percent) { return {Kind::Percent, percent}; }
        // As much as the control or the nested layout asks for.
        static constexpr Size Natural() { return {Kind::Natural, 0}; }

    private:
        friend class ZRLayout;
        enum class Kind { Fixed, Percent, Natural };
        constexpr Size(Kind kind, int amount) : m_kind(kind), m_amount(amount) {}
        Kind m_kind;
        int m_amount;
    };

    // In layout units: the height of an edit, a combo box or a button; and what usually separates two controls.
    static constexpr int kControlSize = 14;
    static constexpr int kGap = 3;
    // Layout units in pixels of that window, rounded.
    static int ToPixels(int units, const QWidget& window);

    virtual ~ZRLayout();
    ZRLayout(const ZRLayout&) = delete;
    ZRLayout& operator=(const ZRLayout&) = delete;

    void AddGap(Size size = Size::Fixed(kGap));
    // Not owned; may go before the layout does.
    void AddControl(QWidget& control, Size size);
    void AddLayout(std::unique_ptr<ZRLayout> layout, Size size);
    // A layout in a titled frame. The frame is a sibling of the controls, stands behind them and is not owned; it must
    // outlive the layout.
    void AddBox(QGroupBox& box, std::unique_ptr<ZRLayout> layout, Size size);

    // Places everything. In the window's coordinates.
    void Fill(const QRect& rectangle);
    // The least size in which every control has what it asks for.
    [[nodiscard]] QSize NeededSize() const;

protected:
    // window: gives the font; must outlive the layout.
    ZRLayout(QWidget& window, QBoxLayout::Direction direction);

private:
    class Item;

    [[nodiscard]] Qt::Orientation Along() const;
    void Add(std::unique_ptr<Item> item, Size size);
    // Before measuring or placing: what is hidden and how large a font is may have changed.
    void Refresh() const;

    QWidget& m_window;
    std::unique_ptr<QBoxLayout> m_box;
    struct Entry {
        Item* item;  // Owned by the box.
        Size size;
    };
    std::vector<Entry> m_entries;
};

// From left to right.
class ZRHoritzontalLayout : public ZRLayout {
public:
    explicit ZRHoritzontalLayout(QWidget& window);
};

// From top to bottom.
class ZRVerticalLayout : public ZRLayout {
public:
    explicit ZRVerticalLayout(QWidget& window);
};

// A control in its titled box, above a row of buttons of one width in the same box.
class ZRControlBoxButtonsLayout : public ZRVerticalLayout {
public:
    ZRControlBoxButtonsLayout(QWidget& window, QWidget& control, QGroupBox& box, const std::vector<QWidget*>& buttons);
};
