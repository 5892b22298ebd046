#include "hosts/supervision/Supervisor.h"

#include "devices/modbus/ModbusDrivers.h"
#include "hosts/supervision/DocumentCheck.h"
#include "platform/FileReplace.h"
#include "platform/Paths.h"
#include "siblings/driversupport/FilterFile.h"
#include "siblings/driversupport/ZRRSDeviceConnection.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLoadString.h"

#include <fmt/format.h>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

namespace zr::supervision {
namespace {

// The warning list has no limit of its own, and a program runs for years: beyond this it is emptied. Every entry has
// gone to the log by then.
constexpr int kWarningsKept = 10000;

// Puts the filter files that come with the program where the user has none of that name.
bool CopyShippedFilters(const std::filesystem::path& folder, std::string& reason)
{
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(ResourceFolder() / "filters", ignored)) {
        const std::filesystem::path target = folder / entry.path().filename();
        std::string bytes;
        if (std::filesystem::exists(target, ignored)) {
            continue;
        }
        if (!ReadWholeFile(entry.path(), XmlDocument::kMaxBytes, bytes, reason) ||
            !WriteFileReplacing(target, bytes, reason)) {
            return false;
        }
    }
    return true;
}

void AddCounts(Summary& sum, const Summary& more)
{
    sum.ticks += more.ticks;
    sum.transactions += more.transactions;
    sum.timeouts += more.timeouts;
    sum.droppedFrames += more.droppedFrames;
}

}  // namespace

Supervisor::Supervisor(SupervisionOptions options, std::string program, Host& host)
    : m_options(std::move(options)),
      m_program(std::move(program)),
      m_host(host),
      m_lock(std::make_unique<ProcessLock>()),
      m_recording(m_options),
      m_publication(m_options.serviceName, m_options.updatePeriod)
{
}

Supervisor::~Supervisor()
{
    m_publication.End();
    m_recording.End();
    m_recording.RegistryGoes();
    m_system.Reset();
    ZRDeviceDriver::ClearFactories();
    SetLanguage(nullptr);
    SetDescriptions(nullptr);
}

bool Supervisor::Prepare(const std::string& language)
{
    if (!UseLanguage(language) || !LoadProfiles() || !PrepareDataFolder()) {
        return false;
    }
    SetPortMap(m_options.ports);
    return true;
}

bool Supervisor::UseLanguage(const std::string& language)
{
    std::unique_ptr<Language>& known = m_languages[language];
    if (known == nullptr) {
        auto fresh = std::make_unique<Language>();
        if (!fresh->texts.Load(ResourceFolder() / "language" / (language + ".txt"))) {
            m_host.Complain(fresh->texts.Error().Message());
            return false;
        }
        const std::filesystem::path descriptions = ResourceFolder() / "descriptions" / (language + ".txt");
        std::error_code ignored;
        if (std::filesystem::exists(descriptions, ignored) && !fresh->descriptions.Load(descriptions)) {
            m_host.Complain(fresh->descriptions.Error().Message());
        }
        known = std::move(fresh);
    }
    SetLanguage(&known->texts);
    SetDescriptions(&known->descriptions);
    return true;
}

bool Supervisor::LoadProfiles()
{
    std::vector<std::string> errors;
    modbus::RegisterDrivers(ResourceFolder() / "devices", errors);
    for (const std::string& error : errors) {
        m_host.Complain(error);
    }
    return errors.empty();
}

bool Supervisor::PrepareDataFolder()
{
    if (!m_options.dataFolder.empty()) {
        m_setup.SetDataFolder(Utf8ToUtf16(TextOfPath(m_options.dataFolder)));
    }
    const std::filesystem::path folder = PathFromText(m_setup.dataFolder.Text());
    std::string reason;
    if (!MakePrivateFolder(folder, reason) || !CopyShippedFilters(folder, reason)) {
        m_host.Complain(fmt::format("{}: {}", TextOfPath(folder), reason));
        return false;
    }
    return true;
}

Supervisor::Taking Supervisor::TakeDocument()
{
    if (!m_document.Load(m_options.document)) {
        m_host.Complain(m_document.Error().Message());
        return Taking::BadInput;
    }
    m_savedText = m_document.SaveText();
    if (std::string problem; !LoadRecording(m_options.document, problem)) {
        m_host.Complain(problem);
        return Taking::BadInput;
    }
    return TakeLock(m_options.document);
}

Supervisor::Taking Supervisor::TakeLock(const std::filesystem::path& document)
{
    auto lock = std::make_unique<ProcessLock>();
    const ProcessLock::Result result = lock->Take(document, m_program);
    if (result == ProcessLock::Result::Failed) {
        m_lockProblem = lock->Reason();
        m_host.Complain(fmt::format("{}: {}", TextOfPath(document), m_lockProblem));
        return Taking::BadInput;
    }
    m_lock = std::move(lock);
    m_isOurs = result == ProcessLock::Result::Taken;
    return m_isOurs ? Taking::Taken : Taking::HeldByOther;
}

bool Supervisor::CheckFilters()
{
    std::set<ZRBasicString> seen;
    bool good = true;
    for (auto driver = m_system.DriversBegin(); driver != m_system.DriversEnd(); ++driver) {
        const wchar* filter = (*driver)->DefaultFilter();
        if (filter == nullptr || !seen.insert(filter).second) {
            continue;
        }
        // The driver tells the file's title, which has no extension.
        const std::filesystem::path path = PathFromText((m_setup.dataFolder + filter + u".MVDF").Text());
        FilterFile file;
        std::string error;
        if (!file.Load(path, error)) {
            m_host.Complain(error);
            good = false;
        } else if (!file.Calendar()) {
            m_host.Log(NoCalendarText(path));
        }
    }
    return good;
}

