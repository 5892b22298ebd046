// A filter file and its companion, with a form feed between: what is read gives every local time one hour type.
#include "siblings/driversupport/FilterFile.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::int64_t kSpring = 1774746000;  // 29 March 2026, 01:00 UTC
constexpr std::int64_t kAutumn = 1792890000;  // 25 October 2026, 01:00 UTC
constexpr std::int64_t kDay = 86400;

void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void CheckRuns(const zr::HourCalendar& calendar, std::size_t hourTypes)
{
    const zr::TimeZone zone(3600, {{kSpring, 7200}, {kAutumn, 3600}});
    std::int64_t at = kSpring - 100 * kDay;
    const std::int64_t end = kAutumn + 100 * kDay;
    for (const zr::HourCalendar::Run& run : calendar.Runs(zone, at, end)) {
        Require(run.from == at && run.to > run.from && run.hourType < hourTypes);
        Require(calendar.HourTypeAt(zone.ToLocal(run.from)) == run.hourType);
        Require(calendar.HourTypeAt(zone.ToLocal(run.to - 1)) == run.hourType);
        at = run.to;
    }
    Require(at == end);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::size_t mark = text.find('\f');
    const std::string_view companion = mark == std::string_view::npos ? std::string_view() : text.substr(mark + 1);
    zr::FilterFile filter;
    std::string error;
    if (!filter.LoadText(text.substr(0, mark), companion, "F.MVDF", error)) {
        // Refused with file and line, and nothing is taken.
        Require(error.rfind("F.MVDF", 0) == 0 && filter.HourTypes().empty() && !filter.Calendar());
        return 0;
    }
    Require(!filter.HourTypes().empty() && filter.HourTypes().size() <= zr::FilterFile::kMaxHourTypes);
    if (filter.Calendar()) {
        CheckRuns(*filter.Calendar(), filter.HourTypes().size());
    }
    return 0;
}
