#include "platform/FileReplace.h"

namespace zr {

bool WriteFileReplacing(const std::filesystem::path& path, std::string_view bytes, std::string& reason)
{
    ReplacingFile file;
    return file.Open(path, reason) && file.Write(bytes, reason) && file.Commit(reason);
}

}  // namespace zr
