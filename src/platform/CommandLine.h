// The words that a program was started with.
#pragma once

#include <string>
#include <vector>

namespace zr {

// The command line as UTF-8 on every system; lives as long as Values() is used. On Windows the words are those of the
// process, whatever was given here, and the console shows UTF-8 until this ends. One object a program.
class CommandLine {
public:
    CommandLine(int argc, char** argv);
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    // As main() gets them: the program first, a null behind the last.
    [[nodiscard]] int Count() const { return static_cast<int>(m_words.size()); }
    [[nodiscard]] char** Values() { return m_pointers.data(); }

private:
    void PointAtWords();

    std::vector<std::string> m_words;
    std::vector<char*> m_pointers;
    unsigned m_consoleCodePage = 0;  // as it was; Windows only
};

}  // namespace zr
