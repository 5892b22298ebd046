#include "platform/FileReplace.h"
#include "platform/Unicode.h"

namespace zr {

std::filesystem::path PathFromText(std::string_view utf8)
{
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::filesystem::path PathFromText(std::u16string_view text)
{
    // By way of UTF-8, since the standard's own conversion throws on an unpaired surrogate.
    return PathFromText(Utf8From16(text));
}

std::string TextOfPath(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

}  // namespace zr
