#include "platform/ui/CButton.h"

#include "platform/ui/Images.h"
#include "platform/ui/UiText.h"

CButton::CButton(QWidget* parent, unsigned id) : QPushButton(parent)
{
    zr::ui::SetControlId(*this, id);
    setAutoDefault(id == 1);
    connect(this, &QPushButton::clicked, this,
            [this, target = parent] { zr::ui::SendCommand(target, zr::ui::ControlId(*this), 0, this); });
}

void CButton::SetWindowText(std::u16string_view text)
{
    setText(zr::ui::ToQt(text));
}

void CImageButton::SetImage(unsigned image, unsigned)
{
    setIcon(zr::ui::Image(image));
}
