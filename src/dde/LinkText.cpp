#include "dde/LinkText.h"

#include <algorithm>

namespace zr::dde {
namespace {

std::u16string Quoted(std::u16string_view text, char16_t mark)
{
    std::u16string quoted(1, mark);
    for (const char16_t unit : text) {
        quoted.append(unit == mark ? 2 : 1, unit);
    }
    return quoted + mark;
}

bool IsPlain(char16_t unit)
{
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9') ||
           unit == u'_' || unit == u'.';
}

std::u16string QuotedAtNeed(std::u16string_view text)
{
    return std::all_of(text.begin(), text.end(), IsPlain) ? std::u16string(text) : Quoted(text, u'\'');
}

}  // namespace

std::u16string LinkReference(std::u16string_view service, std::u16string_view topic, std::u16string_view item)
{
    return u"=" + QuotedAtNeed(service) + u"|" + Quoted(topic, u'\'') + u"!" + QuotedAtNeed(item);
}

std::u16string LinkFunction(std::u16string_view service, std::u16string_view topic, std::u16string_view item)
{
    return u"=DDE(" + Quoted(service, u'"') + u";" + Quoted(topic, u'"') + u";" + Quoted(item, u'"') + u")";
}

}  // namespace zr::dde
