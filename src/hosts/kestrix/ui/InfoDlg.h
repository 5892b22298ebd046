// A dialog that tells something: about the program, or its keys.
#pragma once

#include "platform/ui/CDialog.h"

#include <QIcon>
#include <QString>

namespace zr::desktop {

// The text may hold lines of two parts, with a tab between them: they stand in two columns.
class InfoDlg : public CDialog {
public:
    InfoDlg(QWidget* parent, const QString& title, const QString& text, const QIcon& icon);
};

}  // namespace zr::desktop
