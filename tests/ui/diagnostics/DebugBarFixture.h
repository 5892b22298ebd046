// A frame with the warning bar, off screen, with the shipped English texts.
#pragma once

#include "diagnostics/DiagnosticsIds.h"
#include "diagnostics/ui/CDebugDlgBar.h"
#include "diagnostics/ZRDebugInfo.h"
#include "platform/ui/CFrameWnd.h"
#include "platform/ui/CListCtrl.h"
#include "platform/ui/CWinApp.h"
#include "siblings/tools/LanguageFile.h"
#include "siblings/tools/ZRLoadString.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QApplication>
#include <QMenuBar>
#include <QTest>
#include <QWindow>
#include <vector>

namespace zr::test {

inline constexpr unsigned kBarId = 1300;

struct Message {
    unsigned number;
    std::uintptr_t wParam;
    std::intptr_t lParam;
    friend bool operator==(const Message&, const Message&) = default;
};

// Keeps what it is told.
class ListeningFrame : public CFrameWnd {
public:
    bool OnMessage(unsigned message, std::uintptr_t wParam, std::intptr_t lParam) override
    {
        messages.push_back({message, wParam, lParam});
        return true;
    }
    bool OnCommand(unsigned id, unsigned, QWidget*) override
    {
        commands.push_back(id);
        return true;
    }
    std::vector<Message> messages;
    std::vector<unsigned> commands;
};

class DebugBarFixture : public ::testing::Test {
protected:
    DebugBarFixture() : m_configuration("XDG_CONFIG_HOME", m_folder.Path().string())
    {
        EXPECT_TRUE(m_language.Load(std::filesystem::path(ZR_RESOURCES) / "language" / "en.txt"));
        SetLanguage(&m_language);
        frame.menuBar()->addMenu(QStringLiteral("&File"));
        frame.setCentralWidget(new QWidget);
        frame.resize(800, 600);
    }
    ~DebugBarFixture() override { SetLanguage(nullptr); }

    // The frame with its bar on the screen.
    void Show(unsigned dockBar)
    {
        ASSERT_TRUE(bar.Create(&frame, kDebugBarDialog, kBarId));
        frame.show();
        frame.DockControlBar(&bar, dockBar);
        QApplication::processEvents();
        frame.messages.clear();
    }
    void Float()
    {
        frame.FloatControlBar(&bar, QPoint(40, 40));
        QApplication::processEvents();
    }
    void Warn(int count)
    {
        for (int i = 0; i < count; ++i) {
            warnings.AddWarning(1, ZRBasicString(u"Meter ") + static_cast<wchar>(u'A' + i % 26), u"", u"");
        }
    }
    [[nodiscard]] CListCtrl& List() const { return *static_cast<CListCtrl*>(bar.GetDlgItem(kWarningList)); }
    [[nodiscard]] QWidget& CloseButton() const { return *bar.GetDlgItem(kCloseBarButton); }

    // The mouse as the screen sends it, at a point of the bar; whoever lies there or holds the capture gets it.
    void Press(QPoint point) { QTest::mousePress(Window(), Qt::LeftButton, {}, At(point)); }
    void Move(QPoint point) { QTest::mouseMove(Window(), At(point)); }
    void Release(QPoint point) { QTest::mouseRelease(Window(), Qt::LeftButton, {}, At(point)); }
    [[nodiscard]] QPoint At(QPoint point) const { return bar.mapTo(bar.window(), point); }
    [[nodiscard]] QWindow* Window() const { return bar.window()->windowHandle(); }

private:
    TempFolder m_folder;
    Environment m_configuration;
    LanguageFile m_language;

protected:
    ZRDebugInfo warnings;
    CWinApp application{u"Software\\Kestrix"};
    ListeningFrame frame;
    CDebugDlgBar bar;
};

}  // namespace zr::test
