#include "hosts/supervision/Recording.h"

#include "hosts/supervision/RecordedVariables.h"
#include "hosts/supervision/RecordingNotices.h"
#include "hosts/supervision/StorePlace.h"
#include "platform/Clock.h"
#include "platform/FileReplace.h"
#include "platform/Paths.h"
#include "siblings/driversupport/store/LoggerNodes.h"
#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace zr::supervision {
namespace {

// How long recording waits for devices that don't answer at first: as long as a device takes to be found silent.
constexpr std::chrono::seconds kPatience{3};
// Between two attempts to begin, while another process has the spool.
constexpr std::chrono::seconds kRetry{5};
constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;

void AddCounts(RecorderCounts& sum, const RecorderCounts& more)
{
    sum.recorded += more.recorded;
    sum.spooled += more.spooled;
    for (std::size_t i = 0; i < sum.unrecorded.size(); ++i) {
        sum.unrecorded[i] += more.unrecorded[i];
    }
}

RecorderDataSetFigures& SetOf(RecorderFigures& figures, const ZRBasicString& name)
{
    auto& sets = figures.dataSets;
    const auto found = std::find_if(sets.begin(), sets.end(), [&](const auto& set) { return set.name == name; });
    return found != sets.end() ? *found : sets.emplace_back(RecorderDataSetFigures{name, 0, 0, 0, {}});
}

// The counts and times of samples; what describes a set or a node stays.
void AddFigures(RecorderFigures& sum, const RecorderFigures& more)
{
    AddCounts(sum.total, more.total);
    for (const RecorderDataSetFigures& set : more.dataSets) {
        RecorderDataSetFigures& same = SetOf(sum, set.name);
        AddCounts(same.counts, set.counts);
        same.lastTime = std::max(same.lastTime, set.lastTime);
    }
}

bool HoldsPassword(const std::vector<std::string>& nodes)
{
    return std::any_of(nodes.begin(), nodes.end(), [](const std::string& text) {
        return text.find("password") != std::string::npos || text.find('@') != std::string::npos;
    });
}

std::filesystem::path WithSuffix(std::filesystem::path path, const char* suffix)
{
    path += suffix;
    return path;
}

}  // namespace

Recording::Recording(const SupervisionOptions& options)
    : m_firstDocument(options.document),
      m_option(options.recording),
      m_dataFolder(options.dataFolder.empty() ? zr::DataFolder() : options.dataFolder),
      m_isOff(options.recordsNothing)
{
}

Recording::~Recording()
{
    End();
    SetLoggerStore(nullptr);
}

std::filesystem::path Recording::FileOf(const std::filesystem::path& document) const
{
    return !m_option.empty() && document == m_firstDocument ? m_option : RecordingFileOf(document);
}

bool Recording::Load(const std::filesystem::path& document, std::string& error)
{
    const std::filesystem::path file = FileOf(document);
    const bool isMust = file == m_option;
    std::error_code code;
    if (m_isOff || (!isMust && std::filesystem::status(file, code).type() == std::filesystem::file_type::not_found)) {
        Forget(document);
        return true;
    }
    if (!m_recording.Load(file, error)) {
        return false;
    }
    m_isConfigured = true;
    m_file = file;
    m_document = document;
    TakePlaces();
    return true;
}

void Recording::Forget(const std::filesystem::path& document)
{
    m_document = document;
    m_isConfigured = false;
    m_recording = {};
    m_file.clear();
    m_address = {};
    m_spool.clear();
}

std::string Recording::Remark() const
{
    if (!HoldsPassword(m_recording.nodes) || !CanOthersRead(m_file)) {
        return {};
    }
    return TextOfPath(m_file) + ": names how to enter a server, and other users can read it; chmod 600 keeps them out";
}

// Where the samples go and wait; a relative path counts from the data folder.
void Recording::TakePlaces()
{
    const std::filesystem::path title = m_document.stem();
    m_address = StoreAddressOf(m_recording, m_document, m_dataFolder);
    const std::filesystem::path beside =
        m_recording.nodes.empty() ? WithSuffix(m_address.file, "-spool") : m_dataFolder / WithSuffix(title, "-spool");
    m_spool = m_recording.spoolFolder.empty() ? beside : m_dataFolder / m_recording.spoolFolder;
}

std::vector<ZRBasicString> Recording::StoreTitles() const
{
    std::vector<ZRBasicString> titles;
    for (const std::string& name : LoggerNodeNames(m_address)) {
        titles.push_back(Utf8ToUtf16(name));
    }
    if (m_address.nodes.empty()) {
        titles.front() = Utf8ToUtf16(TextOfPath(m_address.file.filename()));
    }
    return titles;
}

void Recording::RegistryCame(bool isOurs)
{
    const RecordedVariables found = LookUpVariables(m_recording);
    m_dataSets = found.dataSets;
    Plan plan{m_address, m_spool, m_recording.spoolLimit, m_dataSets, isOurs};
    if (m_plan != plan) {
        DropRecorder();
        if (m_plan.address != plan.address) {
            OpenForReading();
        }
        m_plan = std::move(plan);
        if (isOurs && !m_dataSets.empty()) {
            MakeRecorder();
        }
    }
    if (m_recorder == nullptr) {
        return;
    }
    for (const RecordedVariables::Missing& missing : found.missing) {
        m_notices.push_back(NoticeOfMissingDevice(missing.dataSet, missing.device));
    }
    m_recorder->Bind();
}

