// The supervision of one document by this process, without a terminal or a window.
#pragma once

#include "comm/ZRCommSystem.h"
#include "comm/ZRMainCfg.h"
#include "diagnostics/ZRDebugInfo.h"
#include "hosts/supervision/Publication.h"
#include "hosts/supervision/Recording.h"
#include "hosts/supervision/Summary.h"
#include "hosts/supervision/SupervisionOptions.h"
#include "platform/ProcessLock.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/support/ZRKestrixSetup.h"
#include "siblings/tools/DescriptionTable.h"
#include "siblings/tools/LanguageFile.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace zr::supervision {

// Order of use: construct, Prepare, TakeDocument, LoadRegistry, CheckFilters, Start; then TakeNotices now and then, and
// Reload or Open at will. One object a program; one thread, the program's main loop.
class Supervisor {
public:
    // What the program does about what happens. Called before the operation returns.
    class Host {
    public:
        // What keeps an operation from being done, as one line.
        virtual void Complain(const std::string& text) = 0;
        // What happens while it supervises, as one line.
        virtual void Log(const std::string& text) = 0;
        // The devices go: whoever holds a driver or a variable of them lets go now.
        virtual void RegistryGoes() {}
        // The devices of a document are there, not started yet.
        virtual void RegistryCame() {}

    protected:
        ~Host() = default;
    };

    enum class Taking {
        Taken,
        HeldByOther,  // the document is loaded; OtherProcess() and OtherProgram() tell by whom it is supervised
        BadInput,     // complained of
    };

    // program: its name, for the second one that wants the document. host: Not owned; must outlive this.
    Supervisor(SupervisionOptions options, std::string program, Host& host);
    Supervisor(const Supervisor&) = delete;
    Supervisor& operator=(const Supervisor&) = delete;
    // Ends everything. The host isn't called any more: nobody may hold a driver or a variable by then.
    ~Supervisor();

    // Texts, device profiles, data folder, serial ports. False after a complaint.
    bool Prepare(const std::string& language = "en");
    // Loads the texts of a language once and puts them in force; the file's title below resources/language. False after
    // a complaint: the texts are then as before.
    bool UseLanguage(const std::string& language);

    // Loads the document and what is recorded of it, and takes its lock.
    Taking TakeDocument();
    // Fills the registry from the document; what is left out of it is reported with its line.
    void LoadRegistry();
    // Whether every filter file that a device names can be used; complains of each that can't.
    bool CheckFilters();
    // Polls, records and publishes, if the document is ours.
    void Start();
    // What was sampled is in the store or in the spool then, and the figures are final. Blocks for as long as a store
    // takes for one batch.
    void EndRecording() { m_recording.End(); }

    // Reads the document, the profiles and the recording file again, and takes the lock if it has come free. What can't
    // be read leaves everything as it is, with two lines in the log, and false. Blocks until the groups have come to
    // rest.
    bool Reload();
    // Goes over to another document; likewise.
    bool Open(const std::filesystem::path& document);
    // Whether the tree in memory differs from what was loaded or saved last.
    [[nodiscard]] bool IsModified() const;
    // Writes the document. False after a complaint; the old file is then as before.
    bool Save();

    // Enters what the device side and the recorder have posted since the last time in the warning list.
    void TakeNotices();
    // Enters one notice; line: of the document, 0 when it isn't about one.
    void Report(const DeviceNotice& notice, std::size_t line);

    // The figures since the program started, resets included.
    [[nodiscard]] Summary Figures() const;
    [[nodiscard]] supervision::Publication& Publication() { return m_publication; }
    [[nodiscard]] const supervision::Recording& Recording() const { return m_recording; }
    [[nodiscard]] ZRMainCfg& Document() { return m_document; }
    [[nodiscard]] const SupervisionOptions& Options() const { return m_options; }
    // False while another process supervises the document.
    [[nodiscard]] bool IsOurs() const { return m_isOurs; }
    [[nodiscard]] int OtherProcess() const { return m_lock->OtherProcess(); }
    [[nodiscard]] const std::string& OtherProgram() const { return m_lock->OtherProgram(); }
    // Why the last document that could be read was not taken.
    [[nodiscard]] const std::string& LockProblem() const { return m_lockProblem; }

private:
    bool LoadProfiles();
    bool PrepareDataFolder();
    void BeginPublication();
    // Takes the lock; BadInput after a complaint, and what was held before is still held.
    Taking TakeLock(const std::filesystem::path& document);
    bool TakeOver(const std::filesystem::path& document);
    bool LoadRecording(const std::filesystem::path& document, std::string& problem);
    void LoadRecordingAgain(const std::filesystem::path& document);

    SupervisionOptions m_options;
    std::string m_program;
    Host& m_host;
    // Never unloaded, since another thread may hold a text of the one that was in force.
    struct Language {
        LanguageFile texts;
        DescriptionTable descriptions;  // empty: the descriptions of profiles stay English
    };
    std::map<std::string, std::unique_ptr<Language>> m_languages;
    ZRKestrixSetup m_setup;
    std::unique_ptr<ProcessLock> m_lock;
    std::string m_lockProblem;
    bool m_isOurs = false;
    ZRDebugInfo m_warnings;
    ZRMainCfg m_document;
    std::string m_savedText;  // of the document as it lies on disk
    ZRCommSystem m_system;
    supervision::Recording m_recording;
    supervision::Publication m_publication;
    Summary m_before;  // of the registries that were taken down, and of the warnings that were put away
};

}  // namespace zr::supervision
