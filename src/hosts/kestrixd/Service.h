// The supervision of one document by this process.
#pragma once

#include "comm/ZRCommSystem.h"
#include "comm/ZRMainCfg.h"
#include "diagnostics/ZRDebugInfo.h"
#include "hosts/kestrixd/LiveTable.h"
#include "hosts/kestrixd/Options.h"
#include "hosts/kestrixd/Publication.h"
#include "hosts/kestrixd/Summary.h"
#include "platform/ProcessLock.h"
#include "platform/StopSignals.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/support/ZRKestrixSetup.h"
#include "siblings/tools/LanguageFile.h"

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace zr::service {

// Exit statuses of the program.
inline constexpr int kEndedAsAsked = 0;
inline constexpr int kBadInput = 2;
inline constexpr int kSupervisedElsewhere = 3;

// Made once, by main; everything runs on the thread that calls Run().
class Service {
public:
    explicit Service(Options options);
    ~Service();

    // Supervises until a signal or until the time is over. Returns the exit status, after saying on standard error what
    // was wrong.
    int Run();

private:
    // Each says what is wrong and returns false.
    bool LoadTexts();
    bool LoadProfiles();
    bool PrepareDataFolder();
    bool CheckFilters();
    // kEndedAsAsked when the document is ours, else the status to end with.
    int TakeDocument();

    // Fills the registry from the document in m_document and starts it.
    void StartRegistry();
    void BeginPublication();
    void Reload();
    void Supervise(StopSignals& signals);
    void TakeNotices();
    void Report(const DeviceNotice& notice, std::size_t line);
    void Log(const std::string& text);
    void ShowTable();
    // The figures since the program started, resets included.
    [[nodiscard]] Summary Figures() const;
    int Finish();

    Options m_options;
    LanguageFile m_language;
    ZRKestrixSetup m_setup;
    ProcessLock m_lock;
    ZRDebugInfo m_warnings;
    ZRMainCfg m_document;
    ZRCommSystem m_system;
    Publication m_publication;
    std::unique_ptr<LiveTable> m_table;
    Summary m_before;  // of the registries that a reload took down, and of the warnings that were put away
    std::deque<std::string> m_messages;
    bool m_showsTable = false;
};

}  // namespace zr::service
