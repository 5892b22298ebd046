#include "siblings/driversupport/FilterFile.h"

#include "platform/FileReplace.h"
#include "siblings/driversupport/hours/CalendarReader.h"
#include "siblings/tools/Numbers.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/XmlDocument.h"

#include <algorithm>
#include <utility>

namespace zr {
namespace {

constexpr std::size_t kColorDigits = 6;
constexpr ZRBasicString::View kExtension = u".MVDF";

std::string At(const std::string& file, const XmlNode& node, const std::string& reason)
{
    return file + ":" + std::to_string(node.Line()) + ": " + reason;
}

bool IsHexadecimal(wchar character)
{
    return (character >= u'0' && character <= u'9') || (character >= u'a' && character <= u'f') ||
           (character >= u'A' && character <= u'F');
}

bool IsColor(const ZRBasicString& text)
{
    const auto digits = text.Text();
    return !digits.empty() && digits.size() <= kColorDigits && std::all_of(digits.begin(), digits.end(), IsHexadecimal);
}

// Why the name can't be that of a further hour type; empty if it can.
std::string NameFault(const XmlNode& node, const std::vector<FilterFile::HourType>& before)
{
    if (!node.HasValue(u"name"))
        return "name: missing";
    const ZRBasicString name = node.Value(u"name", u"");
    if (!IsValidId(name, true)) {
        return "name: an hour type is named by 1 to 64 letters, digits, blanks, \"-\" and \"_\"";
    }
    const bool doubled =
        std::any_of(before.begin(), before.end(), [&](const FilterFile::HourType& type) { return type.name == name; });
    if (doubled)
        return "name: \"" + Utf16ToUtf8(name) + "\" is used before";
    if (before.size() == FilterFile::kMaxHourTypes) {
        return "more than " + std::to_string(FilterFile::kMaxHourTypes) + " hour types";
    }
    return {};
}

bool ReadHourType(const std::string& file, const XmlNode& node, std::vector<FilterFile::HourType>& types,
                  std::string& error)
{
    const std::string fault = NameFault(node, types);
    if (!fault.empty()) {
        error = At(file, node, fault);
        return false;
    }
    FilterFile::HourType type{node.Value(u"name", u""), std::nullopt};
    if (node.HasValue(u"color")) {
        const ZRBasicString color = node.Value(u"color", u"");
        if (!IsColor(color)) {
            error = At(file, node, "color: not 1 to 6 hexadecimal digits");
            return false;
        }
        type.color = HtoL(color.CStr(), color.Length());
    }
    types.push_back(std::move(type));
    return true;
}

bool ReadFilter(const XmlDocument& document, const std::string& file, std::vector<FilterFile::HourType>& types,
                std::string& error)
{
    const XmlNode* list = std::as_const(*document.root).Node(u"hourTypes");
    if (list == nullptr) {
        error = At(file, *document.root, "hourTypes: missing");
        return false;
    }
    for (const XmlNode* child : list->children) {
        if (!ReadHourType(file, *child, types, error))
            return false;
    }
    if (types.empty())
        error = At(file, *list, "hourTypes: no hour type");
    return !types.empty();
}

bool CheckCompanion(const XmlDocument& document, const std::string& file,
                    const std::vector<FilterFile::HourType>& types, std::string& error)
{
    std::vector<ZRBasicString> names;
    for (const XmlNode* child : document.root->children) {
        if (child->tag != u"hour")
            continue;
        ZRBasicString name = child->Value(u"name", u"");
        if (name.IsEmpty())
            continue;  // as its readers do
        const bool known = std::any_of(types.begin(), types.end(),
                                       [&](const FilterFile::HourType& type) { return type.name == name; });
        if (!known || std::find(names.begin(), names.end(), name) != names.end()) {
            error = At(file, *child, known ? "name: used before" : "name: no hour type of the filter");
            return false;
        }
        names.push_back(std::move(name));
    }
    if (names.size() == types.size())
        return true;
    error = At(file, *document.root, "hour: an hour type of the filter is missing");
    return false;
}

// None when the filter has none.
bool ReadCalendarOf(const XmlDocument& document, const std::string& file,
                    const std::vector<FilterFile::HourType>& types, std::optional<HourCalendar>& calendar,
                    std::string& error)
{
    std::vector<ZRBasicString> names;
    for (const FilterFile::HourType& type : types)
        names.push_back(type.name);
    for (const XmlNode* child : document.root->children) {
        if (child->tag != u"calendar")
            continue;
        if (calendar) {
            error = At(file, *child, "calendar: there is one before");
            return false;
        }
        if (!ReadCalendar(*child, file, names, calendar.emplace(), error))
            return false;
    }
    return true;
}

}  // namespace

bool FilterFile::Load(const std::filesystem::path& file, std::string& error)
{
    XmlDocument filter;
    XmlDocument companion;
    std::filesystem::path companionFile = file;
    companionFile += "I";
    if (!filter.Load(file)) {
        error = filter.Error().Message();
        return false;
    }
    if (!companion.Load(companionFile)) {
        error = companion.Error().Message();
        return false;
    }
    return Take(filter, companion, TextOfPath(file), error);
}

bool FilterFile::LoadText(std::string_view filterBytes, std::string_view companionBytes, const std::string& name,
                          std::string& error)
{
    XmlDocument filter;
    XmlDocument companion;
    if (!filter.LoadText(filterBytes, name)) {
        error = filter.Error().Message();
        return false;
    }
    if (!companion.LoadText(companionBytes, name + "I")) {
        error = companion.Error().Message();
        return false;
    }
    return Take(filter, companion, name, error);
}

bool FilterFile::Take(const XmlDocument& filter, const XmlDocument& companion, const std::string& name,
                      std::string& error)
{
    std::vector<HourType> types;
    std::optional<HourCalendar> calendar;
    if (!ReadFilter(filter, name, types, error) || !ReadCalendarOf(filter, name, types, calendar, error) ||
        !CheckCompanion(companion, name + "I", types, error))
        return false;
    m_hourTypes = std::move(types);
    m_calendar = std::move(calendar);
    return true;
}

bool IsFilterName(ZRBasicString::View name)
{
    return name.size() > kExtension.size() && name.substr(name.size() - kExtension.size()) == kExtension &&
           name.find_first_of(u"/\\:") == ZRBasicString::View::npos;
}

std::string NoCalendarText(const std::filesystem::path& file)
{
    return TextOfPath(file) + ": has no calendar, so that nothing tells when its hour types hold";
}

}  // namespace zr
