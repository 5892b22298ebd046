// The service as a process: who supervises, devices that come and go, signals.
#include "integration/service/ServiceFixture.h"
#include "support/ModbusResponder.h"

#include <csignal>

namespace zr::test {
namespace {

constexpr int kRelays = 1;  // variables of an ORL1

class SupervisionTest : public ServiceFixture {
protected:
    std::filesystem::path WriteDocument(const std::vector<std::string>& names, int timeOut = 100)
    {
        std::string lines = UdpLine("L", m_device.Port(), timeOut);
        std::vector<DeviceLine> devices;
        for (const std::string& name : names) {
            devices.push_back(
                {name, "ORL1", "L", "Period=\"0.1\" Unit=\"" + std::to_string(devices.size() + 1) + "\""});
        }
        return m_folder.Write("document.xml", DocumentText(lines, devices));
    }

    // Started, and asking its devices.
    std::unique_ptr<Process> Supervise(const std::filesystem::path& document, std::uint32_t requests = 2)
    {
        auto service = StartService({document.string(), "--for", "100", "--json"});
        EXPECT_TRUE(Asks(*service, requests)) << service->Errors();
        return service;
    }

    // Waits until so many more requests have come; false after the limit, or as soon as the service has ended.
    bool Asks(Process& service, std::uint32_t requests)
    {
        const std::uint32_t wanted = m_device.Requests() + requests;
        const auto hasAsked = [&] { return m_device.Requests() >= wanted; };
        return Eventually([&] { return hasAsked() || service.HasEnded(); }) && hasAsked();
    }

