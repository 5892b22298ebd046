// The texts behind string handles.
#pragma once

#include "platform/ddeml/posix/SlotTable.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zr::ddeml {

inline constexpr std::size_t kMaxStringLength = 255;

// Upper case, unit by unit: ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic; other units unchanged.
std::u16string FoldCase(std::u16string_view text);

// Texts of 1 to 255 units that differ in case alone share one handle; the first spelling stays. Each handle counts
// its holders: every instance for itself, and the conversations and links as holder 0. Not thread-safe.
class StringTable {
public:
    // The handle with one count more for the holder; 0 when the text is empty or too long.
    std::uint32_t Hold(std::u16string_view text, std::uint32_t holder);
    // One count more; false when the handle is unknown.
    bool Keep(std::uint32_t handle, std::uint32_t holder);
    // One count less; the last one of all holders ends the handle. False when the holder has none.
    bool Release(std::uint32_t handle, std::uint32_t holder);
    // All counts of a holder.
    void ReleaseAll(std::uint32_t holder);
    // The handle of a text without counting; 0 when there is none.
    [[nodiscard]] std::uint32_t Find(std::u16string_view text) const;
    // Empty for an unknown handle; valid until the handle ends.
    [[nodiscard]] std::u16string_view Text(std::uint32_t handle);
    [[nodiscard]] std::size_t Count() const { return m_entries.Count(); }

private:
    struct Holder {
        std::uint32_t who;
        std::uint32_t count;
    };
    struct Entry {
        std::u16string text;
        std::u16string folded;
        std::vector<Holder> holders;
    };

    void EraseIfUnheld(std::uint32_t handle, Entry& entry);

    SlotTable<Entry> m_entries;
    std::unordered_map<std::u16string, std::uint32_t> m_byFolded;
};

}  // namespace zr::ddeml
