// The recording of one document by this process: its file, the stores, the recorder.
#pragma once

#include "hosts/supervision/SupervisionOptions.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/driversupport/recorder/Recorder.h"
#include "siblings/driversupport/recorder/RecordingFile.h"
#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/LoggerStoreAddress.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace zr::supervision {

// How recording stands.
struct RecordingStatus {
    bool isConfigured = false;        // the document has a recording file
    bool isRecording = false;         // false while another program records, and before it begins
    std::filesystem::path file;       // the recording file, or where it would be
    std::filesystem::path storeFile;  // empty: nodes
    std::vector<ZRBasicString>
        nodes;  // a title each: the name of the store's file, or "host:port/database" of a server
    std::vector<LoggerDataSet> dataSets;  // as their variables were looked up last
    RecorderFigures figures;              // counts since the program started; of nodes only while it records
};

// Order of use: Load; RegistryCame when the devices are there, Begin when they are asked; Tick now and then;
// RegistryGoes before they go. One thread, the program's main loop; nothing here waits for a store that is away, but
// for what Recorder::Stop says.
class Recording {
public:
    // Of the options: the recording file, and the folder of the data.
    explicit Recording(const SupervisionOptions& options);
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    // As End().
    ~Recording();

    // Reads the recording file of a document. No file beside the document is no error: nothing is recorded then. False
    // when the file is refused, with error "FILE:LINE: REASON"; what was loaded before stays.
    bool Load(const std::filesystem::path& document, std::string& error);
    // As if the document had no recording file.
    void Forget(const std::filesystem::path& document);
    // What a person should know about the file that was loaded; empty when there is nothing.
    [[nodiscard]] std::string Remark() const;

    // The registry is filled: the store is in force for reading from now on, and if isOurs, the variables are looked
    // up. Recording that goes on with the same variables and stores isn't interrupted. No load may run.
    void RegistryCame(bool isOurs);
    // Values are asked for from now on. Recording begins when the recorded devices have answered, or a few seconds
    // later, so that a start loses no samples for want of a first answer.
    void Begin();
    void RegistryGoes();
    // Ends recording; what was sampled is in the store or the spool then. The store is in force for reading still.
    void End();

    // Begins what waits to begin, and gives what happened since the last call, for the warning list.
    std::vector<DeviceNotice> Tick();

    [[nodiscard]] RecordingStatus Status() const;
    // Where the recording file of a document is looked for.
    [[nodiscard]] std::filesystem::path FileOf(const std::filesystem::path& document) const;
    // As in the status.
    [[nodiscard]] RecorderFigures Figures() const;

private:
    // What a recorder is made of; another one is made when any of it changes.
    struct Plan {
        LoggerStoreAddress address;
        std::filesystem::path spool;
        std::int32_t spoolLimit = 0;  // MiB
        std::vector<LoggerDataSet> dataSets;
        bool isOurs = false;
        friend bool operator==(const Plan&, const Plan&) = default;
    };

    void TakePlaces();
    [[nodiscard]] std::vector<ZRBasicString> StoreTitles() const;
    void OpenForReading();
    void MakeRecorder();
    void DropRecorder();
    void TryToStart();
    [[nodiscard]] bool HaveAllAnswered() const;
    void TakeRecorderNotices();
    void Refuse(const std::string& why);

    std::filesystem::path m_firstDocument;  // to which the option belongs
    std::filesystem::path m_option;         // its recording file; empty: the one beside it
    std::filesystem::path m_dataFolder;
    bool m_isOff;

    // Of the file that was loaded last.
    bool m_isConfigured = false;
    std::filesystem::path m_document;
    std::filesystem::path m_file;
    RecordingFile m_recording;
    LoggerStoreAddress m_address;
    std::filesystem::path m_spool;

    std::vector<LoggerDataSet> m_dataSets;
    Plan m_plan;                             // in force
    std::unique_ptr<LoggerStore> m_reading;  // in force
    std::unique_ptr<Recorder> m_recorder;    // null while there is nothing to record
    RecorderFigures m_before;                // of the recorders that were dropped
    bool m_waitsForStart = false;
    std::chrono::steady_clock::time_point m_patienceEnds;
    std::chrono::steady_clock::time_point m_nextTry;
    std::string m_startProblem;  // told already
    std::vector<DeviceNotice> m_notices;
};

}  // namespace zr::supervision
