#include "siblings/driversupport/LongSilence.h"

#include <gtest/gtest.h>

namespace zr {

namespace {

using namespace std::chrono_literals;

const LongSilence::Time kOpened{1000s};

TEST(LongSilenceTest, ALineThatNeverRepliedIsSilentFromItsOpeningOn)
{
    LongSilence silence(60s, kOpened);
    EXPECT_FALSE(silence.TimedOut(kOpened + 59s));
    EXPECT_TRUE(silence.TimedOut(kOpened + 60s));
}

TEST(LongSilenceTest, AReplyFromAnyDeviceBeginsTheTimeAnew)
{
    LongSilence silence(60s, kOpened);
    for (auto now = kOpened; now < kOpened + 600s; now += 50s) {
        EXPECT_FALSE(silence.TimedOut(now));
        silence.Replied(now);
    }
}

TEST(LongSilenceTest, ItIsToldAgainAfterAsLong)
{
    LongSilence silence(60s, kOpened);
    EXPECT_TRUE(silence.TimedOut(kOpened + 70s));
    EXPECT_FALSE(silence.TimedOut(kOpened + 120s));
    EXPECT_TRUE(silence.TimedOut(kOpened + 130s));
}

}  // namespace

}  // namespace zr
