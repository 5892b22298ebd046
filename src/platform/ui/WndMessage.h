// Messages between windows, by number, as the library and its hosts agree on them.
#pragma once

#include <cstdint>
#include <QEvent>

class QWidget;

namespace zr::ui {

inline constexpr unsigned kNotify = 0x004e;   // WM_NOTIFY: id in wParam, a pointer to NMHDR in lParam; sent only
inline constexpr unsigned kCommand = 0x0111;  // WM_COMMAND: id in the low word of wParam, notification code in the high

// What a control tells its parent; each control's header holds the codes and what follows the header.
struct NMHDR {
    QWidget* hwndFrom = nullptr;
    unsigned idFrom = 0;
    unsigned code = 0;
};

// UI thread only.
class WndMessage : public QEvent {
public:
    WndMessage(unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
    static QEvent::Type EventType();

    unsigned message;
    std::uintptr_t wParam;
    std::intptr_t lParam;
};

// Whoever takes messages: CWnd, CDialog, CFrameWnd and what derives from them.
class WndMessageTarget {
public:
    // A command of a control, a menu or a bar; from is null for a menu. True when handled.
    virtual bool OnCommand(unsigned id, unsigned code, QWidget* from);
    // A notice of a control with more to tell than a number; valid during the call. True when handled.
    virtual bool OnNotify(const NMHDR& notice);
    // Any other message. True when handled.
    virtual bool OnMessage(unsigned message, std::uintptr_t wParam, std::intptr_t lParam);

protected:
    ~WndMessageTarget() = default;
    // To be called by event(): true when the event was a message and was handled.
    bool Dispatch(QEvent& event);
};

// Handled before it returns; false when the window is null, no target, or doesn't handle it.
bool SendMessage(QWidget* window, unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
// Handled in turn by the message loop; lost when the window goes before.
void PostMessage(QWidget* window, unsigned message, std::uintptr_t wParam, std::intptr_t lParam);
// The command of a control to its parent: sent, not posted, with the control's window as lParam.
bool SendCommand(QWidget* parent, unsigned id, unsigned code, QWidget* from);
// The notice of a control to its parent, likewise sent.
bool SendNotify(QWidget* parent, const NMHDR& notice);

}  // namespace zr::ui
