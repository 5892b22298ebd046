#include "siblings/support/ZRKestrixSetup.h"

#include "platform/FileReplace.h"
#include "platform/Paths.h"
#include "siblings/tools/Utf.h"

#include <filesystem>

ZRKestrixSetup* ZRKestrixSetup::instance = nullptr;

ZRKestrixSetup::ZRKestrixSetup() : registryKey(u"Software\\Kestrix")
{
    instance = this;
    SetDataFolder(Utf8ToUtf16(zr::TextOfPath(zr::DataFolder() / "filters")));
}

ZRKestrixSetup::~ZRKestrixSetup()
{
    if (instance == this) {
        instance = nullptr;
    }
}

void ZRKestrixSetup::SetDataFolder(const ZRBasicString& folder)
{
    constexpr auto kSeparator = static_cast<wchar>(std::filesystem::path::preferred_separator);
    dataFolder = folder.IsEmpty() ? ZRBasicString(u".") : folder;
    const wchar last = dataFolder[dataFolder.Length() - 1];
    // "/" separates on every platform.
    if (last != u'/' && last != kSeparator) {
        dataFolder += kSeparator;
    }
}
