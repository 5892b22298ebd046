#include "siblings/support/ui/DialogTexts.h"

#include "platform/ui/CButton.h"
#include "platform/ui/Images.h"
#include "platform/ui/UiText.h"
#include "siblings/support/ZRKestrixSetup.h"
#include "siblings/tools/ZRLoadString.h"

#include <QWidget>

namespace zr::ui {
namespace {

// What stands for nothing in a bitmap of the suite.
constexpr unsigned kMagenta = 0xFF00FF;

}  // namespace

void SetButton(CImageButton& button, unsigned text, unsigned image)
{
    ZRBasicString caption;
    button.SetWindowText(ZRLoadString(text, caption));
    button.SetImage(image, kMagenta);
}

void SetOkAndCancel(CImageButton& ok, CImageButton& cancel)
{
    SetButton(ok, kTextOk, kImageOk);
    SetButton(cancel, kTextCancel, kImageCancel);
}

void SetTitle(QWidget& window, unsigned text)
{
    ZRBasicString title;
    window.setWindowTitle(ToQt(ZRLoadString(text, title)));
}

void SetSuiteIcon(QWidget& window)
{
    window.setWindowIcon(Image(static_cast<unsigned>(ZRKestrixSetup::Get().iconId)));
}

}  // namespace zr::ui
