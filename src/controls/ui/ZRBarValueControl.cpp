#include "controls/ui/ZRBarValueControl.h"

ZRBarValueControl::ZRBarValueControl(QWidget* parent, unsigned id) : BarWindow(parent, id) {}

void ZRBarValueControl::SetupBar(int barHeight, int fontSize)
{
    m_bar.SetupBar(barHeight, fontSize);
    CFont font;
    font.CreatePointFont(m_bar.FontSize(), u"Smallfonts");
    SetFonts(font, font);
}
