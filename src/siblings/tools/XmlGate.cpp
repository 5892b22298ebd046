#include "siblings/tools/XmlGate.h"

#include "platform/Unicode.h"
#include "siblings/tools/XmlCharacters.h"
#include "siblings/tools/XmlDocument.h"

#include <algorithm>
#include <cstdio>

namespace xml {
namespace {

// Names come from outside and may be of any length.
std::string Quoted(std::string_view name)
{
    constexpr std::size_t kLongest = 60;
    std::size_t length = std::min(name.size(), kLongest);
    while (length < name.size() && length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) {
        --length;
    }
    return "\"" + std::string(name.substr(0, length)) + (length < name.size() ? "...\"" : "\"");
}

bool EqualsIgnoringCase(std::string_view text, std::string_view lower)
{
    return std::equal(text.begin(), text.end(), lower.begin(), lower.end(), [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    });
}

}  // namespace

XmlGate::XmlGate(std::string_view text, Encoding encoding)
    : m_begin(text.data()),
      m_at(text.data()),
      m_end(text.data() + text.size()),
      m_countedTo(text.data()),
      m_encoding(encoding)
{
    m_open.reserve(XmlDocument::kMaxDepth);
    m_names.reserve(XmlDocument::kMaxAttributes);
}

bool XmlGate::Check()
{
    if (static_cast<std::size_t>(m_end - m_begin) > XmlDocument::kMaxBytes) {
        return Refuse("larger than " + std::to_string(XmlDocument::kMaxBytes) + " bytes");
    }
    if (!Declaration()) {
        return false;
    }
    for (SkipSpace(); m_at != m_end; SkipSpace()) {
        if (!Markup()) {
            return false;
        }
    }
    return End();
}

bool XmlGate::Refuse(std::string reason)
{
    m_line = 1 + static_cast<std::size_t>(std::count(m_begin, m_at, '\n'));
    m_reason = std::move(reason);
    m_elements.clear();
    return false;
}

std::size_t XmlGate::AllowedLength() const
{
    const zr::UnicodeStep step = zr::NextUtf8(m_at, m_end);
    return step.wellFormed && IsCharacter(step.scalar) && !IsC1Control(step.scalar) ? step.length : 0;
}

bool XmlGate::RefuseCharacter()
{
    const zr::UnicodeStep step = zr::NextUtf8(m_at, m_end);
    char text[64];
    if (!step.wellFormed) {
        std::snprintf(text, sizeof text, "not UTF-8: byte 0x%02X",
                      static_cast<unsigned>(static_cast<unsigned char>(*m_at)));
        return Refuse(text);
    }
    std::snprintf(text, sizeof text, "the character U+%04X is not allowed", static_cast<unsigned>(step.scalar));
    return Refuse(text);
}

bool XmlGate::StartsWith(std::string_view text) const
{
    return static_cast<std::size_t>(m_end - m_at) >= text.size() && std::equal(text.begin(), text.end(), m_at);
}

bool XmlGate::Skip(std::string_view text)
{
    if (!StartsWith(text)) {
        return false;
    }
    m_at += text.size();
    return true;
}

bool XmlGate::SkipSpace()
{
    const char* const from = m_at;
    while (m_at != m_end && Is(*m_at, kSpace)) {
        ++m_at;
    }
    return m_at != from;
}

bool XmlGate::Declaration()
{
    constexpr std::string_view kOpening = "<?xml";
    if (!StartsWith(kOpening) || m_at + kOpening.size() == m_end || !Is(m_at[kOpening.size()], kSpace)) {
        return true;
    }
    m_at += kOpening.size();
    std::string_view version;
    std::string_view encoding;
    std::string_view standalone;
    if (!DeclarationPart("version", version) || !DeclarationPart("encoding", encoding) ||
        !DeclarationPart("standalone", standalone)) {
        return false;
    }
    SkipSpace();
    if (!Skip("?>")) {
        return Refuse("the XML declaration is malformed");
    }
    if (version != "1.0") {
        return Refuse("the XML version is not 1.0");
    }
    const std::string_view expected = m_encoding == Encoding::Utf16 ? "utf-16" : "utf-8";
    if (!encoding.empty() && !EqualsIgnoringCase(encoding, expected)) {
        return Refuse("the declared encoding " + Quoted(encoding) + " is not the one of the text");
    }
    if (!standalone.empty() && standalone != "yes" && standalone != "no") {
        return Refuse("standalone in the XML declaration is neither \"yes\" nor \"no\"");
    }
    return true;
}

// Leaves the value empty when the part is missing.
bool XmlGate::DeclarationPart(std::string_view name, std::string_view& value)
{
    const char* const before = m_at;
    if (!SkipSpace() || !Skip(name)) {
        m_at = before;
        return true;
    }
    SkipSpace();
    if (!Skip("=")) {
        return Refuse("the XML declaration is malformed");
    }
    SkipSpace();
    const char quote = m_at != m_end ? *m_at : '\0';
    if (quote != '"' && quote != '\'') {
        return Refuse("the XML declaration is malformed");
    }
    const char* const from = ++m_at;
    while (m_at != m_end && Is(*m_at, kNameInner) && *m_at != ':') {
        ++m_at;
    }
    value = std::string_view(from, static_cast<std::size_t>(m_at - from));
    if (value.empty() || m_at == m_end || *m_at != quote) {
        return Refuse("the XML declaration is malformed");
    }
    ++m_at;
    return true;
}

bool XmlGate::Markup()
{
    if (*m_at != '<') {
        if (AllowedLength() == 0) {
            return RefuseCharacter();
        }
        return Refuse(m_open.empty() ? "text outside the root element" : "text between tags; values are attributes");
    }
    switch (m_at + 1 != m_end ? m_at[1] : '\0') {
        case '/':
            return EndTag();
        case '!':
            return ExclamationMark();
        case '?':
            return Instruction();
        default:
            return StartTag();
    }
}

bool XmlGate::ExclamationMark()
{
    if (StartsWith("<!--")) {
        return Comment();
    }
    if (StartsWith("<![CDATA[")) {
        return Refuse("a CDATA section; values are attributes");
    }
    if (StartsWith("<!DOCTYPE")) {
        return Refuse("a document type is not allowed");
    }
    return Refuse("\"<!\" begins neither a comment nor anything else that is allowed");
}

bool XmlGate::Comment()
{
    const char* const start = m_at;
    m_at += 4;
    while (m_at != m_end) {
        if (StartsWith("--")) {
            return Skip("-->") || Refuse("\"--\" within a comment");
        }
        if (!Character()) {
            return false;
        }
    }
    m_at = start;
    return Refuse("a comment is never closed");
}

bool XmlGate::Instruction()
{
    const char* const start = m_at;
    m_at += 2;
    std::string_view target;
    if (!Name("a processing instruction", target)) {
        return false;
    }
    if (EqualsIgnoringCase(target, "xml")) {
        m_at = start;
        return Refuse("an XML declaration stands only at the very beginning");
    }
    if (!StartsWith("?>") && !SkipSpace()) {
        return Refuse("a malformed processing instruction");
    }
    while (m_at != m_end) {
        if (Skip("?>")) {
            return true;
        }
        if (!Character()) {
            return false;
        }
    }
    m_at = start;
    return Refuse("a processing instruction is never closed");
}

bool XmlGate::Character()
{
    if (Is(*m_at, kPlainInValue)) {
        ++m_at;
        return true;
    }
    const std::size_t length = AllowedLength();
    m_at += length;
    return length != 0 || RefuseCharacter();
}

bool XmlGate::Name(const char* what, std::string_view& name)
{
    const char* const from = m_at;
    while (m_at != m_end) {
        if (Is(*m_at, kNameStart) || (m_at != from && Is(*m_at, kNameInner))) {
            ++m_at;
            continue;
        }
        const zr::UnicodeStep step = zr::NextUtf8(m_at, m_end);
        if (!step.wellFormed) {
            return RefuseCharacter();
        }
        if (step.scalar < 0x80 || !(m_at == from ? IsNameStart(step.scalar) : IsNameInner(step.scalar))) {
            break;
        }
        m_at += step.length;
    }
    name = std::string_view(from, static_cast<std::size_t>(m_at - from));
    if (name.empty() && m_at != m_end && AllowedLength() == 0) {
        return RefuseCharacter();
    }
    return !name.empty() || Refuse(std::string("a name is missing at the start of ") + what);
}

bool XmlGate::StartTag()
{
    const char* const start = m_at++;
    std::string_view name;
    if (!Name("a tag", name) || !BeginElement(name, start)) {
        return false;
    }
    const std::size_t index = m_elements.size() - 1;
    bool isClosed = false;
    if (!Attributes(isClosed)) {
        return false;
    }
    m_elements[index].attributes = static_cast<std::uint32_t>(m_names.size());
    if (!isClosed) {
        m_open.push_back({name, index});
    }
    return true;
}

bool XmlGate::BeginElement(std::string_view name, const char* where)
{
    if (m_open.empty() && !m_elements.empty()) {
        return Refuse("a second root element " + Quoted(name));
    }
    if (m_open.size() == XmlDocument::kMaxDepth) {
        return Refuse("elements are nested deeper than " + std::to_string(XmlDocument::kMaxDepth));
    }
    if (m_elements.size() == kMaxElements) {
        return Refuse("more than " + std::to_string(kMaxElements) + " elements");
    }
    if (!m_open.empty()) {
        ++m_elements[m_open.back().index].children;
    }
    m_linesBefore += static_cast<std::size_t>(std::count(m_countedTo, where, '\n'));
    m_countedTo = where;
    m_elements.push_back({static_cast<std::uint32_t>(m_linesBefore + 1), 0, 0});
    return true;
}

bool XmlGate::Attributes(bool& isClosed)
{
    m_names.clear();
    for (;;) {
        const bool isApart = SkipSpace();
        if (m_at == m_end) {
            return Refuse("the text ends within a tag");
        }
        if (*m_at == '>' || *m_at == '/') {
            isClosed = *m_at == '/';
            return Skip(">") || Skip("/>") ? NoDoubledAttribute() : Refuse("\"/\" within a tag");
        }
        if (!isApart) {
            return AllowedLength() == 0 ? RefuseCharacter() : Refuse("white space is missing within a tag");
        }
        if (m_names.size() == XmlDocument::kMaxAttributes) {
            return Refuse("more than " + std::to_string(XmlDocument::kMaxAttributes) + " attributes in an element");
        }
        if (!Attribute()) {
            return false;
        }
    }
}

bool XmlGate::Attribute()
{
    std::string_view name;
    if (!Name("an attribute", name)) {
        return false;
    }
    m_names.push_back(name);
    SkipSpace();
    if (!Skip("=")) {
        return Refuse("the attribute " + Quoted(name) + " has no value");
    }
    SkipSpace();
    if (m_at == m_end || (*m_at != '"' && *m_at != '\'')) {
        return Refuse("the value of the attribute " + Quoted(name) + " is not quoted");
    }
    return Value();
}

bool XmlGate::Value()
{
    const char* const start = m_at;
    const char quote = *m_at++;
    for (;;) {
        while (m_at != m_end && Is(*m_at, kPlainInValue)) {
            ++m_at;
        }
        if (m_at == m_end) {
            m_at = start;
            return Refuse("the value of the attribute " + Quoted(m_names.back()) + " is never closed");
        }
        if (*m_at == quote) {
            ++m_at;
            return true;
        }
        if (*m_at == '<') {
            return Refuse("\"<\" within the value of the attribute " + Quoted(m_names.back()));
        }
        if (!(*m_at == '&' ? Reference() : Character())) {
            return false;
        }
    }
}

bool XmlGate::Reference()
{
    for (const std::string_view entity : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"}) {
        if (Skip(entity)) {
            return true;
        }
    }
    // No reference that is allowed is longer, save for zeros in front that nobody writes.
    constexpr std::ptrdiff_t kLongest = 32;
    const char* const limit = m_at + std::min(kLongest, m_end - m_at);
    const char* const end = std::find(m_at, limit, ';');
    if (end == limit) {
        return Refuse("\"&\" begins no entity");
    }
    if (m_at[1] == '#') {
        return CharacterReference(m_at + 2, end);
    }
    const std::string_view name(m_at + 1, static_cast<std::size_t>(end - m_at - 1));
    const bool isPlain = std::all_of(name.begin(), name.end(), [](char c) { return Is(c, kNameInner); });
    return Refuse(isPlain && !name.empty() ? "the entity " + Quoted(name) + " is undefined" : "\"&\" begins no entity");
}

bool XmlGate::CharacterReference(const char* digits, const char* end)
{
    const bool isHex = digits != end && *digits == 'x';
    const char* at = isHex ? digits + 1 : digits;
    bool isNumber = at != end;
    char32_t scalar = 0;
    for (; at != end && isNumber; ++at) {
        const bool isDigit = *at >= '0' && *at <= '9';
        const bool isLetter = isHex && ((*at >= 'a' && *at <= 'f') || (*at >= 'A' && *at <= 'F'));
        isNumber = isDigit || isLetter;
        const int digit = isDigit ? *at - '0' : (*at | 0x20) - 'a' + 10;
        // Held at the first value that is out of range, so that it can't run over.
        scalar = std::min<char32_t>(scalar * (isHex ? 16 : 10) + static_cast<char32_t>(digit), 0x110000);
    }
    if (!isNumber) {
        return Refuse("a character reference is not a number");
    }
    if (!IsCharacter(scalar)) {
        return Refuse("a character reference is out of range");
    }
    m_at = end + 1;
    return true;
}

bool XmlGate::NoDoubledAttribute()
{
    constexpr std::size_t kFew = 12;
    std::string_view doubled;
    if (m_names.size() <= kFew) {
        std::uint64_t seen = 0;
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            // Most names differ from all others by their first byte or their length, so that few are compared.
            const std::string_view name = m_names[i];
            const std::uint64_t mark = 1ULL << ((static_cast<unsigned char>(name.front()) + 29 * name.size()) % 64);
            if ((seen & mark) != 0 &&
                std::count(m_names.begin(), m_names.begin() + static_cast<std::ptrdiff_t>(i), name) != 0) {
                doubled = name;
            }
            seen |= mark;
        }
    } else {
        m_sorted.assign(m_names.begin(), m_names.end());
        std::sort(m_sorted.begin(), m_sorted.end());
        const auto found = std::adjacent_find(m_sorted.begin(), m_sorted.end());
        doubled = found != m_sorted.end() ? *found : doubled;
    }
    return doubled.empty() || Refuse("the attribute " + Quoted(doubled) + " stands twice in an element");
}

bool XmlGate::EndTag()
{
    m_at += 2;
    std::string_view name;
    if (!Name("an end tag", name)) {
        return false;
    }
    SkipSpace();
    if (m_open.empty()) {
        return Refuse("the end tag " + Quoted(name) + " closes nothing");
    }
    if (m_open.back().name != name) {
        return Refuse("the end tag " + Quoted(name) + " stands where " + Quoted(m_open.back().name) + " of line " +
                      std::to_string(m_elements[m_open.back().index].line) + " is to be closed");
    }
    if (!Skip(">")) {
        return Refuse("the end tag " + Quoted(name) + " is malformed");
    }
    m_open.pop_back();
    return true;
}

bool XmlGate::End()
{
    if (!m_open.empty()) {
        return Refuse("the element " + Quoted(m_open.back().name) + " of line " +
                      std::to_string(m_elements[m_open.back().index].line) + " is never closed");
    }
    return !m_elements.empty() || Refuse("there is no root element");
}

}  // namespace xml
