#include "siblings/driversupport/store/CsvMapping.h"

#include "siblings/driversupport/VariableReference.h"
#include "siblings/tools/CsvCells.h"
#include "siblings/tools/Numbers.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <charconv>

namespace zr {

namespace {

struct ClassName {
    std::string_view name;
    std::int32_t infoCode;
};
constexpr ClassName kClasses[] = {{"instantaneous", 1}, {"maximum", 2}, {"minimum", 3}, {"state", 4}, {"counter", 8}};

// Takes what stands before the first of the marks off the text, with the mark, which it returns; 0 for none.
char TakeUpTo(std::string_view& text, std::string_view marks, std::string_view& part)
{
    const std::size_t end = text.find_first_of(marks);
    part = TrimCsvCell(text.substr(0, end));
    if (end == std::string_view::npos) {
        text = {};
        return '\0';
    }
    const char mark = text[end];
    text.remove_prefix(end + 1);
    return mark;
}

bool TakeVariable(std::string_view text, ZRBasicString& variable, std::string& error)
{
    ZRBasicString driver;
    ZRBasicString name;
    variable = IsValidUtf8(text) ? Utf8ToUtf16(text) : ZRBasicString();
    SplitDriverVariable(variable, driver, name);
    if (IsValidId(driver, true) && IsValidId(name, true)) {
        return true;
    }
    error = "\"" + std::string(text) + "\" is no variable, as METER-1.U1 is one";
    return false;
}

bool TakeFactors(std::string_view text, CsvMapping& mapping, std::string& error)
{
    std::string_view part;
    char mark = TakeUpTo(text, "*/", part);
    if (!TakeVariable(part, mapping.variable, error)) {
        return false;
    }
    while (mark != '\0') {
        double& scale = mark == '*' ? mapping.factor : mapping.divisor;
        double number = 0.0;
        mark = TakeUpTo(text, "*/", part);
        if (!ParseCsvNumber(part, '.', number) || number == 0.0) {
            error = "\"" + std::string(part) + "\" is no factor";
            return false;
        }
        scale *= number;
    }
    return true;
}

bool TakeWord(std::string_view word, CsvMapping& mapping, std::string& error)
{
    const auto* const found = std::find_if(std::begin(kClasses), std::end(kClasses),
                                           [&](const ClassName& each) { return each.name == word; });
    if (found != std::end(kClasses)) {
        mapping.infoCode = found->infoCode;
        return true;
    }
    mapping.isSum = true;
    mapping.hasStart = word.starts_with("sum=");
    if (word == "sum" || (mapping.hasStart && ParseCsvNumber(word.substr(4), '.', mapping.start))) {
        return true;
    }
    error = "\"" + std::string(word) +
            "\" is neither a class (instantaneous, maximum, minimum, state, counter) nor \"sum\"";
    return false;
}

std::string_view WithoutUnit(std::string_view name)
{
    const std::size_t bracket = name.ends_with(']') ? name.rfind(" [") : std::string_view::npos;
    return name.substr(0, bracket);
}

}  // namespace

bool CsvMapping::Parse(std::string_view text, CsvMapping& mapping, std::string& error)
{
    CsvMapping read;
    std::string_view rest = text;
    // A variable's name has no equals sign; that of a column may.
    const std::size_t words = text.find(':', text.rfind('=', text.find(":sum=")) + 1);
    const std::string_view head = text.substr(0, words);
    const std::size_t equals = head.rfind('=');
    read.column = TrimCsvCell(head.substr(0, equals));
    std::string reason;
    bool isGood = !read.column.empty();
    if (!isGood) {
        reason = "no column is named";
    } else if (equals == std::string_view::npos) {
        isGood = TakeVariable(read.column, read.variable, reason);
    } else {
        isGood = TakeFactors(head.substr(equals + 1), read, reason);
    }
    rest = words == std::string_view::npos ? std::string_view() : text.substr(words + 1);
    while (isGood && !rest.empty()) {
        std::string_view word;
        TakeUpTo(rest, ":", word);
        isGood = TakeWord(word, read, reason);
    }
    if (!isGood) {
        error = "'" + std::string(text) + "': " + reason + "; a map is COLUMN=VARIABLE, as in active_kW=METER-1.P*1000";
        return false;
    }
    mapping = read;
    return true;
}

bool FindCsvColumn(std::span<const std::string> names, std::string_view column, std::size_t& cell)
{
    for (const bool isUnitLeft : {true, false}) {
        const auto found = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
            return (isUnitLeft ? std::string_view(name) : WithoutUnit(name)) == column;
        });
        if (found != names.end()) {
            cell = static_cast<std::size_t>(found - names.begin());
            return true;
        }
    }
    std::size_t number = 0;
    if (!column.starts_with('#')) {
        return false;
    }
    const auto [end, error] = std::from_chars(column.data() + 1, column.data() + column.size(), number);
    if (error != std::errc() || end != column.data() + column.size() || number < 1 || number > names.size()) {
        return false;
    }
    cell = number - 1;
    return true;
}

}  // namespace zr
