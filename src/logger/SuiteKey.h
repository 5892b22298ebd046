// The registry key in which the viewers of logged data keep what the user chose.
#pragma once

#include "platform/Registry.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstdint>

namespace zr::logger {

// The suite's key of the user, or a key below it, open for as long as this lives. One that can't be opened reads
// nothing and stores nothing. Blocks on the disk.
class SuiteKey {
public:
    // Behind the suite's path, such as u"\\Tables"; empty for the suite's own key.
    explicit SuiteKey(const wchar* subKey = u"");
    SuiteKey(const SuiteKey&) = delete;
    SuiteKey& operator=(const SuiteKey&) = delete;
    ~SuiteKey();

    // Waits for the disk, but for what stands there already.
    void WriteText(const wchar* name, const ZRBasicString& text);
    void WriteNumber(const wchar* name, std::uint32_t number);
    // False, with the argument unchanged, when there is no value of that name and kind.
    bool ReadText(const wchar* name, ZRBasicString& text) const;
    bool ReadNumber(const wchar* name, std::uint32_t& number) const;

private:
    HKEY m_key = nullptr;
    bool m_isOpen = false;
};

}  // namespace zr::logger
