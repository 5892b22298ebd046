#include "siblings/graphsupport/ValueScale.h"

#include "siblings/graphsupport/PowerFactorScale.h"
#include "siblings/tools/Numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zr::graph {

namespace {

constexpr double kLargest = std::numeric_limits<double>::max() / 4.0;  // the difference of two is still a number
constexpr double kLeastSpan = 1e-25;                                   // less can't be written
constexpr double kLeastRelative = 1e-12;                               // of the larger limit: less can't be told apart
constexpr double kMargin = 0.02;
constexpr int kFoldedDecimals = 2;

// 1, 2 or 5 times a power of ten.
struct RoundStep {
    int factor = 1;
    int exponent = 0;

    [[nodiscard]] double Value() const { return Multiple(1.0); }
    // A negative power is divided by, so that 3 times 0.1 is 0.3.
    [[nodiscard]] double Multiple(double times) const
    {
        return exponent < 0 ? times * factor / std::pow(10.0, -exponent) : times * factor * std::pow(10.0, exponent);
    }
    // The next narrower one.
    [[nodiscard]] RoundStep Narrower() const
    {
        return factor == 1 ? RoundStep{5, exponent - 1} : RoundStep{factor / 2, exponent};
    }
    // The step of the ticks between: 5 or 4 of them.
    [[nodiscard]] RoundStep Finer() const
    {
        if (factor == 1) {
            return {2, exponent - 1};
        }
        return factor == 2 ? RoundStep{5, exponent - 1} : RoundStep{1, exponent};
    }
};

// The narrowest of them that isn't below a length.
RoundStep StepFrom(double length)
{
    RoundStep step;
    step.exponent = static_cast<int>(std::floor(std::log10(length)));
    for (const int factor : {1, 2, 5}) {
        step.factor = factor;
        if (step.Value() >= length * (1.0 - 1e-9)) {
            return step;
        }
    }
    return {1, step.exponent + 1};
}

bool IsLimit(double limit)
{
    return std::isfinite(limit) && limit != kNoLimit;
}

struct Limits {
    double low = 0.0;
    double high = 0.0;
    bool isLowFixed = false;
    bool isHighFixed = false;
};

// Moves those that aren't fixed; when both are, both.
void Widen(Limits& limits, const ValueScaleInput& input)
{
    const double size = std::max(std::abs(limits.low), std::abs(limits.high));
    double by = size < kLeastSpan ? 1.0 : size * 0.05;
    by = input.isFolded ? 0.05 : by;
    const bool areBothFixed = limits.isLowFixed && limits.isHighFixed;
    // Bars of nothing stand on zero all the same.
    const bool staysAtZero = input.startsAtZero && limits.low >= 0.0 && !limits.isHighFixed;
    if ((!limits.isLowFixed && !staysAtZero) || areBothFixed) {
        limits.low -= by;
    }
    if (!limits.isHighFixed || areBothFixed) {
        limits.high += by;
    }
}

Limits LimitsOf(const ValueScaleInput& input)
{
    Limits limits;
    limits.isLowFixed = IsLimit(input.minimum);
    limits.isHighFixed = IsLimit(input.maximum);
    const bool hasValues =
        !input.values.IsEmpty() && std::isfinite(input.values.low) && std::isfinite(input.values.high);
    limits.low = hasValues ? input.values.low : 0.0;
    limits.high = hasValues ? input.values.high : (input.startsAtZero || input.isFolded ? 1.0 : 0.0);
    if (input.startsAtZero) {
        limits.low = std::min(limits.low, 0.0);
        limits.high = std::max(limits.high, 0.0);
    }
    limits.low = limits.isLowFixed ? input.minimum : limits.low;
    limits.high = limits.isHighFixed ? input.maximum : limits.high;
    if (limits.isLowFixed && limits.isHighFixed && limits.low > limits.high) {
        std::swap(limits.low, limits.high);
    }
    const double largest = input.isFolded ? kFoldedEnd : kLargest;
    const double least = input.isFolded ? 0.0 : -kLargest;
    limits.low = std::clamp(limits.low, least, largest);
    limits.high = std::clamp(limits.high, least, largest);
    // One fixed limit with all values beyond it.
    if (limits.low > limits.high) {
        (limits.isLowFixed ? limits.high : limits.low) = limits.isLowFixed ? limits.low : limits.high;
    }
    return limits;
}

// Away from each other, so that the ends of the curves are seen; not across 0 where no value is.
void AddMargin(Limits& limits, const ValueScaleInput& input)
{
    const double margin = (limits.high - limits.low) * kMargin;
    if (!limits.isLowFixed) {
        const bool staysAtZero = limits.low >= 0.0 && (input.startsAtZero || limits.low <= margin);
        limits.low = staysAtZero ? (input.startsAtZero ? limits.low : 0.0) : limits.low - margin;
    }
    if (!limits.isHighFixed) {
        const bool staysAtZero = limits.high <= 0.0 && (input.startsAtZero || limits.high >= -margin);
        limits.high = staysAtZero ? (input.startsAtZero ? limits.high : 0.0) : limits.high + margin;
    }
}

void HoldWithin(Limits& limits, bool isFolded)
{
    const double largest = isFolded ? kFoldedEnd : 2.0 * kLargest;
    limits.low = std::max(limits.low, isFolded ? 0.0 : -largest);
    limits.high = std::min(limits.high, largest);
    // A fixed limit at the end of the folded scale, and all values beyond it.
    if (isFolded && limits.high - limits.low <= kLeastSpan) {
        limits.low = 0.0;
        limits.high = kFoldedEnd;
    }
}

double LabelsWithin(const Limits& limits, const RoundStep& step)
{
    return std::floor(limits.high / step.Value()) - std::ceil(limits.low / step.Value()) + 1.0;
}

RoundStep MajorStep(const Limits& limits, const ValueScaleInput& input)
{
    const double distance = std::max({input.labelHeight * 1.6, 18.0 * input.scale, 1.0});
    const double intervals = std::max(1.0, std::floor(input.height / distance));
    const double span = limits.high - limits.low;
    RoundStep step = StepFrom(span / intervals);
    // One label alone tells of no scale: rather have them close.
    const double closest = std::max(input.labelHeight * 1.2, 1.0);
    while (LabelsWithin(limits, step) < 2.0 && step.Narrower().Value() / span * input.height >= closest) {
        step = step.Narrower();
    }
    return input.isWhole && step.exponent < 0 ? RoundStep{1, 0} : step;
}

// A multiple of 3 for labels that would have many digits, else 0.
int ExponentFor(const Limits& limits)
{
    constexpr double kLong = 1e7;
    constexpr double kShort = 1e-4;
    const double size = std::max(std::abs(limits.low), std::abs(limits.high));
    if (size < kLong && size >= kShort) {
        return 0;
    }
    return static_cast<int>(std::floor(std::log10(size) / 3.0)) * 3;
}

ZRBasicString LabelOf(double value, const ValueScale& scale, bool isFolded)
{
    double shown = isFolded ? Unfold(value) : value;
    shown = scale.exponent < 0 ? shown * std::pow(10.0, -scale.exponent) : shown / std::pow(10.0, scale.exponent);
    ZRBasicString text;
    FormatNumber(text, shown, scale.decimals, true);
    return text;
}

void AppendTicks(ValueScale& scale, const RoundStep& major, const ValueScaleInput& input)
{
    const RoundStep minor = major.Finer();
    const double rows = minor.Value() / (scale.map.high - scale.map.low) * input.height;
    const bool hasMinors = rows >= 4.0 * input.scale && !(input.isWhole && minor.exponent < 0);
    const RoundStep step = hasMinors ? minor : major;
    const double parts = hasMinors ? std::round(major.Value() / minor.Value()) : 1.0;
    constexpr double kTolerance = 1e-6;
    const double first = std::ceil(scale.map.low / step.Value() - kTolerance);
    const double last = std::floor(scale.map.high / step.Value() + kTolerance);
    for (double times = first; times <= last; times += 1.0) {
        const bool isMajor = std::fmod(times, parts) == 0.0;
        const double value = std::clamp(step.Multiple(times), scale.map.low, scale.map.high);
        scale.ticks.push_back({value, isMajor, isMajor ? LabelOf(value, scale, input.isFolded) : ZRBasicString()});
    }
}

}  // namespace

