#include "controls/ui/ZRBaseViewDlg.h"

ZRBaseViewDlg::ZRBaseViewDlg(unsigned templateId, QWidget* parent) : CDialog(templateId, parent) {}
