// The texts shown to the user, by number.
#pragma once

#include "siblings/tools/FileError.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace zr {

// The texts of one language file. The format is told in docs/formats/language-file.md: UTF-8, one line a text, which
// is number, tab, text. Load once, then read on any thread.
class LanguageFile {
public:
    static constexpr std::size_t kMaxBytes = 4u * 1024 * 1024;
    static constexpr std::size_t kMaxTextBytes = 4096;  // of one text as it stands in the file
    static constexpr unsigned kMaxId = 65535;

    // False if the file can't be read or is refused: the texts are then as before and Error() tells why.
    // Blocks on the disk.
    bool Load(const std::filesystem::path& path);
    // As Load(), from bytes in memory; name stands for the file in errors.
    bool LoadText(std::string_view bytes, const std::string& name);

    // Null for a number that the file doesn't hold. Valid until the next Load.
    [[nodiscard]] const ZRBasicString* Find(unsigned id) const;
    // Every text in the order of the numbers.
    [[nodiscard]] const std::map<unsigned, ZRBasicString>& Texts() const { return m_texts; }
    // Of the last Load() that returned false.
    [[nodiscard]] const FileError& Error() const { return m_error; }

private:
    bool Fail(const std::string& name, std::size_t line, const std::string& reason);

    std::map<unsigned, ZRBasicString> m_texts;
    FileError m_error;
};

}  // namespace zr
