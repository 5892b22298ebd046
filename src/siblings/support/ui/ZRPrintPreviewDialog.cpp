#include "siblings/support/ui/ZRPrintPreviewDialog.h"

#include "platform/ui/AfxMessageBox.h"
#include "platform/ui/UiText.h"
#include "siblings/support/ui/PrintedFile.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/ui/CDlgProgress.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPaintEngine>
#include <QPainter>
#include <QPrinter>
#include <QPrintPreviewDialog>

namespace {

constexpr unsigned kTextPrinting = 32341;      // title of the progress dialog
constexpr unsigned kTextPrintingPage = 32342;  // page, pages
constexpr unsigned kTextPrintingFailed = 32343;
constexpr unsigned kTextNothingToPrint = 32344;
constexpr unsigned kTextPreview = 32345;         // title
constexpr unsigned kTextPreviewOfFirst = 32346;  // title: pages shown, pages

constexpr unsigned kAllPages = static_cast<unsigned>(-1);
// Each page that is previewed is held in memory.
constexpr unsigned kMostPreviewed = 200;

ZRBasicString Text(unsigned id)
{
    ZRBasicString text;
    ZRLoadString(id, text);
    return text;
}

// Whether what is drawn is kept to be shown instead of printed.
bool IsPreview(const QPrinter& printer)
{
    return printer.paintEngine()->type() == QPaintEngine::Picture;
}

}  // namespace

bool ZRPrintPreviewDialog::OnCommand(unsigned id, unsigned code, QWidget* from)
{
    if (id == zr::ui::ID_FILE_PRINT) {
        OnFilePrint();
        return true;
    }
    if (id == zr::ui::ID_FILE_PRINT_PREVIEW) {
        OnFilePrintPreview();
        return true;
    }
    return CDialog::OnCommand(id, code, from);
}

void ZRPrintPreviewDialog::OnFilePrint()
{
    QPrinter printer(QPrinter::HighResolution);
    CPrintDialog dialog(printer, this);
    CPrintInfo info(dialog);
    if (OnPreparePrinting(&info)) {
        Tell(Print(printer, info, kAllPages));
    }
}

void ZRPrintPreviewDialog::OnFilePrintPreview()
{
    QPrinter printer(QPrinter::HighResolution);
    QPrintPreviewDialog preview(&printer, this, Qt::Window);
    const ZRBasicString title = Text(kTextPreview);
    connect(&preview, &QPrintPreviewDialog::paintRequested, this, [&](QPrinter* device) {
        CPrintDialog dialog(*device, &preview);
        CPrintInfo info(dialog);
        info.m_bPreview = IsPreview(*device);
        const Printed result = Print(*device, info, info.m_bPreview ? kMostPreviewed : kAllPages);
        const unsigned pages = info.GetMaxPage();
        const bool isCut = info.m_bPreview && pages > kMostPreviewed;
        preview.setWindowTitle(zr::ui::ToQt(
            isCut ? zr::FormatText(Text(kTextPreviewOfFirst).Text(), {kMostPreviewed, pages}).Text() : title.Text()));
        if (!info.m_bPreview) {
            Tell(result);
        }
    });
    preview.resize(900, 700);
    preview.exec();
}

ZRPrintPreviewDialog::Printed ZRPrintPreviewDialog::PrintToFile(const QString& file)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(file);
    printer.setDocName(windowTitle());
    CPrintDialog dialog(printer, this);
    CPrintInfo info(dialog);
    return Print(printer, info, kAllPages);
}

ZRPrintPreviewDialog::Printed ZRPrintPreviewDialog::Print(QPrinter& printer, CPrintInfo& info, unsigned mostPages)
{
    if (info.m_bPreview) {
        return PrintOn(printer, info, mostPages);
    }
    zr::ui::PrintedFile file(printer);
    const Printed result = PrintOn(printer, info, mostPages);
    return result == Printed::Done && !file.PutInPlace() ? Printed::DeviceFailed : result;
}

ZRPrintPreviewDialog::Printed ZRPrintPreviewDialog::PrintOn(QPrinter& printer, CPrintInfo& info, unsigned mostPages)
{
    QPainter painter;
    if (!painter.begin(&printer)) {
        return Printed::DeviceFailed;
    }
    CDC dc(painter, printer);
    info.m_rectDraw = QRect(0, 0, dc.GetDeviceCaps(zr::ui::HORZRES), dc.GetDeviceCaps(zr::ui::VERTRES));
    // As a printer does; a file would show in its margins what goes beyond.
    painter.setClipRect(info.m_rectDraw);
    OnBeginPrinting(&dc, &info);
    const Printed result = PrintPages(printer, dc, info, mostPages);
    OnEndPrinting(&dc, &info);
    return painter.end() || result != Printed::Done ? result : Printed::DeviceFailed;
}

// Long printing shows how far it is, and can be stopped.
ZRPrintPreviewDialog::Printed ZRPrintPreviewDialog::PrintPages(QPrinter& printer, CDC& dc, CPrintInfo& info,
                                                               unsigned mostPages)
{
    constexpr int kProgressPeriod = 40;  // ms
    const unsigned first = std::max(static_cast<unsigned>(std::max(printer.fromPage(), 0)), 1U);
    const unsigned asked = printer.toPage() > 0 ? static_cast<unsigned>(printer.toPage()) : kAllPages;
    const unsigned last = std::min({info.GetMaxPage(), asked, mostPages});
    if (first > last) {
        return Printed::NothingToPrint;
    }
    CDlgProgress progress(info.m_bPreview ? nullptr : this);
    progress.SetTitle(Text(kTextPrinting));
    QElapsedTimer sinceShown;
    sinceShown.start();
    for (unsigned page = first; page <= last; ++page) {
        if (page > first && !printer.newPage()) {
            return Printed::DeviceFailed;
        }
        info.m_nCurPage = page;
        info.m_bContinuePrinting = page < last;
        OnPrint(&dc, &info);
        if (!info.m_bContinuePrinting) {
            break;
        }
        if (sinceShown.elapsed() >= kProgressPeriod) {
            sinceShown.restart();
            progress.SetText(zr::FormatText(Text(kTextPrintingPage).Text(), {page, last}).CStr());
            progress.SetPos(static_cast<int>(page * 100ULL / last));
            progress.setModal(true);
            progress.show();
            QCoreApplication::processEvents();
            if (progress.IsCancelled()) {
                printer.abort();
                return Printed::Cancelled;
            }
        }
    }
    return Printed::Done;
}

void ZRPrintPreviewDialog::Tell(Printed result)
{
    if (result == Printed::DeviceFailed || result == Printed::NothingToPrint) {
        AfxMessageBox(Text(result == Printed::DeviceFailed ? kTextPrintingFailed : kTextNothingToPrint).Text(),
                      zr::ui::MB_OK | zr::ui::MB_ICONEXCLAMATION);
    }
}
