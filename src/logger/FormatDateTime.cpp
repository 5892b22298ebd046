#include "logger/FormatDateTime.h"

#include "siblings/tools/TextRoom.h"

#include <algorithm>
#include <array>

namespace {

using namespace zr::logger;
using Locale = ZRLocaleInformation<ZRBasicString>;

constexpr unsigned kSecondsPerDay = 86400;

// The part of a date that a slot of the order holds.
enum class Slot { Day, Month, Year };

// The part written last.
enum class Last { None, Day, MonthNumber, Year, Hours, Minutes, Seconds, Milliseconds };

constexpr std::array<std::array<Slot, 3>, 3> kOrders = {
    {{Slot::Month, Slot::Day, Slot::Year}, {Slot::Day, Slot::Month, Slot::Year}, {Slot::Year, Slot::Month, Slot::Day}}};

unsigned BitsOf(Slot slot)
{
    switch (slot) {
        case Slot::Day:
            return kDay | kDayName;
        case Slot::Month:
            return kMonthName | kMonthNumber;
        default:
            return kYearTwoDigits | kYearFourDigits;
    }
}

// The most characters that a text can have: digits and blanks, names and separators.
std::size_t Bound(const Locale& locale, unsigned flags)
{
    std::size_t bound = 64 + 2 * locale.dateSeparator.Length() + 2 * locale.timeSeparator.Length();
    if ((flags & kDayName) != 0) {
        bound += static_cast<std::size_t>(std::max(locale.longestDayName, 0));
        for (const ZRBasicString& name : locale.dayNames) {
            bound += name.Length();
        }
    }
    if ((flags & kMonthName) != 0) {
        for (const ZRBasicString& name : locale.monthNames) {
            bound += name.Length();
        }
    }
    return bound;
}

class Formatter {
public:
    // Writes at a place that has room for Bound() characters.
    Formatter(wchar* at, const ZRDateTime& date, const Locale& locale, unsigned flags)
        : m_at(at), m_date(date), m_locale(locale), m_flags(flags)
    {
    }

    // Returns the place behind the text.
    wchar* WriteFixed()
    {
        ReadCalendar();
        WriteTwo(m_day);
        WriteTwo(m_month);
        WriteFour(m_year);
        WriteTwo(HourOf());
        WriteTwo(MinuteOf());
        WriteTwo(SecondOf());
        return m_at;
    }

    // Likewise.
    wchar* WriteNormal()
    {
        if (Has(BitsOf(Slot::Day) | BitsOf(Slot::Month) | BitsOf(Slot::Year))) {
            WriteDate();
        }
        WriteTime();
        WriteFraction();
        return m_at;
    }

private:
    [[nodiscard]] bool Has(unsigned bits) const { return (m_flags & bits) != 0; }
    [[nodiscard]] unsigned HourOf() const { return m_date.seconds % kSecondsPerDay / 3600; }
    [[nodiscard]] unsigned MinuteOf() const { return m_date.seconds / 60 % 60; }
    [[nodiscard]] unsigned SecondOf() const { return m_date.seconds % 60; }

    void ReadCalendar()
    {
        int day = 0;
        int month = 0;
        int year = 0;
        ZRDateTime::DateTime2DMY(m_date.seconds, day, month, year, true);
        m_day = static_cast<unsigned>(day);
        m_month = static_cast<unsigned>(month);
        m_year = static_cast<unsigned>(year + 1999);
    }

    void WriteTwo(unsigned number)
    {
        m_at = zr::PutDigit(m_at, number / 10);
        m_at = zr::PutDigit(m_at, number);
    }

    void WriteFour(unsigned number)
    {
        WriteTwo(number / 100);
        WriteTwo(number);
    }

    // In one digit where that is enough and nothing pads.
    void WriteTwoPlaces(unsigned number)
    {
        if (number >= 10 || Has(kPad)) {
            m_at = zr::PutDigit(m_at, number / 10);
        }
        m_at = zr::PutDigit(m_at, number);
    }

