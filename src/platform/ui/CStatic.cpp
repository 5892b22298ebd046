#include "platform/ui/CStatic.h"

#include "platform/ui/UiText.h"

CStatic::CStatic(QWidget* parent, unsigned id) : QLabel(parent)
{
    zr::ui::SetControlId(*this, id);
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
}

void CStatic::SetWindowText(std::u16string_view text)
{
    setText(zr::ui::ToQt(text));
}
