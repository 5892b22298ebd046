#include "siblings/driversupport/store/MemoryLoggerStore.h"

#include <algorithm>

namespace zr {

namespace {

constexpr std::int64_t kHour = 3600 * std::int64_t{1000000};

std::int64_t HourOf(std::int64_t time)
{
    return time / kHour - (time % kHour < 0 ? 1 : 0);
}

}  // namespace

class MemoryLoggerReader final : public LoggerReader {
public:
    explicit MemoryLoggerReader(const MemoryLoggerStore& store) : m_store(store) {}

    bool ReadBlocks(const ZRBasicString& variable, std::int64_t from, std::int64_t to, LoggerNeed,
                    LoggerBlockVisitor& visitor) override
    {
        std::vector<Shared> blocks;
        if (!Collect(variable, from, to, blocks)) {
            return false;
        }
        return std::all_of(blocks.begin(), blocks.end(), [&](const Shared& block) {
            if (block->times.back() < from || block->times.front() >= to) {
                return true;
            }
            View view(*block);
            return visitor.OnBlock(view);
        });
    }

    bool LastBefore(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override
    {
        const std::lock_guard lock(m_store.m_guard);
        const auto* const series = m_store.Find(variable);
        if (series == nullptr) {
            return false;
        }
        for (auto block = series->blocks.upper_bound(HourOf(time)); block != series->blocks.begin();) {
            --block;
            const auto& times = block->second->times;
            const auto place = std::lower_bound(times.begin(), times.end(), time);
            if (place != times.begin()) {
                Take(*block->second, place - times.begin() - 1, sample);
                return true;
            }
        }
        return false;
    }

    bool FirstFrom(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override
    {
        const std::lock_guard lock(m_store.m_guard);
        const auto* const series = m_store.Find(variable);
        if (series == nullptr) {
            return false;
        }
        for (auto block = series->blocks.lower_bound(HourOf(time)); block != series->blocks.end(); ++block) {
            const auto& times = block->second->times;
            const auto place = std::lower_bound(times.begin(), times.end(), time);
            if (place != times.end()) {
                Take(*block->second, place - times.begin(), sample);
                return true;
            }
        }
        return false;
    }

    std::int32_t InfoCode(const ZRBasicString& variable) override
    {
        const std::lock_guard lock(m_store.m_guard);
        const auto* const series = m_store.Find(variable);
        return series != nullptr ? series->infoCode : 0;
    }

    bool DataSets(std::vector<LoggerDataSet>& sets) override
    {
        const std::lock_guard lock(m_store.m_guard);
        sets.clear();
        for (const auto& [name, set] : m_store.m_sets) {
            sets.push_back(set);
        }
        return m_store.m_isAvailable;
    }

    // Memory holds what was put there.
    bool Check(LoggerCheck& check, Progress*) override
    {
        const std::lock_guard lock(m_store.m_guard);
        check = {};
        check.series = m_store.m_series.size();
        for (const auto& series : m_store.m_series) {
            check.blocks += series.blocks.size();
            for (const auto& [hour, block] : series.blocks) {
                check.packed += block->times.size();
            }
        }
        return true;
    }

    [[nodiscard]] std::string Error() const override
    {
        const std::lock_guard lock(m_store.m_guard);
        return m_store.m_isAvailable ? "" : "the store in memory is set away";
    }

private:
    using Block = MemoryLoggerStore::Block;
    using Shared = std::shared_ptr<const Block>;

    class View final : public LoggerBlock {
    public:
        explicit View(const Block& block) : m_block(block) { summary = block.summary; }
        bool Samples(std::span<const std::int64_t>& times, std::span<const double>& values) override
        {
            times = m_block.times;
            values = m_block.values;
            return true;
        }

    private:
        const Block& m_block;
    };

    static void Take(const Block& block, std::ptrdiff_t index, LoggerSample& sample)
    {
        const auto i = static_cast<std::size_t>(index);
        sample = {block.times[i], block.values[i]};
    }

    // False when the store is away.
    bool Collect(const ZRBasicString& variable, std::int64_t from, std::int64_t to, std::vector<Shared>& blocks) const
    {
        const std::lock_guard lock(m_store.m_guard);
        if (!m_store.m_isAvailable) {
            return false;
        }
        const auto* const series = m_store.Find(variable);
        if (series == nullptr || from >= to) {
            return true;
        }
        const auto end = series->blocks.lower_bound(HourOf(to - 1) + 1);
        for (auto block = series->blocks.lower_bound(HourOf(from)); block != end; ++block) {
            blocks.push_back(block->second);
        }
        return true;
    }

    const MemoryLoggerStore& m_store;
};

MemoryLoggerStore::MemoryLoggerStore() = default;

MemoryLoggerStore::~MemoryLoggerStore() = default;

int MemoryLoggerStore::OpenSeries(const ZRBasicString& variable, std::int32_t infoCode)
{
    const std::lock_guard lock(m_guard);
    if (!m_isAvailable) {
        m_error = "the store in memory is set away";
        return -1;
    }
    m_error.clear();
    const auto [entry, isNew] = m_names.try_emplace(variable, static_cast<int>(m_series.size()));
    if (isNew) {
        m_series.emplace_back();
        m_series.back().infoCode = infoCode;
    }
    return entry->second;
}

bool MemoryLoggerStore::Append(std::span<const LoggerAppend> batch)
{
    const std::lock_guard lock(m_guard);
    const auto isKnown = [&](const LoggerAppend& sample) {
        return sample.series >= 0 && static_cast<std::size_t>(sample.series) < m_series.size();
    };
    m_error.clear();
    if (!m_isAvailable) {
        m_error = "the store in memory is set away";
    } else if (!std::all_of(batch.begin(), batch.end(), isKnown)) {
        m_error = "the store in memory has no series of that number";
    }
    if (!m_error.empty()) {
        return false;
    }
    std::vector<LoggerAppend> sorted(batch.begin(), batch.end());
    std::stable_sort(sorted.begin(), sorted.end(), [](const LoggerAppend& left, const LoggerAppend& right) {
        return left.series != right.series ? left.series < right.series : left.time < right.time;
    });
    for (auto first = sorted.begin(); first != sorted.end();) {
        const int series = first->series;
        const std::int64_t hour = HourOf(first->time);
        const auto last = std::find_if(first, sorted.end(), [&](const LoggerAppend& sample) {
            return sample.series != series || HourOf(sample.time) != hour;
        });
        AppendToBlock(m_series[static_cast<std::size_t>(series)], hour, {first, last});
        first = last;
    }
    return true;
}

void MemoryLoggerStore::AppendToBlock(Series& series, std::int64_t hour, std::span<const LoggerAppend> samples)
{
    std::shared_ptr<const Block>& entry = series.blocks[hour];
    const auto block = entry != nullptr ? std::make_shared<Block>(*entry) : std::make_shared<Block>();
    for (const LoggerAppend& sample : samples) {
        const auto place = std::lower_bound(block->times.begin(), block->times.end(), sample.time);
        const auto index = place - block->times.begin();
        if (place != block->times.end() && *place == sample.time) {
            block->values[static_cast<std::size_t>(index)] = sample.value;
            continue;
        }
        block->times.insert(place, sample.time);
        block->values.insert(block->values.begin() + index, sample.value);
    }
    block->summary = Summarise(block->times, block->values);
    entry = block;
}

bool MemoryLoggerStore::SetDataSet(const LoggerDataSet& set)
{
    const std::lock_guard lock(m_guard);
    m_error.clear();
    const auto isKnown = [&](const ZRBasicString& variable) { return m_names.contains(variable); };
    if (!m_isAvailable) {
        m_error = "the store in memory is set away";
    } else if (!std::all_of(set.variables.begin(), set.variables.end(), isKnown)) {
        m_error = "the store in memory has no series for a variable of the data set";
    } else {
        m_sets[set.name] = set;
    }
    return m_error.empty();
}

LoggerStore::Upkeep MemoryLoggerStore::Maintain(std::int64_t now)
{
    constexpr std::int64_t kDay = 24 * kHour;
    const std::lock_guard lock(m_guard);
    if (!m_isAvailable) {
        m_error = "the store in memory is set away";
        return Upkeep::Failed;
    }
    m_error.clear();
    for (const auto& [variable, number] : m_names) {
        if (const std::int32_t days = RetentionOf(variable); days > 0) {
            Blocks& blocks = m_series[static_cast<std::size_t>(number)].blocks;
            blocks.erase(blocks.begin(), blocks.lower_bound(HourOf(now - days * kDay)));
        }
    }
    return Upkeep::Done;
}

std::int32_t MemoryLoggerStore::RetentionOf(const ZRBasicString& variable) const
{
    std::int32_t longest = 0;
    for (const auto& [name, set] : m_sets) {
        if (std::find(set.variables.begin(), set.variables.end(), variable) != set.variables.end()) {
            if (set.retention == 0) {
                return 0;
            }
            longest = std::max(longest, set.retention);
        }
    }
    return longest;
}

std::unique_ptr<LoggerReader> MemoryLoggerStore::OpenReader()
{
    const std::lock_guard lock(m_guard);
    if (!m_isAvailable) {
        return nullptr;
    }
    return std::make_unique<MemoryLoggerReader>(*this);
}

std::string MemoryLoggerStore::Error() const
{
    const std::lock_guard lock(m_guard);
    return m_error;
}

void MemoryLoggerStore::SetAvailable(bool available)
{
    const std::lock_guard lock(m_guard);
    m_isAvailable = available;
}

const MemoryLoggerStore::Series* MemoryLoggerStore::Find(const ZRBasicString& variable) const
{
    const auto entry = m_names.find(variable);
    if (!m_isAvailable || entry == m_names.end()) {
        return nullptr;
    }
    return &m_series[static_cast<std::size_t>(entry->second)];
}

}  // namespace zr
