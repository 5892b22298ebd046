#include "siblings/graphsupport/TimeScale.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace zr::graph {

namespace {

constexpr double kLabelGap = 12.0;               // pixels of scale 1 between two labels
constexpr double kLeastLabel = 28.0;             // likewise, the room of a label at least
constexpr double kMinorDistance = 6.0;           // likewise, between two minor ticks
constexpr int kMostMinors = 12;                  // between two major ones
constexpr std::int64_t kSampleDay = 1861574400;  // 28 December 2028: no day is written wider

double PixelsOf(const CalendarStep& step, const TimeScaleInput& input)
{
    const double span = static_cast<double>(input.view.to) - static_cast<double>(input.view.from);
    return static_cast<double>(step.Shortest()) / span * input.width;
}

// The room that a label of a step takes at most.
int LabelWidth(const CalendarStep& step, const TimeScaleInput& input, const TimeTexts& texts)
{
    if (input.texts == nullptr) {
        return 0;
    }
    constexpr std::int64_t kDaysOfMonth = 30;
    constexpr std::int64_t kHalfToMidnight = 20 * 3600 + 58 * 60 + 58;
    const int months = step.unit == CalendarStep::Unit::Month ? 12 : 1;
    int widest = 0;
    for (int i = 0; i < months; ++i) {
        const std::int64_t time = (kSampleDay - i * kDaysOfMonth * 86400 + kHalfToMidnight) * kMicrosOfSecond;
        widest = std::max(widest, input.texts->Width(texts.Label(time, step).Text(), TextFont::Normal));
    }
    return widest;
}

std::optional<CalendarStep> MajorStep(const TimeScaleInput& input, const TimeTexts& texts)
{
    for (const CalendarStep& step : CalendarSteps()) {
        const double pixels = PixelsOf(step, input);
        // Before a text is measured.
        if (pixels < (kLeastLabel + kLabelGap) * input.scale) {
            continue;
        }
        if (pixels >= LabelWidth(step, input, texts) + kLabelGap * input.scale) {
            return step;
        }
    }
    // All that is in view lies between two ticks, but for luck.
    return CalendarSteps().back();
}

std::optional<CalendarStep> MinorStep(const CalendarStep& major, const TimeScaleInput& input)
{
    for (const CalendarStep& step : CalendarSteps()) {
        const double pixels = PixelsOf(step, input);
        if (step.Shortest() >= major.Shortest()) {
            break;
        }
        if (major.IsMultipleOf(step) && pixels >= kMinorDistance * input.scale &&
            major.Shortest() <= kMostMinors * step.Shortest()) {
            return step;
        }
    }
    return std::nullopt;
}

// Whether what the labels leave open changes from one time to another.
bool ContextDiffers(std::int64_t before, std::int64_t time, const CalendarStep& step, const TimeZone& zone,
                    const TimeTexts& texts)
{
    if (step.unit == CalendarStep::Unit::Microsecond) {
        return LocalDay(before, zone) != LocalDay(time, zone);
    }
    return texts.Context(before, step) != texts.Context(time, step);
}

// Places a text about a column; false when it would reach into what is taken before it or has no room behind it.
bool TakesRoom(const TimeScaleInput& input, const ZRBasicString& text, int column, double& taken)
{
    if (text.IsEmpty()) {
        return false;
    }
    const int width = input.texts->Width(text.Text(), TextFont::Normal);
    const int left = column - width / 2;
    if (left < taken || left + width > input.width + input.roomRight) {
        return false;
    }
    taken = left + width + kLabelGap / 2 * input.scale;
    return true;
}

void AppendTicks(TimeScale& scale, const TimeScaleInput& input, const TimeZone& zone)
{
    std::vector<std::int64_t> majors;
    AppendPlaces(*scale.step, input.view, zone, input.firstDayOfWeek, majors);
    std::vector<std::int64_t> all = majors;
    if (const std::optional<CalendarStep> minor = MinorStep(*scale.step, input)) {
        all.clear();
        AppendPlaces(*minor, input.view, zone, input.firstDayOfWeek, all);
        // A day that begins late has its own place, which no hour has.
        std::vector<std::int64_t> both;
        std::set_union(majors.begin(), majors.end(), all.begin(), all.end(), std::back_inserter(both));
        all.swap(both);
    }
    scale.ticks.reserve(all.size());
    for (const std::int64_t time : all) {
        const bool isMajor = std::binary_search(majors.begin(), majors.end(), time);
        scale.ticks.push_back({time, ColumnOf(time, input.view, input.width), isMajor, {}, {}});
    }
}

void WriteLabels(TimeScale& scale, const TimeScaleInput& input, const TimeZone& zone, const TimeTexts& texts)
{
    double labelsTaken = -input.roomLeft;
    double contextsTaken = -input.roomLeft;
    std::int64_t before = input.view.from;
    bool isFirst = true;
    int firstContext = input.width + input.roomRight;
    for (TimeTick& tick : scale.ticks) {
        if (!tick.isMajor) {
            continue;
        }
        ZRBasicString label = texts.Label(tick.time, *scale.step);
        if (TakesRoom(input, label, tick.column, labelsTaken)) {
            tick.label = std::move(label);
        }
        // The left edge's own day is told by the text there, but for a tick right on it.
        const bool begins =
            ContextDiffers(before, tick.time, *scale.step, zone, texts) || (isFirst && tick.time == input.view.from);
        ZRBasicString context = begins ? texts.Context(tick.time, *scale.step) : ZRBasicString();
        if (TakesRoom(input, context, tick.column, contextsTaken)) {
            firstContext =
                std::min(firstContext, tick.column - input.texts->Width(context.Text(), TextFont::Normal) / 2);
            tick.context = std::move(context);
        }
        before = tick.time;
        isFirst = false;
    }
    ZRBasicString left = texts.Context(input.view.from, *scale.step);
    const int width = input.texts->Width(left.Text(), TextFont::Normal);
    if (width + kLabelGap / 2 * input.scale <= firstContext && width <= input.width + input.roomRight) {
        scale.leftContext = std::move(left);
    }
}

}  // namespace

int ColumnOf(std::int64_t time, Zoom view, int width)
{
    if (width <= 0 || view.to <= view.from) {
        return -1;
    }
    // 64 bits of mantissa hold the microseconds of a century times the columns of a screen.
    const long double span = static_cast<long double>(view.to) - static_cast<long double>(view.from);
    const long double since = static_cast<long double>(time) - static_cast<long double>(view.from);
    const long double limit = 4.0L * width;
    return static_cast<int>(std::floor(std::clamp(since * width / span, -limit, limit)));
}

std::int64_t TimeOf(double column, Zoom view, int width)
{
    if (width <= 0) {
        return view.from;
    }
    const long double span = static_cast<long double>(view.to) - static_cast<long double>(view.from);
    return view.from + static_cast<std::int64_t>(std::ceil(span * static_cast<long double>(column) / width));
}

TimeScale MakeTimeScale(const TimeScaleInput& input, const TimeZone& zone, const TimeTexts& texts)
{
    TimeScale scale;
    if (input.width <= 0 || input.view.to <= input.view.from) {
        return scale;
    }
    scale.step = MajorStep(input, texts);
    AppendTicks(scale, input, zone);
    if (input.texts != nullptr) {
        WriteLabels(scale, input, zone, texts);
    }
    return scale;
}

}  // namespace zr::graph
