#include "platform/CommandLine.h"

#include "platform/Unicode.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// After it:
#include <shellapi.h>
#include <memory>

namespace zr {

CommandLine::CommandLine(int argc, char** argv) : m_consoleCodePage(::GetConsoleOutputCP())
{
    // What main() gets was squeezed into the system's 8-bit code page.
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&::LocalFree)> words(::CommandLineToArgvW(::GetCommandLineW(), &count),
                                                                &::LocalFree);
    for (int i = 0; words != nullptr && i < count; ++i) {
        m_words.push_back(Utf8From16(reinterpret_cast<const char16_t*>(words.get()[i])));
    }
    if (words == nullptr) {
        m_words.assign(argv, argv + argc);
    }
    PointAtWords();
    ::SetConsoleOutputCP(CP_UTF8);
}

CommandLine::~CommandLine()
{
    ::SetConsoleOutputCP(m_consoleCodePage);
}

}  // namespace zr
