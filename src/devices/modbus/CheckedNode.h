// Reads the values of an XML node, each against its rule.
#pragma once

#include "siblings/tools/XmlDocument.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace zr::modbus {

// One node under examination. Every reader gives its fallback, or a harmless value, when the value is missing or
// breaks its rule; the first fault is kept as a text that names the value, and Error() is no longer empty. A value
// without a fallback must be there.
class CheckedNode {
public:
    // Not owned; must outlive this.
    explicit CheckedNode(const XmlNode& node) : m_node(node) {}

    // "NAME: REASON" of the first fault; empty while there is none.
    [[nodiscard]] const std::string& Error() const { return m_error; }
    void Fail(std::string_view name, const std::string& reason);
    [[nodiscard]] bool Has(std::string_view name) const;

    // 0 to maximum characters.
    ZRBasicString Text(std::string_view name, std::size_t maximum, std::optional<ZRBasicString> fallback = {});
    // A text by the rule of IsValidId, blanks allowed.
    ZRBasicString Id(std::string_view name);
    // A whole number, both limits included.
    int Integer(std::string_view name, int minimum, int maximum, std::optional<int> fallback = {});
    // A decimal number with a point.
    double Number(std::string_view name, double minimum, double maximum, std::optional<double> fallback = {});
    // "yes" or "no".
    bool Flag(std::string_view name, bool fallback);

    template <typename Value>
    struct Choice {
        std::string_view text;
        Value value;
    };
    // One of a few words.
    template <typename Value>
    Value OneOf(std::string_view name, std::initializer_list<Choice<Value>> choices, std::optional<Value> fallback = {})
    {
        const Value harmless = fallback.value_or(choices.begin()->value);
        const auto text = Take(name, fallback.has_value());
        if (!text)
            return harmless;
        std::string words;
        for (const Choice<Value>& choice : choices) {
            if (*text == choice.text)
                return choice.value;
            words += (words.empty() ? "" : ", ") + std::string(choice.text);
        }
        Fail(name, "\"" + Shown(*text) + "\" is not one of: " + words);
        return harmless;
    }

    // Finds fault with a value of any other name, which would be a slip of the pen.
    void AllowOnly(std::initializer_list<std::string_view> names);
    // Finds fault with a value that is there though it has no meaning here.
    void Forbid(std::string_view name, const std::string& reason);

    // The text fit for a message: without control characters, and cut when long.
    static std::string Shown(std::string_view text);

private:
    // The value as UTF-8; empty, with a fault unless it is optional, when there is none.
    std::optional<std::string> Take(std::string_view name, bool optional);

    const XmlNode& m_node;
    std::string m_error;
};

}  // namespace zr::modbus
