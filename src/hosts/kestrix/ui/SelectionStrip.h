// The line below a page that tells of the selected value.
#pragma once

#include "hosts/kestrix/DeviceWatch.h"
#include "hosts/kestrix/ui/PageView.h"
#include "platform/ui/WndMessage.h"
#include "siblings/driversupport/ZRDriverVariable.h"

#include <optional>
#include <QFrame>

class QLabel;
class QToolButton;

namespace zr::desktop {

// Name, value with its unit, the low and the high mark since start, and a button with the forms of a link to copy.
// Commands go to the window that it was made for. UI thread only.
class SelectionStrip : public QFrame {
public:
    // target: Not owned; must outlive this.
    SelectionStrip(QWidget* parent, QWidget* target);

    // watch: of the value's device; null with no value.
    void Show(const std::optional<ValueRef>& value, const DeviceWatch* watch);
    // From the host's periodic work.
    void UpdateValue();
    // In another language.
    void Translate();
    // The value with its unit; empty when there is none.
    [[nodiscard]] QString ValueText();
    [[nodiscard]] const std::optional<ValueRef>& Value() const { return m_value; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* m_target;
    QLabel* m_name;
    QLabel* m_number;
    QLabel* m_mark;
    QToolButton* m_copy;
    std::optional<ValueRef> m_value;
    const DeviceWatch* m_watch = nullptr;
    ZRDriverVariable m_variable;
};

// The forms of a link, as a menu for a window; not shown. The window owns it.
QMenu* MakeLinkMenu(QWidget* target, const DeviceWatch& watch);

}  // namespace zr::desktop
