#include "platform/ui/CDC.h"

#include "platform/ui/CDialog.h"
#include "platform/ui/UiText.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>

namespace {

int ColorOf(const QPrinter& printer)
{
    return printer.colorMode() == QPrinter::Color ? zr::ui::DMCOLOR_COLOR : zr::ui::DMCOLOR_MONOCHROME;
}

}  // namespace

int CDC::GetDeviceCaps(int index) const
{
    switch (index) {
        case zr::ui::HORZRES:
            return m_device.width();
        case zr::ui::VERTRES:
            return m_device.height();
        case zr::ui::VERTSIZE:
            return m_device.heightMM();
        case zr::ui::LOGPIXELSX:
            return m_device.logicalDpiX();
        default:
            return 0;
    }
}

int CDC::Color() const
{
    return ColorOf(m_device);
}

void CDC::SelectObject(const CFont& font)
{
    QFont plain = font.Font();
    plain.setKerning(false);
    m_painter.setFont(plain);
}

QSize CDC::GetTextExtent(std::u16string_view text) const
{
    const QFontMetrics metrics = m_painter.fontMetrics();
    return {metrics.horizontalAdvance(zr::ui::ToQt(text)), metrics.height()};
}

void CDC::DrawText(std::u16string_view text, const QRect& rect, unsigned format)
{
    int flags = Qt::AlignTop | Qt::TextSingleLine | Qt::TextDontClip;
    flags |= format == zr::ui::DT_CENTER  ? Qt::AlignHCenter
             : format == zr::ui::DT_RIGHT ? Qt::AlignRight
                                          : Qt::AlignLeft;
    m_painter.setPen(Qt::black);
    m_painter.drawText(rect, flags, zr::ui::ToQt(text));
}

void CDC::DrawLine(QPoint from, QPoint to, int penWidth, const QColor& colour)
{
    m_painter.setPen(QPen(colour, penWidth, Qt::SolidLine, Qt::FlatCap));
    m_painter.drawLine(from, to);
}

// The dialog of the desktop offers the setup of the printer beside the choice of one, so that the flags, which ask for
// either, make no difference here.
int CPrintDialog::DoModal()
{
    QPrintDialog dialog(&m_printer, m_parent);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, (m_flags & zr::ui::PD_PRINTSETUP) == 0);
    return static_cast<int>(dialog.exec() == QDialog::Accepted ? zr::ui::IDOK : zr::ui::IDCANCEL);
}

int CPrintDialog::Color() const
{
    return ColorOf(m_printer);
}
