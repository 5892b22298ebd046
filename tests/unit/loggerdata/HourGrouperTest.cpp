#include "siblings/driversupport/hours/HourGrouper.h"

#include "RandomCalendar.h"
#include "siblings/driversupport/PeriodCuts.h"
#include "siblings/driversupport/VariableStore.h"
#include "support/ZoneChanges.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace zr {
namespace {

constexpr std::int64_t kMicros = 1000000;
constexpr std::size_t kHourTypes = 3;

using Times = std::vector<std::int64_t>;
using Values = std::vector<double>;

struct Series {
    Times times;
    Values values;
};

// A calendar, a zone, a range around one of its clock changes, the cuts of a period and samples in them and beside
// them.
struct Case {
    explicit Case(std::mt19937& random)
        : calendar(test::RandomCalendar(random, kHourTypes)),
          zone(RandomZone(random, middle)),
          from((middle - static_cast<std::int64_t>(random() % 300000)) * kMicros),
          to((middle + 1 + static_cast<std::int64_t>(random() % 300000)) * kMicros),
          cuts(PeriodCuts(zone, from / kMicros, to / kMicros, RandomPeriod(random))),
          runs(calendar, zone, from, to)
    {
        std::for_each(cuts.begin(), cuts.end(), [](std::int64_t& cut) { cut *= kMicros; });
    }

    static TimeZone RandomZone(std::mt19937& random, std::int64_t& change)
    {
        auto zone = test::ZoneChanges().begin();
        std::advance(zone, random() % test::ZoneChanges().size());
        change = zone->second[random() % zone->second.size()].utc;
        return test::ZoneOfTable(zone->first);
    }

    static std::int32_t RandomPeriod(std::mt19937& random)
    {
        const std::vector<std::int32_t> periods = {300, 900, 1800, 3600, 7200, 86400, 172800, 2678400};
        return periods[random() % periods.size()];
    }

    // At an uneven pace and with gaps; a counter with roll-overs and exchanged meters if so.
    [[nodiscard]] Series RandomSeries(std::mt19937& random, bool isCounter) const
    {
        Series series;
        double value = isCounter ? 999000.0 : 230.0;
        for (std::int64_t time = from - 4000 * kMicros; time < to + 4000 * kMicros;) {
            series.times.push_back(time);
            series.values.push_back(value);
            time += static_cast<std::int64_t>(1 + random() % (random() % 50 == 0 ? 20000 : 300)) * kMicros +
                    static_cast<std::int64_t>(random() % kMicros);
            value = isCounter ? value + static_cast<double>(random() % 16) : static_cast<double>(random() % 1000);
            if (isCounter && value >= 1e6) {
                value -= 1e6;
            }
            if (isCounter && random() % 200 == 0) {
                value = static_cast<double>(random() % 999000);
            }
        }
        return series;
    }

    [[nodiscard]] std::size_t HourTypeAt(std::int64_t time) const
    {
        return calendar.HourTypeAt(zone.ToLocal(time / kMicros));
    }

