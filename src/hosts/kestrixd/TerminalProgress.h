// How long work of a command shows how far it is, and how it is ended.
#pragma once

#include "platform/StopSignals.h"
#include "siblings/tools/Progress.h"

#include <string>

namespace zr::service {

// One line on standard error, only where a person reads it. A signal to stop cancels the work. One object a program.
class TerminalProgress final : public Progress {
public:
    TerminalProgress();
    // Takes the line away.
    ~TerminalProgress();
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    void SetText(const wchar* text) override;
    void SetPos(int percent) override;
    [[nodiscard]] bool IsCancelled() const override;

    // Takes the line away, before anything else is written.
    void Clear();

private:
    mutable StopSignals m_signals;
    mutable bool m_isCancelled = false;
    bool m_isShown;
    std::string m_text;
    int m_percent = -1;
};

}  // namespace zr::service
