#include "platform/ddeml/posix/StringTable.h"

#include <algorithm>

namespace zr::ddeml {

namespace {

constexpr bool Between(char16_t unit, char16_t first, char16_t last)
{
    return unit >= first && unit <= last;
}

// Latin Extended-A pairs an upper with the lower that follows; where the pairs begin on odd numbers differs.
char16_t FoldLatinExtended(char16_t unit)
{
    if (unit == 0x131 || unit == 0x138 || unit == 0x149 || unit == 0x17F) {
        return unit;
    }
    const bool upperIsOdd = Between(unit, 0x139, 0x148) || Between(unit, 0x179, 0x17E);
    const bool isLower = ((unit & 1U) != 0) != upperIsOdd;
    return isLower ? static_cast<char16_t>(unit - 1) : unit;
}

char16_t FoldGreek(char16_t unit)
{
    switch (unit) {
        case 0x3AC:
            return 0x386;
        case 0x3AD:
        case 0x3AE:
        case 0x3AF:
            return static_cast<char16_t>(unit - 0x25);
        case 0x3CC:
            return 0x38C;
        case 0x3CD:
        case 0x3CE:
            return static_cast<char16_t>(unit - 0x3F);
        case 0x3C2:
            return 0x3A3;
        default:
            return Between(unit, 0x3B1, 0x3CB) ? static_cast<char16_t>(unit - 0x20) : unit;
    }
}

char16_t Fold(char16_t unit)
{
    if (unit < 0x80) {
        return Between(unit, u'a', u'z') ? static_cast<char16_t>(unit - 0x20) : unit;
    }
    if (Between(unit, 0xE0, 0xFE)) {
        return unit == 0xF7 ? unit : static_cast<char16_t>(unit - 0x20);
    }
    if (unit == 0xFF) {
        return 0x178;
    }
    if (Between(unit, 0x100, 0x17F)) {
        return unit == 0x178 ? unit : FoldLatinExtended(unit);
    }
    if (Between(unit, 0x3AC, 0x3CE)) {
        return FoldGreek(unit);
    }
    if (Between(unit, 0x430, 0x44F)) {
        return static_cast<char16_t>(unit - 0x20);
    }
    return Between(unit, 0x450, 0x45F) ? static_cast<char16_t>(unit - 0x50) : unit;
}

}  // namespace

std::u16string FoldCase(std::u16string_view text)
{
    std::u16string folded(text);
    std::transform(folded.begin(), folded.end(), folded.begin(), Fold);
    return folded;
}

std::uint32_t StringTable::Hold(std::u16string_view text, std::uint32_t holder)
{
    if (text.empty() || text.size() > kMaxStringLength) {
        return 0;
    }
    std::u16string folded = FoldCase(text);
    if (const auto found = m_byFolded.find(folded); found != m_byFolded.end()) {
        Keep(found->second, holder);
        return found->second;
    }
    const std::uint32_t handle = m_entries.Add([&](Entry& entry) {
        entry.text = text;
        entry.folded = folded;
        entry.holders.assign(1, Holder{holder, 1});
    });
    if (handle != 0) {
        m_byFolded.emplace(std::move(folded), handle);
    }
    return handle;
}

bool StringTable::Keep(std::uint32_t handle, std::uint32_t holder)
{
    Entry* entry = m_entries.Find(handle);
    if (entry == nullptr) {
        return false;
    }
    for (Holder& known : entry->holders) {
        if (known.who == holder) {
            ++known.count;
            return true;
        }
    }
    entry->holders.push_back({holder, 1});
    return true;
}

bool StringTable::Release(std::uint32_t handle, std::uint32_t holder)
{
    Entry* entry = m_entries.Find(handle);
    if (entry == nullptr) {
        return false;
    }
    const auto known = std::find_if(entry->holders.begin(), entry->holders.end(),
                                    [holder](const Holder& h) { return h.who == holder; });
    if (known == entry->holders.end()) {
        return false;
    }
    if (--known->count == 0) {
        entry->holders.erase(known);
        EraseIfUnheld(handle, *entry);
    }
    return true;
}

void StringTable::ReleaseAll(std::uint32_t holder)
{
    m_entries.ForEach([&](std::uint32_t handle, Entry& entry) {
        std::erase_if(entry.holders, [holder](const Holder& h) { return h.who == holder; });
        EraseIfUnheld(handle, entry);
    });
}

std::uint32_t StringTable::Find(std::u16string_view text) const
{
    const auto found = m_byFolded.find(FoldCase(text));
    return found != m_byFolded.end() ? found->second : 0;
}

std::u16string_view StringTable::Text(std::uint32_t handle)
{
    const Entry* entry = m_entries.Find(handle);
    return entry != nullptr ? std::u16string_view(entry->text) : std::u16string_view();
}

void StringTable::EraseIfUnheld(std::uint32_t handle, Entry& entry)
{
    if (!entry.holders.empty()) {
        return;
    }
    m_byFolded.erase(entry.folded);
    entry.text.clear();
    entry.folded.clear();
    m_entries.Remove(handle);
}

}  // namespace zr::ddeml
