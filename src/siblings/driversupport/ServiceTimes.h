// The times by which lines and devices are served.
#pragma once

#include <chrono>

namespace zr {

struct ServiceTimes {
    // Requests in a row without an answer after which a device counts as silent.
    int timeoutsToSilence = 3;
    // A silent device is asked again after the first of these, then after twice as long each time, up to the second.
    std::chrono::milliseconds firstProbe{5000};
    std::chrono::milliseconds longestProbe{60000};
    // Where the line has other devices, it is asked no more often than once in so many time-outs: the time-out and
    // the quiet after it, which is at most as long, then take the others at most a tenth of their time.
    int probeCostFactor = 20;
    // A lost port is opened again after the first of these, then after twice as long each time, up to the second.
    std::chrono::milliseconds firstReopen{1000};
    std::chrono::milliseconds longestReopen{30000};
    // After so long without a reply to anybody on a line, the address of its host name is looked up again; and again
    // after as long.
    std::chrono::milliseconds longSilence{60000};
    // How long a line rests at least after a request without an answer.
    std::chrono::milliseconds leastQuiet{50};
};

// Any thread.
ServiceTimes CurrentServiceTimes();
// In force for what starts or opens afterwards. Any thread.
void SetServiceTimes(const ServiceTimes& times);

}  // namespace zr
