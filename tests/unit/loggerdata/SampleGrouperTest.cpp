#include "siblings/driversupport/SampleGrouper.h"

#include "siblings/driversupport/CounterRise.h"
#include "siblings/driversupport/VariableStore.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <vector>

namespace zr {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

using Times = std::vector<std::int64_t>;
using Values = std::vector<double>;
using Result = std::vector<std::optional<double>>;

bool AreFinite(const Values& values)
{
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

Result ResultOf(const SampleGrouper& grouper)
{
    Result result;
    for (std::size_t i = 0; i < grouper.Size(); ++i) {
        result.push_back(grouper.IsValid(i) ? std::optional(grouper.Value(i)) : std::nullopt);
    }
    return result;
}

Result Group(VariableClass variableClass, const Times& cuts, const Times& times, const Values& values)
{
    SampleGrouper grouper(static_cast<std::int32_t>(variableClass), cuts);
    grouper.AddSamples(times, values, AreFinite(values));
    return ResultOf(grouper);
}

const Times kCuts = {0, 10, 20, 30};
const Times kTimes = {0, 4, 9, 10, 11, 29};
const Values kValues = {1.0, 5.0, 3.0, 7.0, -2.0, 4.0};

TEST(SampleGrouper, InstantaneousValuesGiveTheirMean)
{
    EXPECT_EQ(Group(VariableClass::Instantaneous, kCuts, kTimes, kValues), (Result{3.0, 2.5, 4.0}));
}

TEST(SampleGrouper, AnUnknownClassCountsAsInstantaneous)
{
    EXPECT_EQ(Group(static_cast<VariableClass>(0), kCuts, kTimes, kValues), (Result{3.0, 2.5, 4.0}));
    EXPECT_EQ(Group(static_cast<VariableClass>(77), kCuts, kTimes, kValues), (Result{3.0, 2.5, 4.0}));
}

TEST(SampleGrouper, MaximaGiveTheLargest)
{
    EXPECT_EQ(Group(VariableClass::Maximum, kCuts, kTimes, kValues), (Result{5.0, 7.0, 4.0}));
    EXPECT_EQ(Group(VariableClass::Maximum, kCuts, {1, 2}, {-5.0, -3.0}), (Result{-3.0, {}, {}}));
}

TEST(SampleGrouper, MinimaGiveTheSmallest)
{
    EXPECT_EQ(Group(VariableClass::Minimum, kCuts, kTimes, kValues), (Result{1.0, -2.0, 4.0}));
}

TEST(SampleGrouper, StatesGiveTheLast)
{
    EXPECT_EQ(Group(VariableClass::State, kCuts, kTimes, kValues), (Result{3.0, -2.0, 4.0}));
}

TEST(SampleGrouper, AGroupWithoutSamplesHasNoValue)
{
    EXPECT_EQ(Group(VariableClass::Instantaneous, kCuts, {25}, {1.0}), (Result{{}, {}, 1.0}));
    EXPECT_EQ(Group(VariableClass::Instantaneous, kCuts, {}, {}), (Result{{}, {}, {}}));
}

TEST(SampleGrouper, SamplesOutsideAllGroupsCountForNothing)
{
    EXPECT_EQ(Group(VariableClass::Instantaneous, kCuts, {-1, 0, 30, 31}, {9.0, 1.0, 9.0, 9.0}), (Result{1.0, {}, {}}));
}

TEST(SampleGrouper, WhatIsNotFiniteCountsForNothing)
{
    EXPECT_EQ(Group(VariableClass::Instantaneous, kCuts, {1, 2, 3, 11}, {1.0, kNan, 3.0, kInf}), (Result{2.0, {}, {}}));
    EXPECT_EQ(Group(VariableClass::Maximum, kCuts, {1, 2, 3}, {kNan, kInf, 3.0}), (Result{3.0, {}, {}}));
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {0, 5, 10}, {1.0, kNan, 3.0}), (Result{2.0, {}, {}}));
}

TEST(SampleGrouper, WithoutCutsThereAreNoGroups)
{
    EXPECT_TRUE(Group(VariableClass::Instantaneous, {}, {1}, {1.0}).empty());
    SampleGrouper grouper(1, {});
    EXPECT_FALSE(grouper.AddSummary(LoggerSummary()));
}

