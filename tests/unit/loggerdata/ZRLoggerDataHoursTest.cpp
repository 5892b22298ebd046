// Records of variables that are split by the hour types of a filter file.
#include "siblings/driversupport/ZRLoggerData.h"

#include "LoggerDataFixture.h"
#include "platform/FileReplace.h"
#include "siblings/support/ZRKestrixSetup.h"
#include "siblings/tools/Utf.h"
#include "support/TempFolder.h"
#include "support/ZoneChanges.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace zr {
namespace {
using namespace test;

class ZRLoggerDataHoursTest : public LoggerDataFixture {
protected:
    ZRLoggerDataHoursTest()
    {
        setup.SetDataFolder(Utf8ToUtf16(TextOfPath(folder.Path())));
        // DAY from 06:00 to 22:00, NIGHT else.
        WriteFilter("T",
                    R"(<calendar rest="NIGHT"><days><hours from="06:00" to="22:00" hour="DAY"/></days></calendar>)");
    }

    void WriteFilter(const std::string& title, const std::string& calendar) const
    {
        folder.Write(title + ".MVDF",
                     "<f><hourTypes><hour name=\"DAY\"/><hour name=\"NIGHT\"/></hourTypes>\n" + calendar + "</f>");
        folder.Write(title + ".MVDFI", R"(<h><hour name="DAY"/><hour name="NIGHT"/></h>)");
    }

    // The sum of all valid values of a column.
    static double SumOf(const ZRLoggerData::CRecordGroup& group, std::size_t column)
    {
        double sum = 0.0;
        for (auto record = group.first; record != group.last; ++record) {
            const LoggedValue& value = (*record)->values[column];
            sum += value.valid != 0 ? value.value : 0.0;
        }
        return sum;
    }

    TempFolder folder;
    ZRKestrixSetup setup;
};

TEST_F(ZRLoggerDataHoursTest, AsRecordedThereAreOnlyTheRecordsOfTheHourType)
{
    SetVariables({u"T.MVDF@DAY#M.U"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002, 5, 58), 5);
    const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kRecorded);
    EXPECT_EQ(TimesOf(group), (std::vector{Date(1, 12, 2002, 6), Date(1, 12, 2002, 6, 1), Date(1, 12, 2002, 6, 2)}));
    EXPECT_EQ(ValuesOf(group, 0), (std::vector{2.0, 3.0, 4.0}));
    EXPECT_TRUE(data.Problems().empty());
}

TEST_F(ZRLoggerDataHoursTest, BesideOthersAHourTypeHasNoValueOutsideIt)
{
    SetVariables({u"M.U", u"T.MVDF@DAY#M.U", u"T.MVDF@NIGHT#M.U"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002, 5, 58), 5);
    const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kRecorded);
    EXPECT_EQ(ValuesOf(group, 0), (std::vector{0.0, 1.0, 2.0, 3.0, 4.0}));
    EXPECT_EQ(ValuesOf(group, 1), (std::vector{-1.0, -1.0, 2.0, 3.0, 4.0}));
    EXPECT_EQ(ValuesOf(group, 2), (std::vector{0.0, 1.0, -1.0, -1.0, -1.0}));
}

TEST_F(ZRLoggerDataHoursTest, GroupedOnlyTheSamplesOfTheHourTypeCount)
{
    const std::vector<std::pair<VariableClass, std::pair<double, double>>> rows = {
        {VariableClass::Instantaneous, {(360.0 + 1319.0) / 2, (359.0 * 180 + (1320.0 + 1439.0) * 60) / 480}},
        {VariableClass::Maximum, {1319.0, 1439.0}},
        {VariableClass::Minimum, {360.0, 0.0}},
        {VariableClass::State, {1319.0, 1439.0}},
    };
    int number = 0;
    for (const auto& [variableClass, values] : rows) {
        const std::string name = "D.V" + std::to_string(++number);
        const ZRBasicString plain = Utf8ToUtf16(name);
        RecordMinutes(plain.CStr(), variableClass, Date(1, 12, 2002), 24 * 60);
        SetVariables({(u"T.MVDF@DAY#" + plain).CStr(), (u"T.MVDF@NIGHT#" + plain).CStr()});
        const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kDay);
        ASSERT_EQ(group.count, 1) << name;
        EXPECT_DOUBLE_EQ(ValuesOf(group, 0)[0], values.first) << name;
        EXPECT_DOUBLE_EQ(ValuesOf(group, 1)[0], values.second) << name;
    }
}

