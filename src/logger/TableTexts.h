// The texts of a table of logged data: caption, titles of columns, cells.
#pragma once

#include "logger/LoggerIds.h"
#include "profiles/ZRTableProfile.h"
#include "siblings/driversupport/VariableReference.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/ZRBasicString.h"
#include "siblings/tools/ZRDateTime.h"

#include <vector>

namespace zr::logger {

inline constexpr unsigned kTextTimeColumn = 922;          // title of the time column
inline constexpr unsigned kTextCaptionOfWeek = 32331;     // number, first and last day
inline constexpr unsigned kTextCaptionOfQuarter = 32332;  // first and last month
inline constexpr unsigned kTextYear = 432;

// A power factor has this unit code.
inline constexpr int kPowerFactorUnit = 7;

using zr::kTitleAmongDevices;

// By the numbering of the locale record: 1 counts by ISO 8601, 2 plainly from 1 January on. 1 for any other.
int WeekNumber(const ZRDateTime& date, int weekNumbering);

// What stands above a window of time, `to` exclusive: its day, its week with number and days, its month, its quarter by
// months, its year. Empty for what is no unit or no date. At most 255 characters. By the language in force.
ZRBasicString TableCaption(const ZRDateTime& from, const ZRDateTime& to, int groupBy);

// How the rows of a window of that unit show their time, for FormatDateTime: of a day the time alone, of a week the day
// as well, else the whole date.
unsigned RowTimeFlags(int groupBy);
// The text of the time column. Returns out.
ZRBasicString& FormatTableViewerTime(ZRBasicString& out, const ZRDateTime& time, int groupBy);

// The title of a variable and, in brackets, its unit; the brackets stand there for a variable without a unit as well.
ZRBasicString HeaderText(const ZRTableProfile::CVariableProfile& variable);
ZRBasicString HeaderText(const ZRBasicString& title, int measureUnits, int unitsExponent);

// What a column of the list gives back as its text: at most 255 characters, up to the first zero.
ZRBasicString ColumnText(const ZRBasicString& text);

// How the values of one variable are found in a record and written.
struct ValueColumn {
    int position = -1;    // in the record; -1: there is none, every cell is empty
    double factor = 1.0;  // from the stored value to the displayed unit
    bool isPowerFactor = false;
    int decimals = 0;

    // False when the record holds no value. Meant, on screen, paper and clipboard alike: a power factor below -0.995
    // reads 1.0.
    bool Read(const LoggedRecord& record, double& value) const
    {
        if (position < 0 || record.values[position].valid == 0) {
            return false;
        }
        value = record.values[position].value * factor;
        if (isPowerFactor && value < -0.995) {
            value = 1.0;
        }
        return true;
    }
    // The text of the value in the user's number format; out is empty, and the result false, when there is none.
    bool Text(const LoggedRecord& record, ZRBasicString& out) const;
};

// By what a record of a profile finds its variable. Meant: the screen goes by the full name, paper and clipboard by the
// title that the variable would have among several devices; the first hit counts.
enum class MatchBy { Name, Title };

// One for each record of the profile, in its order. The list must be locked.
std::vector<ValueColumn> FindValueColumns(const ZRTableProfile& profile, const ZRLoggerInfo& info, MatchBy match);

}  // namespace zr::logger
