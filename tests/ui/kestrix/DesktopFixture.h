// The main window on a document of its own, whose devices answer nothing: tests write their values.
#pragma once

#include "hosts/kestrix/ui/Commands.h"
#include "hosts/kestrix/ui/MainFrame.h"
#include "hosts/kestrix/ui/Theme.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/ui/AfxMessageBox.h"
#include "platform/ui/CWinApp.h"
#include "platform/ui/Images.h"
#include "siblings/tools/ZRLocaleInformation.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <memory>
#include <QApplication>
#include <QTest>
#include <QTimer>
#include <string>
#include <vector>

namespace zr::desktop {

class DesktopFixture : public testing::Test, protected supervision::Supervisor::Host {
protected:
    DesktopFixture()
    {
        m_document = m_folder.Write("plant.xml", Document("METER-1", "METER-2"));
        m_app = std::make_unique<CWinApp>(u"Software\\Kestrix");
        ui::SetImageFolder(std::string(ZR_RESOURCES) + "/images");
        ui::SetMessageBoxHook([this](const std::u16string& text, unsigned) {
            m_asked.push_back(text);
            return m_answer;
        });
        PrepareTheme();
        UseColours(Colours::Light);
        SetLocaleInformation("en");
    }

    ~DesktopFixture() override
    {
        m_frame.reset();
        m_supervisor.reset();
        ui::SetMessageBoxHook(nullptr);
        SetLocaleInformation("");
        ForgetTheEnd();
    }

    // A main window that was closed has asked the program to end, and no dialog would run from then on.
    static void ForgetTheEnd()
    {
        QTimer::singleShot(0, qApp, [] { QApplication::exit(); });
        QApplication::exec();
    }

    void Complain(const std::string& text) override { m_complaints.push_back(text); }
    void Log(const std::string&) override {}
    void RegistryGoes() override
    {
        if (m_frame != nullptr) {
            m_frame->RegistryGoes();
        }
    }
    void RegistryCame() override
    {
        if (m_frame != nullptr) {
            m_frame->RegistryCame();
        }
    }

    // Two meters in one group, and an input and output unit in none.
    static std::string Document(const std::string& first, const std::string& second)
    {
        return "<Kestrix><CommSystem><Connections><Connection Name=\"NORTH\" Type=\"UDP\" Address=\"127.0.0.1\" "
               "Socket=\"47996\"/></Connections><Devices><Device Name=\"" +
               first + "\" Driver=\"EM3\" Connection=\"NORTH\" Unit=\"1\"/><Device Name=\"" + second +
               "\" Driver=\"EM3\" Connection=\"NORTH\" Unit=\"2\"/><Device Name=\"IO-1\" Driver=\"IO8\" "
               "Connection=\"NORTH\" Unit=\"3\"/></Devices></CommSystem><DeviceGroups><Groups><Group "
               "Id=\"North\"><Devices><Device Id=\"" +
               first + "\"/><Device Id=\"" + second + "\"/></Devices></Group></Groups></DeviceGroups></Kestrix>\n";
    }

    void Start()
    {
        supervision::SupervisionOptions options;
        options.document = m_document;
        options.dataFolder = m_folder / "data";
        options.serviceName = "KESTRIX";
        options.updatePeriod = std::chrono::milliseconds(100);
        m_supervisor = std::make_unique<supervision::Supervisor>(options, "test",
                                                                 static_cast<supervision::Supervisor::Host&>(*this));
        ASSERT_TRUE(m_supervisor->Prepare("en"));
        ASSERT_NE(m_supervisor->TakeDocument(), supervision::Supervisor::Taking::BadInput);
        m_supervisor->LoadRegistry();
        Open();
    }

    // A window on the registry as it is.
    void Open()
    {
        m_frame = std::make_unique<MainFrame>(*m_supervisor, m_settings);
        m_frame->resize(1024, 700);
        m_frame->show();
        m_frame->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_frame.get()));
        Settle();
    }

    static void Settle()
    {
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }

    // As a device does that answers.
    static void Write(const wchar* device, const wchar* variable, double value)
    {
        ZRDeviceDriver* const driver = ZRDeviceDriver::LockDriver(device, false);
        ASSERT_NE(driver, nullptr);
        driver->SetOnline(true);
        const auto index = driver->Store()->Table().Find(variable);
        ASSERT_TRUE(index.has_value());
        driver->Store()->At(*index).WriteNumber(value);
    }

    // What is selected in the tree.
    ZRBasicString ShownNode() const
    {
        const std::size_t node = m_frame->Tree().SelectedNode();
        return node != DeviceTree::kNone ? m_frame->Tree().Tree()[node].text : ZRBasicString(u"none");
    }

    void Command(unsigned id) { ui::SendCommand(m_frame.get(), id, 0, nullptr); }

    test::TempFolder m_folder;
    test::Environment m_resources{"KESTRIX_RESOURCES", ZR_RESOURCES};
    test::Environment m_runtime{"XDG_RUNTIME_DIR", (m_folder / "run").string()};
    test::Environment m_config{"XDG_CONFIG_HOME", (m_folder / "config").string()};
    std::filesystem::path m_document;
    std::unique_ptr<CWinApp> m_app;
    DesktopSettings m_settings;
    std::unique_ptr<supervision::Supervisor> m_supervisor;
    std::unique_ptr<MainFrame> m_frame;
    std::vector<std::u16string> m_asked;
    std::vector<std::string> m_complaints;
    int m_answer = ui::IDNO;
};

}  // namespace zr::desktop
