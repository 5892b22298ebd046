#include "controls/BarZones.h"

#include <algorithm>
#include <cstdlib>

namespace zr::controls {

namespace {

// Half the width of the soft edge at a single limit, which stands so far from the green zone's other end and has so
// much room on its outer side; 0 where a hard edge must do. Both in pixels, with their fractions where places have
// some.
int SoftEdgeOfOne(double distance, double room)
{
    const int reach = ToPixel(distance * 0.05 + 2);
    return 2 * reach < distance * 0.5 && room > reach ? reach : 0;
}

// Of the soft edges at a warning and an alarm limit so far apart.
int SoftEdgeOfTwo(double distance, double room)
{
    const int reach = ToPixel(distance * 0.1 + 2);
    return distance > 2 * reach && room > reach ? reach : 0;
}

void AddBlend(std::vector<BarStretch>& stretches, int place, int reach, Rgb first, Rgb last)
{
    if (reach > 0) {
        stretches.push_back({place - reach, place + reach, first, last, true});
    }
}

// What follows is the scale's own way, up or down: a zone between two places in any order, a soft edge between the
// colour before it and the one after it. The width of a soft edge comes from the places as they are; only what is
// painted is truncated to pixels.
class Outwards {
public:
    Outwards(std::vector<BarStretch>& stretches, int step) : m_stretches(stretches), m_step(step) {}

    void Zone(int from, int to, Rgb colour)
    {
        AddFlatZone(m_stretches, m_step > 0 ? from : to, m_step > 0 ? to : from, colour);
    }
    void Edge(int place, int reach, Rgb before, Rgb after)
    {
        AddBlend(m_stretches, place, reach, m_step > 0 ? before : after, m_step > 0 ? after : before);
    }

    // Green from start to the limit, red from there to end.
    void ZonesOfOne(double start, double limit, double end, const BarColours& colours)
    {
        const int reach = SoftEdgeOfOne(m_step * (limit - start), m_step * (end - limit));
        const int place = ToPixel(limit);
        Zone(ToPixel(start), place - m_step * reach, colours.green);
        Zone(place + m_step * reach, ToPixel(end), colours.red);
        Edge(place, reach, colours.green, colours.red);
    }
    // Green, yellow and red.
    void ZonesOfTwo(double start, double warning, double alarm, double end, const BarColours& colours)
    {
        const int reach = SoftEdgeOfTwo(m_step * (alarm - warning), m_step * (end - alarm));
        const int first = ToPixel(warning);
        const int second = ToPixel(alarm);
        Zone(ToPixel(start), first - m_step * reach, colours.green);
        Zone(first + m_step * reach, second - m_step * reach, colours.yellow);
        Zone(second + m_step * reach, ToPixel(end), colours.red);
        Edge(first, reach, colours.green, colours.yellow);
        Edge(second, reach, colours.yellow, colours.red);
    }

private:
    std::vector<BarStretch>& m_stretches;
    int m_step;
};

}  // namespace

void AddFlatZone(std::vector<BarStretch>& stretches, int first, int last, Rgb colour)
{
    if (first < last) {
        stretches.push_back({first, last, colour, colour, false});
    }
}

void AddRangeZones(std::vector<BarStretch>& stretches, const BarRange& range, bool isEnabled, bool isOneLimit,
                   const BarColours& colours)
{
    if (!isEnabled) {
        AddFlatZone(stretches, range.First(), range.Last(), colours.green);
        return;
    }
    const BarBoundaries boundaries = BoundariesOf(range, isOneLimit);
    Outwards zones(stretches, range.Step());
    if (isOneLimit) {
        zones.ZonesOfOne(range.inner, boundaries.alarm, range.outer, colours);
    } else {
        zones.ZonesOfTwo(range.inner, boundaries.warning, boundaries.alarm, range.outer, colours);
    }
}

void AddZones(std::vector<BarStretch>& stretches, const BarScales& scales, const LimitChecks& limits,
              const BarColours& colours)
{
    if (scales.lowerRange) {
        const bool isOneLimit = limits.lowWarning == limits.lowAlarm;
        AddRangeZones(stretches, *scales.lowerRange, limits.enabled, isOneLimit, colours);
    }
    if (scales.upperRange) {
        const bool isOneLimit = limits.highWarning == limits.highAlarm;
        AddRangeZones(stretches, *scales.upperRange, limits.enabled, isOneLimit, colours);
    }
}

void AddPowerFactorZones(std::vector<BarStretch>& stretches, int left, int right, const LimitChecks& limits,
                         const BarColours& colours)
{
    const double lowWarning = PowerFactorPosition(limits.lowWarning, left, right);
    const double highWarning = PowerFactorPosition(limits.highWarning, left, right);
    const double centre = lowWarning + (highWarning - lowWarning) * 0.5;

    // The left half reaches one pixel into the right one.
    Outwards leftHalf(stretches, -1);
    if (limits.lowWarning == limits.lowAlarm) {
        leftHalf.ZonesOfOne(centre + 1, lowWarning, left, colours);
    } else {
        leftHalf.ZonesOfTwo(centre + 1, lowWarning, PowerFactorPosition(limits.lowAlarm, left, right), left, colours);
    }
    Outwards rightHalf(stretches, 1);
    if (limits.highWarning == limits.highAlarm) {
        rightHalf.ZonesOfOne(centre, highWarning, right, colours);
    } else {
        rightHalf.ZonesOfTwo(centre, highWarning, PowerFactorPosition(limits.highAlarm, left, right), right, colours);
    }
}

}  // namespace zr::controls