void Recording::OpenForReading()
{
    SetLoggerStore(nullptr);
    m_reading.reset();
    if (!m_isConfigured) {
        return;
    }
    std::string error;
    m_reading = OpenLoggerStore(m_address, error);
    if (m_reading == nullptr) {
        Refuse(error);
        return;
    }
    SetLoggerStore(m_reading.get());
}

void Recording::MakeRecorder()
{
    std::string error;
    std::vector<std::unique_ptr<LoggerStore>> nodes = OpenLoggerNodes(m_address, error);
    if (nodes.empty()) {
        return;  // told when it was opened for reading
    }
    if (m_address.nodes.empty()) {
        // A folder that can't be made shows as a store that is away.
        std::string ignored;
        MakePrivateFolder(m_address.file.parent_path(), ignored);
    }
    RecorderOptions options;
    options.spoolFolder = m_spool;
    options.spoolBytes = static_cast<std::uint64_t>(m_recording.spoolLimit) * kMiB / nodes.size();
    m_recorder = std::make_unique<Recorder>(m_dataSets, std::move(nodes), std::move(options));
}

void Recording::DropRecorder()
{
    m_waitsForStart = false;
    if (m_recorder == nullptr) {
        return;
    }
    m_recorder->Stop();
    TakeRecorderNotices();
    RecorderFigures last = m_recorder->Figures();
    m_recorder.reset();
    // The next one counts what it finds in the spool.
    last.total.spooled = 0;
    for (RecorderDataSetFigures& set : last.dataSets) {
        set.counts.spooled = 0;
    }
    AddFigures(m_before, last);
}

void Recording::Begin()
{
    if (m_recorder == nullptr || m_recorder->IsStarted()) {
        return;
    }
    m_waitsForStart = true;
    m_patienceEnds = CurrentClock().Steady() + kPatience;
    m_nextTry = {};
}

void Recording::RegistryGoes()
{
    if (m_recorder != nullptr) {
        m_recorder->Unbind();
    }
}

void Recording::End()
{
    m_waitsForStart = false;
    if (m_recorder != nullptr) {
        m_recorder->Stop();
    }
}

std::vector<DeviceNotice> Recording::Tick()
{
    TryToStart();
    TakeRecorderNotices();
    return std::exchange(m_notices, {});
}

void Recording::TryToStart()
{
    const auto now = CurrentClock().Steady();
    if (!m_waitsForStart || now < m_nextTry || (now < m_patienceEnds && !HaveAllAnswered())) {
        return;
    }
    std::string error;
    if (m_recorder->Start(error)) {
        m_waitsForStart = false;
        m_startProblem.clear();
        return;
    }
    m_nextTry = now + kRetry;
    if (std::exchange(m_startProblem, error) != error) {
        Refuse(error);
    }
}

bool Recording::HaveAllAnswered() const
{
    for (const RecordingFile::DataSet& set : m_recording.dataSets) {
        for (const RecordingFile::Entry& entry : set.entries) {
            const ZRDeviceDriver* const driver = ZRDeviceDriver::LockDriver(entry.device.CStr(), false);
            if (driver != nullptr && !driver->Online()) {
                return false;
            }
        }
    }
    return true;
}

void Recording::TakeRecorderNotices()
{
    if (m_recorder == nullptr) {
        return;
    }
    const std::vector<ZRBasicString> titles = StoreTitles();
    for (const RecorderNotice& notice : m_recorder->TakeNotices()) {
        m_notices.push_back(NoticeOf(notice, titles));
    }
}

// What keeps the recording file from being followed.
void Recording::Refuse(const std::string& why)
{
    const ZRBasicString reason = Utf8ToUtf16(why);
    m_notices.push_back({DeviceWarning::ConfigurationRefused, Utf8ToUtf16(TextOfPath(m_file)), reason,
                         ZRBasicString(u"(") + reason + u")"});
}

RecordingStatus Recording::Status() const
{
    RecordingStatus status;
    status.isConfigured = m_isConfigured;
    status.isRecording = m_recorder != nullptr && m_recorder->IsStarted();
    status.file = m_isConfigured ? m_file : FileOf(m_document);
    status.storeFile = m_address.file;
    status.nodes = m_isConfigured ? StoreTitles() : std::vector<ZRBasicString>();
    status.dataSets = m_dataSets;
    status.figures = Figures();
    return status;
}

RecorderFigures Recording::Figures() const
{
    RecorderFigures figures;
    if (m_recorder != nullptr) {
        figures = m_recorder->Figures();
    } else {
        for (const LoggerDataSet& set : m_dataSets) {
            figures.dataSets.push_back({set.name, set.period, set.variables.size(), 0, {}});
        }
    }
    const std::size_t current = figures.dataSets.size();
    AddFigures(figures, m_before);
    figures.dataSets.resize(current);
    return figures;
}

}  // namespace zr::supervision
