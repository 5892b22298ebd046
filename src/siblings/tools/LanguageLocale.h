// How numbers and dates are written in the languages of the suite, whatever the system says.
#pragma once

#include "platform/SystemLocale.h"

#include <span>
#include <string_view>

namespace zr {

struct LanguageLocale {
    std::string_view language;  // the title of its language file, such as "de"
    SystemLocale conventions;
};

// Every language of the suite: English and Spanish as written in Europe, German as in Germany. All have weeks that
// start on Monday and are numbered by ISO 8601. Source: Unicode CLDR 42, locales en-GB, de-DE and es-ES, with the
// groups of digits from four digits on. Lives for ever. Any thread.
std::span<const LanguageLocale> LanguageLocales();

}  // namespace zr
