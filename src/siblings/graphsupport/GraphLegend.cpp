#include "siblings/graphsupport/GraphLegend.h"

#include "siblings/graphsupport/GraphLayout.h"
#include "siblings/graphsupport/GraphReadings.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <optional>
#include <vector>

namespace zr::graph {

namespace {

constexpr unsigned kTextMore = 40250;

// Of a legend strip, in pixels of scale 1.
constexpr double kDateLeft = 5.0;
constexpr double kTop = 2.0;
constexpr double kBetween = 10.0;
constexpr double kSwatch = 10.0;
constexpr double kSample = 26.0;  // of a pen, where swatches would all be black
constexpr double kBehindSwatch = 3.0;
constexpr double kBehindText = 2.0;
constexpr double kBeforeValue = 6.0;

// Where the next entry of a zone goes.
struct Cursor {
    int row = 0;
    int right = 0;  // of what stands before it in its row
};

// A date with two digits in every place.
constexpr std::int64_t kWideDate = (1861574400 + 20 * 3600 + 58 * 60 + 58) * kMicrosOfSecond;

void PutSwatch(const Rect& rect, int curve, SceneLayer& out)
{
    out.push_back(SceneRect{rect, SceneRole::Swatch, curve});
    const Point topLeft{rect.left, rect.top};
    const Point topRight{rect.right - 1, rect.top};
    const Point bottomLeft{rect.left, rect.bottom - 1};
    const Point bottomRight{rect.right - 1, rect.bottom - 1};
    out.push_back(SceneLine{topLeft, topRight, SceneRole::SwatchFrame});
    out.push_back(SceneLine{topRight, bottomRight, SceneRole::SwatchFrame});
    out.push_back(SceneLine{bottomLeft, bottomRight, SceneRole::SwatchFrame});
    out.push_back(SceneLine{topLeft, bottomLeft, SceneRole::SwatchFrame});
}

int SwatchWidth(const GraphTarget& target)
{
    return Scaled(target.isMonochrome ? kSample : kSwatch, target.scale);
}

// Strokes and gaps in turn, of each style of pen, in pixels of scale 1.
constexpr std::array<std::array<double, 6>, 5> kDashes = {
    {{26, 0, 26, 0, 26, 0}, {6, 3, 6, 3, 6, 3}, {1, 2, 1, 2, 1, 2}, {6, 2, 1, 2, 6, 2}, {6, 2, 1, 2, 1, 2}}};

// A piece of a curve's line.
void PutSample(const Rect& rect, unsigned style, double scale, SceneLayer& out)
{
    const std::array<double, 6>& dashes = kDashes[style < kDashes.size() ? style : 0];
    const int row = (rect.top + rect.bottom) / 2;
    int left = rect.left;
    for (std::size_t i = 0; left < rect.right; i = (i + 2) % dashes.size()) {
        const int right = std::min(left + Scaled(dashes[i], scale), rect.right);
        out.push_back(SceneLine{{left, row}, {right - 1, row}, SceneRole::Text, -1, false});
        left = right + Scaled(dashes[i + 1], scale);
    }
}

class LegendPainter {
public:
    LegendPainter(const GraphState& state, const GraphTarget& target, SceneLayer& out)
        : m_state(state), m_target(target), m_out(out), m_line(target.texts->Height(TextFont::Normal))
    {
    }

    void PutDate(const Rect& place, int width, std::int64_t time)
    {
        const int left = place.left + Scaled(kDateLeft, m_target.scale);
        const int top = place.top + Scaled(kTop, m_target.scale);
        m_out.push_back(SceneText{{left, top, left + width, top + m_line},
                                  m_state.Texts().Write(time, kLegendFlags),
                                  TextAlign::Left,
                                  SceneRole::Text,
                                  TextFont::Normal,
                                  -1});
    }

