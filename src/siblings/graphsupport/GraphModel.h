// All that a graph shows and does, without its window.
#pragma once

#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/graphsupport/CurveInfo.h"
#include "siblings/graphsupport/CurveRows.h"
#include "siblings/graphsupport/DateText.h"
#include "siblings/graphsupport/GraphData.h"
#include "siblings/graphsupport/GraphModes.h"
#include "siblings/graphsupport/GraphReadings.h"
#include "siblings/graphsupport/GraphScene.h"
#include "siblings/graphsupport/GraphZoom.h"
#include "siblings/graphsupport/SpanPainter.h"
#include "siblings/tools/ZRDateTime.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace zr::graph {

// Keys as given, to be mapped one to one by the window.
enum class GraphAction {
    PanLeft,        // Left: by a tenth of what is in view
    PanRight,       // Right
    PageLeft,       // Page up, Ctrl+Left: by all of it
    PageRight,      // Page down, Ctrl+Right
    ZoomIn,         // + about the cursor, else about the middle
    ZoomOut,        // -
    Whole,          // Home, 0: the whole window of time; forgets the history
    UndoZoom,       // Backspace, Ctrl+Z: one step back
    Cancel,         // Escape: ends a drag; without one as Whole
    SetMarker,      // M: at the cursor: the first, then the second, then the nearer one moves there
    RemoveMarkers,  // Delete
    CursorLeft,     // Shift+Left: the cursor by a column, so that values are read without a mouse
    CursorRight,    // Shift+Right
    TooltipMode,    // 1
    ZoomMode,       // 2
    PanMode,        // 3
};

// What has changed since it was asked last.
struct GraphChanges {
    bool under = false;  // the scene as a whole: curves are to be drawn again
    bool over = false;   // only what lies over the curves
    bool shown = false;  // what GRN_SHOWN tells of
};

// For the status line. Curves never hide that they are reduced.
struct GraphStatus {
    std::size_t records = 0;        // in view
    double recordsPerColumn = 0.0;  // 0 without any; above 1 minima and maxima are shown
    bool isReduced = false;
    ZRBasicString text;  // the same for people; empty without curves
};

// Curves in horizontal zones over one scale of time. The curves stand in the order given; neighbours of one zone and
// one unit share a value scale. A curve whose index isn't in the list of variables isn't shown.
//
// Order of use: SetTarget and SetDateText at any time; Update for other curves or data, Clear to let go of them. While
// records are replaced, only these and TakeChanges, Mode, History and InView may be called. After each operation that
// isn't const the window asks TakeChanges() and paints Scene(). Nothing is called back. UI thread only.
//
// Only the time is zoomed; the automatic limits follow what is in view. Never less is in view than a millisecond, nor
// than two samples' distance of a group with a period, and never anything outside the window of time.
class GraphModel {
public:
    GraphModel();
    ~GraphModel();
    GraphModel(const GraphModel&) = delete;
    GraphModel& operator=(const GraphModel&) = delete;

    // --- what it shows ---

    // The screen's. The scene is made for it.
    void SetTarget(const GraphTarget& target);
    // Null: dates as YYYY-MM-DD HH:MM:SS.
    void SetDateText(DateText text);
    // Window of local time, `to` exclusive, with its curves. A range other than before forgets zooms and markers. The
    // list is read at once, and must be locked; the group must live until the next Update or Clear. No data when one of
    // the dates is none or the group is null. Ends a drag.
    void Update(std::span<const CurveInfo> curves, const ZRDateTime& from, const ZRDateTime& to,
                const ZRLoggerInfo& info, const ZRLoggerData::CRecordGroup* group);
    // No curves and no data. The window of time stays.
    void Clear();
    // For other texts: language, formats of numbers and dates.
    void TextsChanged();

    [[nodiscard]] GraphChanges TakeChanges();
    // Of the target set. Valid until the next operation that isn't const.
    [[nodiscard]] const GraphScene& Scene();
    // The same for paper or a picture: without what belongs to the pointer where the target says so.
    [[nodiscard]] GraphScene SceneFor(const GraphTarget& target) const;

    // What a curve covers of each column of its panel's rectangle; rows count from the top of that rectangle. As many
    // spans as it is wide. Rows are held to a pen's width around the panel, so that values of any size do no harm.
    void Spans(const CurvePanel& panel, std::span<RowSpan> out) const;
    // The same for vector files and printers, as a line, clipped likewise; of bars the outlines.
    void Path(const CurvePanel& panel, std::vector<PathPoint>& out) const;

    [[nodiscard]] GraphStatus Status() const;
    [[nodiscard]] std::size_t Curves() const;
    // As a COLORREF; of a monochrome target black is to be taken instead.
    [[nodiscard]] unsigned long Colour(int curve) const;

    // --- the pointer; places in pixels of the target ---

    // Of the left button. With Shift a click sets a marker: the first, then the second, then the nearer one moves. A
    // press on a marker's line drags it in any mode.
    void Press(Point at, bool isShift);
    void Move(Point at);
    void Release(Point at);
    // The whole window of time.
    void DoubleClick(Point at);
    // The pointer is elsewhere: no cursor.
    void Leave();
    // Zooms about the pointer in any mode; steps of a wheel, above 0 away from the user: in. Fractions are welcome.
    void Wheel(Point at, double steps);
    // Sideways: pans by tenths of what is in view, above 0 to later times.
    void WheelSideways(double steps);
    void Do(GraphAction action);
    // The mouse was taken away: the drag ends and what it did so far is taken back.
    void CancelDrag();
    [[nodiscard]] PointerShape Shape() const;
    [[nodiscard]] bool IsDragging() const;

    // 0 tooltip, 1 zoom, 2 pan; others are ignored. Ends a drag.
    void SetMode(int mode);
    [[nodiscard]] int Mode() const;

    // --- the stretch of time ---

    // The whole window of time, and no history.
    void UndoZoom();
    // One step back.
    void UndoLastZoom();
    // What was in view before each zoom, oldest first. Panning adds nothing.
    [[nodiscard]] const std::vector<Zoom>& History() const;
    [[nodiscard]] Zoom InView() const;
    [[nodiscard]] Zoom Whole() const;
    // Held to the limits above; added to the history.
    void ZoomTo(Zoom zoom);

    // --- cursor and markers; UTC, microseconds since 1970 ---

    [[nodiscard]] std::optional<std::int64_t> Cursor() const;
    [[nodiscard]] std::optional<std::int64_t> Marker(int which) const;  // 0 or 1
    void SetMarker(int which, std::int64_t time);                       // held to the window of time
    void RemoveMarkers();
    // The curve within five pixels of scale 1 of a place, the nearest; -1 for none.
    [[nodiscard]] int CurveAt(Point at) const;
    // Date and clock, as fine as a column of pixels.
    [[nodiscard]] ZRBasicString TimeText(std::int64_t time) const;
    // One a curve, at a time in view.
    [[nodiscard]] std::vector<CurveReading> ReadingsAt(std::int64_t time) const;
    // One a curve; empty unless both markers stand.
    [[nodiscard]] std::vector<MarkerReading> MarkerReadings() const;
    // Between the markers: "1 d 02:03:04", with fractions of a second below a minute. Empty unless both stand.
    [[nodiscard]] ZRBasicString MarkerSpan() const;

private:
    class Parts;

    void PanByPart(double part);  // of what is in view
    void ZoomByKey(double factor);
    void MoveCursor(int columns);
    void SetMarkerAtCursor();

    std::unique_ptr<Parts> m_parts;
};

}  // namespace zr::graph
