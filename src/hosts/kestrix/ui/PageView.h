// What the page of a device and that of a group have in common.
#pragma once

#include "controls/ui/ZRBarValueControl.h"
#include "controls/ui/ZRBaseViewDlg.h"
#include "controls/ui/ZRValueControl.h"
#include "hosts/kestrix/PageModel.h"
#include "hosts/kestrix/ui/TextValueControl.h"
#include "hosts/kestrix/ui/Theme.h"
#include "platform/ui/CFont.h"

#include <functional>
#include <optional>
#include <QIcon>
#include <QRect>
#include <QString>
#include <vector>

namespace zr::desktop {

// A variable on a page.
struct ValueRef {
    ZRBasicString device;
    ZRBasicString name;         // of the variable
    ZRBasicString description;  // for people
    std::size_t variable = 0;   // position in the device's table
    friend bool operator==(const ValueRef& left, const ValueRef& right)
    {
        return left.device == right.device && left.name == right.name;
    }
};

// Holds the value controls and the texts around them, and keeps at most one value selected. Its height follows from its
// width. Lives in a scroll area. UI thread only.
class PageView : public ZRBaseViewDlg {
public:
    explicit PageView(QWidget* parent);

    // From the host's periodic work.
    virtual void UpdateValues();
    // Those in force; to be called when they have changed.
    void TakeColours() { setPalette(PagePalette()); }
    // Called when another value is selected, or none.
    void OnSelection(std::function<void()> listener) { m_listener = std::move(listener); }
    // Called for the menu of the selected value; on the screen.
    void OnMenu(std::function<void(QPoint)> listener) { m_menuListener = std::move(listener); }
    [[nodiscard]] const std::optional<ValueRef>& Selection() const { return m_selection; }
    // None that the page shows: nothing is selected.
    void Select(const std::optional<ValueRef>& value);
    // The first value on the page, if there is one.
    void SelectFirst();
    [[nodiscard]] std::size_t ValueCount() const { return m_values.size(); }
    // Whether it is made of values, which can be selected.
    [[nodiscard]] virtual bool HasValues() const { return true; }

protected:
    static constexpr int kMargin = 16;
    enum class TextRole { Title, Section, Text, Unit, Quiet, Heading };
    struct PageText {
        QRect rect;
        QString text;
        TextRole role = TextRole::Text;
        Qt::Alignment alignment = Qt::AlignLeft;
    };

    // Places everything for a width and returns the height. Texts, lines and pictures are made anew each time.
    virtual int Place(int width) = 0;
    // To be called when the controls are there and whenever they have changed.
    void PlaceAgain();
    // What the page shows of a number, a switch or a text.
    QWidget& AddValue(const ValueRef& ref, const PageRow& row);
    ZRBarValueControl& AddBar(const ValueRef& ref, const PageRow& row);
    void AddText(const QRect& rect, const QString& text, TextRole role, Qt::Alignment alignment = Qt::AlignLeft);
    void AddLine(int left, int right, int y) { m_lines.push_back({left, y, right - left, 1}); }
    void AddIcon(const QRect& rect, const QIcon& icon) { m_icons.push_back({rect, icon}); }
    // Takes every control away.
    void ClearValues();
    [[nodiscard]] QFont FontOf(TextRole role) const;
    [[nodiscard]] int WidthOf(const QString& text, TextRole role) const;
    [[nodiscard]] int RowHeight() const;
    [[nodiscard]] int SectionHeight() const;
    // The title of a part of a page, with the unit where all its rows have the same.
    static QString TitleOf(Section section);

    bool OnCommand(unsigned id, unsigned code, QWidget* from) override;
    // Neither the return key nor escape closes a page.
    void OnOK() override {}
    void OnCancel() override {}
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Value {
        ValueRef ref;
        ZRValueControl* number = nullptr;
        TextValueControl* text = nullptr;
        ZRBarValueControl* bar = nullptr;

        [[nodiscard]] QWidget& Window() const;
        [[nodiscard]] bool Selected() const;
        void Select(bool isSelected) const;
        void Update() const;
    };
    struct PageIcon {
        QRect rect;
        QIcon icon;
    };

    // The control was selected or let go by the user.
    void Chosen(const QWidget& window);
    [[nodiscard]] const Value* FindValue(const QWidget& window) const;

    std::vector<Value> m_values;
    std::optional<ValueRef> m_selection;
    std::function<void()> m_listener;
    std::function<void(QPoint)> m_menuListener;
    std::vector<PageText> m_texts;
    std::vector<QRect> m_lines;
    std::vector<PageIcon> m_icons;
    bool m_isPlacing = false;
};

}  // namespace zr::desktop
