// A dialog that docks at a side of a frame window or floats.
#pragma once

#include "platform/BarStyles.h"
#include "platform/ui/CWnd.h"

#include <QDockWidget>

class CFrameWnd;

namespace zr::ui {

// Why OnWindowPosChanged is called, as the system numbers it.
inline constexpr unsigned SWP_NOREDRAW = 0x0008;
inline constexpr unsigned SWP_HIDEWINDOW = 0x0080;

}  // namespace zr::ui

// A window derives from it, makes its controls on Client() in its constructor and fills them in OnInitDialog. The
// controls' commands and notices reach the bar. It is moved by its gripper, or by its caption while it floats; the
// caption's button closes it. Its size is what CalcDynamicLayout gives the frame. UI thread only.
class CDialogBar : public QDockWidget, public zr::ui::WndMessageTarget {
public:
    CDialogBar();
    ~CDialogBar() override;

    // Docks it at the side that the style names. False, and nothing is changed, when the parent is no CFrameWnd or the
    // bar has been created. templateId: the number of the dialog. id: the control number of the bar.
    bool Create(QWidget* parent, unsigned templateId, unsigned style, unsigned id);

    [[nodiscard]] unsigned GetDlgCtrlID() const { return zr::ui::ControlId(*this); }
    [[nodiscard]] QWidget* GetDlgItem(unsigned id) const { return zr::ui::FindControl(*this, id); }
    // As created, and the side it is docked at now.
    [[nodiscard]] unsigned GetBarStyle() const;
    [[nodiscard]] bool IsFloating() const { return isFloating(); }
    [[nodiscard]] bool IsVisible() const { return isVisible(); }

    // The bar's own room, the gripper included; in the bar's coordinates, which mouse points have as well.
    [[nodiscard]] QRect GetClientRect() const;
    // The size that the frame shall give the bar; see LM_... for the mode. length: one side of it that is given, below
    // 0 for none.
    virtual QSize CalcDynamicLayout(int length, unsigned mode);

protected:
    // The parent of the controls, right of the gripper; keeps out of what the gripper takes.
    [[nodiscard]] QWidget& Client() const;
    // The bar's coordinates as the controls have them.
    [[nodiscard]] QRect ToClient(const QRect& rectangle) const;
    // The frame that the bar was created on; null before.
    [[nodiscard]] CFrameWnd* Frame() const { return m_frame; }

    // Once, by Create.
    virtual void OnInitDialog() {}
    // Its size has changed, or where it is docked.
    virtual void OnSize();
    // SWP_HIDEWINDOW when it is hidden, with SWP_NOREDRAW as well when the user closed it by its caption.
    virtual void OnWindowPosChanged(unsigned flags);
    // The mouse over the bar itself with no button down, or captured by it. False: the bar does what bars do, such as
    // moving.
    virtual bool OnMouseMove(QPoint point);
    virtual bool OnLButtonDown(QPoint point);
    virtual bool OnLButtonUp(QPoint point);
    // The capture is gone, without a button's release.
    virtual void OnCaptureChanged();
    void SetCapture();
    void ReleaseCapture();

    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

    // The dialog's size at first; a derived class sets it before Create.
    QSize m_sizeDefault;

private:
    friend class CFrameWnd;
    class ClientArea;
    class Caption;

    bool OnMouse(QMouseEvent& event);
    void OnFloatingChanged(bool isFloating);
    // How much larger than its client the floating bar is.
    [[nodiscard]] QSize SizeOfFrame() const;

    ClientArea* m_client;  // Owned by Qt, as is the caption.
    Caption* m_caption;
    CFrameWnd* m_frame = nullptr;
    unsigned m_style = 0;
    bool m_hasCapture = false;
    bool m_isClosedByUser = false;
    bool m_isSizedByUser = false;  // what it is resized to while it floats is for CalcDynamicLayout to keep
};
