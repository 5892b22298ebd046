#include "logger/GraphColour.h"

#include "platform/FileReplace.h"
#include "siblings/driversupport/FilterFile.h"
#include "siblings/driversupport/VariableReference.h"
#include "siblings/graphsupport/GraphColours.h"
#include "siblings/support/ZRKestrixSetup.h"
#include "siblings/tools/XmlDocument.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace zr::logger {

namespace {

int HexDigitOf(wchar character)
{
    if (character >= u'0' && character <= u'9') {
        return character - u'0';
    }
    const auto lower = static_cast<wchar>(character | 0x20);
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

// As wcstol reads base 16 into 32 bits: white space, a sign and 0x may come first, what follows the digits is ignored,
// too large a number is the largest, and what is none is 0.
unsigned long HexToLong(ZRBasicString::View text)
{
    std::size_t at = std::min(text.find_first_not_of(u" \t\n\v\f\r"), text.size());
    const bool isNegative = at < text.size() && text[at] == u'-';
    if (isNegative || (at < text.size() && text[at] == u'+')) {
        ++at;
    }
    const bool hasPrefix = text.size() - at > 2 && text[at] == u'0' && (text[at + 1] | 0x20) == u'x';
    if (hasPrefix && HexDigitOf(text[at + 2]) >= 0) {
        at += 2;
    }
    const std::int64_t limit = isNegative ? 0x80000000LL : 0x7FFFFFFFLL;
    std::int64_t value = 0;
    for (; at < text.size() && HexDigitOf(text[at]) >= 0; ++at) {
        value = std::min(value * 16 + HexDigitOf(text[at]), limit);
    }
    return static_cast<std::uint32_t>(isNegative ? -value : value);
}

// What a filter file says of an hour type; 0 for nothing.
unsigned long FilterColor(const ZRBasicString& filter, const ZRBasicString& hour)
{
    XmlDocument document;
    // References come from documents: a name that leads out of the folder is none.
    if (ZRKestrixSetup::instance == nullptr || !IsFilterName(filter) ||
        !document.Load(PathFromText((ZRKestrixSetup::Get().dataFolder + filter).Text()))) {
        return 0;
    }
    const XmlNode* const node = document.root->NodeV(u"hourTypes/hour?name=%s?", hour);
    return node != nullptr ? HexToLong(node->Value(u"color", u"").Text()) : 0;
}

}  // namespace

unsigned long GetColor(const ZRGraphProfile& profile, const ZRBasicString& name, int zone, int count)
{
    const auto isUsed = [&](unsigned long color) {
        const auto used = std::clamp<std::ptrdiff_t>(count, 0, static_cast<std::ptrdiff_t>(profile.NVars()));
        return std::any_of(profile.VarsBegin(), std::next(profile.VarsBegin(), used),
                           [&](const auto* record) { return record->Zone == zone && record->Color == color; });
    };
    ZRBasicString filter;
    ZRBasicString hour;
    ZRBasicString driver;
    ZRBasicString variable;
    SplitFilterDriverVariable(name, filter, hour, driver, variable);
    if (!filter.IsEmpty() && !hour.IsEmpty() && !driver.IsEmpty() && !variable.IsEmpty()) {
        const unsigned long color = FilterColor(filter, hour);
        if (color != 0 && !isUsed(color)) {
            return color;
        }
    }
    const auto& colors = graph::kPredefinedColors;
    const auto* const free =
        std::find_if(colors.begin(), colors.end(), [&](unsigned long color) { return !isUsed(color); });
    if (free != colors.end()) {
        return *free;
    }
    // Meant: one counter for all zones, graphs and calls.
    static unsigned n = 0;
    return colors[n++ % colors.size()];
}

}  // namespace zr::logger