void Supervisor::LoadRegistry()
{
    const XmlNode* commSystem = m_document.root->Node(u"CommSystem");
    for (const Finding& finding : CheckDocument(commSystem)) {
        Report(finding.notice, finding.line);
    }
    if (commSystem == nullptr) {
        m_host.Log(
            fmt::format("{}: no CommSystem element, so there is nothing to supervise", TextOfPath(m_options.document)));
    } else {
        m_system.LoadCfg(*commSystem);
    }
    m_recording.RegistryCame(m_isOurs);
    m_host.RegistryCame();
}

void Supervisor::Start()
{
    if (!m_isOurs) {
        return;
    }
    m_system.Start();
    m_recording.Begin();
    BeginPublication();
}

void Supervisor::BeginPublication()
{
    if (m_options.serviceName.empty()) {
        return;
    }
    if (!m_publication.Begin()) {
        Report({DeviceWarning::PublicationFailed, Utf8ToUtf16(m_options.serviceName), {}, {}}, 0);
        return;
    }
    const Summary summary = Summarise();
    m_host.Log(fmt::format("publishing {} variables of {} devices as service {}", summary.variables, summary.devices,
                           m_options.serviceName));
}

bool Supervisor::Reload()
{
    return TakeOver(m_options.document);
}

bool Supervisor::Open(const std::filesystem::path& document)
{
    return TakeOver(document);
}

bool Supervisor::TakeOver(const std::filesystem::path& document)
{
    XmlDocument fresh;
    bool isReadable = fresh.Load(document);
    if (!isReadable) {
        m_host.Log(fresh.Error().Message());
    }
    const bool hasLock = m_isOurs && document == m_options.document;
    if (!isReadable || (!hasLock && TakeLock(document) == Taking::BadInput)) {
        m_host.Log("the document was not read again; supervision goes on with the old one");
        return false;
    }
    m_publication.End();
    m_system.Stop();
    AddCounts(m_before, Summarise());
    m_host.RegistryGoes();
    m_recording.RegistryGoes();
    m_system.Reset();
    LoadRecordingAgain(document);
    m_options.document = document;
    static_cast<XmlDocument&>(m_document) = fresh;
    m_savedText = m_document.SaveText();
    LoadProfiles();
    LoadRegistry();
    CheckFilters();
    Start();
    Report({DeviceWarning::ConfigurationLoaded, Utf8ToUtf16(TextOfPath(document)), {}, {}}, 0);
    return true;
}

bool Supervisor::LoadRecording(const std::filesystem::path& document, std::string& problem)
{
    if (!m_recording.Load(document, problem)) {
        return false;
    }
    if (const std::string remark = m_recording.Remark(); !remark.empty()) {
        m_host.Log(remark);
    }
    return true;
}

// A file that is refused keeps the recording of the same document as it is.
void Supervisor::LoadRecordingAgain(const std::filesystem::path& document)
{
    std::string problem;
    if (LoadRecording(document, problem)) {
        return;
    }
    const bool isSame = document == m_options.document;
    if (!isSame) {
        m_recording.Forget(document);
    }
    const ZRBasicString reason = Utf8ToUtf16(problem);
    Report({DeviceWarning::ConfigurationRefused, Utf8ToUtf16(TextOfPath(m_recording.FileOf(document))), reason,
            ZRBasicString(u"(") + reason + u")"},
           0);
    m_host.Log(isSame ? "the recording file was not taken; recording goes on as before" : "nothing is recorded");
}

bool Supervisor::IsModified() const
{
    return m_document.root != nullptr && m_document.SaveText() != m_savedText;
}

bool Supervisor::Save()
{
    if (!m_document.Save()) {
        m_host.Complain(m_document.Error().Message());
        return false;
    }
    m_savedText = m_document.SaveText();
    return true;
}

void Supervisor::TakeNotices()
{
    for (const DeviceNotice& notice : zr::TakeNotices()) {
        Report(notice, 0);
    }
    for (const DeviceNotice& notice : m_recording.Tick()) {
        Report(notice, 0);
    }
    if (m_warnings.Size() > kWarningsKept) {
        m_before.warnings = Figures().warnings;
        m_warnings.Invalidate();
    }
}

void Supervisor::Report(const DeviceNotice& notice, std::size_t line)
{
    m_warnings.AddWarning(static_cast<int>(notice.type), notice.name, notice.info, notice.detail);
    const int index = m_warnings.Size() - 1;
    const char* kind = m_warnings.IsEvent(index) ? "event" : "warning";
    // A message without a text of its own begins with a blank.
    const std::string place = line != 0 ? fmt::format("{}:{}: ", TextOfPath(m_options.document), line) : "";
    const std::string message = Utf16ToUtf8(m_warnings.WarningStr(index));
    m_host.Log(fmt::format("{}{}: {}", place, kind, message.substr(message.starts_with(' ') ? 1 : 0)));
}

Summary Supervisor::Figures() const
{
    Summary summary = Summarise();
    AddCounts(summary, m_before);
    summary.warnings += m_before.warnings;
    const supervision::Publication::Figures published = m_publication.Count();
    summary.ddeConversations = published.conversations;
    summary.ddeLinks = published.links;
    summary.ddePosts = published.posts;
    summary.ddeMerged = published.merged;
    summary.recording = m_recording.Figures().total;
    return summary;
}

}  // namespace zr::supervision
