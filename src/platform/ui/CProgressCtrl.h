// A bar that shows how much of some work is done.
#pragma once

#include "platform/ui/CWnd.h"

#include <QProgressBar>

// Moves by itself until the first SetPos, since it isn't known how much there is to do. UI thread only.
class CProgressCtrl : public QProgressBar {
public:
    CProgressCtrl(QWidget* parent, unsigned id);

    // 0 to 100; held at these limits.
    void SetPos(int percent);
};