    void WriteDate()
    {
        ReadCalendar();
        const bool isNamed = Has(kDayName | kMonthName);
        const int order = std::clamp(isNamed ? m_locale.longDateOrder : m_locale.shortDateOrder, 0, 2);
        for (const Slot slot : kOrders[static_cast<std::size_t>(order)]) {
            if (!Has(BitsOf(slot))) {
                continue;
            }
            if (m_last != Last::None) {
                m_at = zr::PutText(m_at, isNamed ? std::u16string_view(u" ") : m_locale.dateSeparator.Text());
            }
            WriteSlot(slot);
        }
    }

    void WriteSlot(Slot slot)
    {
        switch (slot) {
            case Slot::Day:
                WriteDay();
                m_last = Last::Day;
                break;
            case Slot::Month:
                WriteMonth();
                break;
            case Slot::Year:
                Has(kYearTwoDigits) ? WriteTwoPlaces(m_year % 100) : WriteFour(m_year);
                m_last = Last::Year;
                break;
        }
    }

    void WriteDay()
    {
        if (Has(kDayName)) {
            const ZRBasicString& name = m_locale.dayNames[static_cast<std::size_t>(m_date.DayOfWeek() - 1)];
            if (Has(kPad)) {
                for (int length = static_cast<int>(name.Length()); length < m_locale.longestDayName; ++length) {
                    *m_at++ = u' ';
                }
            }
            m_at = zr::PutText(m_at, name);
        }
        if (Has(kDay)) {
            if (Has(kDayName)) {
                *m_at++ = u' ';
            }
            WriteTwoPlaces(m_day);
        }
    }

    void WriteMonth()
    {
        if (Has(kMonthName)) {
            m_at = zr::PutText(m_at, m_locale.monthNames[m_month - 1]);
            m_last = Last::Day;
        } else {
            WriteTwoPlaces(m_month);
            m_last = Last::MonthNumber;
        }
    }

    // What joins a part of the time to what stands before it: its own mark after that part, else a blank.
    void WriteJoint(Last before, std::u16string_view mark)
    {
        if (m_last == before) {
            m_at = zr::PutText(m_at, mark);
        } else if (m_last != Last::None) {
            *m_at++ = u' ';
        }
    }

    void WriteTime()
    {
        if (Has(kHours)) {
            if (m_last != Last::None) {
                *m_at++ = u' ';
            }
            WriteTwoPlaces(HourOf());
            m_last = Last::Hours;
        }
        if (Has(kMinutes)) {
            WriteJoint(Last::Hours, m_locale.timeSeparator);
            WriteTwo(MinuteOf());
            m_last = Last::Minutes;
        }
        if (Has(kSeconds)) {
            WriteJoint(Last::Minutes, m_locale.timeSeparator);
            WriteTwo(SecondOf());
            m_last = Last::Seconds;
        }
    }

    void WriteFraction()
    {
        if (Has(kMilliseconds)) {
            WriteJoint(Last::Seconds, u".");
            const unsigned ms = m_date.microseconds / 1000;
            // Meant: thousands, hundreds and units, so that the first is always zero and the tens are left out.
            // 347 ms are 037.
            m_at = zr::PutDigit(m_at, ms / 1000);
            m_at = zr::PutDigit(m_at, ms / 100);
            m_at = zr::PutDigit(m_at, ms);
            m_last = Last::Milliseconds;
        }
        if (Has(kMicroseconds)) {
            // After milliseconds that is a blank.
            WriteJoint(Last::Seconds, u".");
            WriteTwo(m_date.microseconds / 10000);
            WriteFour(m_date.microseconds % 10000);
        }
    }

    wchar* m_at;
    const ZRDateTime& m_date;
    const Locale& m_locale;
    const unsigned m_flags;
    Last m_last = Last::None;
    unsigned m_day = 0;
    unsigned m_month = 0;
    unsigned m_year = 0;
};

}  // namespace

ZRBasicString& FormatDateTime(ZRBasicString& out, const ZRDateTime& date,
                              const ZRLocaleInformation<ZRBasicString>& locale, unsigned int flags)
{
    zr::TextRoom room(Bound(locale, flags));
    Formatter formatter(room.First(), date, locale, flags);
    const wchar* const end = (flags & kFixedForm) != 0 ? formatter.WriteFixed() : formatter.WriteNormal();
    out.Clear();
    out += std::u16string_view(room.First(), static_cast<std::size_t>(end - room.First()));
    return out;
}