TEST(SampleGrouper, ACounterGivesTheConsumptionBetweenTheCuts)
{
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {0, 5, 10, 15, 20, 25, 30},
                    {100.0, 101.0, 103.0, 106.0, 110.0, 115.0, 121.0}),
              (Result{3.0, 7.0, 11.0}));
}

TEST(SampleGrouper, AStepOverACutIsSharedOutByTime)
{
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {8, 12}, {100.0, 104.0}), (Result{2.0, 2.0, {}}));
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {-10, 5}, {100.0, 130.0}), (Result{10.0, {}, {}}));
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {25, 40}, {100.0, 130.0}), (Result{{}, {}, 10.0}));
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {-10, 40}, {0.0, 50.0}), (Result{10.0, 10.0, 10.0}));
}

TEST(SampleGrouper, AGapOfACounterIsSharedOutOverItsGroups)
{
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {5, 25}, {0.0, 20.0}), (Result{5.0, 10.0, 5.0}));
}

TEST(SampleGrouper, OneReadingAloneGivesNoConsumption)
{
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {10}, {100.0}), (Result{{}, {}, {}}));
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {5, 10}, {100.0, 101.0}), (Result{1.0, {}, {}}));
}

TEST(SampleGrouper, ACounterThatStandsStillConsumedNothing)
{
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {0, 10, 20}, {5.0, 5.0, 5.0}), (Result{0.0, 0.0, {}}));
}

TEST(SampleGrouper, ACounterThatRollsOverGoesOn)
{
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {0, 3, 6, 10, 20}, {999990.0, 999998.0, 2.0, 7.0, 9.0}),
              (Result{17.0, 2.0, {}}));
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {5, 15}, {999998.0, 2.0}), (Result{2.0, 2.0, {}}));
}

TEST(SampleGrouper, AnExchangedMeterCountsFromItsFirstReading)
{
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {0, 5, 6, 10}, {5000.0, 5003.0, 12.0, 14.0}), (Result{5.0, {}, {}}));
    EXPECT_EQ(Group(VariableClass::Counter, kCuts, {0, 9, 12, 20}, {5000.0, 5003.0, 0.0, 14.0}),
              (Result{3.0, 14.0, {}}));
}

TEST(SampleGrouper, ChunksGiveTheSameAsTheWhole)
{
    for (const VariableClass variableClass : {VariableClass::Instantaneous, VariableClass::Maximum,
                                              VariableClass::Minimum, VariableClass::State, VariableClass::Counter}) {
        const Result whole = Group(variableClass, kCuts, kTimes, kValues);
        for (std::size_t split = 0; split <= kTimes.size(); ++split) {
            SampleGrouper grouper(static_cast<std::int32_t>(variableClass), kCuts);
            grouper.AddSamples(std::span(kTimes).first(split), std::span(kValues).first(split), true);
            grouper.AddSamples(std::span(kTimes).subspan(split), std::span(kValues).subspan(split), true);
            EXPECT_EQ(ResultOf(grouper), whole) << split;
        }
    }
}

TEST(SampleGrouper, ASummaryStandsForTheSamplesOfOneGroup)
{
    const Times times = {2, 4, 8};
    const Values values = {1.0, 2.0, 6.0};
    const std::vector<std::pair<VariableClass, double>> rows = {{VariableClass::Instantaneous, 3.0},
                                                                {VariableClass::Maximum, 6.0},
                                                                {VariableClass::Minimum, 1.0},
                                                                {VariableClass::State, 6.0},
                                                                {VariableClass::Counter, 5.0}};
    for (const auto& [variableClass, expected] : rows) {
        SampleGrouper grouper(static_cast<std::int32_t>(variableClass), kCuts);
        EXPECT_TRUE(grouper.AddSummary(Summarise(times, values)));
        EXPECT_EQ(ResultOf(grouper), (Result{expected, {}, {}}));
    }
}

