#include "devices/modbus/OutputQueue.h"

#include <algorithm>

namespace zr::modbus {

void OutputQueue::Put(const Output& output)
{
    const std::lock_guard lock(m_guard);
    const auto same = std::find_if(m_outputs.begin(), m_outputs.end(),
                                   [&](const Output& other) { return other.variable == output.variable; });
    if (same != m_outputs.end()) {
        *same = output;
        return;
    }
    m_outputs.push_back(output);
}

std::optional<OutputQueue::Output> OutputQueue::Take()
{
    const std::lock_guard lock(m_guard);
    if (m_outputs.empty())
        return std::nullopt;
    const Output output = m_outputs.front();
    m_outputs.pop_front();
    return output;
}

std::vector<OutputQueue::Output> OutputQueue::TakeOlderThan(std::chrono::steady_clock::time_point instant)
{
    std::vector<Output> old;
    const std::lock_guard lock(m_guard);
    std::erase_if(m_outputs, [&](const Output& output) {
        if (output.asked >= instant)
            return false;
        old.push_back(output);
        return true;
    });
    return old;
}

}  // namespace zr::modbus
