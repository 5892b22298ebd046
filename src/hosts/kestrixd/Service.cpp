#include "hosts/kestrixd/Service.h"

#include "devices/modbus/ModbusDrivers.h"
#include "hosts/kestrixd/ServiceCheck.h"
#include "platform/Clock.h"
#include "platform/FileReplace.h"
#include "platform/Paths.h"
#include "platform/Terminal.h"
#include "siblings/driversupport/FilterFile.h"
#include "siblings/driversupport/ZRRSDeviceConnection.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLoadString.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <algorithm>
#include <cstdio>
#include <set>
#include <system_error>
#include <utility>

namespace zr::service {
namespace {

using Seconds = std::chrono::seconds;

constexpr std::size_t kMessagesKept = 50;
// The warning list has no limit of its own, and a service runs for years: beyond this it is emptied. Every entry has
// gone to standard error by then.
constexpr int kWarningsKept = 10000;
constexpr std::chrono::milliseconds kRound{250};  // how soon notices are seen

// The terminal's own picture while the table is shown, and back.
constexpr const char* kOpenScreen = "\x1b[?1049h\x1b[?25l";
constexpr const char* kCloseScreen = "\x1b[?25h\x1b[?1049l";
constexpr const char* kHome = "\x1b[H";
constexpr const char* kClearRest = "\x1b[J";

std::string Stamp()
{
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", std::chrono::time_point_cast<Seconds>(CurrentClock().Utc()));
}

void Complain(const std::string& text)
{
    fmt::print(stderr, "{}\n", text);
    std::fflush(stderr);  // Windows keeps lines back that go to a file or a pipe
}

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

Service::Service(Options options)
    : m_options(std::move(options)), m_publication(m_options.serviceName, m_options.updatePeriod)
{
}

Service::~Service()
{
    m_publication.End();
    m_table.reset();
    m_system.Reset();
    ZRDeviceDriver::ClearFactories();
    SetLanguage(nullptr);
}

int Service::Run()
{
    if (!LoadTexts() || !LoadProfiles() || !PrepareDataFolder()) {
        return kBadInput;
    }
    SetPortMap(m_options.ports);
    if (const int status = TakeDocument(); status != kEndedAsAsked) {
        return status;
    }
    StartRegistry();
    if (!CheckFilters()) {
        return kBadInput;
    }
    // From here on a signal is ours: whoever has read the first line may send one.
    StopSignals signals;
    m_system.Start();
    BeginPublication();
    Supervise(signals);
    return Finish();
}

bool Service::LoadTexts()
{
    if (!m_language.Load(ResourceFolder() / "language" / "en.txt")) {
        Complain(m_language.Error().Message());
        return false;
    }
    SetLanguage(&m_language);
    return true;
}

bool Service::LoadProfiles()
{
    std::vector<std::string> errors;
    modbus::RegisterDrivers(ResourceFolder() / "devices", errors);
    for (const std::string& error : errors) {
        Complain(error);
    }
    return errors.empty();
}

bool Service::PrepareDataFolder()
{
    if (!m_options.dataFolder.empty()) {
        m_setup.SetDataFolder(Utf8ToUtf16(TextOfPath(m_options.dataFolder)));
    }
    const std::filesystem::path folder = PathFromText(m_setup.dataFolder.Text());
    std::string reason;
    if (!MakePrivateFolder(folder, reason) || !CopyShippedFilters(folder, reason)) {
        Complain(fmt::format("{}: {}", TextOfPath(folder), reason));
        return false;
    }
    return true;
}

int Service::TakeDocument()
{
    if (!m_document.Load(m_options.document)) {
        Complain(m_document.Error().Message());
        return kBadInput;
    }
    const std::string file = TextOfPath(m_options.document);
    switch (m_lock.Take(m_options.document, "kestrixd")) {
        case ProcessLock::Result::Taken:
            return kEndedAsAsked;
        case ProcessLock::Result::HeldByOther:
            Complain(fmt::format("{}: already supervised by process {} ({})", file, m_lock.OtherProcess(),
                                 m_lock.OtherProgram()));
            return kSupervisedElsewhere;
        case ProcessLock::Result::Failed:
            break;
    }
    Complain(fmt::format("{}: {}", file, m_lock.Reason()));
    return kBadInput;
}

bool Service::CheckFilters()
{
    std::set<ZRBasicString> seen;
    bool good = true;
    for (auto driver = m_system.DriversBegin(); driver != m_system.DriversEnd(); ++driver) {
        const wchar* filter = (*driver)->DefaultFilter();
        if (filter == nullptr || !seen.insert(filter).second) {
            continue;
        }
        // The driver tells the file's title, which has no extension.
        std::string error;
        if (!FilterFile().Load(PathFromText((m_setup.dataFolder + filter + u".MVDF").Text()), error)) {
            Complain(error);
            good = false;
        }
    }
    return good;
}

void Service::StartRegistry()
{
    const XmlNode* commSystem = m_document.root->Node(u"CommSystem");
    for (const Finding& finding : CheckDocument(commSystem)) {
        Report(finding.notice, finding.line);
    }
    if (commSystem == nullptr) {
        Log(fmt::format("{}: no CommSystem element, so there is nothing to supervise", TextOfPath(m_options.document)));
    } else {
        m_system.LoadCfg(*commSystem);
    }
    m_table = std::make_unique<LiveTable>();
}

void Service::BeginPublication()
{
    if (m_options.serviceName.empty()) {
        return;
    }
    if (!m_publication.Begin()) {
        Report({DeviceWarning::PublicationFailed, Utf8ToUtf16(m_options.serviceName), {}, {}}, 0);
        return;
    }
    const Summary summary = Summarise();
    Log(fmt::format("publishing {} variables of {} devices as service {}", summary.variables, summary.devices,
                    m_options.serviceName));
}

// What can't be read leaves everything as it is.
void Service::Reload()
{
    XmlDocument fresh;
    if (!fresh.Load(m_options.document)) {
        Log(fresh.Error().Message());
        Log("the document was not read again; supervision goes on with the old one");
        return;
    }
    m_publication.End();
    m_system.Stop();
    AddCounts(m_before, Summarise());
    m_table.reset();
    m_system.Reset();
    static_cast<XmlDocument&>(m_document) = fresh;
    LoadProfiles();
    StartRegistry();
    CheckFilters();
    m_system.Start();
    BeginPublication();
    Report({DeviceWarning::ConfigurationLoaded, Utf8ToUtf16(TextOfPath(m_options.document)), {}, {}}, 0);
}

void Service::Supervise(StopSignals& signals)
{
    using std::chrono::steady_clock;
    m_showsTable = IsTerminal() && !m_options.json;
    if (m_showsTable) {
        fmt::print("{}", kOpenScreen);
    }
    const steady_clock::time_point start = CurrentClock().Steady();
    for (;;) {
        TakeNotices();
        if (m_showsTable) {
            ShowTable();
        }
        std::chrono::milliseconds round = kRound;
        if (m_options.span) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(start + *m_options.span - CurrentClock().Steady());
            if (left.count() <= 0) {
                break;
            }
            round = std::min(round, left);
        }
        if (m_publication.IsRunning()) {
            m_publication.Run(std::exchange(round, {}));
        }
        const StopSignal signal = signals.WaitForSignal(round);
        if (signal == StopSignal::HangUp) {
            Reload();
        } else if (signal != StopSignal::None) {
            break;
        }
    }
    if (m_showsTable) {
        fmt::print("{}", kCloseScreen);
        m_showsTable = false;
    }
}

void Service::TakeNotices()
{
    for (const DeviceNotice& notice : zr::TakeNotices()) {
        Report(notice, 0);
    }
    if (m_warnings.Size() > kWarningsKept) {
        m_before.warnings = Figures().warnings;
        m_warnings.Invalidate();
    }
}

void Service::Report(const DeviceNotice& notice, std::size_t line)
{
    m_warnings.AddWarning(static_cast<int>(notice.type), notice.name, notice.info, notice.detail);
    const int index = m_warnings.Size() - 1;
    const char* kind = m_warnings.IsEvent(index) ? "event" : "warning";
    const std::string place = line != 0 ? fmt::format("{}:{}: ", TextOfPath(m_options.document), line) : "";
    Log(fmt::format("{}{}: {}", place, kind, Utf16ToUtf8(m_warnings.WarningStr(index))));
}

void Service::Log(const std::string& text)
{
    m_messages.push_back(Stamp() + ' ' + text);
    if (m_messages.size() > kMessagesKept) {
        m_messages.pop_front();
    }
    // The table shows the latest itself.
    if (!m_showsTable) {
        Complain(m_messages.back());
    }
}

void Service::ShowTable()
{
    const TerminalSize size = SizeOfTerminal();
    std::string text = m_table->Render(size.columns, size.rows, Figures(), m_messages);
    std::string screen = kHome;
    for (const char character : text) {
        // What a line leaves of the one before it is wiped.
        screen += character == '\n' ? std::string("\x1b[K\n") : std::string(1, character);
    }
    fmt::print("{}{}", screen, kClearRest);
    std::fflush(stdout);
}

Summary Service::Figures() const
{
    Summary summary = Summarise();
    AddCounts(summary, m_before);
    summary.warnings += m_before.warnings;
    const Publication::Figures published = m_publication.Count();
    summary.ddeConversations = published.conversations;
    summary.ddeLinks = published.links;
    summary.ddePosts = published.posts;
    summary.ddeMerged = published.merged;
    return summary;
}

// The figures are taken while the values are still live.
int Service::Finish()
{
    TakeNotices();
    const Summary summary = Figures();
    if (m_options.json) {
        fmt::print("{}\n", summary.Json());
    } else {
        fmt::print("{}", m_table->Render(120, 200, summary, {}));
    }
    std::fflush(stdout);
    return kEndedAsAsked;
}

}  // namespace zr::service