    // The value: its width is kept free even when there is none, so that nothing moves.
    void PutEntry(const LegendEntry& entry, const Rect& place, const ZRBasicString& value)
    {
        const double scale = m_target.scale;
        const int top = place.top + Scaled(kTop, scale) + entry.row * m_line;
        const int right = entry.value + entry.valueWidth;
        if (entry.curve == m_state.highlighted && !m_target.isPaper) {
            m_out.push_back(SceneRect{{entry.left, top, right, top + m_line}, SceneRole::Highlight, -1});
        }
        const int swatch = Scaled(kSwatch, scale);
        const int swatchTop = top + (m_line - swatch) / 2;
        const Rect rect{entry.left, swatchTop, entry.left + SwatchWidth(m_target), swatchTop + swatch};
        if (m_target.isMonochrome) {
            PutSample(rect, MonochromeStyle(entry.curve), scale, m_out);
        } else {
            PutSwatch(rect, entry.curve, m_out);
        }
        const GraphCurve& curve = m_state.curves.curves[static_cast<std::size_t>(entry.curve)];
        m_out.push_back(SceneText{{entry.title, top, entry.value, top + m_line},
                                  curve.title,
                                  TextAlign::Left,
                                  SceneRole::Text,
                                  TextFont::Normal,
                                  -1});
        m_out.push_back(SceneText{
            {entry.value, top, right, top + m_line}, value, TextAlign::Left, SceneRole::Text, TextFont::Bold, -1});
    }

    // Tells of curves without room at the right end of the last row.
    void PutMore(const Rect& place, int lastRow, int count)
    {
        const int top = place.top + Scaled(kTop, m_target.scale) + lastRow * m_line;
        const Rect rect{place.right - MoreWidth(count), top, place.right, top + m_line};
        m_out.push_back(SceneText{rect, MoreText(count), TextAlign::Centre, SceneRole::DimText, TextFont::Normal, -1});
    }

    [[nodiscard]] int MoreWidth(int count) const
    {
        return m_target.texts->Width(MoreText(count).Text(), TextFont::Normal) + Scaled(kBetween, m_target.scale);
    }

    [[nodiscard]] int Rows(const Rect& place) const { return m_line > 0 ? place.Height() / m_line : 0; }

private:
    static ZRBasicString MoreText(int count)
    {
        ZRBasicString format;
        ZRLoadString(kTextMore, format);
        return FormatText(format.Text(), {FormatText(u"%d", {count})});
    }

