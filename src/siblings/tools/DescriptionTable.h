// Descriptions of the device profiles in the user's language.
#pragma once

#include "siblings/tools/FileError.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace zr {

// English to another language, from a file whose format is told in docs/formats/language-file.md. Load once, then read
// on any thread.
class DescriptionTable {
public:
    static constexpr std::size_t kMaxBytes = 1024 * 1024;

    // False if the file can't be read or is refused: the table is then as before and Error() tells why. Blocks on the
    // disk.
    bool Load(const std::filesystem::path& path);
    // As Load(), from bytes in memory; name stands for the file in errors.
    bool LoadText(std::string_view bytes, const std::string& name);
    // Back to English.
    void Clear() { m_texts.clear(); }

    // The translation with the numbers of the text put in; the text itself when the table doesn't hold it.
    [[nodiscard]] ZRBasicString Translate(const ZRBasicString& english) const;
    // Of the last Load() that returned false.
    [[nodiscard]] const FileError& Error() const { return m_error; }

private:
    std::map<ZRBasicString, ZRBasicString> m_texts;
    FileError m_error;
};

// Sets the table in force; null for none, as at the start. Not owned; must outlive its use. Call it only while no other
// thread of the library runs, or with a table that is loaded and stays.
void SetDescriptions(const DescriptionTable* table);
// By the table in force. Any thread.
ZRBasicString TranslateDescription(const ZRBasicString& english);

}  // namespace zr
