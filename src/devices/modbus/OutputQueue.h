// Outputs that are to be set, between whoever asks and the I/O thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

namespace zr::modbus {

// An output that is asked for again before it was sent takes the newer value at its old place, so that the queue never
// grows beyond the number of outputs. Any thread.
class OutputQueue {
public:
    struct Output {
        std::size_t variable = 0;
        double value = 0.0;  // stored value
        std::chrono::steady_clock::time_point asked;
    };

    void Put(const Output& output);
    // The oldest; empty when there is none.
    std::optional<Output> Take();
    // Takes out those that were asked for before that instant, oldest first.
    std::vector<Output> TakeOlderThan(std::chrono::steady_clock::time_point instant);

private:
    std::mutex m_guard;
    std::deque<Output> m_outputs;
};

}  // namespace zr::modbus
