// The options by which a command finds its store.
#pragma once

#include "siblings/driversupport/recorder/RecordingFile.h"
#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/LoggerStoreAddress.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace zr::service {

// Adds the options to a parser and holds their words until they are taken. The parser must outlive this.
class StoreArguments {
public:
    explicit StoreArguments(CLI::App& app);
    StoreArguments(const StoreArguments&) = delete;
    StoreArguments& operator=(const StoreArguments&) = delete;

    // Parses the command line of the parser that was given. The exit status, where the command is to end with it.
    [[nodiscard]] std::optional<int> Parse(int argc, char** argv);

    // After the parsing: reads the recording file where one tells the store. False with an error.
    bool Take(std::string& error);

    // The store; mustExist: a file that is missing is an error and isn't made. Null with an error.
    [[nodiscard]] std::unique_ptr<LoggerStore> Open(bool mustExist, std::string& error) const;

    // The store's file, or how many servers, for people.
    [[nodiscard]] std::string Title() const;
    // Empty when none is named.
    [[nodiscard]] std::filesystem::path Document() const;
    // Where the filter files are; empty: where the user's are.
    [[nodiscard]] std::filesystem::path DataFolder() const;
    // What is recorded; without data sets when no recording file is read.
    [[nodiscard]] const RecordingFile& Recording() const { return m_recording; }

private:
    CLI::App& m_app;
    std::string m_storeText;  // UTF-8, as the arguments are
    std::string m_documentText;
    std::string m_recordingText;
    std::string m_dataText;
    RecordingFile m_recording;
    LoggerStoreAddress m_address;
};

}  // namespace zr::service
