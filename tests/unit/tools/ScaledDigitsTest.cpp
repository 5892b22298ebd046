#include "siblings/tools/ScaledDigits.h"

#include "siblings/tools/Numbers.h"
#include "siblings/tools/Utf.h"

#include <gtest/gtest.h>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace {

// What the standard library writes, which rounds by the exact binary value as well.
std::string Reference(double value, int decimals)
{
    std::array<char, 400> room{};
    const char* end =
        std::to_chars(room.data(), room.data() + room.size(), value, std::chars_format::fixed, decimals).ptr;
    std::string text(room.data(), static_cast<std::size_t>(end - room.data()));
    if (text.find_first_of("123456789") == std::string::npos && text[0] == '-') {
        text.erase(0, 1);
    }
    return text;
}

std::string Ours(double value, int decimals)
{
    ZRBasicString out;
    FormatNumber(out, value, decimals, false);
    return Utf16ToUtf8(out);
}

std::uint64_t Digits(double value, int places)
{
    std::uint64_t digits = 99;
    EXPECT_TRUE(zr::ScaledDigits(value, places, digits));
    return digits;
}

TEST(ScaledDigits, CountsDecimalUnitsWithoutSign)
{
    EXPECT_EQ(Digits(230.12, 2), 23012u);
    EXPECT_EQ(Digits(-230.12, 0), 230u);
    EXPECT_EQ(Digits(0.0, 5), 0u);
    EXPECT_EQ(Digits(-0.0, 0), 0u);
}

TEST(ScaledDigits, RoundsTiesToTheEvenUnit)
{
    EXPECT_EQ(Digits(0.125, 2), 12u);
    EXPECT_EQ(Digits(0.375, 2), 38u);
    EXPECT_EQ(Digits(0.5, 0), 0u);
    EXPECT_EQ(Digits(1.5, 0), 2u);
    EXPECT_EQ(Digits(1.005, 2), 100u);
}

TEST(ScaledDigits, WhatIsTooSmallIsZero)
{
    EXPECT_EQ(Digits(std::numeric_limits<double>::denorm_min(), 17), 0u);
    EXPECT_EQ(Digits(std::numeric_limits<double>::min(), 17), 0u);
    EXPECT_EQ(Digits(std::ldexp(1.0, -75), 17), 0u);
    EXPECT_EQ(Digits(4e-18, 17), 0u);
    EXPECT_EQ(Digits(6e-18, 17), 1u);
}

TEST(ScaledDigits, RefusesWhatDoesNotFit)
{
    std::uint64_t digits = 99;
    EXPECT_FALSE(zr::ScaledDigits(std::numeric_limits<double>::infinity(), 0, digits));
    EXPECT_FALSE(zr::ScaledDigits(std::numeric_limits<double>::quiet_NaN(), 0, digits));
    EXPECT_FALSE(zr::ScaledDigits(std::numeric_limits<double>::max(), 0, digits));
    EXPECT_FALSE(zr::ScaledDigits(1e19, 0, digits));
    EXPECT_FALSE(zr::ScaledDigits(100.0, 17, digits));
    EXPECT_EQ(digits, 99u);
    EXPECT_EQ(Digits(std::nextafter(1e19, 0.0), 0), 9999999999999997952u);
}

TEST(FormatNumber, AgreesWithTheStandardLibraryForAnyDoubleAndDecimals)
{
    std::mt19937_64 random(20021230);
    for (int i = 0; i < 400000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) {
            continue;
        }
        const int decimals = static_cast<int>(random() % (kMaxDecimals + 1));
        ASSERT_EQ(Ours(value, decimals), Reference(value, decimals)) << decimals;
    }
}

TEST(FormatNumber, AgreesWithTheStandardLibraryForNumbersAsMeasured)
{
    std::mt19937_64 random(941);
    for (int i = 0; i < 600000; ++i) {
        // Any number of digits at any scale, and its neighbours, so that ties and near ties come up.
        const auto whole = static_cast<double>(random() >> (random() % 64));
        double value = std::ldexp(whole, -static_cast<int>(random() % 70));
        if (i % 3 == 0) {
            value = std::round(value * 1000.0) / 1000.0 + (i % 2) * 0.0005;
        }
        value = (i % 5 == 0) ? std::nextafter(value, 0.0) : value;
        value = (i % 7 == 0) ? -value : value;
        const int decimals = static_cast<int>(random() % 19);
        ASSERT_EQ(Ours(value, decimals), Reference(value, decimals)) << decimals;
    }
}

TEST(FormatNumber, AgreesWithTheStandardLibraryAtTheEdgesOfAWord)
{
    for (const double edge : {1.0, 9.5, 99.995, 4503599627370496.0, 9007199254740992.0, 9223372036854775808.0,
                              18446744073709551616.0, 1e18, 1e19, 1e20}) {
        for (const double value : {edge, std::nextafter(edge, 0.0), std::nextafter(edge, 1e300), -edge}) {
            for (int decimals = 0; decimals <= kMaxDecimals; ++decimals) {
                ASSERT_EQ(Ours(value, decimals), Reference(value, decimals)) << decimals;
            }
        }
    }
}

}  // namespace
