// A window test with what every window of the suite reads: texts, conventions, pictures and settings.
#pragma once

#include "platform/ui/AfxMessageBox.h"
#include "platform/ui/CDialog.h"
#include "platform/ui/Images.h"
#include "siblings/support/ZRKestrixSetup.h"
#include "siblings/tools/LanguageFile.h"
#include "siblings/tools/ZRLoadString.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QDir>
#include <QPalette>
#include <string>

namespace zr::test {

// What a dark desktop gives to its windows.
inline QPalette DarkPalette()
{
    QPalette palette(QColor(0x20, 0x20, 0x20));
    palette.setColor(QPalette::Base, QColor(0x18, 0x18, 0x18));
    palette.setColor(QPalette::AlternateBase, QColor(0x26, 0x26, 0x26));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x80, 0x80));
    }
    palette.setColor(QPalette::Highlight, QColor(0x2a, 0x6f, 0xbd));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x80, 0x80));
    }
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

// English, light, unless told otherwise. Leaves nothing behind.
class SuiteTest : public ::testing::Test {
public:
    void UseLanguage(const std::string& language)
    {
        ASSERT_TRUE(m_texts.Load(std::string(ZR_RESOURCES "/language/") + language + ".txt"))
            << m_texts.Error().Message();
        ASSERT_TRUE(SetLocaleInformation(language));
    }
    void UseDarkColours() { QApplication::setPalette(DarkPalette()); }

    // For the eye: into the folder of the environment variable ZR_PICTURES, if it is set.
    static void SavePicture(QWidget& window, const std::string& name)
    {
        const QString folder = qEnvironmentVariable("ZR_PICTURES");
        if (!folder.isEmpty()) {
            ASSERT_TRUE(QDir().mkpath(folder));
            ASSERT_TRUE(window.grab().save(folder + QLatin1Char('/') + QString::fromStdString(name) + ".png"));
        }
    }

protected:
    SuiteTest() : m_palette(QApplication::palette())
    {
        ui::SetImageFolder(ZR_RESOURCES "/images");
        SetLanguage(&m_texts);
        UseLanguage("en");
    }
    ~SuiteTest() override
    {
        QApplication::setPalette(m_palette);
        ui::SetModalHook(nullptr);
        ui::SetMessageBoxHook(nullptr);
        SetLocaleInformation("");
        SetLanguage(nullptr);
    }

private:
    QPalette m_palette;
    LanguageFile m_texts;
    ZRKestrixSetup m_setup;
};

}  // namespace zr::test
