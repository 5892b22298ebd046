// The one formatter of the dates and times that the viewers of logged data write.
#pragma once

#include "siblings/tools/ZRBasicString.h"
#include "siblings/tools/ZRDateTime.h"
#include "siblings/tools/ZRLocaleInformation.h"

namespace zr::logger {

// Bits of the flags.
inline constexpr unsigned kPad = 0x0001;             // leading zeros; names of days as wide as the longest
inline constexpr unsigned kYearTwoDigits = 0x0002;   // wins over the next
inline constexpr unsigned kYearFourDigits = 0x0004;  //
inline constexpr unsigned kMonthNumber = 0x0008;
inline constexpr unsigned kMonthName = 0x0010;  // wins over the number
inline constexpr unsigned kDay = 0x0020;        // of the month
inline constexpr unsigned kDayName = 0x0040;    // of the week
inline constexpr unsigned kHours = 0x0080;
inline constexpr unsigned kMinutes = 0x0100;
inline constexpr unsigned kSeconds = 0x0200;
inline constexpr unsigned kMilliseconds = 0x0400;
inline constexpr unsigned kMicroseconds = 0x0800;
inline constexpr unsigned kFixedForm = 0x1000;  // every other bit is then ignored

// Their combinations in use.
inline constexpr unsigned kTime = kHours | kMinutes | kSeconds;
inline constexpr unsigned kDateInNumbers = kYearFourDigits | kMonthNumber | kDay;
inline constexpr unsigned kRowOfDay = kPad | kTime;                        // 23:58:07
inline constexpr unsigned kRowOfWeek = kPad | kDay | kDayName | kTime;     // Monday 30 23:58:07
inline constexpr unsigned kRow = kPad | kDateInNumbers | kTime;            // 30-12-2002 23:58:07
inline constexpr unsigned kLegend = kDateInNumbers | kTime;                // likewise, without padding
inline constexpr unsigned kCaptionOfMonth = kYearFourDigits | kMonthName;  // December 2002; of a quarter likewise
inline constexpr unsigned kCaptionOfWeek = kCaptionOfMonth | kDay;         // 30 December 2002
inline constexpr unsigned kCaptionOfDay = kCaptionOfWeek | kDayName;       // Monday 30 December 2002

}  // namespace zr::logger

// Writes the parts that the flags ask for, in the order and with the separators of the locale record: in its long order
// with blanks when a name is shown, else in its short order. Hours, minutes and seconds have leading zeros but for
// hours without kPad. The fixed form is 14 digits, DDMMYYYYhhmmss, and knows no locale.
//
// Clears out and returns it. Never fails; flags of 0 give an empty text. Any thread.
ZRBasicString& FormatDateTime(ZRBasicString& out, const ZRDateTime& date,
                              const ZRLocaleInformation<ZRBasicString>& locale, unsigned int flags);
