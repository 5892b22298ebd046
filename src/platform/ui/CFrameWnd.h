// The main window of a program.
#pragma once

#include "platform/ui/CWnd.h"

#include <QMainWindow>
#include <QPointer>
#include <vector>

class CDialogBar;

namespace zr::ui {

// The sides that a bar docks at, as the system numbers them.
inline constexpr unsigned AFX_IDW_DOCKBAR_TOP = 0xe81b;
inline constexpr unsigned AFX_IDW_DOCKBAR_LEFT = 0xe81c;
inline constexpr unsigned AFX_IDW_DOCKBAR_RIGHT = 0xe81d;
inline constexpr unsigned AFX_IDW_DOCKBAR_BOTTOM = 0xe81e;

}  // namespace zr::ui

struct CControlBarInfo {
    unsigned m_nBarID = 0;
    bool m_bVisible = false;
    bool m_bFloating = false;
    CDialogBar* m_pBar = nullptr;
};

// What a frame's bars do at the moment.
struct CDockState {
    std::vector<CControlBarInfo> m_arrBarInfo;
};

// Menu and tool bars at the top, a window in the middle (setCentralWidget), bars at the sides or floating. Nothing lies
// between the middle and a bar to drag: a bar's size is its own matter, and the frame asks it. UI thread only.
class CFrameWnd : public QMainWindow, public zr::ui::WndMessageTarget {
public:
    explicit CFrameWnd(QWidget* parent = nullptr);
    ~CFrameWnd() override;

    // To one of the AFX_IDW_DOCKBAR_... sides, floating or hidden before; another number is the bottom.
    void DockControlBar(CDialogBar* bar, unsigned dockBar);
    // place: of its upper left corner, on the screen.
    void FloatControlBar(CDialogBar* bar, QPoint place);
    void ShowControlBar(CDialogBar* bar, bool show);
    void GetDockState(CDockState& state) const;
    // Asks every bar for its size and gives it that, but not more than half of the client area.
    void RecalcLayout();
    // What is below the menu.
    [[nodiscard]] QRect GetClientRect() const;

    // A bar's menu of its own, by the right button, is not offered.
    QMenu* createPopupMenu() override { return nullptr; }

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    friend class CDialogBar;

    // alignment: CBRS_ALIGN_...
    void Add(CDialogBar& bar, unsigned alignment);
    [[nodiscard]] unsigned SideOf(const CDialogBar& bar) const;
    void FitBar(CDialogBar& bar);

    std::vector<QPointer<CDialogBar>> m_bars;
    bool m_isInRecalc = false;
};
