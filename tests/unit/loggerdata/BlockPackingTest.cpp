#include "siblings/driversupport/store/BlockPacking.h"

#include "siblings/driversupport/store/DayDigest.h"

#include <gtest/gtest.h>
#include <cstdlib>
#include <limits>
#include <vector>

namespace zr {
namespace {

constexpr std::int64_t kHour = 400000;
constexpr std::int64_t kSecond = 1000000;

bool Unpacks(const std::vector<std::int64_t>& times, std::int64_t hour)
{
    const std::vector<double> values(times.size(), 230.5);
    const PackedBlock block = PackBlock(7, hour, times, values);
    std::vector<std::int64_t> readTimes;
    std::vector<double> readValues;
    return UnpackBlock(7, hour, block.codec, block.check, block.payload, readTimes, readValues) && readTimes == times &&
           readValues == values;
}

TEST(BlockPacking, GivesBackTheSamplesOfItsHour)
{
    const std::int64_t start = StartOfHour(kHour);
    EXPECT_TRUE(Unpacks({start, start + kSecond, start + kHourMicros - 1}, kHour));
}

TEST(BlockPacking, TimesThatGoBackStandStillOrLieOutsideTheHourAreRefused)
{
    const std::int64_t start = StartOfHour(kHour);
    EXPECT_FALSE(Unpacks({start + kSecond, start}, kHour));
    EXPECT_FALSE(Unpacks({start, start}, kHour));
    EXPECT_FALSE(Unpacks({start, start + kHourMicros}, kHour));
    EXPECT_FALSE(Unpacks({start - kSecond, start}, kHour));
}

TEST(BlockPacking, DaysThatNoTimeLiesInHaveHoursAllTheSame)
{
    EXPECT_EQ(FirstHourOf(DayOf(kHour)), kHour / kHoursOfDay * kHoursOfDay);
    for (const std::int64_t hour :
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        DayDigest digest(1, DayOf(hour));
        EXPECT_EQ(digest.Find(hour), nullptr);
        EXPECT_GT(std::abs(digest.FirstHour()), std::numeric_limits<std::int64_t>::max() / kHourMicros);
    }
}

}  // namespace
}  // namespace zr
