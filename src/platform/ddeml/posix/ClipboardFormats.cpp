// Names of clipboard formats, for all threads of the process.
#include "platform/ddeml/posix/Hub.h"

#include <algorithm>
#include <mutex>

namespace zr::ddeml {

namespace {

// 0xC000 to 0xFFFF.
constexpr std::size_t kMaxFormats = 0x4000;

struct Registry {
    std::mutex guard;
    std::vector<std::u16string> names;                      // guarded
    std::unordered_map<std::u16string, UINT> byFoldedName;  // guarded
};

// Never destroyed: threads may outlive the static objects.
Registry& TheRegistry()
{
    static auto* registry = new Registry;
    return *registry;
}

}  // namespace

std::u16string FormatNameForWire(UINT format)
{
    if (format < kFirstRegisteredFormat) {
        return {};
    }
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.guard);
    const std::size_t index = format - kFirstRegisteredFormat;
    return index < registry.names.size() ? registry.names[index] : std::u16string();
}

UINT FormatFromWire(std::uint16_t format, const std::u16string& name)
{
    return name.empty() ? format : RegisterClipboardFormatW(name.c_str());
}

}  // namespace zr::ddeml

UINT RegisterClipboardFormatW(const char16_t* name)
{
    using namespace zr::ddeml;
    const std::u16string_view text = name != nullptr ? std::u16string_view(name) : std::u16string_view();
    if (text.empty() || text.size() > kMaxStringLength) {
        return 0;
    }
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.guard);
    const std::u16string folded = FoldCase(text);
    if (const auto known = registry.byFoldedName.find(folded); known != registry.byFoldedName.end()) {
        return known->second;
    }
    if (registry.names.size() >= kMaxFormats) {
        return 0;
    }
    const UINT format = kFirstRegisteredFormat + static_cast<UINT>(registry.names.size());
    registry.names.emplace_back(text);
    registry.byFoldedName.emplace(folded, format);
    return format;
}

int GetClipboardFormatNameW(UINT format, char16_t* buffer, int limit)
{
    const std::u16string name = zr::ddeml::FormatNameForWire(format);
    if (name.empty() || buffer == nullptr || limit <= 0) {
        return 0;
    }
    const std::size_t count = std::min(name.size(), static_cast<std::size_t>(limit) - 1);
    name.copy(buffer, count);
    buffer[count] = 0;
    return static_cast<int>(count);
}
