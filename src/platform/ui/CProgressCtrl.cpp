#include "platform/ui/CProgressCtrl.h"

#include <algorithm>

CProgressCtrl::CProgressCtrl(QWidget* parent, unsigned id) : QProgressBar(parent)
{
    zr::ui::SetControlId(*this, id);
    setTextVisible(false);
    setRange(0, 0);
}

void CProgressCtrl::SetPos(int percent)
{
    if (maximum() == 0) {
        setRange(0, 100);
    }
    setValue(std::clamp(percent, 0, 100));
}
