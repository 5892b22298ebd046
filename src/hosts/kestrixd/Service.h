// The supervision of one document in a terminal.
#pragma once

#include "hosts/kestrixd/LiveTable.h"
#include "hosts/kestrixd/Options.h"
#include "hosts/supervision/Supervisor.h"
#include "platform/StopSignals.h"

#include <deque>
#include <memory>
#include <string>

namespace zr::service {

// Exit statuses of the program.
inline constexpr int kEndedAsAsked = 0;
inline constexpr int kBadInput = 2;
inline constexpr int kSupervisedElsewhere = 3;

// Made once, by main; everything runs on the thread that calls Run().
class Service final : private supervision::Supervisor::Host {
public:
    explicit Service(Options options);
    ~Service();

    // Supervises until a signal or until the time is over. Returns the exit status, after saying on standard error what
    // was wrong.
    int Run();

private:
    void Complain(const std::string& text) override;
    void Log(const std::string& text) override;
    void RegistryGoes() override { m_table.reset(); }
    void RegistryCame() override { m_table = std::make_unique<LiveTable>(); }

    // kEndedAsAsked when the document is ours, else the status to end with.
    int TakeDocument();
    void Supervise(StopSignals& signals);
    void ShowTable();
    int Finish();

    Options m_options;
    supervision::Supervisor m_supervisor;
    std::unique_ptr<LiveTable> m_table;
    std::deque<std::string> m_messages;
    bool m_showsTable = false;
};

}  // namespace zr::service
