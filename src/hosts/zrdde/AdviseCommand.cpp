#include "hosts/zrdde/AdviseCommand.h"

#include "dde/DdeIds.h"
#include "hosts/zrdde/DdeSession.h"
#include "hosts/zrdde/UpdateText.h"

#include <fmt/format.h>
#include <algorithm>
#include <cstdio>

namespace zr::ddeclient {
namespace {

using SteadyClock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kLongestWait{1000};

class AdviseRun {
public:
    explicit AdviseRun(const Options& options)
        : m_options(options), m_session([this](std::size_t item, auto bytes) { Print(item, bytes); })
    {
    }

    int Run()
    {
        std::string problem = m_session.Connect(m_options.service, m_options.topic);
        if (problem.empty()) {
            const UINT format =
                m_options.format == Format::XlTable ? RegisterClipboardFormatW(dde::kXlTableFormatName) : UINT{CF_TEXT};
            problem = m_session.Link(m_options.items, format);
        }
        if (!problem.empty()) {
            fmt::print(stderr, "zrdde: {}\n", problem);
            return kRefused;
        }
        return WaitForValues();
    }

private:
    int WaitForValues()
    {
        while (!IsCountReached()) {
            if (m_session.IsEnded()) {
                fmt::print(stderr, "zrdde: the server ended the conversation\n");
                return kServerEnded;
            }
            const auto left = TimeLeft();
            if (left <= std::chrono::milliseconds::zero()) {
                return EndOfTime();
            }
            m_session.Wait(std::min(left, kLongestWait));
        }
        return kDone;
    }

    [[nodiscard]] int EndOfTime() const
    {
        if (!m_options.count && m_received > 0) {
            return kDone;
        }
        const std::string wanted = m_options.count ? fmt::format(" of {}", *m_options.count) : "";
        fmt::print(stderr, "zrdde: the time is over: {}{} values came\n", m_received, wanted);
        return kTimedOut;
    }

    [[nodiscard]] bool IsCountReached() const { return m_options.count && m_received >= *m_options.count; }

    [[nodiscard]] std::chrono::milliseconds TimeLeft() const
    {
        if (!m_options.timeout) {
            return kLongestWait;
        }
        return std::chrono::ceil<std::chrono::milliseconds>(m_start + *m_options.timeout - SteadyClock::now());
    }

    void Print(std::size_t item, std::span<const std::uint8_t> bytes)
    {
        if (IsCountReached()) {
            return;
        }
        ++m_received;
        const UpdateLine update{std::chrono::system_clock::now(), m_options.topic, m_options.items[item],
                                m_options.format, bytes};
        fmt::print("{}\n", m_options.json ? JsonLine(update) : PlainLine(update));
        std::fflush(stdout);
    }

    const Options& m_options;
    SteadyClock::time_point m_start = SteadyClock::now();
    std::uint64_t m_received = 0;
    DdeSession m_session;
};

}  // namespace

int Advise(const Options& options)
{
    return AdviseRun(options).Run();
}

}  // namespace zr::ddeclient
