#include "siblings/driversupport/QuietLine.h"

#include <gtest/gtest.h>

namespace zr {

namespace {

using namespace std::chrono_literals;

class QuietLineTest : public testing::Test {
protected:
    QuietLine::Time sent{1000s};
    QuietLine::Time failed = sent + 1s;
    QuietLine line{1s, 50ms};
};

TEST_F(QuietLineTest, IsFreeAtFirst)
{
    EXPECT_LE(line.LineFreeAt(), sent);
    EXPECT_LE(line.UnitFreeAt(7), sent);
}

TEST_F(QuietLineTest, RestsForLongerThanTheSlowestReply)
{
    line.Replied(120ms);
    line.Replied(30ms);
    line.TimedOut(7, sent, failed);
    EXPECT_EQ(line.LineFreeAt(), failed + 240ms);
}

TEST_F(QuietLineTest, RestsForAtLeastTheLeastAndAtMostTheTimeOut)
{
    line.TimedOut(7, sent, failed);
    EXPECT_EQ(line.LineFreeAt(), failed + 50ms);
    line.Replied(900ms);
    EXPECT_EQ(line.Quiet(), 1s);
}

TEST_F(QuietLineTest, LeavesOnlyTheUnitThatFailedAloneForLonger)
{
    line.TimedOut(7, sent, failed);
    EXPECT_EQ(line.UnitFreeAt(7), sent + 3s);
    EXPECT_LE(line.UnitFreeAt(8), failed);
}

TEST_F(QuietLineTest, WhatComesWhileItRestsBeginsTheRestAnew)
{
    line.TimedOut(7, sent, failed);
    line.Strayed(failed + 40ms);
    EXPECT_GT(line.LineFreeAt(), failed + 90ms);
}

TEST_F(QuietLineTest, ALateReplyCountsAsTheSlowest)
{
    line.TimedOut(7, sent, failed);
    line.Strayed(failed + 40ms);
    EXPECT_EQ(line.SlowestReply(), 1040ms);
}

TEST_F(QuietLineTest, NoiseOnAHealthyLineIsNoSlowReply)
{
    line.Replied(10ms);
    line.Strayed(sent + 100s);
    EXPECT_EQ(line.SlowestReply(), 10ms);
    EXPECT_LE(line.LineFreeAt(), sent);
}

}  // namespace

}  // namespace zr
