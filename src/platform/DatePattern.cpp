#include "platform/SystemLocale.h"

#include <algorithm>
#include <vector>

namespace zr {
namespace {

// A part of a pattern and the text that stands before it.
struct PatternPart {
    char kind;  // d, m, y, H or M
    std::string before;
};

char KindOf(char conversion)
{
    switch (conversion) {
        case 'd':
        case 'e':
            return 'd';
        case 'm':
        case 'b':
        case 'B':
        case 'h':
            return 'm';
        case 'y':
        case 'Y':
        case 'G':
            return 'y';
        case 'H':
        case 'I':
        case 'k':
        case 'l':
            return 'H';
        case 'M':
            return 'M';
        default:
            return '\0';
    }
}

// The conversions that stand for several, written out.
std::string Expand(std::string_view pattern)
{
    std::string text(pattern);
    const auto replace = [&text](std::string_view from, std::string_view to) {
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
            text.replace(at, from.size(), to);
        }
    };
    replace("%D", "%m/%d/%y");
    replace("%F", "%Y-%m-%d");
    replace("%T", "%H:%M:%S");
    replace("%R", "%H:%M");
    replace("%r", "%I:%M:%S");
    return text;
}

std::vector<PatternPart> PartsOf(std::string_view pattern)
{
    const std::string text = Expand(pattern);
    std::vector<PatternPart> parts;
    std::string before;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            before += text[i];
            continue;
        }
        // Flags of padding and the modifiers E and O change the digits, not the order.
        i = std::min(text.find_first_not_of("-_0^#EO", i + 1), text.size());
        const char kind = i < text.size() ? KindOf(text[i]) : '\0';
        if (kind != '\0') {
            parts.push_back({kind, before});
        }
        before.clear();
    }
    return parts;
}

// Marks such as "/" or ". ", but no words.
bool IsPlainMark(std::string_view text)
{
    return !text.empty() && text.size() <= 2 && text.find_first_not_of("-/.,: ") == std::string_view::npos;
}

}  // namespace

DatePattern ReadDatePattern(std::string_view pattern)
{
    DatePattern result;
    bool isFirst = true;
    for (const PatternPart& part : PartsOf(pattern)) {
        if (part.kind != 'd' && part.kind != 'm' && part.kind != 'y') {
            continue;
        }
        if (!isFirst) {
            result.separator = IsPlainMark(part.before) ? part.before : "";
            break;
        }
        result.order = part.kind == 'y' ? 2 : (part.kind == 'd' ? 1 : 0);
        isFirst = false;
    }
    return result;
}

std::string ReadTimeSeparator(std::string_view pattern)
{
    for (const PatternPart& part : PartsOf(pattern)) {
        if (part.kind == 'M' && IsPlainMark(part.before)) {
            return part.before;
        }
    }
    return {};
}

}  // namespace zr
