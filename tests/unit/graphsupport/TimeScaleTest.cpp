#include "siblings/graphsupport/TimeScale.h"

#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLocaleInformation.h"
#include "support/ZoneChanges.h"
#include "unit/graphsupport/FixedExtents.h"

#include <gtest/gtest.h>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace zr::graph {
namespace {

constexpr std::int64_t kHour = 3600 * kMicrosOfSecond;
constexpr int kMonday = 2;

std::int64_t At(const char* text)
{
    return test::SecondsOf(text) * kMicrosOfSecond;
}

class TimeScaleTest : public testing::Test {
protected:
    TimeScaleTest() { SetLocaleInformation("en"); }
    ~TimeScaleTest() override { SetLocaleInformation(""); }

    [[nodiscard]] TimeScale Make(Zoom view, int width, const TimeZone& zone = TimeZone()) const
    {
        TimeScaleInput input;
        input.view = view;
        input.width = width;
        input.roomLeft = 40;
        input.roomRight = 40;
        input.texts = &extents;
        input.firstDayOfWeek = kMonday;
        return MakeTimeScale(input, zone, TimeTexts(nullptr, zone));
    }

    static std::vector<std::string> Labels(const TimeScale& scale)
    {
        std::vector<std::string> labels;
        for (const TimeTick& tick : scale.ticks) {
            if (!tick.label.IsEmpty()) {
                labels.push_back(Utf16ToUtf8(tick.label));
            }
        }
        return labels;
    }
    static std::vector<std::string> Contexts(const TimeScale& scale)
    {
        std::vector<std::string> contexts;
        for (const TimeTick& tick : scale.ticks) {
            if (!tick.context.IsEmpty()) {
                contexts.push_back(Utf16ToUtf8(tick.context));
            }
        }
        return contexts;
    }