TEST_F(ZRLoggerDataHoursTest, PeriodsOutsideTheHourTypeHaveNoRecord)
{
    SetVariables({u"T.MVDF@DAY#M.U"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002), 24 * 60);
    const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kHour);
    ASSERT_EQ(group.count, 16);
    EXPECT_EQ(TimesOf(group).front(), Date(1, 12, 2002, 6));
    EXPECT_EQ(TimesOf(group).back(), Date(1, 12, 2002, 21));
}

TEST_F(ZRLoggerDataHoursTest, ACounterIsSplitAtTheBoundary)
{
    const Meter meter;
    SetVariables({u"T.MVDF@DAY#M.E", u"T.MVDF@NIGHT#M.E", u"M.E"});
    // 40 in the four hours around 06:00 and 22:00, three of them by night.
    Record(u"M.E", VariableClass::Counter, Date(1, 12, 2002, 3), 100.0);
    Record(u"M.E", VariableClass::Counter, Date(1, 12, 2002, 7), 140.0);
    Record(u"M.E", VariableClass::Counter, Date(1, 12, 2002, 21), 280.0);
    Record(u"M.E", VariableClass::Counter, Date(2, 12, 2002, 1), 320.0);
    const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kDay);
    EXPECT_EQ(ValuesOf(group, 0), std::vector{10.0 + 140.0 + 10.0});
    EXPECT_EQ(ValuesOf(group, 1), std::vector{30.0 + 20.0});
    EXPECT_EQ(ValuesOf(group, 2), std::vector{210.0});
}

TEST_F(ZRLoggerDataHoursTest, ARollOverAndAnExchangedMeterAreTakenOutBeforeTheSplit)
{
    SetVariables({u"T.MVDF@DAY#M.E", u"T.MVDF@NIGHT#M.E", u"M.E"});
    Record(u"M.E", VariableClass::Counter, Date(1, 12, 2002, 5), 999998.0);
    Record(u"M.E", VariableClass::Counter, Date(1, 12, 2002, 7), 4.0);  // rolls over: 6, half of it by night
    Record(u"M.E", VariableClass::Counter, Date(1, 12, 2002, 21), 500.0);
    Record(u"M.E", VariableClass::Counter, Date(1, 12, 2002, 23), 8.0);  // another meter: nothing is known
    Record(u"M.E", VariableClass::Counter, Date(1, 12, 2002, 23, 30), 9.0);
    const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kDay);
    EXPECT_EQ(ValuesOf(group, 0), std::vector{3.0 + 496.0});
    EXPECT_EQ(ValuesOf(group, 1), std::vector{3.0 + 1.0});
    EXPECT_EQ(ValuesOf(group, 2), std::vector{503.0});
}

TEST_F(ZRLoggerDataHoursTest, TheHourTypesAddUpOverBothClockChanges)
{
    SetPlantZone(ZoneOfTable("Europe/Paris"));
    // NIGHT begins in the hour that is skipped in spring and occurs twice in autumn.
    WriteFilter("T", R"(<calendar rest="DAY"><days><hours from="02:30" to="05:00" hour="NIGHT"/></days></calendar>)");
    SetVariables({u"T.MVDF@DAY#M.E", u"T.MVDF@NIGHT#M.E", u"M.E"});
    RecordMinutes(u"M.E", VariableClass::Counter, Date(30, 3, 2002, 20), 3 * 1440);
    RecordMinutes(u"M.E", VariableClass::Counter, Date(26, 10, 2002, 20), 3 * 1440);
    const auto& spring = Select(Date(31, 3, 2002), Date(1, 4, 2002), kDay);
    EXPECT_EQ(ValuesOf(spring, 0), std::vector{21.0 * 60});
    EXPECT_EQ(ValuesOf(spring, 1), std::vector{2.0 * 60});
    EXPECT_EQ(ValuesOf(spring, 2), std::vector{23.0 * 60});
    const auto& autumn = Select(Date(27, 10, 2002), Date(28, 10, 2002), kDay);
    // By its clock from 02:30 to 03:00, and once more, and to 05:00.
    EXPECT_EQ(ValuesOf(autumn, 0), std::vector{22.0 * 60});
    EXPECT_EQ(ValuesOf(autumn, 1), std::vector{3.0 * 60});
    EXPECT_EQ(ValuesOf(autumn, 2), std::vector{25.0 * 60});
}

