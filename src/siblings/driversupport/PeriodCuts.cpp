#include "siblings/driversupport/PeriodCuts.h"

#include <algorithm>
#include <chrono>

namespace zr {

namespace {

constexpr std::int64_t kDay = 86400;
constexpr std::int32_t kLongMonth = 31 * 86400;
constexpr std::int64_t kFirstDay = 10957;  // 1 January 2000

std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor)
{
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

class Cutter {
public:
    Cutter(const TimeZone& zone, std::int64_t from, std::int64_t to) : m_zone(zone), m_to(to), m_cuts{from} {}

    std::vector<std::int64_t> Finish()
    {
        m_cuts.push_back(m_to);
        return std::move(m_cuts);
    }

    void CutWithinDays(std::int64_t period)
    {
        for (std::int64_t utc = m_cuts.front(); utc < m_to;) {
            const TimeZone::Span span = m_zone.SpanAt(utc);
            const std::int64_t end = std::min(span.end, m_to);
            CutAtChange(span, utc, period);
            for (std::int64_t local = NextStart(utc + span.offset, period); local - span.offset < end;
                 local = NextStart(local, period)) {
                Add(local - span.offset);
            }
            utc = end;
        }
    }

    void CutAtDays(std::int64_t days)
    {
        const std::int64_t today = FloorDivide(m_zone.ToLocal(m_cuts.front()), kDay) - kFirstDay;
        for (std::int64_t day = FloorDivide(today, days) * days; AddMidnight(kFirstDay + day); day += days) {
        }
    }

    void CutAtMonths(int months)
    {
        using namespace std::chrono;
        const sys_days today{std::chrono::days(FloorDivide(m_zone.ToLocal(m_cuts.front()), kDay))};
        const year_month_day date(today);
        const int month = (static_cast<int>(date.year()) - 2000) * 12 + static_cast<int>(unsigned{date.month()}) - 1;
        year_month first = 2000y / January + std::chrono::months(FloorDivide(month, months) * months);
        while (AddMidnight(sys_days(first / 1).time_since_epoch().count())) {
            first += std::chrono::months(months);
        }
    }

private:
    static std::int64_t StartOf(std::int64_t local, std::int64_t period)
    {
        const std::int64_t midnight = FloorDivide(local, kDay) * kDay;
        return midnight + (local - midnight) / period * period;
    }

    static std::int64_t NextStart(std::int64_t local, std::int64_t period)
    {
        const std::int64_t midnight = FloorDivide(local, kDay) * kDay;
        return std::min(StartOf(local, period) + period, midnight + kDay);
    }

    // Where the clock changes there is a cut unless the same period goes on.
    void CutAtChange(const TimeZone::Span& span, std::int64_t utc, std::int64_t period)
    {
        if (utc != span.begin) {
            return;
        }
        const std::int64_t before = m_zone.ToLocal(utc - 1);
        const std::int64_t after = utc + span.offset;
        if (StartOf(before, period) != StartOf(after, period) || StartOf(after, period) == after) {
            Add(utc);
        }
    }

    // In order; before the first or twice the same is none.
    void Add(std::int64_t utc)
    {
        if (utc > m_cuts.back() && utc < m_to) {
            m_cuts.push_back(utc);
        }
    }

    // False beyond the end.
    bool AddMidnight(std::int64_t day)
    {
        const std::int64_t utc = m_zone.ToUtc(day * kDay);
        Add(utc);
        return utc < m_to;
    }

    const TimeZone& m_zone;
    std::int64_t m_to;
    std::vector<std::int64_t> m_cuts;
};

}  // namespace

std::vector<std::int64_t> PeriodCuts(const TimeZone& zone, std::int64_t from, std::int64_t to, std::int32_t period)
{
    if (from >= to || period < 1) {
        return {};
    }
    Cutter cutter(zone, from, to);
    if (period < kDay) {
        cutter.CutWithinDays(period);
    } else if (period < kLongMonth) {
        cutter.CutAtDays(period / kDay);
    } else {
        cutter.CutAtMonths(period / kLongMonth);
    }
    return cutter.Finish();
}

}  // namespace zr
