// Fetches a text shown to the user by its number.
#pragma once

#include "siblings/tools/ZRBasicString.h"

namespace zr {
class LanguageFile;
}

// Fills out with the text of that number in the language in force and returns out. A number that the language doesn't
// hold shows as "#514", so that a missing text is seen and can be told. Any thread.
ZRBasicString& ZRLoadString(unsigned id, ZRBasicString& out);

namespace zr {

// Sets the language in force; null for none, as at the start. Not owned; must outlive its use. Call it only while no
// other thread of the library runs.
void SetLanguage(const LanguageFile* language);

}  // namespace zr
