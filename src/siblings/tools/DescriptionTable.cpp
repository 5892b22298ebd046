#include "siblings/tools/DescriptionTable.h"

#include "platform/FileReplace.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <atomic>
#include <utility>
#include <vector>

namespace zr {
namespace {

constinit std::atomic<const DescriptionTable*> g_table = nullptr;

constexpr std::u16string_view kNumber = u"%d";

bool IsDigit(wchar character)
{
    return character >= u'0' && character <= u'9';
}

// A text with each run of digits taken out.
struct Pattern {
    ZRBasicString text;
    std::vector<ZRBasicString> numbers;
};

Pattern PatternOf(std::u16string_view text)
{
    Pattern pattern;
    while (!text.empty()) {
        const std::size_t other =
            static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsDigit) - text.begin());
        if (other > 0) {
            pattern.numbers.emplace_back(text.substr(0, other));
            pattern.text += kNumber;
            text.remove_prefix(other);
            continue;
        }
        pattern.text += text.front();
        text.remove_prefix(1);
    }
    return pattern;
}

std::size_t CountNumbers(std::u16string_view text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(kNumber); at != text.npos; at = text.find(kNumber, at + kNumber.size())) {
        ++count;
    }
    return count;
}

ZRBasicString Fill(std::u16string_view text, const std::vector<ZRBasicString>& numbers)
{
    ZRBasicString out;
    for (const ZRBasicString& number : numbers) {
        const std::size_t at = text.find(kNumber);
        out += text.substr(0, at);
        out += number;
        text.remove_prefix(at + kNumber.size());
    }
    return out += text;
}

// Empty, or what is wrong with the line.
std::string ParseLine(std::string_view line, std::map<ZRBasicString, ZRBasicString>& texts)
{
    if (!IsValidUtf8(line)) {
        return "not UTF-8";
    }
    const std::size_t tab = line.find('\t');
    if (tab == std::string_view::npos || tab == 0 || tab + 1 == line.size()) {
        return "expected an English text, a tab and its translation";
    }
    const auto isControl = [](char character) { return static_cast<unsigned char>(character) < 0x20; };
    if (std::count_if(line.begin(), line.end(), isControl) > 1) {
        return "a control character stands in the text";
    }
    const ZRBasicString english = Utf8ToUtf16(line.substr(0, tab));
    const ZRBasicString translation = Utf8ToUtf16(line.substr(tab + 1));
    if (CountNumbers(english) != CountNumbers(translation)) {
        return "the translation must have as many %d as the English text";
    }
    if (!texts.try_emplace(english, translation).second) {
        return "the English text stands in the file already";
    }
    return {};
}

}  // namespace

bool DescriptionTable::Load(const std::filesystem::path& path)
{
    std::string bytes;
    std::string reason;
    if (!ReadWholeFile(path, kMaxBytes, bytes, reason)) {
        m_error = {TextOfPath(path), 0, reason};
        return false;
    }
    return LoadText(bytes, TextOfPath(path));
}

bool DescriptionTable::LoadText(std::string_view bytes, const std::string& name)
{
    if (bytes.size() > kMaxBytes) {
        m_error = {name, 0, "larger than 1 MiB"};
        return false;
    }
    std::map<ZRBasicString, ZRBasicString> texts;
    for (std::size_t number = 1; !bytes.empty(); ++number) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        std::string_view line = bytes.substr(0, end);
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (line.empty() || line.starts_with('#')) {
            continue;
        }
        const std::string reason = ParseLine(line, texts);
        if (!reason.empty()) {
            m_error = {name, number, reason};
            return false;
        }
    }
    m_texts = std::move(texts);
    return true;
}

ZRBasicString DescriptionTable::Translate(const ZRBasicString& english) const
{
    const Pattern pattern = PatternOf(english);
    const auto found = m_texts.find(pattern.text);
    // A description that holds a bare %d has more of them than numbers.
    if (found == m_texts.end() || CountNumbers(pattern.text) != pattern.numbers.size()) {
        return english;
    }
    return Fill(found->second, pattern.numbers);
}

void SetDescriptions(const DescriptionTable* table)
{
    g_table = table;
}

ZRBasicString TranslateDescription(const ZRBasicString& english)
{
    const DescriptionTable* const table = g_table;
    return table != nullptr ? table->Translate(english) : english;
}

}  // namespace zr
