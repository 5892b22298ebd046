// The string of every interface: 16-bit characters with value semantics, and its 8-bit twin.
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

// A 16-bit character of UTF-16 text, on every platform.
using wchar = char16_t;

// A text that owns its characters. Every operation takes a null pointer as the empty text.
// Compared exactly, unit by unit; CompareNoCase() is the only one that folds.
// Distinct objects may be used on any thread.
template <typename Char>
class ZRStringOf {
public:
    using View = std::basic_string_view<Char>;

    ZRStringOf() = default;
    ZRStringOf(const Char* text) : m_text(text != nullptr ? View(text) : View()) {}
    ZRStringOf(const Char* text, std::size_t length) : m_text(View(text, text != nullptr ? length : 0)) {}
    ZRStringOf(View text) : m_text(text) {}
    ZRStringOf(std::basic_string<Char> text) : m_text(std::move(text)) {}

    // Zero-terminated; valid until the text changes.
    [[nodiscard]] const Char* CStr() const { return m_text.c_str(); }
    [[nodiscard]] View Text() const { return m_text; }
    operator View() const { return m_text; }

    // In characters of this width, not in code points.
    [[nodiscard]] std::size_t Length() const { return m_text.size(); }
    [[nodiscard]] bool IsEmpty() const { return m_text.empty(); }
    // Zero-based; no range test.
    [[nodiscard]] Char operator[](std::size_t index) const { return m_text[index]; }

    void Clear() { m_text.clear(); }
    void Reserve(std::size_t characters) { m_text.reserve(characters); }

    ZRStringOf& operator+=(View text)
    {
        m_text.append(text);
        return *this;
    }
    ZRStringOf& operator+=(const Char* text) { return *this += (text != nullptr ? View(text) : View()); }
    ZRStringOf& operator+=(const ZRStringOf& text) { return *this += text.Text(); }
    ZRStringOf& operator+=(Char character)
    {
        m_text.push_back(character);
        return *this;
    }

    friend ZRStringOf operator+(ZRStringOf left, const ZRStringOf& right) { return left += right.Text(); }
    friend ZRStringOf operator+(ZRStringOf left, const Char* right) { return left += right; }
    friend ZRStringOf operator+(const Char* left, const ZRStringOf& right) { return ZRStringOf(left) += right; }
    friend ZRStringOf operator+(ZRStringOf left, Char right) { return left += right; }

    friend bool operator==(const ZRStringOf& left, const ZRStringOf& right) { return left.m_text == right.m_text; }
    friend bool operator==(const ZRStringOf& left, const Char* right)
    {
        return left.Text() == (right != nullptr ? View(right) : View());
    }
    friend auto operator<=>(const ZRStringOf& left, const ZRStringOf& right) { return left.m_text <=> right.m_text; }

private:
    std::basic_string<Char> m_text;
};

using ZRBasicString = ZRStringOf<wchar>;
// The 8-bit twin; holds UTF-8.
using ZRBasicString8 = ZRStringOf<char>;

// Upper case of one UTF-16 unit for comparison: ASCII, Latin-1, Greek and Cyrillic; others unchanged.
wchar ToUpperCase(wchar character);
// Every unit through ToUpperCase().
ZRBasicString ToUpperCase(const ZRBasicString& text);
// Negative, 0 or positive, both sides folded to upper case.
int CompareNoCase(const ZRBasicString& left, const ZRBasicString& right);

template <typename Char>
struct std::hash<ZRStringOf<Char>> {
    std::size_t operator()(const ZRStringOf<Char>& text) const noexcept
    {
        return std::hash<std::basic_string_view<Char>>()(text.Text());
    }
};
