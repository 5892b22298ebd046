// What is printed on, and how far the printing is.
#pragma once

#include "platform/ui/CFont.h"

#include <QColor>
#include <QRect>
#include <QSize>
#include <string_view>
#include <utility>

class QPagedPaintDevice;
class QPainter;
class QPrinter;
class QWidget;

namespace zr::ui {

// Figures of a device.
inline constexpr int VERTSIZE = 6;     // height, millimetres
inline constexpr int HORZRES = 8;      // width, device units
inline constexpr int VERTRES = 10;     // height, device units
inline constexpr int LOGPIXELSX = 88;  // device units of an inch across

// How DrawText places a line.
inline constexpr unsigned DT_LEFT = 0;
inline constexpr unsigned DT_CENTER = 1;
inline constexpr unsigned DT_RIGHT = 2;

// How figures become device units.
inline constexpr int MM_TEXT = 1;         // as they are
inline constexpr int MM_ANISOTROPIC = 8;  // by extents

// What a printer is chosen to print in.
inline constexpr int DMCOLOR_MONOCHROME = 1;
inline constexpr int DMCOLOR_COLOR = 2;

// Flags of the print dialog.
inline constexpr unsigned PD_PRINTSETUP = 0x40;
inline constexpr unsigned PD_RETURNDC = 0x100;

}  // namespace zr::ui

// Measures and draws in device units; the same figures while it is measured, previewed and printed. UI thread only.
class CDC {
public:
    // Neither is owned; the painter is active on the device.
    CDC(QPainter& painter, const QPrinter& device) : m_painter(painter), m_device(device) {}

    [[nodiscard]] int GetDeviceCaps(int index) const;
    // DMCOLOR_...
    [[nodiscard]] int Color() const;
    // Returns the mode before. Nobody sets extents, and without them both modes draw alike.
    int SetMapMode(int mode) { return std::exchange(m_mapMode, mode); }
    // Without kerning, so that the width of a text is the sum of its characters'.
    void SelectObject(const CFont& font);
    [[nodiscard]] QSize GetTextExtent(std::u16string_view text) const;
    // One line, cut off by nothing.
    void DrawText(std::u16string_view text, const QRect& rect, unsigned format);
    // For windows that draw more than texts and lines.
    [[nodiscard]] QPainter& Painter() { return m_painter; }
    // Solid, both ends inclusive.
    void DrawLine(QPoint from, QPoint to, int penWidth, const QColor& colour);

private:
    QPainter& m_painter;
    const QPrinter& m_device;
    int m_mapMode = zr::ui::MM_TEXT;
};

// The dialog that asks what to print on.
class CPrintDialog {
public:
    // Neither is owned.
    CPrintDialog(QPrinter& printer, QWidget* parent) : m_printer(printer), m_parent(parent) {}

    // Blocks; IDOK or IDCANCEL.
    int DoModal();
    // Of the printer chosen: DMCOLOR_...
    [[nodiscard]] int Color() const;

    unsigned m_flags = 0;  // PD_...
    unsigned m_nMinPage = 1;
    unsigned m_nMaxPage = 0;  // 0: nothing to print

private:
    QPrinter& m_printer;
    QWidget* m_parent;
};

// How far a printing is.
struct CPrintInfo {
    // Not owned.
    explicit CPrintInfo(CPrintDialog& dialog) : m_pPD(&dialog) {}

    CPrintDialog* m_pPD;
    bool m_bPreview = false;
    bool m_bContinuePrinting = true;  // false: the page is the last one
    unsigned m_nCurPage = 1;
    QRect m_rectDraw;  // device units

    void SetMaxPage(unsigned page) { m_pPD->m_nMaxPage = page; }
    [[nodiscard]] unsigned GetMaxPage() const { return m_pPD->m_nMaxPage; }
};
