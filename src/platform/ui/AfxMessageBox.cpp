#include "platform/ui/AfxMessageBox.h"

#include "platform/ui/CDialog.h"
#include "platform/ui/UiText.h"

#include <QApplication>
#include <QMessageBox>
#include <utility>

namespace zr::ui {
namespace {

std::function<int(const std::u16string&, unsigned)>& BoxHook()
{
    static std::function<int(const std::u16string&, unsigned)> hook;
    return hook;
}

QMessageBox::StandardButtons Buttons(unsigned style)
{
    switch (style & 0x0fu) {
        case MB_OKCANCEL:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case MB_YESNOCANCEL:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
        case MB_YESNO:
            return QMessageBox::Yes | QMessageBox::No;
        default:
            return QMessageBox::Ok;
    }
}

QMessageBox::Icon Picture(unsigned style)
{
    switch (style & 0xf0u) {
        case MB_ICONSTOP:
            return QMessageBox::Critical;
        case MB_ICONQUESTION:
            return QMessageBox::Question;
        case MB_ICONINFORMATION:
            return QMessageBox::Information;
        default:
            return QMessageBox::Warning;
    }
}

int Answer(int button)
{
    switch (button) {
        case QMessageBox::Yes:
            return IDYES;
        case QMessageBox::No:
            return IDNO;
        case QMessageBox::Cancel:
            return static_cast<int>(IDCANCEL);
        default:
            return static_cast<int>(IDOK);
    }
}

}  // namespace

void SetMessageBoxHook(std::function<int(const std::u16string&, unsigned)> hook)
{
    BoxHook() = std::move(hook);
}

}  // namespace zr::ui

int AfxMessageBox(std::u16string_view text, unsigned style)
{
    using namespace zr::ui;
    if (BoxHook()) {
        return BoxHook()(std::u16string(text), style);
    }
    QMessageBox box(Picture(style), QApplication::applicationDisplayName(), ToQt(text), Buttons(style),
                    QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    if ((style & MB_DEFBUTTON2) != 0 && box.buttons().size() > 1) {
        box.setDefaultButton(box.standardButtons().testFlag(QMessageBox::No) ? QMessageBox::No : QMessageBox::Cancel);
    }
    return Answer(box.exec());
}
