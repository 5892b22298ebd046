#include "siblings/driversupport/store/BlockCodec.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace zr {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Times = std::vector<std::int64_t>;
using Values = std::vector<double>;

constexpr std::int64_t kMinute = 60000000;
constexpr std::int64_t kStart = 1041379200 * std::int64_t{1000000};

Bytes ExpectRoundTrip(const Times& times, const Values& values)
{
    Bytes bytes = EncodeBlock(times, values);
    Times timesBack = {1, 2, 3};
    Values valuesBack;
    EXPECT_TRUE(DecodeBlock(bytes, timesBack, valuesBack));
    EXPECT_EQ(timesBack, times);
    EXPECT_EQ(valuesBack.size(), values.size());
    for (std::size_t i = 0; i < std::min(values.size(), valuesBack.size()); ++i) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(valuesBack[i]), std::bit_cast<std::uint64_t>(values[i])) << i;
    }
    return bytes;
}

Times Minutes(std::size_t count)
{
    Times times;
    for (std::size_t i = 0; i < count; ++i) {
        times.push_back(kStart + static_cast<std::int64_t>(i) * kMinute);
    }
    return times;
}

TEST(BlockCodec, TheWorkedExampleOfItsFormatHolds)
{
    const Bytes bytes = ExpectRoundTrip({0, 10, 20, 31}, {230.1, 230.3, 230.3, 230.2});
    EXPECT_EQ(bytes, (Bytes{0x01, 0x04, 0x00, 0x00, 0x14, 0x00, 0x00, 0x02, 0x01, 0xFA, 0x23, 0x04, 0x00, 0x00, 0x01}));
}

TEST(BlockCodec, NothingComesBackAsNothing)
{
    EXPECT_EQ(ExpectRoundTrip({}, {}).size(), 3u);
}

TEST(BlockCodec, AnHourOfMeasuredVoltageTakesLessThanTwoBytesASample)
{
    std::mt19937 random(3);
    Values values;
    for (int i = 0; i < 60; ++i) {
        values.push_back(std::round(2300.0 + static_cast<double>(random() % 60)) / 10.0);
    }
    EXPECT_LT(ExpectRoundTrip(Minutes(60), values).size(), 60u * 2);
}

TEST(BlockCodec, AValueThatStandsStillTakesNoBytesASample)
{
    EXPECT_LT(ExpectRoundTrip(Minutes(3600), Values(3600, 1234.5)).size(), 40u);
}

TEST(BlockCodec, ExtremeDoublesComeBackBitForBit)
{
    using Limits = std::numeric_limits<double>;
    const Values values = {0.0,
                           -0.0,
                           Limits::infinity(),
                           -Limits::infinity(),
                           Limits::quiet_NaN(),
                           std::bit_cast<double>(0x7FF0000000000001u),
                           std::bit_cast<double>(0xFFFFFFFFFFFFFFFFu),
                           Limits::denorm_min(),
                           Limits::min(),
                           Limits::max(),
                           Limits::lowest(),
                           1e15,
                           9007199254740993.0,
                           0.1,
                           1.0 / 3.0};
    ExpectRoundTrip(Minutes(values.size()), values);
    for (const double value : values) {
        ExpectRoundTrip({kStart}, {value});
    }
}

TEST(BlockCodec, ExtremeTimesInAnyOrderComeBack)
{
    using Limits = std::numeric_limits<std::int64_t>;
    ExpectRoundTrip({Limits::max(), Limits::min(), 0, 0, -1, Limits::min(), Limits::max()}, Values(7, 1.0));
}

TEST(BlockCodec, TimesOfAUnitAndAStartComeBackAsSuch)
{
    const Times written = {0, 1, 2, 3, 10, 9};
    const Bytes bytes = EncodeBlock(written, Values(written.size(), 1.0));
    Times times;
    Values values;
    ASSERT_TRUE(DecodeBlock(bytes, times, values, kStart, kMinute));
    EXPECT_EQ(times, (Times{kStart, kStart + kMinute, kStart + 2 * kMinute, kStart + 3 * kMinute, kStart + 10 * kMinute,
                            kStart + 9 * kMinute}));
}

TEST(BlockCodec, AnyBitsComeBack)
{
    std::mt19937_64 random(11);
    for (int round = 0; round < 3000; ++round) {
        const std::size_t count = random() % 100;
        Times times;
        Values values;
        for (std::size_t i = 0; i < count; ++i) {
            times.push_back(static_cast<std::int64_t>(random() >> (random() % 64)));
            values.push_back(std::bit_cast<double>(random() << (random() % 64)));
        }
        ExpectRoundTrip(times, values);
    }
}

TEST(BlockCodec, DecimalsOfAnyScaleComeBack)
{
    std::mt19937_64 random(12);
    for (int round = 0; round < 3000; ++round) {
        const double scale = std::pow(10.0, static_cast<double>(random() % 18));
        const std::size_t count = 1 + random() % 100;
        Values values;
        for (std::size_t i = 0; i < count; ++i) {
            values.push_back(std::round(static_cast<double>(random() >> (11 + random() % 53))) / scale *
                             (random() % 2 == 0 ? 1.0 : -1.0));
        }
        ExpectRoundTrip(Minutes(count), values);
    }
}

TEST(BlockCodec, BytesCutShortOrFollowedByOthersAreRefused)
{
    for (const Values& values : {Values{230.1, 230.3, 230.3, 230.2}, Values{0.1, 1.0 / 3.0, -0.0, 5.0}}) {
        Bytes bytes = EncodeBlock(Minutes(4), values);
        Times times;
        Values back;
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            EXPECT_FALSE(DecodeBlock(std::span(bytes).first(length), times, back)) << length;
        }
        bytes.push_back(0);
        EXPECT_FALSE(DecodeBlock(bytes, times, back));
    }
}

TEST(BlockCodec, AnotherFormatOrTooManySamplesAreRefused)
{
    Times times;
    Values values;
    EXPECT_FALSE(DecodeBlock(Bytes{2, 0, 0}, times, values));
    EXPECT_FALSE(DecodeBlock(Bytes{1, 0, 16}, times, values));                                  // decimals
    EXPECT_FALSE(DecodeBlock(Bytes{1, 0xFF, 0xFF, 0xFF, 0xFF, 0x0F, 0, 0, 0}, times, values));  // 2^32 - 1 samples
    EXPECT_FALSE(
        DecodeBlock(Bytes{1, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, times, values));
    EXPECT_FALSE(DecodeBlock(Bytes{1, 1, 2, 0xFF, 0x91, 0, 0, 0, 0, 0, 0, 0, 0, 0}, times, values));  // 9 bytes of 8
}

TEST(BlockCodec, DamagedBytesNeverDoHarm)
{
    std::mt19937 random(13);
    const std::vector<Bytes> originals = {EncodeBlock(Minutes(60), Values(60, 1.5)),
                                          EncodeBlock(Minutes(60), Values(60, 1.0 / 3.0)),
                                          EncodeBlock(Times{5, 900, 7}, Values{0.1, -0.0, 3e300})};
    Times times;
    Values values;
    for (int round = 0; round < 30000; ++round) {
        Bytes bytes = originals[random() % originals.size()];
        for (unsigned i = 0; i <= random() % 4; ++i) {
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        }
        if (DecodeBlock(bytes, times, values)) {
            EXPECT_EQ(times.size(), values.size());
            EXPECT_LE(times.size(), kMaxBlockSamples);
        }
    }
}

}  // namespace
}  // namespace zr