TEST_F(ZRLoggerDataHoursTest, ARangeMayBeginAndEndWithinASecond)
{
    SetVariables({u"T.MVDF@DAY#M.U", u"T.MVDF@NIGHT#M.U", u"M.U"});
    const auto moment = [](int hour, std::uint32_t micros) {
        ZRDateTime date = Date(1, 12, 2002, hour);
        date.microseconds = micros;
        return date;
    };
    Record(u"M.U", VariableClass::Instantaneous, moment(3, 250000), 1.0);
    Record(u"M.U", VariableClass::Instantaneous, moment(3, 750000), 2.0);
    Record(u"M.U", VariableClass::Instantaneous, moment(7, 250000), 4.0);
    Record(u"M.U", VariableClass::Instantaneous, moment(7, 750000), 8.0);
    const auto& group = Select(moment(3, 500000), moment(7, 500000), kRecorded);
    EXPECT_EQ(ValuesOf(group, 0), (std::vector{-1.0, 4.0}));
    EXPECT_EQ(ValuesOf(group, 1), (std::vector{2.0, -1.0}));
    EXPECT_EQ(ValuesOf(group, 2), (std::vector{2.0, 4.0}));
    data.RecordGroup(kDay, nullptr);
    EXPECT_EQ(ValuesOf(data.RecordGroup(kDay, nullptr), 0), std::vector{4.0});
    EXPECT_EQ(ValuesOf(data.RecordGroup(kDay, nullptr), 1), std::vector{2.0});
    EXPECT_EQ(ValuesOf(data.RecordGroup(kDay, nullptr), 2), std::vector{3.0});
}

TEST_F(ZRLoggerDataHoursTest, ATariffChangedLaterSplitsAllHistoryAnew)
{
    SetVariables({u"T.MVDF@DAY#M.E"});
    RecordMinutes(u"M.E", VariableClass::Counter, Date(1, 12, 2002), 24 * 60 + 1);
    EXPECT_EQ(ValuesOf(Select(Date(1, 12, 2002), Date(2, 12, 2002), kDay), 0), std::vector{16.0 * 60});
    WriteFilter("T", R"(<calendar rest="NIGHT"><days><hours from="08:00" to="20:30" hour="DAY"/></days></calendar>)");
    // What is loaded stays as it is.
    EXPECT_EQ(ValuesOf(data.RecordGroup(kDay, nullptr), 0), std::vector{16.0 * 60});
    EXPECT_EQ(ValuesOf(Select(Date(1, 12, 2002), Date(2, 12, 2002), kDay), 0), std::vector{12.5 * 60});
}

TEST_F(ZRLoggerDataHoursTest, AColumnWhoseFilterIsNotFitHasNoValuesAndTellsWhy)
{
    folder.Write("BROKEN.MVDF", "<f><hourTypes>\n<hour name=\"A\" color=\"red\"/></hourTypes></f>");
    folder.Write("BROKEN.MVDFI", R"(<h><hour name="A"/></h>)");
    WriteFilter("PLAIN", "");
    SetVariables({u"M.U", u"GONE.MVDF@DAY#M.U", u"BROKEN.MVDF@A#M.U", u"PLAIN.MVDF@DAY#M.U", u"T.MVDF@NOON#M.U",
                  u"T.MVDF@DAY#M.U", u"GONE.MVDF@NIGHT#M.U", u"../T.MVDF@DAY#M.U", u"@DAY#M.U", u"T.MVDF#M.U"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002, 8), 3);
    for (const ZRDateTimeSpan& period : {kRecorded, kHour}) {
        const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), period);
        ASSERT_EQ(group.count, period == kRecorded ? 3 : 1);
        for (std::size_t column = 0; column < 10; ++column) {
            EXPECT_EQ((*group.first)->values[column].valid != 0, column == 0 || column == 5) << column;
        }
    }
    const std::string inFolder = TextOfPath(folder.Path() / "");
    const std::vector<std::string>& problems = data.Problems();
    ASSERT_EQ(problems.size(), 7u);
    EXPECT_EQ(problems[0].rfind(inFolder + "GONE.MVDF", 0), 0u) << problems[0];
    EXPECT_EQ(problems[1], inFolder + "BROKEN.MVDF:2: color: not 1 to 6 hexadecimal digits");
    EXPECT_EQ(problems[2], inFolder + "PLAIN.MVDF: has no calendar, so that nothing tells when its hour types hold");
    EXPECT_EQ(problems[3], "T.MVDF: has no hour type \"NOON\"");
    EXPECT_EQ(problems[4], "\"../T.MVDF\": no name of a filter file");
    EXPECT_EQ(problems[5], "\"\": no name of a filter file");
    EXPECT_EQ(problems[6], "T.MVDF: has no hour type \"\"");
}

