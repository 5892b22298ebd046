#include "siblings/driversupport/recorder/TakenTimes.h"

#include <algorithm>
#include <utility>

namespace zr {
namespace {

constexpr std::int64_t kDay = 86400 * std::int64_t{1000000};
// Days of this program's own that are forgotten are taken by what it has recorded there.
constexpr std::size_t kMostWindows = 16;

}  // namespace

class TakenTimes::Collector final : public LoggerBlockVisitor {
public:
    Collector(std::int64_t from, std::int64_t to, std::vector<Range>& ranges) : m_from(from), m_to(to), m_ranges(ranges)
    {
    }

    // A block that can't be read holds nothing that could be overwritten.
    bool OnBlock(LoggerBlock& block) override
    {
        std::span<const std::int64_t> times;
        std::span<const double> values;
        if (block.Samples(times, values)) {
            for (const std::int64_t time : times) {
                Add(time);
            }
        }
        return true;
    }

private:
    void Add(std::int64_t time)
    {
        if (time < m_from || time >= m_to) {
            return;
        }
        Range* const last = !m_ranges.empty() ? &m_ranges.back() : nullptr;
        if (last == nullptr || (last->step != 0 && time - last->last != last->step)) {
            m_ranges.push_back({time, time, 0});
            return;
        }
        last->step = time - last->last;
        last->last = time;
    }

    std::int64_t m_from;
    std::int64_t m_to;
    std::vector<Range>& m_ranges;
};

bool TakenTimes::LookFrom(std::int64_t time, const RecordNames& names, LoggerReader& reader)
{
    Window window{time, time + kDay, {}};
    for (const Window& other : m_windows) {
        window.to = other.from > time ? std::min(window.to, other.from) : window.to;
    }
    for (std::size_t i = 0; i < names.Variables(); ++i) {
        const int variable = static_cast<int>(i);
        const ZRBasicString& name = names.VariableName(variable);
        LoggerSample first;
        if (!reader.FirstFrom(name, time, first)) {
            if (!reader.Error().empty()) {
                return false;
            }
            continue;
        }
        if (first.time < window.to) {
            Collector collector(first.time, window.to, window.ranges[variable]);
            if (!reader.ReadBlocks(name, first.time, window.to, LoggerNeed::Samples, collector)) {
                return false;
            }
        }
    }
    m_windows.push_back(std::move(window));
    if (m_windows.size() > kMostWindows) {
        m_windows.pop_front();
    }
    return true;
}

const TakenTimes::Window* TakenTimes::Find(std::int64_t time) const
{
    const auto window = std::find_if(m_windows.begin(), m_windows.end(),
                                     [time](const Window& known) { return known.from <= time && time < known.to; });
    return window != m_windows.end() ? &*window : nullptr;
}

bool TakenTimes::IsTaken(int variable, std::int64_t time) const
{
    const Window* const window = Find(time);
    if (window == nullptr) {
        return false;
    }
    const auto entry = window->ranges.find(variable);
    if (entry == window->ranges.end()) {
        return false;
    }
    return std::any_of(entry->second.begin(), entry->second.end(), [time](const Range& range) {
        return range.first <= time && time <= range.last &&
               (time == range.first || (time - range.first) % range.step == 0);
    });
}

}  // namespace zr
