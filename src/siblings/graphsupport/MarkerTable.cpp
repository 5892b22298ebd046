#include "siblings/graphsupport/MarkerTable.h"

#include "siblings/graphsupport/GraphLayout.h"
#include "siblings/graphsupport/GraphReadings.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace zr::graph {

namespace {

constexpr unsigned kTextDifference = 40245;
constexpr unsigned kTextMinimum = 40246;
constexpr unsigned kTextMean = 40247;
constexpr unsigned kTextMaximum = 40248;
constexpr unsigned kTextSum = 40249;
constexpr unsigned kTextMore = 40250;

constexpr std::size_t kColumns = 8;  // title, at both markers, difference, minimum, mean, maximum, sum
constexpr std::size_t kSumColumn = 7;
constexpr double kBetween = 14.0;
constexpr double kPad = 5.0;

struct Row {
    std::array<ZRBasicString, kColumns> cells;
    int curve = -1;  // -1: a heading
};

ZRBasicString Loaded(unsigned id)
{
    ZRBasicString text;
    ZRLoadString(id, text);
    return text;
}

// The earlier marker is the first column, whichever it is.
Row Heading(const GraphState& state)
{
    const Zoom between = state.markers.Between();
    const TimeTexts texts = state.Texts();
    const std::int64_t apart = between.to - between.from;
    Row row;
    row.cells[0] = TimeTexts::Length(apart);
    row.cells[1] = texts.Moment(between.from, apart);
    row.cells[2] = texts.Moment(between.to, apart);
    row.cells[3] = Loaded(kTextDifference);
    row.cells[4] = Loaded(kTextMinimum);
    row.cells[5] = Loaded(kTextMean);
    row.cells[6] = Loaded(kTextMaximum);
    const auto& curves = state.curves.curves;
    const bool hasBars = std::any_of(curves.begin(), curves.end(),
                                     [](const GraphCurve& curve) { return curve.column.shape == CurveShape::Bars; });
    row.cells[kSumColumn] = hasBars ? Loaded(kTextSum) : ZRBasicString();
    return row;
}

std::vector<Row> RowsOfTable(const GraphState& state)
{
    std::vector<Row> rows;
    rows.push_back(Heading(state));
    for (const MarkerReading& reading : MarkerReadingsOf(state)) {
        rows.push_back({{reading.title, reading.atFirst, reading.atSecond, reading.difference, reading.minimum,
                         reading.mean, reading.maximum, reading.sum},
                        reading.curve});
    }
    return rows;
}

// Left ends of the columns, and the end of the last.
std::array<int, kColumns + 1> Columns(const std::vector<Row>& rows, const GraphTarget& target, int left)
{
    std::array<int, kColumns + 1> ends{};
    ends[0] = left;
    for (std::size_t column = 0; column < kColumns; ++column) {
        int widest = 0;
        for (const Row& row : rows) {
            const TextFont font = row.curve < 0 ? TextFont::Bold : TextFont::Normal;
            widest = std::max(widest, target.texts->Width(row.cells[column].Text(), font));
        }
        ends[column + 1] = ends[column] + (widest > 0 ? widest + Scaled(kBetween, target.scale) : 0);
    }
    return ends;
}

void PutRow(const Row& row, const std::array<int, kColumns + 1>& ends, int top, int height, int between,
            SceneLayer& out)
{
    for (std::size_t column = 0; column < kColumns; ++column) {
        if (row.cells[column].IsEmpty()) {
            continue;
        }
        SceneText text;
        text.rect = {ends[column], top, ends[column + 1] - between, top + height};
        text.text = row.cells[column];
        text.align = column == 0 ? TextAlign::Left : TextAlign::Right;
        text.font = row.curve < 0 ? TextFont::Bold : TextFont::Normal;
        out.push_back(std::move(text));
    }
}

}  // namespace

int MarkerTableRows(const GraphState& state)
{
    return state.markers.AreBoth() && !state.curves.curves.empty() ? static_cast<int>(state.curves.curves.size()) + 1
                                                                   : 0;
}

void AppendMarkerTable(const GraphState& state, const GraphTarget& target, const Rect& place, SceneLayer& out)
{
    if (place.IsEmpty() || target.texts == nullptr || !state.markers.AreBoth()) {
        return;
    }
    out.push_back(SceneRect{place, SceneRole::BoxGround, -1});
    out.push_back(SceneLine{{place.left, place.top}, {place.right - 1, place.top}, SceneRole::BoxFrame});
    const int line = target.texts->Height(TextFont::Normal);
    const std::vector<Row> rows = RowsOfTable(state);
    const int swatch = line * 2 / 3;
    const int pad = Scaled(kPad, target.scale);
    const std::array<int, kColumns + 1> ends = Columns(rows, target, place.left + 2 * pad + swatch);
    const auto room = static_cast<std::size_t>(std::max(place.Height() / std::max(line, 1), 0));
    const bool isCut = rows.size() > room;
    const std::size_t shown = isCut ? std::max<std::size_t>(room, 1) - 1 : rows.size();
    int top = place.top + Scaled(2.0, target.scale);
    for (std::size_t i = 0; i < shown; ++i, top += line) {
        if (rows[i].curve >= 0) {
            const int swatchTop = top + (line - swatch) / 2;
            out.push_back(SceneRect{{place.left + pad, swatchTop, place.left + pad + swatch, swatchTop + swatch},
                                    SceneRole::Swatch,
                                    rows[i].curve});
        }
        PutRow(rows[i], ends, top, line, Scaled(kBetween, target.scale), out);
    }
    if (isCut) {
        SceneText more;
        more.rect = {ends[0], top, place.right, top + line};
        more.text = FormatText(Loaded(kTextMore).Text(), {FormatText(u"%d", {rows.size() - shown})});
        more.role = SceneRole::DimText;
        out.push_back(std::move(more));
    }
}

}  // namespace zr::graph
