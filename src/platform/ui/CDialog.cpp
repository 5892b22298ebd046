#include "platform/ui/CDialog.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <utility>

namespace zr::ui {
namespace {

std::function<void(QDialog&)>& ModalHook()
{
    static std::function<void(QDialog&)> hook;
    return hook;
}

}  // namespace

void SetModalHook(std::function<void(QDialog&)> hook)
{
    ModalHook() = std::move(hook);
}

}  // namespace zr::ui

CDialog::CDialog(unsigned templateId, QWidget* parent) : QDialog(parent)
{
    zr::ui::SetControlId(*this, templateId);
}

void CDialog::Create()
{
    if (!std::exchange(m_isReady, true)) {
        OnInitDialog();
    }
}

int CDialog::DoModal()
{
    Create();
    if (zr::ui::ModalHook()) {
        QTimer::singleShot(0, this, [this] { zr::ui::ModalHook()(*this); });
    }
    const QPointer<QWidget> before = QApplication::activeWindow();
    const int result = exec();
    // Not every window system gives the keys back to the window that had them. Told of late, this one may still seem to
    // have them; another program or window that took them keeps them.
    const QWidget* const now = QApplication::activeWindow();
    const bool isOurs = QGuiApplication::applicationState() == Qt::ApplicationActive &&
                        (now == nullptr || now == this || now == before);
    if (isOurs && before != nullptr) {
        before->activateWindow();
    }
    return result == QDialog::Accepted ? zr::ui::IDOK : zr::ui::IDCANCEL;
}

void CDialog::OnOK()
{
    EndDialog(zr::ui::IDOK);
}

void CDialog::OnCancel()
{
    EndDialog(zr::ui::IDCANCEL);
}

void CDialog::EndDialog(unsigned result)
{
    done(result == zr::ui::IDOK ? QDialog::Accepted : QDialog::Rejected);
}

bool CDialog::OnCommand(unsigned id, unsigned, QWidget*)
{
    if (id == zr::ui::IDOK) {
        OnOK();
    } else if (id == zr::ui::IDCANCEL) {
        OnCancel();
    }
    return id == zr::ui::IDOK || id == zr::ui::IDCANCEL;
}

bool CDialog::event(QEvent* event)
{
    return Dispatch(*event) || QDialog::event(event);
}

void CDialog::showEvent(QShowEvent* event)
{
    Create();
    QDialog::showEvent(event);
}
