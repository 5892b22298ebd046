#include "siblings/tools/LanguageLocale.h"

#include <array>

namespace zr {
namespace {

constexpr int kDayMonthYear = 1;
constexpr int kMonday = 2;
constexpr int kIso8601 = 1;

// What the three have in common, with the names in English.
SystemLocale European(const char* decimalSeparator, const char* thousandsSeparator, const char* dateSeparator)
{
    SystemLocale locale;
    locale.decimalSeparator = decimalSeparator;
    locale.thousandsSeparator = thousandsSeparator;
    locale.digitGroups = {3, 0, 0, 0};
    locale.dateSeparator = dateSeparator;
    locale.shortDateOrder = kDayMonthYear;
    locale.longDateOrder = kDayMonthYear;
    locale.firstDayOfWeek = kMonday;
    locale.weekNumbering = kIso8601;
    return locale;
}

SystemLocale German()
{
    SystemLocale locale = European(",", ".", ".");
    locale.monthNames = {"Januar", "Februar", "März",      "April",   "Mai",      "Juni",
                         "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
    locale.dayNames = {"Sonntag", "Montag", "Dienstag", "Mittwoch", "Donnerstag", "Freitag", "Samstag"};
    return locale;
}

SystemLocale Spanish()
{
    SystemLocale locale = European(",", ".", "/");
    locale.monthNames = {"enero", "febrero", "marzo",      "abril",   "mayo",      "junio",
                         "julio", "agosto",  "septiembre", "octubre", "noviembre", "diciembre"};
    locale.dayNames = {"domingo", "lunes", "martes", "miércoles", "jueves", "viernes", "sábado"};
    return locale;
}

}  // namespace

std::span<const LanguageLocale> LanguageLocales()
{
    static const std::array<LanguageLocale, 3> locales = {
        LanguageLocale{"en", European(".", ",", "/")}, LanguageLocale{"de", German()}, LanguageLocale{"es", Spanish()}};
    return locales;
}

}  // namespace zr
