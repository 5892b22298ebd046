#include "siblings/tools/ZRLoadString.h"

#include "siblings/tools/FormatText.h"
#include "siblings/tools/LanguageFile.h"

#include <atomic>

namespace {

constinit std::atomic<const zr::LanguageFile*> g_language = nullptr;

}  // namespace

ZRBasicString& ZRLoadString(unsigned id, ZRBasicString& out)
{
    const zr::LanguageFile* language = g_language;
    const ZRBasicString* text = language != nullptr ? language->Find(id) : nullptr;
    out = text != nullptr ? *text : zr::FormatText(u"#%u", {id});
    return out;
}

namespace zr {

void SetLanguage(const LanguageFile* language)
{
    g_language = language;
}

}  // namespace zr
