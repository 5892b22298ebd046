#include "hosts/kestrix/ui/Desktop.h"

#include "hosts/kestrix/ui/LoggedDataWindow.h"
#include "hosts/kestrix/ui/MainFrame.h"
#include "platform/ui/CDialog.h"
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/tools/ui/CDlgProgress.h"
#include "support/Environment.h"
#include "support/TempFolder.h"
#include "ui/logger/StoreWithGate.h"

#include <gtest/gtest.h>
#include <atomic>
#include <csignal>
#include <functional>
#include <QApplication>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <string>
#include <thread>

namespace zr::desktop {
namespace {

// What is done once the program's message loop runs.
std::function<void(MainFrame&)>& Act()
{
    static std::function<void(MainFrame&)> act;
    return act;
}

void ActOnceItRuns()
{
    if (QThread::currentThread()->loopLevel() == 0) {
        QTimer::singleShot(1, qApp, ActOnceItRuns);
        return;
    }
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (auto* const frame = dynamic_cast<MainFrame*>(window); frame != nullptr) {
            Act()(*frame);
            return;
        }
    }
    ADD_FAILURE() << "no main window";
}

void WaitForTheProgram()
{
    QTimer::singleShot(0, qApp, ActOnceItRuns);
}
Q_COREAPP_STARTUP_FUNCTION(WaitForTheProgram)

// The whole program on a document with one meter, whose logged data stand in a store of the test's.
class DesktopTest : public testing::Test {
protected:
    DesktopTest()
    {
        m_options.supervision.document = m_folder.Write(
            "plant.xml",
            "<Kestrix><CommSystem><Connections><Connection Name=\"NORTH\" Type=\"UDP\" Address=\"127.0.0.1\" "
            "Socket=\"47995\"/></Connections><Devices><Device Name=\"METER-1\" Driver=\"EM3\" Connection=\"NORTH\" "
            "Unit=\"1\"/></Devices></CommSystem></Kestrix>\n");
        m_options.supervision.dataFolder = m_folder / "data";
        m_options.language = "en";
        const int series = m_store.OpenSeries(u"METER-1.U1", 1);
        const std::int64_t now = 946684800LL + ZRDateTime::LTC().seconds;
        for (int hour = 0; hour < 24 * 7; ++hour) {
            const LoggerAppend sample{series, (now - hour * 3600) * 1000000, 2300.0};
            EXPECT_TRUE(m_store.Append({&sample, 1}));
        }
        EXPECT_TRUE(m_store.SetDataSet({u"mains", 60, 0, {u"METER-1.U1"}}));
        ui::SetModalHook([this](QDialog& dialog) {
            if (auto* const progress = dynamic_cast<CDlgProgress*>(&dialog); progress != nullptr) {
                m_progress = progress;
                if (m_whileLoading) {
                    m_whileLoading();
                }
            }
        });
    }
    ~DesktopTest() override
    {
        ui::SetModalHook(nullptr);
        Act() = nullptr;
    }

    int Run(const std::function<void(MainFrame&)>& act)
    {
        Act() = act;
        std::string name = "kestrix";
        char* arguments[] = {name.data(), nullptr};
        return RunDesktop(m_options, 1, arguments);
    }
    void Open(MainFrame& frame)
    {
        SetLoggerStore(&m_gate);
        const auto node = frame.Tree().Tree().FindDevice(u"METER-1");
        ASSERT_TRUE(node.has_value());
        m_window = frame.OpenLoggedData(*node);
    }
    // The loader waits in the middle of a block until the program gives the load up.
    void HoldTheLoader()
    {
        m_gate.gate = [this] {
            m_isHeld = true;
            while (m_progress == nullptr || !m_progress.load()->IsCancelled()) {
                std::this_thread::yield();
            }
            m_wasLetGo = true;
            return true;
        };
    }

