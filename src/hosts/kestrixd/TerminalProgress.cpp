#include "hosts/kestrixd/TerminalProgress.h"

#include "platform/Terminal.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>
#include <cstdio>

namespace zr::service {

TerminalProgress::TerminalProgress() : m_isShown(IsErrorTerminal()) {}

TerminalProgress::~TerminalProgress()
{
    Clear();
}

void TerminalProgress::SetText(const wchar* text)
{
    m_text = Utf16ToUtf8(text);
    m_percent = -1;
}

void TerminalProgress::SetPos(int percent)
{
    if (!m_isShown || percent == m_percent) {
        return;
    }
    m_percent = percent;
    fmt::print(stderr, "\r\x1b[K{} {} %", m_text, percent);
    std::fflush(stderr);
}

bool TerminalProgress::IsCancelled() const
{
    m_isCancelled = m_isCancelled || m_signals.WaitForSignal(std::chrono::milliseconds(0)) != StopSignal::None;
    return m_isCancelled;
}

void TerminalProgress::Clear()
{
    if (m_isShown && m_percent >= 0) {
        fmt::print(stderr, "\r\x1b[K");
        std::fflush(stderr);
        m_percent = -1;
    }
}

}  // namespace zr::service