    FixedExtents extents;
};

TEST_F(TimeScaleTest, ADayHasHoursAndItsDate)
{
    const TimeScale scale = Make({At("2002-12-30T00:00"), At("2002-12-31T00:00")}, 500);
    EXPECT_EQ(Labels(scale), (std::vector<std::string>{"00:00", "03:00", "06:00", "09:00", "12:00", "15:00", "18:00",
                                                       "21:00", "00:00"}));
    EXPECT_EQ(Contexts(scale), (std::vector<std::string>{"2002-12-30", "2002-12-31"}));
    EXPECT_TRUE(scale.leftContext.IsEmpty());
}

TEST_F(TimeScaleTest, TheDateOfTheLeftEdgeIsKnownWhereNoDayBegins)
{
    const TimeScale scale = Make({At("2002-12-30T10:07"), At("2002-12-30T11:22")}, 500);
    EXPECT_EQ(Contexts(scale), std::vector<std::string>());
    EXPECT_EQ(Utf16ToUtf8(scale.leftContext), "2002-12-30");
}

TEST_F(TimeScaleTest, AYearHasMonthsAndItsNumber)
{
    const TimeScale scale = Make({At("2002-11-15T00:00"), At("2003-06-15T00:00")}, 600);
    EXPECT_EQ(Labels(scale), (std::vector<std::string>{"12", "01", "02", "03", "04", "05", "06"}));
    EXPECT_EQ(Contexts(scale), (std::vector<std::string>{"2003"}));
    EXPECT_EQ(Utf16ToUtf8(scale.leftContext), "2002");
}

TEST_F(TimeScaleTest, WeeksBeginOnTheFirstDayOfTheWeek)
{
    const TimeScale scale = Make({At("2003-01-01T00:00"), At("2003-02-01T00:00")}, 300);
    EXPECT_EQ(Labels(scale), (std::vector<std::string>{"01-06", "01-13", "01-20", "01-27"}));
}

TEST_F(TimeScaleTest, MillisecondsHaveDecimals)
{
    const TimeScale scale = Make({At("2003-01-01T00:00"), At("2003-01-01T00:00") + 1000}, 800);
    ASSERT_GE(Labels(scale).size(), 2u);
    EXPECT_EQ(Labels(scale)[0], "00:00:00.0002");
}

TEST_F(TimeScaleTest, OverAClockChangeTheDoubledHourIsLabelledTwice)
{
    const TimeZone paris = test::ZoneOfTable("Europe/Paris");
    const TimeScale scale = Make({At("2002-10-26T22:00"), At("2002-10-27T05:00")}, 400, paris);
    EXPECT_EQ(Labels(scale),
              (std::vector<std::string>{"00:00", "01:00", "02:00", "02:00", "03:00", "04:00", "05:00", "06:00"}));
}

TEST_F(TimeScaleTest, OverAClockChangeTheSkippedHourIsNotLabelled)
{
    const TimeZone paris = test::ZoneOfTable("Europe/Paris");
    const TimeScale scale = Make({At("2002-03-30T23:00"), At("2002-03-31T04:00")}, 300, paris);
    EXPECT_EQ(Labels(scale), (std::vector<std::string>{"00:00", "01:00", "03:00", "04:00", "05:00", "06:00"}));
}

TEST_F(TimeScaleTest, TheDateStandsWhereTheLocalDayBegins)
{
    const TimeZone adelaide = test::ZoneOfTable("Australia/Adelaide");
    const TimeScale scale = Make({At("2002-12-30T04:00"), At("2002-12-30T22:00")}, 500, adelaide);
    for (const TimeTick& tick : scale.ticks) {
        EXPECT_EQ(tick.context.IsEmpty(), tick.label != u"00:00") << Utf16ToUtf8(tick.label);
    }
    EXPECT_EQ(Contexts(scale), (std::vector<std::string>{"2002-12-31"}));
    EXPECT_EQ(Utf16ToUtf8(scale.leftContext), "2002-12-30");
}

TEST_F(TimeScaleTest, TextsStandOutOfTheCurvesAsFarAsThereIsRoom)
{
    TimeScaleInput input;
    input.view = {At("2002-12-30T00:00"), At("2002-12-31T00:00")};
    input.width = 500;
    input.texts = &extents;
    const TimeZone utc;
    for (const int room : {0, 100}) {
        input.roomLeft = room;
        input.roomRight = room;
        const TimeScale scale = MakeTimeScale(input, utc, TimeTexts(nullptr, utc));
        EXPECT_EQ(scale.ticks.front().label.IsEmpty(), room == 0);
        EXPECT_EQ(scale.ticks.back().label.IsEmpty(), room == 0);
    }
}

TEST_F(TimeScaleTest, WithoutWidthOrStretchThereIsNothing)
{
    EXPECT_TRUE(Make({At("2003-01-01T00:00"), At("2003-01-02T00:00")}, 0).ticks.empty());
    EXPECT_TRUE(Make({At("2003-01-02T00:00"), At("2003-01-01T00:00")}, 100).ticks.empty());
    EXPECT_FALSE(Make({At("2003-01-02T00:00"), At("2003-01-02T00:00")}, 100).step);
}

TEST_F(TimeScaleTest, WithoutTextsThereAreTicks)
{
    TimeScaleInput input;
    input.view = {At("2003-01-01T00:00"), At("2003-01-02T00:00")};
    input.width = 500;
    const TimeZone utc;
    const TimeScale scale = MakeTimeScale(input, utc, TimeTexts(nullptr, utc));
    EXPECT_GT(scale.ticks.size(), 5u);
    EXPECT_TRUE(Labels(scale).empty());
}

TEST_F(TimeScaleTest, AColumnsTimeLiesInThatColumn)
{
    const std::vector<Zoom> views = {
        {0, 1000}, {At("2002-12-30T00:00"), At("2002-12-31T00:00")}, {At("2000-01-01T00:00"), At("2100-01-01T00:00")}};
    for (const Zoom& view : views) {
        for (const int width : {1, 7, 333, 1000}) {
            for (int column = 0; column < width; ++column) {
                EXPECT_EQ(ColumnOf(TimeOf(column, view, width), view, width), column) << width;
            }
        }
    }
}

TEST_F(TimeScaleTest, FarAwayTimesAreHeldNearby)
{
    const Zoom view{At("2002-12-30T00:00"), At("2002-12-30T00:00") + 1000};
    EXPECT_EQ(ColumnOf(At("2100-01-01T00:00"), view, 100), 400);
    EXPECT_EQ(ColumnOf(At("2000-01-01T00:00"), view, 100), -400);
    EXPECT_EQ(ColumnOf(0, view, 0), -1);
}

// What must hold for every scale.
void ExpectSound(const TimeScale& scale, Zoom view, int width, const TimeZone& zone, const TextExtents& extents)
{
    int labelsEnd = -1000;
    int contextsEnd = -1000;
    if (!scale.leftContext.IsEmpty()) {
        contextsEnd = extents.Width(scale.leftContext.Text(), TextFont::Normal);
    }
    for (std::size_t i = 0; i < scale.ticks.size(); ++i) {
        const TimeTick& tick = scale.ticks[i];
        ASSERT_GE(tick.time, view.from);
        ASSERT_LE(tick.time, view.to);
        ASSERT_TRUE(i == 0 || scale.ticks[i - 1].time < tick.time);
        ASSERT_TRUE(tick.isMajor || tick.label.IsEmpty());
        if (scale.step->unit == CalendarStep::Unit::Microsecond && tick.isMajor) {
            ASSERT_EQ(LocalMicros(tick.time, zone) % scale.step->count, 0);
        } else if (tick.isMajor) {
            ASSERT_NE(LocalDay(tick.time, zone), LocalDay(tick.time - 1, zone));
        }
        const int label = extents.Width(tick.label.Text(), TextFont::Normal);
        if (label > 0) {
            ASSERT_GT(tick.column - label / 2, labelsEnd) << "labels touch";
            labelsEnd = tick.column - label / 2 + label;
        }
        const int context = extents.Width(tick.context.Text(), TextFont::Normal);
        if (context > 0) {
            ASSERT_GT(tick.column - context / 2, contextsEnd) << "second lines touch";
            contextsEnd = tick.column - context / 2 + context;
        }
    }
    ASSERT_LE(scale.ticks.size(), static_cast<std::size_t>(width) + 3);
}

TEST_F(TimeScaleTest, HoldsItsPromisesOverZonesSpansAndWidths)
{
    const std::vector<std::string> names = {"Europe/Paris",
                                            "Australia/Adelaide",
                                            "Australia/Lord_Howe",
                                            "America/Havana",
                                            "Pacific/Apia",
                                            "Asia/Tehran",
                                            ""};
    std::mt19937_64 random(4711);
    for (const std::string& name : names) {
        const TimeZone zone = name.empty() ? TimeZone() : test::ZoneOfTable(name);
        for (int i = 0; i < 400; ++i) {
            // 1 ms to 100 years, evenly on a logarithmic scale.
            const double exponent = std::uniform_real_distribution<double>(3.0, 15.5)(random);
            const auto length = static_cast<std::int64_t>(std::pow(10.0, exponent));
            std::int64_t from = std::uniform_int_distribution<std::int64_t>(At("2000-01-02T00:00"),
                                                                            At("2130-01-01T00:00") - length)(random);
            if (i % 2 == 0 && !name.empty()) {
                const auto& changes = test::ZoneChanges().at(name);
                from = changes[static_cast<std::size_t>(i) % changes.size()].utc * kMicrosOfSecond - length / 2;
            }
            const int width =
                static_cast<int>(std::pow(4000.0, std::uniform_real_distribution<double>(0.0, 1.0)(random)));
            const Zoom view{from, from + length};
            SCOPED_TRACE(name + " " + std::to_string(from) + " " + std::to_string(length) + " " +
                         std::to_string(width));
            ExpectSound(Make(view, width, zone), view, width, zone, extents);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

TEST_F(TimeScaleTest, AUsualWidthAlwaysHasLabels)
{
    for (std::int64_t length = 1000; length < At("2090-01-01T00:00") - At("2000-01-01T00:00"); length += length / 3) {
        const Zoom view{At("2001-05-06T07:08"), At("2001-05-06T07:08") + length};
        EXPECT_GE(Labels(Make(view, 900)).size(), 3u) << length;
    }
}

TEST(TimeTexts, WritesLengths)
{
    const auto length = [](std::int64_t micros) { return Utf16ToUtf8(TimeTexts::Length(micros)); };
    SetLocaleInformation("en");
    EXPECT_EQ(length(0), "00:00:00");
    EXPECT_EQ(length(7250000), "00:00:07.25");
    EXPECT_EQ(length(-7250000), "00:00:07.25");
    EXPECT_EQ(length(61250000), "00:01:01");
    EXPECT_EQ(length(kMicrosOfDay + 2 * kHour), "1 d 02:00:00");
    SetLocaleInformation("");
}

TEST(TimeTexts, WritesMomentsAsFinelyAsTheyDiffer)
{
    SetLocaleInformation("en");
    const TimeZone utc;
    const TimeTexts texts(nullptr, utc);
    const std::int64_t time = At("2002-12-30T23:58:07") + 123456;
    EXPECT_EQ(Utf16ToUtf8(texts.Moment(time, kMicrosOfSecond)), "2002-12-30 23:58:07");
    EXPECT_EQ(Utf16ToUtf8(texts.Moment(time, 99000)), "2002-12-30 23:58:07.12");
    EXPECT_EQ(Utf16ToUtf8(texts.Moment(time, 1)), "2002-12-30 23:58:07.123456");
    EXPECT_TRUE(texts.Moment(At("1999-12-30T00:00"), 1).IsEmpty());
    SetLocaleInformation("");
}

TEST(TimeTexts, AsksTheDateTextInLocalTime)
{
    static unsigned asked;
    const DateText text = [](ZRBasicString& out, const ZRDateTime& date, const ZRLocaleInformation<ZRBasicString>&,
                             unsigned flags) -> ZRBasicString& {
        asked = flags;
        return out = date.seconds == 3600 ? u"one" : u"other";
    };
    const TimeZone zone(3600, {});
    const TimeTexts texts(text, zone);
    EXPECT_EQ(texts.Write(At("2000-01-01T00:00"), kLegendFlags), u"one");
    EXPECT_EQ(asked, 0x3ACu);
}

}  // namespace
}  // namespace zr::graph
