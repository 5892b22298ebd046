#include "hosts/kestrix/ui/PageSetupDlg.h"

#include "hosts/kestrix/ui/Commands.h"
#include "hosts/kestrix/ui/Theme.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/ui/CButton.h"

#include <algorithm>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QSpinBox>

namespace zr::desktop {
namespace {

constexpr unsigned kTextOk = 311;
constexpr unsigned kTextCancel = 312;
constexpr int kMostMargin = 50;  // mm

struct Paper {
    const char* name;
    QPageSize::PageSizeId size;
};
constexpr Paper kPapers[] = {{"A3", QPageSize::A3},       {"A4", QPageSize::A4},
                             {"A5", QPageSize::A5},       {"Letter", QPageSize::Letter},
                             {"Legal", QPageSize::Legal}, {"Tabloid", QPageSize::Tabloid}};

QPageLayout LayoutOf(const DesktopSettings& settings)
{
    QPageSize::PageSizeId size = QPageSize::A4;
    for (const Paper& paper : kPapers) {
        if (settings.paper == paper.name) {
            size = paper.size;
        }
    }
    const qreal margin = settings.margin;
    return QPageLayout(QPageSize(size), settings.isLandscape ? QPageLayout::Landscape : QPageLayout::Portrait,
                       QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter);
}

// The page as wide as the paper, over as many sheets as it takes; in light colours, which paper asks for.
bool Paint(QWidget& page, QPrinter& printer)
{
    QPainter painter;
    if (!painter.begin(&printer) || page.width() <= 0) {
        return false;
    }
    const QRectF paper = printer.pageLayout().paintRectPixels(printer.resolution());
    const qreal scale = std::min(paper.width() / page.width(), printer.resolution() / 72.0);
    const int slice = std::max(static_cast<int>(paper.height() / scale), 1);
    for (int top = 0; top < page.height(); top += slice) {
        if (top > 0 && !printer.newPage()) {
            return false;
        }
        const int height = std::min(slice, page.height() - top);
        painter.save();
        painter.scale(scale, scale);
        page.render(&painter, QPoint(0, 0), QRegion(0, top, page.width(), height));
        painter.restore();
    }
    return painter.end();
}

bool PaintLight(QWidget& page, QPrinter& printer)
{
    const bool wasDark = IsDark();
    if (wasDark) {
        UseColours(Colours::Light);
    }
    const bool good = Paint(page, printer);
    if (wasDark) {
        UseColours(Colours::Dark);
    }
    return good;
}

}  // namespace

PageSetupDlg::PageSetupDlg(QWidget* parent, const DesktopSettings& settings)
    : CDialog(kPageSetupDialog, parent),
      m_settings(settings),
      m_paper(new QComboBox(this)),
      m_orientation(new QComboBox(this)),
      m_margin(new QSpinBox(this))
{
    setWindowTitle(LoadText(kTextTitlePageSetup));
    m_paper->setObjectName(QString::number(kPaperBox));
    m_orientation->setObjectName(QString::number(kOrientationBox));
    m_margin->setObjectName(QString::number(kMarginBox));
    for (const Paper& paper : kPapers) {
        m_paper->addItem(QLatin1String(paper.name));
    }
    m_paper->setCurrentText(QString::fromStdString(settings.paper));
    m_orientation->addItems({LoadText(kTextPortrait), LoadText(kTextLandscape)});
    m_orientation->setCurrentIndex(settings.isLandscape ? 1 : 0);
    m_margin->setRange(0, kMostMargin);
    m_margin->setValue(settings.margin);
    auto* const form = new QFormLayout(this);
    form->setContentsMargins(20, 20, 20, 16);
    form->setSpacing(10);
    form->addRow(LoadText(kTextPaperSize), m_paper);
    form->addRow(LoadText(kTextOrientation), m_orientation);
    form->addRow(LoadText(kTextMargin), m_margin);
    auto* const ok = new CButton(this, ui::IDOK);
    ok->SetWindowText(ui::FromQt(LoadText(kTextOk)));
    ok->setDefault(true);
    auto* const cancel = new CButton(this, ui::IDCANCEL);
    cancel->SetWindowText(ui::FromQt(LoadText(kTextCancel)));
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    form->addRow(buttons);
    setMinimumWidth(320);
}

void PageSetupDlg::OnOK()
{
    m_settings.paper = m_paper->currentText().toStdString();
    m_settings.isLandscape = m_orientation->currentIndex() == 1;
    m_settings.margin = m_margin->value();
    CDialog::OnOK();
}

bool PrintPage(QWidget& page, const DesktopSettings& settings, QWidget* parent)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageLayout(LayoutOf(settings));
    QPrintDialog dialog(&printer, parent);
    return dialog.exec() != QDialog::Accepted || PaintLight(page, printer);
}

bool PrintPageToFile(QWidget& page, const DesktopSettings& settings, const QString& file)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(file);
    printer.setPageLayout(LayoutOf(settings));
    return PaintLight(page, printer);
}

}  // namespace zr::desktop
