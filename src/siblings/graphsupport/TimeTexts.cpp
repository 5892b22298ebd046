#include "siblings/graphsupport/TimeTexts.h"

#include "siblings/tools/FormatText.h"
#include "siblings/tools/ZRDateTime.h"
#include "siblings/tools/ZRLocaleInformation.h"

namespace zr::graph {

namespace {

constexpr std::int64_t kEpochOfDates = 946684800;  // 1 January 2000 in seconds since 1970
constexpr int kMostDecimals = 6;
constexpr std::int64_t kMonthsOfYear = 12;

// The form of a date before a DateText is set.
ZRBasicString& WriteIso(ZRBasicString& out, const ZRDateTime& date, const ZRLocaleInformation<ZRBasicString>&,
                        unsigned flags)
{
    int day = 0;
    int month = 0;
    int year = 0;
    ZRDateTime::DateTime2DMY(date.seconds, day, month, year, true);
    out.Clear();
    const auto put = [&](bool isAsked, const wchar* separator, int number, const wchar* format) {
        if (isAsked) {
            out += out.IsEmpty() ? u"" : separator;
            out += FormatText(format, {number});
        }
    };
    put((flags & kYear) != 0, u"", year + 1999, u"%04d");
    put((flags & (kMonthNumber | kMonthName)) != 0, u"-", month, u"%02d");
    put((flags & kDayOfMonth) != 0, u"-", day, u"%02d");
    put((flags & kHours) != 0, u" ", static_cast<int>(date.seconds / 3600 % 24), u"%02d");
    put((flags & kMinutes) != 0, u":", static_cast<int>(date.seconds / 60 % 60), u"%02d");
    put((flags & kSeconds) != 0, u":", static_cast<int>(date.seconds % 60), u"%02d");
    return out;
}

// Decimals of a second that tell two times apart.
int DecimalsFor(std::int64_t apart)
{
    int decimals = 0;
    for (std::int64_t unit = kMicrosOfSecond; decimals < kMostDecimals && apart % unit != 0; unit /= 10) {
        ++decimals;
    }
    return decimals;
}

// ".250", with the user's decimal mark.
ZRBasicString Fraction(std::int64_t micros, int decimals)
{
    if (decimals == 0) {
        return {};
    }
    const ZRBasicString digits = FormatText(u"%06d", {micros});
    ZRBasicString text = LocaleInformationWide().decimalSeparator;
    text += digits.Text().substr(0, static_cast<std::size_t>(decimals));
    return text;
}

// 0 to 999999.
std::int64_t OfSecond(std::int64_t time)
{
    const std::int64_t micros = time % kMicrosOfSecond;
    return micros < 0 ? micros + kMicrosOfSecond : micros;
}

}  // namespace

ZRBasicString TimeTexts::Write(std::int64_t time, unsigned flags) const
{
    const std::int64_t local = LocalMicros(time, m_zone);
    const std::int64_t micros = OfSecond(local);
    const std::int64_t seconds = (local - micros) / kMicrosOfSecond - kEpochOfDates;
    ZRBasicString text;
    if (seconds < 0 || seconds >= ZRDateTime::kNoDate) {
        return text;
    }
    const ZRDateTime date(static_cast<std::uint32_t>(seconds), static_cast<std::uint32_t>(micros));
    return (m_text != nullptr ? m_text : &WriteIso)(text, date, LocaleInformationWide(), flags);
}

ZRBasicString TimeTexts::Moment(std::int64_t time, std::int64_t apart) const
{
    ZRBasicString text = Write(time, kLegendFlags);
    int decimals = 0;
    for (std::int64_t unit = kMicrosOfSecond; decimals < kMostDecimals && apart < unit; unit /= 10) {
        ++decimals;
    }
    return text.IsEmpty() ? text : text + Fraction(OfSecond(time), decimals);
}

ZRBasicString TimeTexts::Label(std::int64_t time, const CalendarStep& step) const
{
    switch (step.unit) {
        case CalendarStep::Unit::Microsecond:
            break;
        case CalendarStep::Unit::Day:
        case CalendarStep::Unit::Week:
            return Write(time, kPadded | kMonthNumber | kDayOfMonth);
        case CalendarStep::Unit::Month:
            return Write(time, step.count % kMonthsOfYear == 0 ? kYear : kMonthName);
    }
    constexpr std::int64_t kMicrosOfMinute = 60 * kMicrosOfSecond;
    const bool hasSeconds = step.count % kMicrosOfMinute != 0;
    ZRBasicString text = Write(time, kPadded | kHours | kMinutes | (hasSeconds ? kSeconds : 0));
    return text.IsEmpty() ? text : text + Fraction(OfSecond(time), DecimalsFor(step.count));
}

ZRBasicString TimeTexts::Context(std::int64_t time, const CalendarStep& step) const
{
    switch (step.unit) {
        case CalendarStep::Unit::Microsecond:
            return Write(time, kPadded | kDateFlags);
        case CalendarStep::Unit::Day:
        case CalendarStep::Unit::Week:
            return Write(time, kYear);
        case CalendarStep::Unit::Month:
            break;
    }
    return step.count % kMonthsOfYear == 0 ? ZRBasicString() : Write(time, kYear);
}

ZRBasicString TimeTexts::Length(std::int64_t micros)
{
    const std::int64_t length = micros < 0 ? -micros : micros;
    const std::int64_t seconds = length / kMicrosOfSecond;
    ZRBasicString text;
    if (length >= kMicrosOfDay) {
        text += FormatText(u"%d d ", {length / kMicrosOfDay});
    }
    text += FormatText(u"%02d:%02d:%02d", {seconds / 3600 % 24, seconds / 60 % 60, seconds % 60});
    const std::int64_t rest = length % kMicrosOfSecond;
    return seconds < 60 && rest != 0 ? text + Fraction(rest, DecimalsFor(rest)) : text;
}

}  // namespace zr::graph
