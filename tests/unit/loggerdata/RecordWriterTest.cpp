#include "siblings/driversupport/RecordWriter.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace zr {
namespace {

constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kEpoch = 946684800;
constexpr std::int64_t kStart = 1041379200;  // 1 January 2003 UTC

class RecordWriterTest : public testing::Test {
protected:
    // -1 for what isn't valid.
    [[nodiscard]] std::vector<double> ValuesOf(std::size_t column) const
    {
        std::vector<double> values;
        for (auto record = arena.At(0); record != arena.At(arena.Size()); ++record) {
            const LoggedValue& value = (*record)->values[column];
            values.push_back(value.valid != 0 ? value.value : -1.0);
        }
        return values;
    }
    [[nodiscard]] std::vector<std::int64_t> LocalSeconds() const
    {
        std::vector<std::int64_t> seconds;
        for (auto record = arena.At(0); record != arena.At(arena.Size()); ++record) {
            seconds.push_back(kEpoch + (*record)->time.seconds - kStart);
        }
        return seconds;
    }
    static std::vector<std::int64_t> Times(const std::vector<std::int64_t>& seconds)
    {
        std::vector<std::int64_t> times;
        for (const std::int64_t second : seconds) {
            times.push_back((kStart + second) * kMicros);
        }
        return times;
    }

    RecordArena arena{2};
    TimeZone zone;
    RecordWriter writer{arena, zone};
};

TEST_F(RecordWriterTest, ColumnsOfTheSameTimesShareTheirRecords)
{
    const std::vector<SampleColumn> columns = {{Times({1, 2, 3}), {1.0, 2.0, 3.0}},
                                               {Times({1, 2, 3}), {4.0, 5.0, 6.0}}};
    writer.Append(columns);
    EXPECT_EQ(LocalSeconds(), (std::vector<std::int64_t>{1, 2, 3}));
    EXPECT_EQ(ValuesOf(0), columns[0].values);
    EXPECT_EQ(ValuesOf(1), columns[1].values);
}

TEST_F(RecordWriterTest, AColumnWithoutASampleAtATimeHasNoValueThere)
{
    writer.Append(std::vector<SampleColumn>{{Times({2, 4}), {2.0, 4.0}}, {Times({1, 4, 5}), {10.0, 40.0, 50.0}}});
    EXPECT_EQ(LocalSeconds(), (std::vector<std::int64_t>{1, 2, 4, 5}));
    EXPECT_EQ(ValuesOf(0), (std::vector{-1.0, 2.0, 4.0, -1.0}));
    EXPECT_EQ(ValuesOf(1), (std::vector{10.0, -1.0, 40.0, 50.0}));
}

TEST_F(RecordWriterTest, AColumnWithoutSamplesHasNoValues)
{
    writer.Append(std::vector<SampleColumn>{{{}, {}}, {Times({1, 2}), {1.0, 2.0}}});
    writer.Append(std::vector<SampleColumn>{{Times({3}), {3.0}}, {{}, {}}});
    writer.Append(std::vector<SampleColumn>(2));
    EXPECT_EQ(LocalSeconds(), (std::vector<std::int64_t>{1, 2, 3}));
    EXPECT_EQ(ValuesOf(0), (std::vector{-1.0, -1.0, 3.0}));
    EXPECT_EQ(ValuesOf(1), (std::vector{1.0, 2.0, -1.0}));
}

TEST_F(RecordWriterTest, ColumnsOfAsManySamplesAtOtherTimesAreNotMixedUp)
{
    writer.Append(std::vector<SampleColumn>{{Times({1, 3}), {1.0, 3.0}}, {Times({2, 4}), {2.0, 4.0}}});
    EXPECT_EQ(ValuesOf(0), (std::vector{1.0, -1.0, 3.0, -1.0}));
    EXPECT_EQ(ValuesOf(1), (std::vector{-1.0, 2.0, -1.0, 4.0}));
}

TEST_F(RecordWriterTest, WhatIsNoFiniteNumberIsNoValue)
{
    using Limits = std::numeric_limits<double>;
    writer.Append(std::vector<SampleColumn>{{Times({1, 2, 3}), {Limits::quiet_NaN(), 2.0, 3.0}},
                                            {Times({1, 2, 3}), {1.0, -Limits::infinity(), Limits::max()}}});
    EXPECT_EQ(ValuesOf(0), (std::vector{-1.0, 2.0, 3.0}));
    EXPECT_EQ(ValuesOf(1), (std::vector{1.0, -1.0, Limits::max()}));
}

TEST_F(RecordWriterTest, AClockChangeBetweenAndWithinStretchesShiftsTheLocalTimes)
{
    zone = TimeZone(3600, {{kStart + 100, 7200}, {kStart + 200, 3600}});
    for (const auto& seconds : {Times({0, 99}), Times({100, 199, 200})}) {
        writer.Append(std::vector<SampleColumn>{{seconds, std::vector<double>(seconds.size(), 1.0)}, {{}, {}}});
    }
    EXPECT_EQ(LocalSeconds(), (std::vector<std::int64_t>{3600, 3699, 7300, 7399, 3800}));
}

TEST_F(RecordWriterTest, FractionsOfASecondStay)
{
    writer.Append(std::vector<SampleColumn>{{{kStart * kMicros + 999999}, {1.0}}, {{}, {}}});
    EXPECT_EQ((*arena.At(0))->time.microseconds, 999999u);
    EXPECT_EQ(LocalSeconds(), std::vector<std::int64_t>{0});
}

// Each value is its time, in one column or the other or both.
TEST_F(RecordWriterTest, AnyPatternOfSamplesComesOutWhole)
{
    std::mt19937 random(5);
    const auto below = [&random](unsigned end) { return static_cast<unsigned>(random() % end); };
    std::vector<std::int64_t> seconds;
    std::vector<std::vector<double>> expected(2);
    std::int64_t second = 0;
    for (int round = 0; round < 200; ++round) {
        std::vector<SampleColumn> columns(2);
        for (unsigned samples = below(300); samples > 0; --samples) {
            second += 1 + std::int64_t{below(3)};
            const unsigned where = round % 3 == 0 ? 3 : 1 + below(3);
            seconds.push_back(second);
            for (std::size_t c = 0; c < 2; ++c) {
                const bool has = (where >> c & 1) != 0;
                expected[c].push_back(has ? static_cast<double>(second) : -1.0);
                if (has) {
                    columns[c].times.push_back((kStart + second) * kMicros);
                    columns[c].values.push_back(static_cast<double>(second));
                }
            }
        }
        writer.Append(columns);
    }
    EXPECT_EQ(LocalSeconds(), seconds);
    EXPECT_EQ(ValuesOf(0), expected[0]);
    EXPECT_EQ(ValuesOf(1), expected[1]);
}

}  // namespace
}  // namespace zr
