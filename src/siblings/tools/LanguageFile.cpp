#include "siblings/tools/LanguageFile.h"

#include "platform/FileReplace.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

namespace zr {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Turns lines into texts. The first fault ends it: Line() and Reason() then tell what and where.
class LanguageParser {
public:
    bool Parse(std::string_view bytes);

    std::map<unsigned, ZRBasicString>& Texts() { return m_texts; }
    [[nodiscard]] std::size_t Line() const { return m_line; }
    [[nodiscard]] const std::string& Reason() const { return m_reason; }

private:
    bool ParseLine(std::string_view line);
    std::optional<unsigned> ParseNumber(std::string_view digits);
    std::optional<std::string> Unescape(std::string_view text);
    bool Fail(std::string reason);

    std::map<unsigned, ZRBasicString> m_texts;
    std::map<unsigned, std::size_t> m_lines;  // where each number stands
    std::size_t m_line = 0;
    std::string m_reason;
};

// Of a line, the tab that ends the number aside.
bool IsControl(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F;
}

bool LanguageParser::Fail(std::string reason)
{
    m_reason = std::move(reason);
    return false;
}

bool LanguageParser::Parse(std::string_view bytes)
{
    if (bytes.starts_with(kByteOrderMark)) {
        bytes.remove_prefix(kByteOrderMark.size());
    }
    while (!bytes.empty()) {
        ++m_line;
        const std::size_t end = bytes.find('\n');
        if (end == std::string_view::npos) {
            return Fail("the last line has no line end: is the file cut off?");
        }
        std::string_view line = bytes.substr(0, end);
        bytes.remove_prefix(end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (!ParseLine(line)) {
            return false;
        }
    }
    m_line = 0;
    return !m_texts.empty() || Fail("the file holds no text");
}

bool LanguageParser::ParseLine(std::string_view line)
{
    std::size_t badOffset = 0;
    if (!IsValidUtf8(line, &badOffset)) {
        return Fail("not UTF-8 at byte " + std::to_string(badOffset + 1) + " of the line");
    }
    if (line.empty() || line.starts_with('#')) {
        return true;
    }
    const std::size_t tab = line.find('\t');
    if (tab == std::string_view::npos) {
        return Fail("expected a number, a tab and a text");
    }
    const std::optional<unsigned> id = ParseNumber(line.substr(0, tab));
    if (!id) {
        return false;
    }
    const std::optional<std::string> text = Unescape(line.substr(tab + 1));
    if (!text) {
        return false;
    }
    const auto [known, isNew] = m_lines.try_emplace(*id, m_line);
    if (!isNew) {
        return Fail("number " + std::to_string(*id) + " stands in line " + std::to_string(known->second) + " already");
    }
    m_texts.try_emplace(*id, Utf8ToUtf16(*text));
    return true;
}

std::optional<unsigned> LanguageParser::ParseNumber(std::string_view digits)
{
    unsigned id = 0;
    const char* last = digits.data() + digits.size();
    const auto [end, error] = std::from_chars(digits.data(), last, id);
    const bool hasLeadingZero = digits.size() > 1 && digits.front() == '0';
    if (error != std::errc() || end != last || id > LanguageFile::kMaxId || hasLeadingZero) {
        Fail("the line must start with a number from 0 to " + std::to_string(LanguageFile::kMaxId) + " and a tab");
        return std::nullopt;
    }
    return id;
}

std::optional<std::string> LanguageParser::Unescape(std::string_view text)
{
    if (text.empty() || text.size() > LanguageFile::kMaxTextBytes) {
        Fail(text.empty() ? "the text is empty" : "the text is longer than 4096 bytes");
        return std::nullopt;
    }
    if (std::any_of(text.begin(), text.end(), IsControl)) {
        Fail("the text holds a control character; write \\t for a tab and \\n for a line end");
        return std::nullopt;
    }
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
            continue;
        }
        ++i;
        const char escaped = i < text.size() ? text[i] : '\0';
        if (escaped != 'n' && escaped != 't' && escaped != '\\') {
            Fail("a backslash must be followed by n, t or another backslash");
            return std::nullopt;
        }
        out += escaped == 'n' ? '\n' : (escaped == 't' ? '\t' : '\\');
    }
    return out;
}

}  // namespace

bool LanguageFile::Fail(const std::string& name, std::size_t line, const std::string& reason)
{
    m_error = {name, line, reason};
    return false;
}

bool LanguageFile::Load(const std::filesystem::path& path)
{
    std::string bytes;
    std::string reason;
    if (!ReadWholeFile(path, kMaxBytes, bytes, reason)) {
        return Fail(TextOfPath(path), 0, reason);
    }
    return LoadText(bytes, TextOfPath(path));
}

bool LanguageFile::LoadText(std::string_view bytes, const std::string& name)
{
    if (bytes.size() > kMaxBytes) {
        return Fail(name, 0, "larger than 4 MiB");
    }
    LanguageParser parser;
    if (!parser.Parse(bytes)) {
        return Fail(name, parser.Line(), parser.Reason());
    }
    m_texts = std::move(parser.Texts());
    return true;
}

const ZRBasicString* LanguageFile::Find(unsigned id) const
{
    const auto text = m_texts.find(id);
    return text != m_texts.end() ? &text->second : nullptr;
}

}  // namespace zr