    std::int64_t middle = 0;
    HourCalendar calendar;
    TimeZone zone;
    std::int64_t from;
    std::int64_t to;
    Times cuts;
    HourRuns runs;
};

// In pieces as a store would give them: with a summary where it is enough.
void Add(SampleGrouper& grouper, const Series& series, std::mt19937& random)
{
    for (std::size_t at = 0; at < series.times.size();) {
        const std::size_t count = std::min<std::size_t>(1 + random() % 60, series.times.size() - at);
        const auto times = std::span(series.times).subspan(at, count);
        const auto values = std::span(series.values).subspan(at, count);
        if (!grouper.AddSummary(Summarise(times, values))) {
            grouper.AddSamples(times, values, true);
        }
        at += count;
    }
}

TEST(HourGrouper, TheHourTypesOfACounterAddUpToTheWholeWhateverTheCalendar)
{
    std::mt19937 random(21);
    for (int round = 0; round < 200; ++round) {
        const Case data(random);
        const Series series = data.RandomSeries(random, true);
        SampleGrouper whole(static_cast<std::int32_t>(VariableClass::Counter), data.cuts);
        Add(whole, series, random);
        HourGrouper split(static_cast<std::int32_t>(VariableClass::Counter), data.cuts, data.runs);
        Add(split.Samples(), series, random);
        std::vector<SampleGrouper> parts;
        for (std::size_t hourType = 0; hourType < kHourTypes; ++hourType) {
            parts.push_back(split.Of(hourType));
        }
        for (std::size_t group = 0; group < whole.Size(); ++group) {
            double sum = 0.0;
            bool isValid = false;
            for (const SampleGrouper& part : parts) {
                sum += part.IsValid(group) ? part.Value(group) : 0.0;
                isValid = isValid || part.IsValid(group);
            }
            ASSERT_EQ(isValid, whole.IsValid(group)) << round << ' ' << group;
            ASSERT_NEAR(sum, whole.Value(group), 1e-6) << round << ' ' << group;
        }
    }
}

// What a value of a period and an hour type must be, from each sample by itself.
std::optional<double> Expected(const Case& data, const Series& series, VariableClass variableClass, std::size_t group,
                               std::size_t hourType)
{
    Values held;
    for (std::size_t i = 0; i < series.times.size(); ++i) {
        const std::int64_t time = series.times[i];
        if (time >= data.cuts[group] && time < data.cuts[group + 1] && data.HourTypeAt(time) == hourType) {
            held.push_back(series.values[i]);
        }
    }
    if (held.empty()) {
        return std::nullopt;
    }
    switch (variableClass) {
        case VariableClass::Maximum:
            return *std::max_element(held.begin(), held.end());
        case VariableClass::Minimum:
            return *std::min_element(held.begin(), held.end());
        case VariableClass::State:
            return held.back();
        default:
            break;
    }
    double sum = 0.0;
    for (const double value : held) {
        sum += value;
    }
    return sum / static_cast<double>(held.size());
}

TEST(HourGrouper, OnlyTheSamplesOfTheHourTypeCountWhateverTheCalendar)
{
    std::mt19937 random(22);
    for (const VariableClass variableClass :
         {VariableClass::Instantaneous, VariableClass::Maximum, VariableClass::Minimum, VariableClass::State}) {
        for (int round = 0; round < 20; ++round) {
            const Case data(random);
            const Series series = data.RandomSeries(random, false);
            HourGrouper split(static_cast<std::int32_t>(variableClass), data.cuts, data.runs);
            Add(split.Samples(), series, random);
            for (std::size_t hourType = 0; hourType < kHourTypes; ++hourType) {
                const SampleGrouper part = split.Of(hourType);
                for (std::size_t group = 0; group < part.Size(); group += 1 + random() % 5) {
                    const auto expected = Expected(data, series, variableClass, group, hourType);
                    ASSERT_EQ(part.IsValid(group), expected.has_value()) << round << ' ' << group;
                    ASSERT_NEAR(part.IsValid(group) ? part.Value(group) : 0.0, expected.value_or(0.0), 1e-6) << round;
                }
            }
        }
    }
}

// The samples of a block, told once its samples are asked for.
class Block final : public LoggerBlock {
public:
    Block(Times times, Values values) : m_times(std::move(times)), m_values(std::move(values))
    {
        summary = Summarise(m_times, m_values);
    }
    bool Samples(std::span<const std::int64_t>& times, std::span<const double>& values) override
    {
        isUnpacked = true;
        times = m_times;
        values = m_values;
        return !isDamaged;
    }

    bool isUnpacked = false;
    bool isDamaged = false;

private:
    Times m_times;
    Values m_values;
};

class Collector final : public LoggerBlockVisitor {
public:
    bool OnBlock(LoggerBlock& block) override
    {
        summaries.push_back(block.summary);
        return goesOn;
    }

    std::vector<LoggerSummary> summaries;
    bool goesOn = true;
};

class HourFilterTest : public testing::Test {
protected:
    // Hour type 1 from 06:00 to 12:00 of each day of UTC, else 0.
    static HourCalendar Morning()
    {
        HourCalendar::Parts parts;
        parts.days = {{{0, 0}, {360, 1}, {720, 0}}};
        parts.dayOfKinds.assign(HourCalendar::KindOf(1, 0, false), 0);
        return HourCalendar(std::move(parts));
    }

    static std::int64_t At(int hour, int minute = 0)
    {
        return (test::SecondsOf("2026-03-02T00:00") + hour * 3600 + minute * 60) * kMicros;
    }

