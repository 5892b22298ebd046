// The dockable bar that lists warnings and events.
#pragma once

#include "diagnostics/DebugBarSizes.h"
#include "platform/ui/CDialogBar.h"

class CButton;
class CListCtrl;
class SizeLine;

// Lists the records of ZRDebugInfo, which must be there, in their order. The frame creates the bar and tells it when to
// refresh; the bar tells the frame, by the messages of DiagnosticsIds.h, of a line that is selected, of its closing and
// of a drag of its edge: docked at the top or the bottom, it is dragged taller or shorter with a line that follows the
// mouse. Closing is left to the frame, which hides the bar. UI thread only.
class CDebugDlgBar : public CDialogBar {
public:
    CDebugDlgBar();
    ~CDebugDlgBar() override;

    // Docked at the right until the frame docks it elsewhere. False, and the sizes are left alone, when the parent is
    // no CFrameWnd or the bar has been created.
    bool Create(QWidget* parent, unsigned templateId, unsigned id);

    // To be called whenever the list of warnings has changed; it tells nobody itself. The selection is lost.
    void UpdateWarningList();
    // Tells the frame of line 0 as if the user had selected it; nothing when there is none.
    void SelectFirstWarning();
    // Places the controls and fits the list's column.
    void Layout();

    // profile: tells several of a program's frames apart. The sizes are below the suite's registry key, through the
    // CWinApp object; without one nothing is loaded or saved. What is not there or is no size leaves the size as it is.
    virtual void LoadState(const char16_t* profile);
    virtual void SaveState(const char16_t* profile);

    QSize CalcDynamicLayout(int length, unsigned mode) override;

protected:
    void OnInitDialog() override;
    void OnSize() override;
    bool OnCommand(unsigned id, unsigned code, QWidget* from) override;
    bool OnNotify(const zr::ui::NMHDR& notice) override;
    void OnWindowPosChanged(unsigned flags) override;
    bool OnMouseMove(QPoint point) override;
    bool OnLButtonDown(QPoint point) override;
    bool OnLButtonUp(QPoint point) override;
    void OnCaptureChanged() override;

private:
    void LayoutFloating();
    void LayoutDocked();
    void PlaceEdge();
    void FitColumn();
    void HideDebugWindow();

    // CBRS_ALIGN_... of the bar in the frame's dock state.
    [[nodiscard]] unsigned Alignment() const;
    void UpdateDockSide(QPoint point);
    void SetCursor(Qt::CursorShape shape);
    [[nodiscard]] zr::DragLimits Limits() const;
    void ResizeDialogBar(int d);
    void DrawSizeLine(zr::BarPoint point);

    zr::DebugBarSizes m_sizes;
    zr::EdgeDrag m_drag;
    CListCtrl* m_list;  // Owned by Qt, as are the following.
    CButton* m_close;
    QWidget* m_edge;
    SizeLine* m_line = nullptr;
};