TEST_F(ZRLoggerDataHoursTest, AProblemThatIsGoneIsNotToldAgain)
{
    SetVariables({u"NEW.MVDF@DAY#M.U"});
    EXPECT_TRUE(data.SelectData(Date(1, 12, 2002), Date(2, 12, 2002), nullptr));
    EXPECT_EQ(data.Problems().size(), 1u);
    WriteFilter("NEW", R"(<calendar rest="DAY"/>)");
    EXPECT_TRUE(data.SelectData(Date(1, 12, 2002), Date(2, 12, 2002), nullptr));
    EXPECT_TRUE(data.Problems().empty());
}

std::string RandomCalendarText(std::mt19937& random)
{
    const std::vector<std::string> types = {"DAY", "NIGHT"};
    const auto clock = [](unsigned minute) {
        const auto two = [](unsigned n) { return (n < 10 ? "0" : "") + std::to_string(n); };
        return two(minute / 60) + ":" + two(minute % 60);
    };
    std::string text = "<calendar rest=\"" + types[random() % 2] +
                       R"("><season name="W" from="11-05" to="03-30"/><holiday date="03-31"/><holiday easter="1"/>)";
    for (const char* values : {"on=\"Mon-Fri\" season=\"W\"", "on=\"Mon-Fri\"", "on=\"Sat Sun\"", "on=\"holiday\""}) {
        text += "<days " + std::string(values) + ">";
        unsigned minute = 0;
        while ((minute += 1 + static_cast<unsigned>(random() % 700)) < 1380) {
            const unsigned end = minute + 1 + static_cast<unsigned>(random() % 60);
            text += "<hours from=\"" + clock(minute) + "\" to=\"" + clock(end) + "\" hour=\"" + types[random() % 2] +
                    "\"/>";
            minute = end;
        }
        text += "</days>";
    }
    return text + "</calendar>";
}

TEST_F(ZRLoggerDataHoursTest, TheHourTypesOfACounterAddUpWhateverTheCalendarAndTheZone)
{
    std::mt19937 random(31);
    const int series = store.OpenSeries(u"M.E", static_cast<std::int32_t>(VariableClass::Counter));
    std::vector<LoggerAppend> batch;
    double reading = 0.0;
    for (std::int64_t time = Micros(Date(20, 3, 2002)); time < Micros(Date(20, 4, 2002));) {
        batch.push_back({series, time, reading});
        time += static_cast<std::int64_t>(random() % 600 + 1) * kMicros;
        reading = random() % 500 == 0 ? 0.0 : reading + static_cast<double>(random() % 10);
    }
    ASSERT_TRUE(store.Append(batch));
    SetVariables({u"T.MVDF@DAY#M.E", u"T.MVDF@NIGHT#M.E", u"M.E"});
    for (const auto& [name, changes] : ZoneChanges()) {
        SetPlantZone(ZoneOfTable(name));
        WriteFilter("T", RandomCalendarText(random));
        for (const ZRDateTimeSpan& period : {kQuarter, kHour, kDay, kMonth}) {
            const auto& group = Select(Date(22, 3, 2002), Date(18, 4, 2002, 7, 35), period);
            ASSERT_TRUE(data.Problems().empty()) << data.Problems()[0];
            ASSERT_GT(SumOf(group, 2), 1000.0) << name;
            for (auto record = group.first; record != group.last; ++record) {
                const LoggedValue* const values = (*record)->values;
                const double sum =
                    (values[0].valid != 0 ? values[0].value : 0.0) + (values[1].valid != 0 ? values[1].value : 0.0);
                ASSERT_NEAR(sum, values[2].value, 1e-7) << name;
            }
        }
        const auto& recorded = Select(Date(22, 3, 2002), Date(18, 4, 2002), kRecorded);
        for (auto record = recorded.first; record != recorded.last; ++record) {
            // Each sample is in one hour type.
            const LoggedValue* const values = (*record)->values;
            ASSERT_EQ(values[0].valid + values[1].valid, 1) << name;
            ASSERT_EQ(values[0].valid != 0 ? values[0].value : values[1].value, values[2].value) << name;
        }
    }
}

}  // namespace
}  // namespace zr