    HourRuns runs{Morning(), TimeZone(), At(0), At(24)};
    Collector collector;
    HourFilter filter{runs, 1, collector};
};

TEST_F(HourFilterTest, GroupedABlockWithinOneRunAndOnePeriodIsNotUnpacked)
{
    const Times cuts = {At(0), At(8), At(24)};
    for (const VariableClass variableClass : {VariableClass::Instantaneous, VariableClass::Counter}) {
        HourGrouper split(static_cast<std::int32_t>(variableClass), cuts, runs);
        const Values values = {1.0, 2.0};
        EXPECT_TRUE(split.Samples().AddSummary(Summarise(Times{At(6), At(7)}, values)));
        EXPECT_FALSE(split.Samples().AddSummary(Summarise(Times{At(7), At(8)}, values)));    // over a cut
        EXPECT_FALSE(split.Samples().AddSummary(Summarise(Times{At(11), At(12)}, values)));  // over a boundary
        EXPECT_TRUE(split.Samples().AddSummary(Summarise(Times{At(12), At(13)}, values)));
    }
}

TEST_F(HourFilterTest, BlocksWithinOneRunGoOnPackedOrNotAtAll)
{
    Block inside({At(6), At(11, 59)}, {1.0, 2.0});
    Block outside({At(12), At(13)}, {1.0, 2.0});
    EXPECT_TRUE(filter.OnBlock(inside));
    EXPECT_TRUE(filter.OnBlock(outside));
    EXPECT_FALSE(inside.isUnpacked);
    EXPECT_FALSE(outside.isUnpacked);
    ASSERT_EQ(collector.summaries.size(), 1u);
    EXPECT_EQ(collector.summaries[0].firstTime, At(6));
}

TEST_F(HourFilterTest, ABlockOnABoundaryIsCutThere)
{
    Block block({At(5, 59), At(6), At(6, 1)}, {1.0, 2.0, 4.0});
    EXPECT_TRUE(filter.OnBlock(block));
    ASSERT_EQ(collector.summaries.size(), 1u);
    EXPECT_EQ(collector.summaries[0].count, 2u);
    EXPECT_EQ(collector.summaries[0].firstTime, At(6));
    EXPECT_EQ(collector.summaries[0].sum, 6.0);
}

TEST_F(HourFilterTest, ABlockOverAWholeRunIsCutOnBothSides)
{
    Block block({At(1), At(7), At(8), At(13)}, {1.0, 2.0, 4.0, 8.0});
    EXPECT_TRUE(filter.OnBlock(block));
    ASSERT_EQ(collector.summaries.size(), 1u);
    EXPECT_EQ(collector.summaries[0].sum, 6.0);
    Block around({At(1), At(13)}, {1.0, 2.0});
    EXPECT_TRUE(filter.OnBlock(around));
    EXPECT_EQ(collector.summaries.size(), 1u);
}

TEST_F(HourFilterTest, SamplesOutsideTheRangeAreInNoHourType)
{
    Block before({At(-20), At(-16)}, {1.0, 2.0});
    Block over({At(-17), At(7)}, {1.0, 2.0});
    EXPECT_TRUE(filter.OnBlock(before));
    EXPECT_TRUE(filter.OnBlock(over));
    ASSERT_EQ(collector.summaries.size(), 1u);
    EXPECT_EQ(collector.summaries[0].count, 1u);
}

TEST_F(HourFilterTest, ADamagedBlockIsLeftOutAndTheReadingGoesOn)
{
    Block damaged({At(5), At(7)}, {1.0, 2.0});
    damaged.isDamaged = true;
    EXPECT_TRUE(filter.OnBlock(damaged));
    EXPECT_TRUE(collector.summaries.empty());
}

TEST_F(HourFilterTest, AVisitorThatHasEnoughEndsTheReading)
{
    collector.goesOn = false;
    Block inside({At(7)}, {1.0});
    EXPECT_FALSE(filter.OnBlock(inside));
}

TEST(HourRuns, EveryMomentOfTheRangeIsInOneRun)
{
    std::mt19937 random(23);
    for (int round = 0; round < 100; ++round) {
        const Case data(random);
        ASSERT_EQ(data.runs.Cuts().front(), data.from);
        ASSERT_EQ(data.runs.Cuts().back(), data.to);
        ASSERT_TRUE(std::is_sorted(data.runs.Cuts().begin(), data.runs.Cuts().end()));
        for (int i = 0; i < 100; ++i) {
            const std::int64_t time = data.from + static_cast<std::int64_t>(random()) * 97 % (data.to - data.from);
            ASSERT_EQ(data.runs.HourType(data.runs.RunAt(time)), data.HourTypeAt(time)) << round;
        }
        EXPECT_EQ(data.runs.RunAt(data.from - 1), data.runs.Size());
        EXPECT_EQ(data.runs.RunAt(data.to), data.runs.Size());
    }
}

}  // namespace
}  // namespace zr
