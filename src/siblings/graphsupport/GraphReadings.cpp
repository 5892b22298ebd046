#include "siblings/graphsupport/GraphReadings.h"

#include <algorithm>
#include <cstddef>

namespace zr::graph {

namespace {

std::optional<CurvePoint> SampleOf(const GraphState& state, int curve, std::int64_t time)
{
    return state.hasData ? state.data.SampleAt(static_cast<std::size_t>(curve), time) : std::nullopt;
}

CurveFigures FiguresOf(const GraphState& state, int curve, std::int64_t from, std::int64_t to)
{
    return state.hasData ? state.data.FiguresOf(static_cast<std::size_t>(curve), from, to) : CurveFigures();
}

MarkerReading ReadBetween(const GraphState& state, int number, Zoom between)
{
    const GraphCurve& curve = state.curves.curves[static_cast<std::size_t>(number)];
    MarkerReading reading;
    reading.curve = number;
    reading.title = curve.title;
    reading.atFirst = kNoValue;
    reading.atSecond = kNoValue;
    reading.difference = kNoValue;
    reading.minimum = kNoValue;
    reading.mean = kNoValue;
    reading.maximum = kNoValue;
    const bool isBars = curve.column.shape == CurveShape::Bars;
    reading.sum = isBars ? kNoValue : u"";
    const std::optional<CurvePoint> first = SampleOf(state, number, between.from);
    const std::optional<CurvePoint> second = SampleOf(state, number, between.to);
    if (first) {
        reading.atFirst = ValueText(curve, first->value);
    }
    if (second) {
        reading.atSecond = ValueText(curve, second->value);
    }
    if (first && second) {
        reading.difference = PlainValueText(curve, second->value - first->value);
    }
    const CurveFigures figures = FiguresOf(state, number, between.from, between.to);
    if (figures.count > 0) {
        reading.minimum = ValueText(curve, figures.minimum);
        reading.mean = PlainValueText(curve, figures.mean);
        reading.maximum = ValueText(curve, figures.maximum);
        reading.sum = isBars ? PlainValueText(curve, figures.mean * static_cast<double>(figures.count)) : reading.sum;
    }
    return reading;
}

// The time of the last record in view, found by halving.
std::optional<std::int64_t> LastInView(const GraphState& state)
{
    const Zoom view = state.view.InView();
    if (state.data.Records(view.from, view.to) == 0) {
        return std::nullopt;
    }
    std::int64_t from = view.from;
    std::int64_t to = view.to;
    while (to - from > 1) {
        const std::int64_t middle = from + (to - from) / 2;
        (state.data.Records(middle, view.to) > 0 ? from : to) = middle;
    }
    return from;
}

}  // namespace

std::optional<std::int64_t> TimeOfReadings(const GraphState& state, bool isPaper)
{
    if (!state.hasData || state.view.IsEmpty()) {
        return std::nullopt;
    }
    return state.cursor && !isPaper ? state.cursor : LastInView(state);
}

CurveReading ReadingAt(const GraphState& state, int number, std::int64_t time, std::int64_t columnLength)
{
    const GraphCurve& curve = state.curves.curves[static_cast<std::size_t>(number)];
    CurveReading reading;
    reading.curve = number;
    reading.title = curve.title;
    reading.sample = SampleOf(state, number, time);
    reading.value = reading.sample ? ValueText(curve, reading.sample->value) : ZRBasicString(kNoValue);
    const CurveFigures figures = FiguresOf(state, number, time, time + std::max<std::int64_t>(columnLength, 1));
    if (figures.count > 1) {
        reading.range = ValueText(curve, figures.minimum) + u" \u2026 " + ValueText(curve, figures.maximum);
    }
    return reading;
}

std::vector<CurveReading> ReadingsAt(const GraphState& state, std::int64_t time, std::int64_t columnLength)
{
    std::vector<CurveReading> readings;
    readings.reserve(state.curves.curves.size());
    for (std::size_t i = 0; i < state.curves.curves.size(); ++i) {
        readings.push_back(ReadingAt(state, static_cast<int>(i), time, columnLength));
    }
    return readings;
}

std::int64_t SampledTime(const GraphState& state, const std::vector<CurveReading>& readings, std::int64_t time)
{
    std::optional<std::int64_t> nearest;
    const auto distance = [time](std::int64_t other) { return other > time ? other - time : time - other; };
    for (const CurveReading& reading : readings) {
        if (!reading.sample) {
            continue;
        }
        if (reading.curve == state.highlighted) {
            return reading.sample->time;
        }
        if (!nearest || distance(reading.sample->time) < distance(*nearest)) {
            nearest = reading.sample->time;
        }
    }
    return nearest.value_or(time);
}

std::vector<MarkerReading> MarkerReadingsOf(const GraphState& state)
{
    std::vector<MarkerReading> readings;
    if (!state.markers.AreBoth()) {
        return readings;
    }
    const Zoom between = state.markers.Between();
    for (std::size_t i = 0; i < state.curves.curves.size(); ++i) {
        readings.push_back(ReadBetween(state, static_cast<int>(i), between));
    }
    return readings;
}

}  // namespace zr::graph
