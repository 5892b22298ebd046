// A window whose contents can be printed and previewed.
#pragma once

#include "platform/ui/CDC.h"
#include "platform/ui/CDialog.h"

#include <QString>

class QPrinter;

namespace zr::ui {

inline constexpr unsigned ID_FILE_PRINT = 57607;
inline constexpr unsigned ID_FILE_PRINT_PREVIEW = 57609;

}  // namespace zr::ui

// A window derives from it and gives its pages by the four operations of printing. UI thread only.
//
// OnPreparePrinting, then OnBeginPrinting, which says by SetMaxPage how many pages there are, then OnPrint for each
// page in any order, then OnEndPrinting. Only printing asks by OnPreparePrinting; a preview and a file have their
// printer already.
class ZRPrintPreviewDialog : public CDialog {
public:
    using CDialog::CDialog;

    enum class Printed { Done, Cancelled, NothingToPrint, DeviceFailed };

    // Asks what to print on, and prints. The user is told where it can't be done.
    void OnFilePrint();
    // Shows the pages as they will be. Of very many only the first are shown; all are printed.
    void OnFilePrintPreview();
    // As PDF, put in place when it is whole: unless it is Done, a file of that name is as it was.
    Printed PrintToFile(const QString& file);

protected:
    // Runs the print dialog. False: nothing is printed.
    virtual bool OnPreparePrinting(CPrintInfo* info) = 0;
    virtual void OnBeginPrinting(CDC* dc, CPrintInfo* info) = 0;
    virtual void OnPrint(CDC* dc, CPrintInfo* info) = 0;
    virtual void OnEndPrinting(CDC* dc, CPrintInfo* info) = 0;

    bool OnCommand(unsigned id, unsigned code, QWidget* from) override;

private:
    Printed Print(QPrinter& printer, CPrintInfo& info, unsigned mostPages);
    Printed PrintOn(QPrinter& printer, CPrintInfo& info, unsigned mostPages);
    Printed PrintPages(QPrinter& printer, CDC& dc, CPrintInfo& info, unsigned mostPages);
    void Tell(Printed result);
};
