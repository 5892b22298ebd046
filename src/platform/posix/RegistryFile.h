// The text of one registry root: keys, their values, and every line that is neither.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

struct RegistryValue {
    std::uint32_t type = 0;
    std::string bytes;

    friend bool operator==(const RegistryValue&, const RegistryValue&) = default;
};

// Lines are kept in their order and as they stand, save for the ones that are set. Not thread-safe.
class RegistryFile {
public:
    struct Fault {
        std::size_t line;  // one-based
        std::string reason;
    };

    void Parse(std::string_view text);
    [[nodiscard]] std::string Text() const;
    [[nodiscard]] const std::vector<Fault>& Faults() const { return m_faults; }

    // A key is its path with "\" between its steps. A key exists when it or one below it has a section.
    [[nodiscard]] bool HasKey(std::u16string_view key) const;
    void AddKey(std::u16string_view key);
    [[nodiscard]] std::optional<RegistryValue> Value(std::u16string_view key, std::u16string_view name) const;
    // Sets or replaces; makes the key.
    void SetValue(std::u16string_view key, std::u16string_view name, const RegistryValue& value);

private:
    enum class Kind { Other, Section, Value };
    struct Line {
        Kind kind = Kind::Other;
        std::string text;     // without line end
        std::u16string key;   // folded; of a section and of a value
        std::u16string name;  // folded; of a value
        RegistryValue value;
    };

    void ParseLine(Line& line, std::u16string& key);
    const Line* Find(std::u16string_view foldedKey, std::u16string_view foldedName) const;

    std::vector<Line> m_lines;
    std::vector<Fault> m_faults;
};

}  // namespace zr
