#include "hosts/kestrix/ui/PageSetupDlg.h"

#include "hosts/kestrix/ui/Commands.h"
#include "hosts/kestrix/ui/PageView.h"
#include "hosts/kestrix/ui/Theme.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/ui/CButton.h"

#include <algorithm>
#include <iterator>
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

const Paper& PaperNamed(const std::string& name)
{
    const auto found =
        std::find_if(std::begin(kPapers), std::end(kPapers), [&](const Paper& paper) { return name == paper.name; });
    return found != std::end(kPapers) ? *found : kPapers[1];  // A4
}

QPageLayout LayoutOf(const DesktopSettings& settings)
{
    const qreal margin = settings.margin;
    return QPageLayout(QPageSize(PaperNamed(settings.paper).size),
                       settings.isLandscape ? QPageLayout::Landscape : QPageLayout::Portrait,
                       QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter);
}

// The page as wide as the paper, over as many sheets as it takes.
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

// chosen: in force now and afterwards.
bool PaintLight(PageView& page, QPrinter& printer, Colours chosen)
{
    const bool isDark = IsDark();
    const auto use = [&](Colours colours) {
        if (isDark) {
            UseColours(colours);
            page.TakeColours();
        }
    };
    use(Colours::Light);
    const bool good = Paint(page, printer);
    use(chosen);
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
    m_paper->setCurrentText(QLatin1String(PaperNamed(settings.paper).name));
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

bool PrintPage(PageView& page, const DesktopSettings& settings, QWidget* parent)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageLayout(LayoutOf(settings));
    QPrintDialog dialog(&printer, parent);
    return dialog.exec() != QDialog::Accepted || PaintLight(page, printer, settings.colours);
}

bool PrintPageToFile(PageView& page, const DesktopSettings& settings, const QString& file)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(file);
    printer.setPageLayout(LayoutOf(settings));
    return PaintLight(page, printer, settings.colours);
}

}  // namespace zr::desktop
