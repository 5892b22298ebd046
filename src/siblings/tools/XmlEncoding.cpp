#include "siblings/tools/XmlEncoding.h"

#include "platform/Unicode.h"

#include <algorithm>
#include <string_view>

namespace xml {
namespace {

std::u16string UnitsOf(std::string_view bytes, bool bigEndian)
{
    std::u16string units(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i) {
        const unsigned first = static_cast<unsigned char>(bytes[2 * i]);
        const unsigned second = static_cast<unsigned char>(bytes[2 * i + 1]);
        units[i] = static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    return units;
}

bool ConvertUnits(const std::u16string& units, std::string& out, std::size_t& line, std::string& reason)
{
    out.clear();
    out.reserve(units.size() + units.size() / 8);
    const char16_t* const end = units.data() + units.size();
    for (const char16_t* at = units.data(); at != end;) {
        const zr::UnicodeStep step = zr::NextUtf16(at, end);
        if (!step.wellFormed) {
            line = 1 + static_cast<std::size_t>(std::count(out.begin(), out.end(), '\n'));
            reason = "not UTF-16: half of a surrogate pair";
            return false;
        }
        zr::AppendUtf8(step.scalar, out);
        at += step.length;
    }
    return true;
}

}  // namespace

bool ConvertToUtf8(std::string& bytes, Encoding& found, std::size_t& line, std::string& reason)
{
    const std::string_view view = bytes;
    const bool bigEndian = view.starts_with("\xFE\xFF");
    found = bigEndian || view.starts_with("\xFF\xFE") ? Encoding::Utf16 : Encoding::Utf8;
    if (found == Encoding::Utf8) {
        if (view.starts_with("\xEF\xBB\xBF")) {
            bytes.erase(0, 3);
        }
        return true;
    }
    if (view.size() % 2 != 0) {
        line = 1;
        reason = "not UTF-16: an odd number of bytes";
        return false;
    }
    return ConvertUnits(UnitsOf(view.substr(2), bigEndian), bytes, line, reason);
}

}  // namespace xml
