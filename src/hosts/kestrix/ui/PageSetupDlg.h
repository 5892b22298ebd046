// Paper, orientation and margins for printing.
#pragma once

#include "hosts/kestrix/DesktopSettings.h"
#include "platform/ui/CDialog.h"

class QComboBox;
class QSpinBox;

namespace zr::desktop {

class PageView;

// Edits a copy of the settings; the caller takes it over on OK.
class PageSetupDlg : public CDialog {
public:
    PageSetupDlg(QWidget* parent, const DesktopSettings& settings);

    [[nodiscard]] const DesktopSettings& Settings() const { return m_settings; }

protected:
    void OnOK() override;

private:
    DesktopSettings m_settings;
    QComboBox* m_paper;
    QComboBox* m_orientation;
    QSpinBox* m_margin;
};

// Prints a page with those settings and in light colours, on the printer that the user picks. False when it can't be
// printed.
bool PrintPage(PageView& page, const DesktopSettings& settings, QWidget* parent);
// The same into a PDF file.
bool PrintPageToFile(PageView& page, const DesktopSettings& settings, const QString& file);

}  // namespace zr::desktop