TEST(SampleGrouper, ASummaryThatDoesntTellEnoughIsRefused)
{
    SampleGrouper mean(1, kCuts);
    EXPECT_FALSE(mean.AddSummary(Summarise(Times{8, 10}, Values{1.0, 2.0})));    // over a cut
    EXPECT_FALSE(mean.AddSummary(Summarise(Times{-1, 5}, Values{1.0, 2.0})));    // begins before
    EXPECT_FALSE(mean.AddSummary(Summarise(Times{30, 31}, Values{1.0, 2.0})));   // begins behind
    EXPECT_FALSE(mean.AddSummary(Summarise(Times{11, 12}, Values{1.0, kNan})));  // isn't finite
    EXPECT_EQ(ResultOf(mean), (Result{{}, {}, {}}));
    SampleGrouper counter(8, kCuts);
    EXPECT_FALSE(counter.AddSummary(Summarise(Times{1, 2}, Values{5.0, 1.0})));  // a roll-over, or what else
}

// One group after the other, by the definition.
Result Reference(VariableClass variableClass, const Times& cuts, const Times& times, const Values& values)
{
    Result result(cuts.size() - 1);
    for (std::size_t g = 0; g + 1 < cuts.size(); ++g) {
        std::vector<double> held;
        double consumption = 0.0;
        bool hasConsumption = false;
        for (std::size_t i = 0; i < times.size(); ++i) {
            if (times[i] >= cuts[g] && times[i] < cuts[g + 1]) {
                held.push_back(values[i]);
            }
            if (i == 0) {
                continue;
            }
            const auto overlap = std::min(times[i], cuts[g + 1]) - std::max(times[i - 1], cuts[g]);
            if (overlap > 0) {
                hasConsumption = true;
                consumption += CounterRise(values[i - 1], values[i]) * static_cast<double>(overlap) /
                               static_cast<double>(times[i] - times[i - 1]);
            }
        }
        if (variableClass == VariableClass::Counter) {
            if (hasConsumption) {
                result[g] = consumption;
            }
        } else if (!held.empty()) {
            double sum = 0.0;
            for (const double value : held) {
                sum += value;
            }
            result[g] = variableClass == VariableClass::Instantaneous ? sum / static_cast<double>(held.size())
                        : variableClass == VariableClass::Maximum     ? *std::max_element(held.begin(), held.end())
                        : variableClass == VariableClass::Minimum     ? *std::min_element(held.begin(), held.end())
                                                                      : held.back();
        }
    }
    return result;
}

void ExpectNear(const Result& actual, const Result& expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_EQ(actual[i].has_value(), expected[i].has_value()) << i;
        if (actual[i]) {
            ASSERT_NEAR(*actual[i], *expected[i], 1e-6 * (1.0 + std::fabs(*expected[i]))) << i;
        }
    }
}

TEST(SampleGrouper, AgreesWithTheDefinitionForAnySamplesHoweverTheyCome)
{
    std::mt19937 random(5);
    const auto below = [&](unsigned limit) { return static_cast<std::int64_t>(random() % limit); };
    for (int round = 0; round < 2000; ++round) {
        Times cuts = {below(50)};
        for (std::int64_t i = below(8); i >= 0; --i) {
            cuts.push_back(cuts.back() + 1 + below(60));
        }
        Times times;
        Values values;
        double reading = static_cast<double>(below(1000));
        for (std::int64_t time = below(80); time < 400; time += 1 + below(round % 2 == 0 ? 5 : 70)) {
            times.push_back(time);
            reading = random() % 50 == 0 ? static_cast<double>(below(1000)) : reading + static_cast<double>(below(9));
            values.push_back(reading);
        }
        for (const VariableClass variableClass :
             {VariableClass::Instantaneous, VariableClass::Maximum, VariableClass::Minimum, VariableClass::State,
              VariableClass::Counter}) {
            SampleGrouper grouper(static_cast<std::int32_t>(variableClass), cuts);
            for (std::size_t i = 0; i < times.size();) {
                const auto length = std::min<std::size_t>(times.size() - i, 1 + random() % 20);
                const auto someTimes = std::span(times).subspan(i, length);
                const auto someValues = std::span(values).subspan(i, length);
                if (random() % 2 == 0 || !grouper.AddSummary(Summarise(someTimes, someValues))) {
                    grouper.AddSamples(someTimes, someValues, true);
                }
                i += length;
            }
            ExpectNear(ResultOf(grouper), Reference(variableClass, cuts, times, values));
        }
    }
}

}  // namespace
}  // namespace zr
