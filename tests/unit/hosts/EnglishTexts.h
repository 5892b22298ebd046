// The shipped English texts and number format, while an object of this lives.
#pragma once

#include "siblings/tools/LanguageFile.h"
#include "siblings/tools/ZRLoadString.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <gtest/gtest.h>
#include <filesystem>

namespace zr::test {

class EnglishTexts {
public:
    EnglishTexts()
    {
        EXPECT_TRUE(m_texts.Load(std::filesystem::path(ZR_RESOURCES) / "language" / "en.txt"));
        SetLanguage(&m_texts);
        SetLocaleInformation("en");
    }
    EnglishTexts(const EnglishTexts&) = delete;
    EnglishTexts& operator=(const EnglishTexts&) = delete;
    ~EnglishTexts()
    {
        SetLanguage(nullptr);
        SetLocaleInformation("");
    }

private:
    LanguageFile m_texts;
};

}  // namespace zr::test
