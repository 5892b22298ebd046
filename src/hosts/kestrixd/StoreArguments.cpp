#include "hosts/kestrixd/StoreArguments.h"

#include "hosts/kestrixd/Commands.h"
#include "hosts/supervision/StorePlace.h"
#include "platform/FileReplace.h"
#include "platform/Paths.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>
#include <system_error>

namespace zr::service {
namespace {

// The document's path as far as titles go: "plant.xml" of "plant.recording.xml".
std::filesystem::path DocumentOf(const std::filesystem::path& recording)
{
    std::filesystem::path document = recording;
    const std::filesystem::path stem = recording.stem();
    return stem.extension() == ".recording" ? document.replace_filename(stem.stem()) : document;
}

}  // namespace

StoreArguments::StoreArguments(CLI::App& app) : m_app(app)
{
    app.allow_windows_style_options(false);
    CLI::Option* const store =
        app.add_option("--store", m_storeText, "the store's file")->type_name("FILE")->group("Store");
    CLI::Option* const recording =
        app.add_option("--recording", m_recordingText, "the recording file (XML) that names the store")
            ->type_name("FILE")
            ->group("Store");
    app.add_option("--document", m_documentText,
                   "the configuration document (XML): its recording file names the store, and its devices tell units "
                   "and classes of their variables")
        ->type_name("CONFIG")
        ->group("Store");
    app.add_option("--data", m_dataText, "folder of the logged data (default: the user's data folder)")
        ->type_name("FOLDER")
        ->group("Store");
    store->excludes(recording);
}

std::optional<int> StoreArguments::Parse(int argc, char** argv)
{
    try {
        m_app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return m_app.exit(error) == 0 ? kCommandDone : kCommandFailed;
    }
    return std::nullopt;
}

bool StoreArguments::Take(std::string& error)
{
    if (!m_storeText.empty()) {
        m_address.file = PathFromText(m_storeText);
        return true;
    }
    const std::filesystem::path file =
        m_recordingText.empty() ? RecordingFileOf(Document()) : PathFromText(m_recordingText);
    if (m_recordingText.empty() && m_documentText.empty()) {
        error = "which store? Name one by --store, --recording or --document";
        return false;
    }
    if (!m_recording.Load(file, error)) {
        return false;
    }
    const std::filesystem::path document = m_documentText.empty() ? DocumentOf(file) : Document();
    m_address = supervision::StoreAddressOf(m_recording, document,
                                            m_dataText.empty() ? zr::DataFolder() : PathFromText(m_dataText));
    return true;
}

std::unique_ptr<LoggerStore> StoreArguments::Open(bool mustExist, std::string& error) const
{
    std::error_code ignored;
    if (mustExist && m_address.nodes.empty() && !std::filesystem::exists(m_address.file, ignored)) {
        error = TextOfPath(m_address.file) + ": there is no such file";
        return nullptr;
    }
    return supervision::OpenLoggerStore(m_address, error);
}

std::string StoreArguments::Title() const
{
    return m_address.nodes.empty() ? TextOfPath(m_address.file) : fmt::format("{} servers", m_address.nodes.size());
}

std::filesystem::path StoreArguments::Document() const
{
    return PathFromText(m_documentText);
}

std::filesystem::path StoreArguments::DataFolder() const
{
    return PathFromText(m_dataText);
}

}  // namespace zr::service
