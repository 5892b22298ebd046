#include "hosts/kestrix/ui/StatusLine.h"

#include "hosts/kestrix/ui/Theme.h"
#include "hosts/kestrix/ui/UiTexts.h"

#include <QEvent>

namespace zr::desktop {

StatusLine::StatusLine(QWidget* parent) : ElidedLabel(parent) {}

void StatusLine::Show(const QString& text, const QString& tip, bool asksForAttention)
{
    setText(text);
    setToolTip(PlainTip(tip.isEmpty() ? text : tip));
    m_asksForAttention = asksForAttention;
    TakeColours();
}

// A palette that is the same is no change, so that this ends.
void StatusLine::TakeColours()
{
    QPalette colours;
    if (m_asksForAttention) {
        colours.setColor(QPalette::Window, NoticeColour());
        colours.setColor(QPalette::WindowText, NoticeTextColour());
    }
    setAutoFillBackground(m_asksForAttention);
    setPalette(colours);
}

void StatusLine::changeEvent(QEvent* event)
{
    ElidedLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange) {
        TakeColours();
    }
}

}  // namespace zr::desktop