    const GraphState& m_state;
    const GraphTarget& m_target;
    SceneLayer& m_out;
    int m_line;
};

int EntriesOf(const Legend& legend, int zone)
{
    return static_cast<int>(std::count_if(legend.entries.begin(), legend.entries.end(),
                                          [zone](const LegendEntry& entry) { return entry.zone == zone; }));
}

// Those of a zone that have room, beside what tells of the others at the end of the last row.
std::vector<LegendEntry> EntriesWithRoom(const Legend& legend, int zone, const Rect& place,
                                         const LegendPainter& painter)
{
    const int lastRow = painter.Rows(place) - 1;
    std::vector<LegendEntry> shown;
    std::copy_if(legend.entries.begin(), legend.entries.end(), std::back_inserter(shown),
                 [&](const LegendEntry& entry) { return entry.zone == zone && entry.row <= lastRow; });
    const int entries = EntriesOf(legend, zone);
    if (static_cast<int>(shown.size()) < entries) {
        const int room = place.right - painter.MoreWidth(entries);
        std::erase_if(shown, [&](const LegendEntry& entry) {
            return entry.row == lastRow && entry.value + entry.valueWidth > room;
        });
    }
    return shown;
}

}  // namespace

unsigned MonochromeStyle(int curve)
{
    return static_cast<unsigned>(curve) % (PS_DASHDOTDOT + 1);
}

Legend MakeLegend(const GraphState& state, const GraphTarget& target, std::span<const int> valueWidths)
{
    Legend legend;
    legend.rows.assign(static_cast<std::size_t>(state.curves.zones), 1);
    if (target.texts == nullptr) {
        return legend;
    }
    const double scale = target.scale;
    std::vector<Cursor> cursors(legend.rows.size());
    if (state.Records() > 0 && !cursors.empty() && !target.isPaper) {
        const ZRBasicString date = state.Texts().Write(kWideDate, kLegendFlags);
        legend.dateWidth = target.texts->Width(date.Text(), TextFont::Normal) + Scaled(kDateLeft, scale);
        cursors[0].right = Scaled(kDateLeft, scale) + legend.dateWidth;
    }
    for (std::size_t i = 0; i < state.curves.curves.size(); ++i) {
        const GraphCurve& curve = state.curves.curves[i];
        Cursor& cursor = cursors[static_cast<std::size_t>(curve.zone)];
        LegendEntry entry;
        entry.curve = static_cast<int>(i);
        entry.zone = curve.zone;
        entry.valueWidth = std::max(i < valueWidths.size() && !target.isPaper ? valueWidths[i] : 0,
                                    target.texts->Width(curve.unit.Text(), TextFont::Bold));
        const int titleWidth = target.texts->Width(curve.title.Text(), TextFont::Normal);
        const int before = SwatchWidth(target) + Scaled(kBehindSwatch, scale);
        const int width = before + titleWidth + Scaled(kBeforeValue, scale) + entry.valueWidth;
        int left = cursor.right + Scaled(cursor.right > 0 ? kBetween : kDateLeft, scale);
        if (left + width + Scaled(kBehindText, scale) > target.width && cursor.right > 0) {
            ++cursor.row;
            left = Scaled(kDateLeft, scale);
        }
        entry.row = cursor.row;
        entry.left = left;
        entry.title = left + before;
        entry.value = entry.title + titleWidth + Scaled(kBeforeValue, scale);
        cursor.right = left + width + Scaled(kBehindText, scale);
        legend.rows[static_cast<std::size_t>(curve.zone)] = cursor.row + 1;
        legend.entries.push_back(entry);
    }
    return legend;
}

void WidenValues(const GraphState& state, const TextExtents& texts, std::vector<int>& valueWidths)
{
    valueWidths.resize(state.curves.curves.size());
    if (!state.hasData) {
        return;
    }
    const Zoom whole = state.view.Whole();
    for (std::size_t i = 0; i < state.curves.curves.size(); ++i) {
        const ValueRange range = state.data.RangeOf(i, whole.from, whole.to);
        if (range.IsEmpty()) {
            continue;
        }
        for (const double value : {range.low, range.high}) {
            const ZRBasicString text = ValueText(state.curves.curves[i], value);
            valueWidths[i] = std::max(valueWidths[i], texts.Width(text.Text(), TextFont::Bold));
        }
    }
}

void AppendLegend(const Legend& legend, const GraphState& state, const GraphTarget& target,
                  const std::vector<Rect>& places, SceneLayer& out)
{
    if (target.texts == nullptr) {
        return;
    }
    // Paper has units only: what is at one moment belongs to the pointer.
    std::optional<std::int64_t> time;
    if (!target.isPaper) {
        time = TimeOfReadings(state);
    }
    std::vector<CurveReading> readings;
    if (time) {
        readings = ReadingsAt(state, *time, 1);
    }
    LegendPainter painter(state, target, out);
    if (time && legend.dateWidth > 0 && !places.empty() && !places[0].IsEmpty()) {
        painter.PutDate(places[0], legend.dateWidth, SampledTime(state, readings, *time));
    }
    for (std::size_t zone = 0; zone < places.size(); ++zone) {
        const std::vector<LegendEntry> shown = EntriesWithRoom(legend, static_cast<int>(zone), places[zone], painter);
        for (const LegendEntry& entry : shown) {
            const auto curve = static_cast<std::size_t>(entry.curve);
            painter.PutEntry(entry, places[zone], time ? readings[curve].value : state.curves.curves[curve].unit);
        }
        const int hidden = EntriesOf(legend, static_cast<int>(zone)) - static_cast<int>(shown.size());
        if (hidden > 0 && !places[zone].IsEmpty()) {
            painter.PutMore(places[zone], painter.Rows(places[zone]) - 1, hidden);
        }
    }
}

}  // namespace zr::graph