    test::TempFolder m_folder;
    test::Environment m_resources{"KESTRIX_RESOURCES", ZR_RESOURCES};
    test::Environment m_runtime{"XDG_RUNTIME_DIR", (m_folder / "run").string()};
    test::Environment m_config{"XDG_CONFIG_HOME", (m_folder / "config").string()};
    test::Environment m_data{"XDG_DATA_HOME", (m_folder / "home").string()};
    DesktopOptions m_options;
    MemoryLoggerStore m_store;
    logger::StoreWithGate m_gate{m_store};
    std::function<void()> m_whileLoading;  // on the thread of the windows
    std::atomic<CDlgProgress*> m_progress = nullptr;
    std::atomic<bool> m_isHeld = false;
    std::atomic<bool> m_wasLetGo = false;
    QPointer<LoggedDataWindow> m_window;
};

TEST_F(DesktopTest, EndsOnASignalWhileDataAreLoaded)
{
    HoldTheLoader();
    m_whileLoading = [] { std::raise(SIGTERM); };
    EXPECT_EQ(Run([this](MainFrame& frame) { Open(frame); }), 0);
    EXPECT_TRUE(m_wasLetGo);
    EXPECT_TRUE(m_window.isNull());
}

TEST_F(DesktopTest, EndsWhenTheMainWindowGoesWhileDataAreLoaded)
{
    HoldTheLoader();
    EXPECT_EQ(Run([this](MainFrame& frame) {
                  m_whileLoading = [&frame] { frame.close(); };
                  Open(frame);
              }),
              0);
    EXPECT_TRUE(m_wasLetGo);
    EXPECT_TRUE(m_window.isNull());
}

TEST_F(DesktopTest, EndsWhenBothWindowsGoWhileDataAreLoaded)
{
    HoldTheLoader();
    EXPECT_EQ(Run([this](MainFrame& frame) {
                  m_whileLoading = [this, &frame] {
                      for (QWidget* const window : QApplication::topLevelWidgets()) {
                          if (dynamic_cast<LoggedDataWindow*>(window) != nullptr) {
                              EXPECT_FALSE(window->close());
                          }
                      }
                      frame.close();
                  };
                  Open(frame);
              }),
              0);
    EXPECT_TRUE(m_wasLetGo);
}

TEST_F(DesktopTest, GoesOnWhenAWindowGoesThatLoads)
{
    HoldTheLoader();
    bool hasGone = false;
    EXPECT_EQ(Run([&](MainFrame& frame) {
                  m_whileLoading = [&] {
                      m_whileLoading = nullptr;
                      for (QWidget* const window : QApplication::topLevelWidgets()) {
                          if (dynamic_cast<LoggedDataWindow*>(window) != nullptr) {
                              window->close();
                              QObject::connect(window, &QObject::destroyed, &frame, [&] {
                                  hasGone = true;
                                  EXPECT_TRUE(frame.isVisible());
                                  frame.close();
                              });
                          }
                      }
                  };
                  Open(frame);
              }),
              0);
    EXPECT_TRUE(hasGone);
    EXPECT_TRUE(m_window.isNull());
}

TEST_F(DesktopTest, EndsOnASignalWithSeveralWindowsOpen)
{
    EXPECT_EQ(Run([this](MainFrame& frame) {
                  Open(frame);
                  EXPECT_NE(m_window, nullptr);
                  std::raise(SIGTERM);
              }),
              0);
    EXPECT_TRUE(m_window.isNull());
    // What the window was like is kept.
    EXPECT_TRUE(std::filesystem::exists(m_folder / "config" / "kestrix" / "logged-data-windows.xml"));
}

// Whoever sends a signal can't answer questions.
TEST_F(DesktopTest, EndsOnASignalWhileADialogIsOpen)
{
    bool wasOpen = false;
    EXPECT_EQ(Run([&](MainFrame&) {
                  CDialog dialog(1, nullptr);
                  QObject::connect(&dialog, &QDialog::finished, &dialog, [] { ADD_FAILURE() << "it was answered"; });
                  std::raise(SIGTERM);
                  wasOpen = true;
                  dialog.DoModal();
              }),
              0);
    EXPECT_TRUE(wasOpen);
}

}  // namespace
}  // namespace zr::desktop