ValueScale MakeValueScale(const ValueScaleInput& input)
{
    Limits limits = LimitsOf(input);
    const double size = std::max(std::abs(limits.low), std::abs(limits.high));
    const bool isWidened = limits.high - limits.low <= std::max(kLeastSpan, size * kLeastRelative);
    if (isWidened) {
        Widen(limits, input);
    } else {
        AddMargin(limits, input);
    }
    HoldWithin(limits, input.isFolded);
    const RoundStep major = MajorStep(limits, input);
    const RoundStep minor = major.Finer();
    if (!limits.isLowFixed) {
        limits.low = minor.Multiple(std::floor(limits.low / minor.Value() + 1e-9));
    }
    if (!limits.isHighFixed) {
        limits.high = minor.Multiple(std::ceil(limits.high / minor.Value() - 1e-9));
    }
    HoldWithin(limits, input.isFolded);

    ValueScale scale;
    scale.map = {limits.low, limits.high};
    scale.exponent = input.isFolded ? 0 : ExponentFor(limits);
    scale.decimals = std::clamp(scale.exponent - major.exponent, 0, kMaxDecimals);
    scale.decimals = input.isFolded ? std::max(scale.decimals, kFoldedDecimals) : scale.decimals;
    AppendTicks(scale, major, input);
    return scale;
}

}  // namespace zr::graph
