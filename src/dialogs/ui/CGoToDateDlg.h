// A small calendar to jump to a day with.
#pragma once

#include "platform/ui/CButton.h"
#include "platform/ui/CDialog.h"
#include "platform/ui/CMonthCalCtrl.h"
#include "siblings/tools/ui/ZRLayout.h"
#include "siblings/tools/ZRDateTime.h"

// Has no frame, so that it drops out of a toolbar. SetDate and SetLeftBottomPosition, then DoModal. UI thread only.
class CGoToDateDlg : public CDialog {
public:
    explicit CGoToDateDlg(QWidget* parent);

    // In the form of COleDateTime; the time of day is lost once the dialog ends with OK.
    void SetDate(double date);
    // As set; after OK midnight of the picked day, or no date when none was picked. The caller tests IsValid().
    [[nodiscard]] const ZRDateTime& GetDate() const { return m_date; }
    // Screen coordinates, in device-independent pixels, of the window's left edge and of the line below its last. Both
    // -1 unless called.
    void SetLeftBottomPosition(int left, int bottom);

protected:
    void OnInitDialog() override;
    void OnOK() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Layout();

    CMonthCalCtrl m_calendar;
    CImageButton m_ok;
    CImageButton m_cancel;
    ZRDateTime m_date;  // no date
    int m_left = -1;
    int m_bottom = -1;
    ZRVerticalLayout m_layout;
};
