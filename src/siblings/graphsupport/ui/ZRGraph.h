// The window that draws curves.
#pragma once

#include "platform/ui/CWnd.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/graphsupport/CurveInfo.h"
#include "siblings/graphsupport/DateText.h"
#include "siblings/graphsupport/GraphColours.h"
#include "siblings/graphsupport/GraphZoom.h"
#include "siblings/tools/ZRDateTime.h"

#include <memory>
#include <vector>

class CDC;

namespace zr::ui {

inline constexpr unsigned kGraphId = 123;

// Notice to the parent, without more to tell: another stretch of time, other data, another mode, or markers moved.
inline constexpr unsigned GRN_SHOWN = 0x8001;

}  // namespace zr::ui

// Curves in horizontal zones over one scale of time, each run of neighbouring curves of one zone and one unit on a
// value scale of its own. See zr::graph::GraphModel for all that it shows and does.
//
// Create; ClearVariables, then append to varInfos, then Update, which reads both; and again for other curves or other
// data. While invalidData stands, records are not touched. UI thread only.
class ZRGraph : public CWnd {
public:
    using CVarInfo = zr::graph::CurveInfo;
    static constexpr const std::array<unsigned long, 12>& predefinedColors = zr::graph::kPredefinedColors;

    ZRGraph();
    ~ZRGraph() override;

    // As a child of the parent, shown. False when it has been created.
    bool Create(QWidget* parent, unsigned id);

    // How dates are written in tooltip, legend and at the ticks; before it is called as YYYY-MM-DD HH:MM:SS.
    void SetDateText(zr::graph::DateText text);

    // Drops all curves; the mask is 0x7FFFFFFF for all, and nothing else is asked for.
    void ClearVariables(unsigned long mask);
    // New data: a range of local time, `to` exclusive; a range other than before forgets the zooms. Both pointers must
    // live until the next Update or ClearVariables.
    void Update(const ZRDateTime& from, const ZRDateTime& to, const ZRLoggerInfo* info,
                const ZRLoggerData::CRecordGroup* group);
    // 0 tooltip, 1 zoom, 2 pan; others are ignored.
    void SetMode(int mode);
    // Back to the whole window of time.
    void UndoZoom();
    // One step back. The flag is false always.
    void UndoLastZoom(bool flag);
    // Draws the graph into a rectangle of device units; without colours in black, told apart by their dashes.
    void Print(CDC* dc, const QRect& rect, bool monochrome);
    // Draws for the screen again after printing; null and true always.
    void Regenerate(CDC* dc, bool flag);
    // The picture as pixels, and as a drawing for programs that take one. False, and the
    // clipboard is as it was, when it can't be opened, there is no memory for the picture, or data are being replaced.
    bool CopyToClipboard(bool monochrome);

    // Read and written directly. Owned, by raw pointers; the destructor and ClearVariables delete them.
    std::vector<CVarInfo*> varInfos;
    int mode = 0;
    bool invalidData = false;
    std::vector<zr::graph::Zoom> zoomHistory;

    // Selected records for each column of pixels, 0 without any: above 1 the picture is reduced to minima and maxima.
    [[nodiscard]] double RecordsPerColumn() const;
    // For a status line: how many records are in view, and how curves are reduced. Empty without curves.
    [[nodiscard]] ZRBasicString StatusText() const;
    [[nodiscard]] zr::graph::Zoom InView() const;

protected:
    // Each pixel is painted by OnPaint.
    void OnEraseBkgnd(QPainter&) override {}
    void OnPaint(QPainter& painter) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] bool IsOwnKey(const QKeyEvent& event) const;

    class Parts;
    std::unique_ptr<Parts> m_parts;
    bool m_isCreated = false;
    bool m_showsFocus = false;  // it was reached by keyboard
};
