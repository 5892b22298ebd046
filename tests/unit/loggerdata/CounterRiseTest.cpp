#include "siblings/driversupport/CounterRise.h"

#include <gtest/gtest.h>

namespace zr {
namespace {

TEST(CounterRise, IsTheDifferenceWhileItRises)
{
    EXPECT_EQ(CounterRise(100.0, 112.5), 12.5);
    EXPECT_EQ(CounterRise(100.0, 100.0), 0.0);
    EXPECT_EQ(CounterRise(-5.0, 5.0), 10.0);
    EXPECT_EQ(CounterRise(0.0, 1e15), 1e15);
}

TEST(CounterRise, GoesOnOverTheEndOfADecimalCounter)
{
    EXPECT_DOUBLE_EQ(CounterRise(999998.0, 3.0), 5.0);
    EXPECT_NEAR(CounterRise(99999.9, 0.4), 0.5, 1e-9);
    EXPECT_DOUBLE_EQ(CounterRise(99999999.0, 0.0), 1.0);
}

TEST(CounterRise, GoesOnOverTheEndOfABinaryCounter)
{
    EXPECT_DOUBLE_EQ(CounterRise(4294967290.0, 4.0), 10.0);
    EXPECT_DOUBLE_EQ(CounterRise(42949672900.0, 40.0), 100.0);  // counted in tens
    EXPECT_DOUBLE_EQ(CounterRise(65535.0, 1.0), 2.0);
    EXPECT_DOUBLE_EQ(CounterRise(2147483647.0, 1.0), 2.0);
}

TEST(CounterRise, CountsNothingForAnExchangedMeter)
{
    EXPECT_EQ(CounterRise(123456.0, 0.0), 0.0);
    EXPECT_EQ(CounterRise(123456.0, 7.0), 0.0);
    EXPECT_EQ(CounterRise(500.0, 499.0), 0.0);
    EXPECT_EQ(CounterRise(999000.0, 500000.0), 0.0);  // near the end, but too far on the other side
    EXPECT_EQ(CounterRise(5.0, -5.0), 0.0);
}

TEST(CounterRise, IsNeverNegative)
{
    for (double before = 0.001; before < 1e20; before *= 1.37) {
        for (double after = before; after > 1e-6; after /= 3.1) {
            ASSERT_GE(CounterRise(before, after), 0.0);
            ASSERT_LE(CounterRise(before, after), before * 0.02);
        }
    }
}

}  // namespace
}  // namespace zr
