// The dialog that shows how far work on another thread is.
#pragma once

#include "platform/ui/CDialog.h"
#include "platform/ui/CProgressCtrl.h"
#include "platform/ui/CStatic.h"
#include "siblings/tools/Progress.h"

#include <atomic>
#include <future>
#include <mutex>
#include <QTimer>
#include <string>

// The worker waits by WaitForWindow, tells by SetTitle, SetText and SetPos how far it is, and ends the dialog by End;
// all of that on any thread. The escape key, the close box and the button Cancel ask the work to stop, and the dialog
// stays until the worker has ended it. All else: UI thread only.
//
// DoModal blocks until End. The worker may outlive it when the program ends meanwhile: whoever runs it calls Cancel and
// joins it before the dialog goes.
class CDlgProgress : public CDialog, public zr::Progress {
public:
    explicit CDlgProgress(QWidget* parent);

    // Until the window and its controls are there.
    void WaitForWindow();
    void SetTitle(const ZRBasicString& title);
    void SetText(const wchar* text) override;
    void SetPos(int percent) override;
    [[nodiscard]] bool IsCancelled() const override { return m_isCancelled; }
    void Cancel() { m_isCancelled = true; }
    // OK with true.
    void End(bool result);

    // Children of the dialog.
    CStatic m_text;
    CProgressCtrl m_bar;

protected:
    void OnInitDialog() override;
    // Nothing but End closes it.
    void OnOK() override {}
    void OnCancel() override;
    void showEvent(QShowEvent* event) override;

private:
    void ShowState();

    QPushButton* m_cancel;  // Owned by Qt.
    QTimer m_timer;         // between two looks at what the worker tells
    std::promise<void> m_shown;
    std::shared_future<void> m_isShown;
    bool m_wasShown = false;
    std::atomic<bool> m_isCancelled = false;
    std::atomic<int> m_pos = -1;  // -1: nothing was told yet

    std::mutex m_guard;
    ZRBasicString m_title;  // Guarded by m_guard, as are the next two.
    ZRBasicString m_textToShow;
    bool m_isChanged = false;
};