    ModbusResponder m_device;
};

TEST_F(SupervisionTest, TheSecondProcessSaysWhichOneSupervisesAndEndsWithStatusThree)
{
    const auto document = WriteDocument({"A"});
    const auto first = Supervise(document);
    std::filesystem::create_symlink(document, m_folder / "link.xml");
    const auto relative = std::filesystem::relative(document, std::filesystem::current_path());
    for (const std::filesystem::path& spelling : {document, m_folder / "link.xml", relative}) {
        const auto second = StartService({spelling.string(), "--json"});
        EXPECT_EQ(second->WaitForExit(), 3);
        EXPECT_EQ(second->Errors(), spelling.string() + ": already supervised by process " +
                                        std::to_string(first->Pid()) + " (kestrixd)\n");
        EXPECT_EQ(second->Output(), "");
    }
    const auto copy = m_folder.Write("copy.xml", m_folder.Read("document.xml"));
    EXPECT_EQ(StartService({copy.string(), "--for", "1"})->WaitForExit(), 0);
}

TEST_F(SupervisionTest, WhatAKilledProcessLeftIsTakenOver)
{
    const auto document = WriteDocument({"A"});
    const auto first = Supervise(document);
    first->Send(SIGKILL);
    ASSERT_EQ(first->WaitForExit(), 128 + SIGKILL);
    const auto next = Supervise(document);
    next->Send(SIGTERM);
    EXPECT_EQ(next->WaitForExit(), 0) << next->Errors();
}

TEST_F(SupervisionTest, DevicesThatAreAbsentAtTheStartArePickedUpWhenTheyCome)
{
    m_device.SetMuted(true);
    const auto service = Supervise(WriteDocument({"A"}));
    ASSERT_TRUE(service->ReadErrorLine([](const std::string& line) {
        return line.find("warning: A does not answer") != std::string::npos;
    })) << service->Errors();
    m_device.SetMuted(false);
    ASSERT_TRUE(service->ReadErrorLine([](const std::string& line) {
        return line.find("event: A answers again") != std::string::npos;
    })) << service->Errors();
    ASSERT_TRUE(Asks(*service, 20));
    service->Send(SIGINT);
    ASSERT_EQ(service->WaitForExit(), 0);
    const std::string& json = service->Output();
    EXPECT_EQ(Figure(json, "devices"), 1) << json;
    EXPECT_EQ(Figure(json, "online"), 1) << json;
    EXPECT_EQ(Figure(json, "variables"), kRelays) << json;
    EXPECT_EQ(Figure(json, "valid"), kRelays) << json;
    EXPECT_EQ(Figure(json, "warnings"), 1) << json;
    EXPECT_GE(Figure(json, "timeouts"), 3) << json;
    EXPECT_GE(Figure(json, "transactions"), Figure(json, "timeouts") + 20) << json;
    for (const std::string kind : {"Z warning: ", "Z event: "}) {
        const std::string& errors = service->Errors();
        EXPECT_NE(errors.find(kind), std::string::npos) << errors;
        EXPECT_EQ(errors.find(kind), errors.rfind(kind)) << "more than once:\n" << errors;
    }
}

TEST_F(SupervisionTest, ThirtyReloadsLeaveDescriptorsAndThreadsAsTheyWere)
{
    const auto service = Supervise(WriteDocument({"A", "B"}));
    const auto reload = [&] {
        service->Send(SIGHUP);
        EXPECT_TRUE(service->ReadErrorLine([](const std::string& line) {
            return line.find("event: ") != std::string::npos && line.find("document.xml") != std::string::npos;
        })) << service->Errors();
        EXPECT_TRUE(Asks(*service, 4));
    };
    reload();
    const Holdings before = HoldingsOf(std::to_string(service->Pid()));
    for (int i = 0; i < 30; ++i) {
        reload();
    }
    Holdings after;
    EXPECT_TRUE(Eventually([&] { return (after = HoldingsOf(std::to_string(service->Pid()))) == before; }))
        << before << "; " << after;
    service->Send(SIGTERM);
    ASSERT_EQ(service->WaitForExit(), 0);
    EXPECT_EQ(Figure(service->Output(), "warnings"), 0) << service->Errors();
    EXPECT_GE(Figure(service->Output(), "transactions"), 31 * 4) << "figures count from the start of the program";
}

TEST_F(SupervisionTest, AReloadTakesUpWhatChangedAndABrokenDocumentChangesNothing)
{
    const auto document = WriteDocument({"A"});
    const auto service = Supervise(document);
    m_folder.Write("document.xml", "<Configuration>\n<CommSystem");
    service->Send(SIGHUP);
    ASSERT_TRUE(service->ReadErrorLine([&](const std::string& line) {
        return line.find(document.string() + ":2: ") != std::string::npos;
    })) << service->Errors();
    EXPECT_TRUE(Asks(*service, 10)) << "the old supervision doesn't go on";
    WriteDocument({"A", "B", "C"});
    service->Send(SIGHUP);
    ASSERT_TRUE(service->ReadErrorLine([](const std::string& line) {
        return line.find("event: ") != std::string::npos;
    })) << service->Errors();
    EXPECT_TRUE(Asks(*service, 12));
    service->Send(SIGTERM);
    ASSERT_EQ(service->WaitForExit(), 0);
    EXPECT_EQ(Figure(service->Output(), "devices"), 3) << service->Output();
    EXPECT_EQ(Figure(service->Output(), "online"), 3) << service->Output();
}

TEST_F(SupervisionTest, SignalsEndItWithTheFiguresThoughAllDevicesAreMute)
{
    m_device.SetMuted(true);
    for (const int signal : {SIGINT, SIGTERM}) {
        const auto service = Supervise(WriteDocument({"A", "B"}, 60000), 1);
        service->Send(signal);
        EXPECT_EQ(service->WaitForExit(), 0) << service->Errors();
        EXPECT_EQ(Figure(service->Output(), "timeouts"), 0) << "it waited for a mute device";
        EXPECT_EQ(Figure(service->Output(), "online"), 0) << service->Output();
        EXPECT_EQ(Figure(service->Output(), "devices"), 2) << service->Output();
    }
}

}  // namespace
}  // namespace zr::test
