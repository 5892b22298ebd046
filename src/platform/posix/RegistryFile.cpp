#include "platform/posix/RegistryFile.h"

#include "platform/posix/RegistryText.h"
#include "platform/Unicode.h"

#include <algorithm>

namespace zr {
namespace {

bool IsWellFormed(std::string_view text)
{
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at != end;) {
        const UnicodeStep step = NextUtf8(at, end);
        if (!step.wellFormed || step.scalar == 0) {
            return false;
        }
        at += step.length;
    }
    return true;
}

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

void RegistryFile::Parse(std::string_view text)
{
    m_lines.clear();
    m_faults.clear();
    std::u16string key;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        Line line;
        line.text = std::string(text.substr(0, length));
        ParseLine(line, key);
        m_lines.push_back(std::move(line));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
}

// key: of the section that the line stands in; changed by a line that begins one.
void RegistryFile::ParseLine(Line& line, std::u16string& key)
{
    const auto report = [this](std::string reason) { m_faults.push_back({m_lines.size() + 1, std::move(reason)}); };
    if (!IsWellFormed(line.text)) {
        report("not UTF-8");
        return;
    }
    const std::string_view text = Trimmed(line.text);
    if (text.empty() || text.front() == '#') {
        return;
    }
    if (text.front() == '[' && text.back() == ']' && text.size() > 2) {
        key = FoldRegistryName(Utf16From8(text.substr(1, text.size() - 2)));
        line.kind = Kind::Section;
        line.key = key;
        return;
    }
    std::string reason;
    std::u16string name;
    if (!ParseRegistryValue(text, name, line.value, reason)) {
        report(std::move(reason));
        return;
    }
    if (key.empty()) {
        report("a value before the first key");
        return;
    }
    const std::u16string folded = FoldRegistryName(name);
    if (Find(key, folded) != nullptr) {
        report("the value stands twice in its key; the first one counts");
        return;
    }
    line.kind = Kind::Value;
    line.key = key;
    line.name = folded;
}

std::string RegistryFile::Text() const
{
    std::string text;
    for (const Line& line : m_lines) {
        text.append(line.text).append("\n");
    }
    return text;
}

const RegistryFile::Line* RegistryFile::Find(std::u16string_view foldedKey, std::u16string_view foldedName) const
{
    const auto found = std::find_if(m_lines.begin(), m_lines.end(), [&](const Line& line) {
        return line.kind == Kind::Value && line.name == foldedName && line.key == foldedKey;
    });
    return found != m_lines.end() ? &*found : nullptr;
}

bool RegistryFile::HasKey(std::u16string_view key) const
{
    const std::u16string folded = FoldRegistryName(key);
    return std::any_of(m_lines.begin(), m_lines.end(), [&](const Line& line) {
        return line.kind == Kind::Section && line.key.starts_with(folded) &&
               (line.key.size() == folded.size() || line.key[folded.size()] == u'\\');
    });
}

void RegistryFile::AddKey(std::u16string_view key)
{
    if (HasKey(key)) {
        return;
    }
    Line line;
    line.kind = Kind::Section;
    line.key = FoldRegistryName(key);
    line.text = "[" + Utf8From16(key) + "]";
    m_lines.push_back(std::move(line));
}

std::optional<RegistryValue> RegistryFile::Value(std::u16string_view key, std::u16string_view name) const
{
    const Line* const line = Find(FoldRegistryName(key), FoldRegistryName(name));
    return line != nullptr ? std::optional(line->value) : std::nullopt;
}

void RegistryFile::SetValue(std::u16string_view key, std::u16string_view name, const RegistryValue& value)
{
    Line line;
    line.kind = Kind::Value;
    line.key = FoldRegistryName(key);
    line.name = FoldRegistryName(name);
    line.value = value;
    line.text = FormatRegistryValue(name, value);
    const auto same = std::find_if(m_lines.begin(), m_lines.end(), [&line](const Line& other) {
        return other.kind == Kind::Value && other.name == line.name && other.key == line.key;
    });
    if (same != m_lines.end()) {
        *same = std::move(line);
        return;
    }
    // Behind the last line of its key.
    auto last = std::find_if(m_lines.rbegin(), m_lines.rend(),
                             [&line](const Line& other) { return other.kind != Kind::Other && other.key == line.key; });
    if (last == m_lines.rend()) {
        m_lines.push_back({Kind::Section, "[" + Utf8From16(key) + "]", line.key, {}, {}});
        last = m_lines.rbegin();
    }
    m_lines.insert(last.base(), std::move(line));
}

}  // namespace zr
