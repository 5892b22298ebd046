#include "platform/CommandLine.h"

namespace zr {

CommandLine::CommandLine(int argc, char** argv) : m_words(argv, argv + argc)
{
    PointAtWords();
}

CommandLine::~CommandLine() = default;

}  // namespace zr
