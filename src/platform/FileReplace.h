// Files read whole and replaced whole, so that a reader sees the old content or the new one and a power cut loses
// neither.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace zr {

// Reads a regular file into out. False when it can't be read or is larger than limit bytes; reason then says why and
// out is empty. Blocks on the disk.
bool ReadWholeFile(const std::filesystem::path& path, std::size_t limit, std::string& out, std::string& reason);

// Writes a temporary file beside the target (mode 0600), flushes it, renames it over the target and flushes the
// folder. A target that is a symbolic link stays one: what it points to is replaced. False on failure: the old file is
// then as before, the temporary one is gone and reason says why. Blocks on the disk.
bool WriteFileReplacing(const std::filesystem::path& path, std::string_view bytes, std::string& reason);

// The same for a file that is written piece by piece. What isn't committed by the end of its life leaves no trace. One
// thread.
class ReplacingFile {
public:
    ReplacingFile();
    ~ReplacingFile();
    ReplacingFile(const ReplacingFile&) = delete;
    ReplacingFile& operator=(const ReplacingFile&) = delete;

    // Each false on failure: the old file is then as before, the temporary one is gone and reason says why.
    bool Open(const std::filesystem::path& path, std::string& reason);
    bool Write(std::string_view bytes, std::string& reason);
    bool Commit(std::string& reason);

private:
    struct State;
    std::unique_ptr<State> m_state;  // null: not open
};

// The last step for a file that a library wrote by its name: for its user alone, flushed, and renamed over the target
// on the same disk, of which the folder is flushed. False on failure, and reason says why: the old file is then as
// before, and what was written is still there under its own name. Blocks on the disk.
bool PutFileInPlace(const std::filesystem::path& written, const std::filesystem::path& target, std::string& reason);

// Makes a folder with the ones above it, each new one with mode 0700. False when one can't be made; reason says why.
bool MakePrivateFolder(const std::filesystem::path& folder, std::string& reason);

// Whether users other than the owner may read a file, by its permissions; false when it isn't there, and on Windows,
// where a user's folders keep others out.
bool CanOthersRead(const std::filesystem::path& path);

// Makes what was renamed or made in a folder safe from a power cut. False when the system can't; reason says why.
bool FlushFolder(const std::filesystem::path& folder, std::string& reason);

// A path from UTF-16 or UTF-8 text and back, on every platform. Unpaired surrogates become U+FFFD.
std::filesystem::path PathFromText(std::u16string_view text);
std::filesystem::path PathFromText(std::string_view utf8);
std::string TextOfPath(const std::filesystem::path& path);

}  // namespace zr
