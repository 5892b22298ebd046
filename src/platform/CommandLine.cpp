#include "platform/CommandLine.h"

namespace zr {

void CommandLine::PointAtWords()
{
    for (std::string& word : m_words) {
        m_pointers.push_back(word.data());
    }
    m_pointers.push_back(nullptr);
}

}  // namespace zr
