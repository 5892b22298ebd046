#include "hosts/kestrixd/Service.h"

#include "hosts/supervision/RecordingText.h"
#include "platform/Clock.h"
#include "platform/FileReplace.h"
#include "platform/Terminal.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <algorithm>
#include <cstdio>
#include <utility>

namespace zr::service {
namespace {

using Seconds = std::chrono::seconds;

constexpr std::size_t kMessagesKept = 50;
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

}  // namespace

Service::Service(Options options)
    : m_options(std::move(options)), m_supervisor(m_options.supervision, "kestrixd", *this)
{
}

Service::~Service()
{
    m_table.reset();
}

int Service::Run()
{
    if (!m_supervisor.Prepare()) {
        return kBadInput;
    }
    if (const int status = TakeDocument(); status != kEndedAsAsked) {
        return status;
    }
    m_supervisor.LoadRegistry();
    if (!m_supervisor.CheckFilters()) {
        return kBadInput;
    }
    // From here on a signal is ours: whoever has read the first line may send one.
    StopSignals signals;
    m_supervisor.Start();
    Supervise(signals);
    return Finish();
}

int Service::TakeDocument()
{
    using Taking = supervision::Supervisor::Taking;
    switch (m_supervisor.TakeDocument()) {
        case Taking::Taken:
            return kEndedAsAsked;
        case Taking::HeldByOther:
            Complain(fmt::format("{}: already supervised by process {} ({})",
                                 TextOfPath(m_options.supervision.document), m_supervisor.OtherProcess(),
                                 m_supervisor.OtherProgram()));
            return kSupervisedElsewhere;
        case Taking::BadInput:
            break;
    }
    return kBadInput;
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
        m_supervisor.TakeNotices();
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
        if (m_supervisor.Publication().IsRunning()) {
            m_supervisor.Publication().Run(std::exchange(round, {}));
        }
        const StopSignal signal = signals.WaitForSignal(round);
        if (signal == StopSignal::HangUp) {
            m_supervisor.Reload();
        } else if (signal != StopSignal::None) {
            break;
        }
    }
    if (m_showsTable) {
        fmt::print("{}", kCloseScreen);
        m_showsTable = false;
    }
}

void Service::Complain(const std::string& text)
{
    fmt::print(stderr, "{}\n", text);
    std::fflush(stderr);  // Windows keeps lines back that go to a file or a pipe
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
    std::string text = m_table->Render(size.columns, size.rows, m_supervisor.Figures(),
                                       supervision::RecordingLine(m_supervisor.Recording().Status()), m_messages);
    std::string screen = kHome;
    for (const char character : text) {
        // What a line leaves of the one before it is wiped.
        screen += character == '\n' ? std::string("\x1b[K\n") : std::string(1, character);
    }
    fmt::print("{}{}", screen, kClearRest);
    std::fflush(stdout);
}

// The figures are taken while the values are still live, and when all samples are where they stay.
int Service::Finish()
{
    m_supervisor.EndRecording();
    m_supervisor.TakeNotices();
    const supervision::Summary summary = m_supervisor.Figures();
    if (m_options.json) {
        fmt::print("{}\n", summary.Json());
    } else {
        fmt::print("{}", m_table->Render(120, 200, summary,
                                         supervision::RecordingLine(m_supervisor.Recording().Status()), {}));
    }
    std::fflush(stdout);
    return kEndedAsAsked;
}

}  // namespace zr::service
