#include "siblings/driversupport/MeasureUnits.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace zr {
namespace {

struct UnitRow {
    MeasureUnit unit;
    const wchar* symbol;
    bool takesPrefix;
};

constexpr std::array kUnits = {
    UnitRow{MeasureUnit::None, u"", false},
    UnitRow{MeasureUnit::Volt, u"V", true},
    UnitRow{MeasureUnit::Ampere, u"A", true},
    UnitRow{MeasureUnit::Watt, u"W", true},
    UnitRow{MeasureUnit::Var, u"var", true},
    UnitRow{MeasureUnit::VoltAmpere, u"VA", true},
    UnitRow{MeasureUnit::Hertz, u"Hz", true},
    UnitRow{MeasureUnit::PowerFactor, u"PF", false},
    UnitRow{MeasureUnit::WattHour, u"Wh", true},
    UnitRow{MeasureUnit::VarHour, u"varh", true},
    UnitRow{MeasureUnit::VoltAmpereHour, u"VAh", true},
    UnitRow{MeasureUnit::Percent, u"%", false},
    UnitRow{MeasureUnit::DegreeCelsius, u"\u00B0C", false},
    UnitRow{MeasureUnit::Hour, u"h", false},
    UnitRow{MeasureUnit::Second, u"s", true},
    UnitRow{MeasureUnit::Pulse, u"imp", false},
    UnitRow{MeasureUnit::Degree, u"\u00B0", false},
    UnitRow{MeasureUnit::Ohm, u"\u03A9", true},
    UnitRow{MeasureUnit::CubicMetre, u"m\u00B3", false},
    UnitRow{MeasureUnit::AmpereHour, u"Ah", true},
};

struct PrefixRow {
    int exponent;
    const wchar* prefix;
};

constexpr std::array kPrefixes = {
    PrefixRow{-9, u"n"}, PrefixRow{-6, u"\u00B5"}, PrefixRow{-3, u"m"}, PrefixRow{0, u""},
    PrefixRow{3, u"k"},  PrefixRow{6, u"M"},       PrefixRow{9, u"G"},  PrefixRow{12, u"T"},
};

// "x10^n", with a blank before a symbol.
ZRBasicString PowerOfTen(int exponent, bool beforeSymbol)
{
    ZRBasicString text = u"x10^";
    std::array<char, 16> digits{};
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), exponent).ptr;
    for (const char* digit = digits.data(); digit != end; ++digit) {
        text += static_cast<wchar>(*digit);
    }
    if (beforeSymbol) {
        text += u' ';
    }
    return text;
}

}  // namespace

void MeasureUnitsText(ZRBasicString& out, int units, int exponent)
{
    out.Clear();
    const auto isUnit = [units](const UnitRow& row) { return static_cast<int>(row.unit) == units; };
    const auto* unit = std::find_if(kUnits.begin(), kUnits.end(), isUnit);
    if (unit == kUnits.end()) {
        return;
    }
    const auto isPrefix = [exponent](const PrefixRow& row) { return row.exponent == exponent; };
    const auto* prefix = std::find_if(kPrefixes.begin(), kPrefixes.end(), isPrefix);
    const bool hasPrefix = exponent == 0 || (unit->takesPrefix && prefix != kPrefixes.end());
    if (hasPrefix) {
        out += prefix->prefix;
    } else {
        out += PowerOfTen(exponent, unit->symbol[0] != u'\0');
    }
    out += unit->symbol;
}

}  // namespace zr
