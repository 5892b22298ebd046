#include "siblings/driversupport/store/CsvExport.h"

#include "siblings/driversupport/MeasureUnits.h"
#include "siblings/driversupport/store/CsvImport.h"
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/Progress.h"
#include "siblings/tools/TimeZone.h"
#include "siblings/tools/Utf.h"
#include "unit/csv/StoredSamples.h"
#include "unit/csv/TextSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <bit>
#include <cmath>
#include <random>

namespace zr {
namespace {

using test::Stored;
using test::TextSource;
using test::TimedValues;

constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kSpring = 1017536400;  // 31 March 2002, 01:00 UTC: 02:00 becomes 03:00
constexpr std::int64_t kAutumn = 1035680400;  // 27 October 2002, 01:00 UTC: 03:00 becomes 02:00

class TextSink final : public CsvSink {
public:
    bool Write(std::string_view bytes) override
    {
        if (isFull) {
            return false;
        }
        text += bytes;
        return true;
    }
    [[nodiscard]] std::string Error() const override { return "no room"; }

    std::string text;
    bool isFull = false;
};

class Meter final : public ZRDeviceDriver {
public:
    Meter()
    {
        std::vector<VariableDescription> variables(2);
        variables[0].name = u"E";
        variables[0].variableClass = VariableClass::Counter;
        variables[0].measureUnits = static_cast<std::int32_t>(MeasureUnit::WattHour);
        variables[0].valueExponent = 3;
        variables[1].name = u"X";
        SetVariables(std::make_shared<VariableTable>(variables));
        SetName(u"D");
    }
};

class CsvExportTest : public testing::Test {
protected:
    CsvExportTest()
    {
        SetLoggerStore(&store);
        SetPlantZone(TimeZone(3600, {{kSpring, 7200}, {kAutumn, 3600}}));
        options.variables = {u"M.P"};
    }
    ~CsvExportTest() override
    {
        SetLoggerStore(nullptr);
        SetPlantZone(TimeZone::System());
    }

    void Append(const ZRBasicString& variable, const TimedValues& samples, std::int32_t infoCode = 1)
    {
        const int series = store.OpenSeries(variable, infoCode);
        std::vector<LoggerAppend> batch;
        for (const auto& [time, value] : samples) {
            batch.push_back({series, time, value});
        }
        ASSERT_TRUE(store.Append(batch));
    }
    CsvExport::Result Export(Progress* progress = nullptr)
    {
        CsvExport work(options);
        sink.text.clear();
        const CsvExport::Result result = work.Run(sink, progress);
        error = work.Error();
        rows = work.Rows();
        values = work.Values();
        return result;
    }
    std::string Text()
    {
        EXPECT_EQ(Export(), CsvExport::Result::Done) << error;
        return sink.text;
    }
    static ZRDateTime Date(int day, int month, int year, int hour = 0)
    {
        ZRDateTime date;
        date.SetDateTime(year, month, day, hour, 0, 0, 0, 0);
        return date;
    }

    MemoryLoggerStore store;
    CsvExportOptions options;
    TextSink sink;
    std::string error;
    std::size_t rows = 0;
    std::size_t values = 0;
};

TEST_F(CsvExportTest, WritesARowForEveryTimeAndLeavesMissingValuesEmpty)
{
    Append(u"M.P", {{1041438240 * kMicros, 1.5}, {1041438300 * kMicros, -2}});
    Append(u"M.Q", {{1041438300 * kMicros, 0.1}, {1041438360 * kMicros + 250, 1e21}});
    options.variables = {u"M.P", u"M.Q"};
    EXPECT_EQ(Text(),
              "time,M.P,M.Q\n"
              "2003-01-01T17:24:00+01:00,1.5,\n"
              "2003-01-01T17:25:00+01:00,-2,0.1\n"
              "2003-01-01T17:26:00.000250+01:00,,1e+21\n");
    EXPECT_EQ(rows, 3u);
    EXPECT_EQ(values, 4u);
}

TEST_F(CsvExportTest, NamesTheUnitWhereADeviceTellsIt)
{
    Meter meter;
    Append(u"D.E", {{1041438240 * kMicros, 1}}, 8);
    options.variables = {u"D.E", u"D.X", u"M.P"};
    EXPECT_EQ(Text(), "time,D.E [kWh],D.X,M.P\n2003-01-01T17:24:00+01:00,1,,\n");
}

TEST_F(CsvExportTest, WritesOtherSeparatorsAndDecimalMarks)
{
    Append(u"M.P", {{1041438240 * kMicros, 1.5}});
    options.format = {';', ','};
    EXPECT_EQ(Text(), "time;M.P\n2003-01-01T17:24:00+01:00;1,5\n");
    options.format = {'\t', '.'};
    EXPECT_EQ(Text(), "time\tM.P\n2003-01-01T17:24:00+01:00\t1.5\n");
}

TEST_F(CsvExportTest, TheDoubledHourAppearsTwiceWithItsOffsets)
{
    TimedValues samples;
    for (std::int64_t time = kAutumn - 3600; time <= kAutumn + 1800; time += 1800) {
        samples.emplace_back(time * kMicros, static_cast<double>(samples.size()));
    }
    Append(u"M.P", samples);
    EXPECT_EQ(Text(),
              "time,M.P\n2002-10-27T02:00:00+02:00,0\n2002-10-27T02:30:00+02:00,1\n"
              "2002-10-27T02:00:00+01:00,2\n2002-10-27T02:30:00+01:00,3\n");
}

TEST_F(CsvExportTest, TheSkippedHourAppearsNotAtAll)
{
    Append(u"M.P", {{(kSpring - 60) * kMicros, 1}, {kSpring * kMicros, 2}});
    EXPECT_EQ(Text(), "time,M.P\n2002-03-31T01:59:00+01:00,1\n2002-03-31T03:00:00+02:00,2\n");
    options.from = Date(31, 3, 2002, 2);
    options.to = Date(31, 3, 2002, 3);
    EXPECT_EQ(Text(), "time,M.P\n");
}

TEST_F(CsvExportTest, KeepsWithinTheRange)
{
    Append(u"M.P", {{1041375600 * kMicros, 1}, {1041379200 * kMicros, 2}, {1041382800 * kMicros, 3}});
    options.from = Date(1, 1, 2003, 1);
    options.to = Date(1, 1, 2003, 2);
    EXPECT_EQ(Text(), "time,M.P\n2003-01-01T01:00:00+01:00,2\n");
    options.to = ZRDateTime();
    EXPECT_EQ(Text(), "time,M.P\n2003-01-01T01:00:00+01:00,2\n2003-01-01T02:00:00+01:00,3\n");
}

TEST_F(CsvExportTest, GroupsByClassAndPeriod)
{
    Append(u"M.P", {{1041375600 * kMicros, 1}, {1041379200 * kMicros, 2}, {1041382800 * kMicros, 6}});
    Append(u"M.E", {{1041375600 * kMicros, 10}, {1041382800 * kMicros, 30}}, 8);
    options.variables = {u"M.P", u"M.E"};
    options.period = 86400;
    EXPECT_EQ(Text(), "time,M.P,M.E\n2003-01-01T00:00:00+01:00,3,20\n");
    options.period = 3600;
    EXPECT_EQ(Text(),
              "time,M.P,M.E\n2003-01-01T00:00:00+01:00,1,10\n2003-01-01T01:00:00+01:00,2,10\n"
              "2003-01-01T02:00:00+01:00,6,\n");
    options.period = 31 * 86400;
    Append(u"M.P", {{1046736000 * kMicros, 5}});
    EXPECT_EQ(Text(), "time,M.P,M.E\n2003-01-01T00:00:00+01:00,3,20\n2003-03-01T00:00:00+01:00,5,\n");
}

TEST_F(CsvExportTest, NothingRecordedGivesTheHeaderAlone)
{
    EXPECT_EQ(Text(), "time,M.P\n");
    EXPECT_EQ(rows, 0u);
}

TEST_F(CsvExportTest, TellsWhenTheStoreOrTheSinkFails)
{
    Append(u"M.P", {{1041375600 * kMicros, 1}});
    sink.isFull = true;
    EXPECT_EQ(Export(), CsvExport::Result::Failed);
    EXPECT_EQ(error, "no room");
    sink.isFull = false;
    store.SetAvailable(false);
    EXPECT_EQ(Export(), CsvExport::Result::Failed);
    EXPECT_NE(error, "");
    SetLoggerStore(nullptr);
    EXPECT_EQ(Export(), CsvExport::Result::Failed);
    EXPECT_EQ(error, "the store can't be read");
}

TEST_F(CsvExportTest, TellsOnceWhatAFilterFileLacks)
{
    Append(u"M.P", {{1041375600 * kMicros, 1}, {(1041375600 + 90 * 86400) * kMicros, 2}});
    options.variables = {u"M.P", u"NOWHERE.MVDF@DAY#M.P"};
    CsvExport work(options);
    ASSERT_EQ(work.Run(sink, nullptr), CsvExport::Result::Done);
    EXPECT_EQ(work.Values(), 2u);
    ASSERT_EQ(work.Remarks().size(), 1u);
    EXPECT_NE(work.Remarks()[0].find("NOWHERE.MVDF"), std::string::npos) << work.Remarks()[0];
}

class ToldProgress final : public Progress {
public:
    void SetText(const wchar*) override {}
    void SetPos(int percent) override { positions.push_back(percent); }
    [[nodiscard]] bool IsCancelled() const override { return positions.size() >= cancelAfter; }
    std::vector<int> positions;
    std::size_t cancelAfter = 1000;
};

// A year and a half of quarters of an hour with gaps, and a counter.
class LongCsvExportTest : public CsvExportTest {
protected:
    LongCsvExportTest()
    {
        std::mt19937 random(11);
        TimedValues powers;
        TimedValues readings;
        double reading = 0.0;
        for (std::int64_t time = kSpring - 40 * 86400; time < kAutumn + 300 * 86400; time += 900) {
            reading += static_cast<double>(random() % 100);
            if (random() % 20 == 0) {
                time += random() % 4 == 0 ? 86400 * static_cast<std::int64_t>(random() % 9) : 7;
            }
            powers.emplace_back(time * kMicros, static_cast<double>(random() % 10000) / 10.0);
            readings.emplace_back(time * kMicros, reading);
        }
        Append(u"M.P", powers);
        Append(u"M.E", readings, 8);
        options.variables = {u"M.P", u"M.E"};
    }
};

// What the data of one load would say, row by row.
TEST_F(LongCsvExportTest, WindowsGiveWhatOneWindowGives)
{
    for (const std::int32_t period : {0, 60, 900, 3600, 7 * 3600, 86400, 7 * 86400, 31 * 86400}) {
        options.period = period;
        const std::string text = Text();
        ZRLoggerInfo info;
        info.AddVariable(u"M.P");
        info.AddVariable(u"M.E");
        ZRLoggerData data;
        data.Setup(info);
        // The first days of a month and of a count of seven days from 1 January 2000.
        const ZRDateTime from =
            period == 31 * 86400 ? Date(1, 2, 2002) : (period == 7 * 86400 ? Date(16, 2, 2002) : Date(19, 2, 2002));
        ASSERT_TRUE(data.SelectData(from, Date(1, 1, 2006), nullptr));
        auto& group = data.RecordGroup(ZRDateTimeSpan(period, 0), nullptr);
        std::vector<std::int64_t> utc;
        for (const RecordChunk& chunk : group.Chunks()) {
            utc.insert(utc.end(), chunk.times, chunk.times + chunk.size);
        }
        TextSource source(text);
        CsvReader reader(source);
        ASSERT_TRUE(reader.Open({}));
        ASSERT_TRUE(reader.Next());
        CsvTimes times((TimeZone()));
        std::size_t index = 0;
        for (auto record = group.first; !(record == group.last); ++record, ++index) {
            ASSERT_TRUE(reader.Next()) << period;
            std::int64_t time = 0;
            ASSERT_EQ(times.Read(reader.Cells()[0], time), nullptr);
            ASSERT_EQ(time, utc[index]) << period << ' ' << reader.Cells()[0];
            for (std::size_t c = 0; c < 2; ++c) {
                const LoggedValue& value = (*record)->values[c];
                double read = 0.0;
                ASSERT_EQ(ParseCsvNumber(reader.Cells()[c + 1], '.', read), value.valid != 0) << period;
                ASSERT_TRUE(value.valid == 0 || read == value.value) << period << ' ' << reader.Cells()[0];
            }
        }
        EXPECT_FALSE(reader.Next()) << period;
        EXPECT_EQ(rows, index);
        EXPECT_GT(index, 10u) << period;
    }
}

TEST_F(LongCsvExportTest, TellsItsProgressAndCanBeCancelled)
{
    ToldProgress progress;
    EXPECT_EQ(Export(&progress), CsvExport::Result::Done);
    EXPECT_GE(progress.positions.size(), 5u);
    EXPECT_TRUE(std::is_sorted(progress.positions.begin(), progress.positions.end()));
    EXPECT_EQ(progress.positions.back(), 100);
    ToldProgress cancelling;
    cancelling.cancelAfter = 2;
    EXPECT_EQ(Export(&cancelling), CsvExport::Result::Cancelled);
}

// Any doubles at any times: the file brings back the same, whatever zone and dialect it is written in.
TEST_F(CsvExportTest, AnImportOfAnExportIsExact)
{
    std::mt19937_64 random(17);
    const CsvFormat formats[] = {{',', '.'}, {';', ','}, {'\t', '.'}, {';', '.'}};
    for (int round = 0; round < 40; ++round) {
        TimedValues samples;
        std::int64_t time = (kAutumn - 20000) * kMicros;
        for (int i = 0; i < 500; ++i) {
            time +=
                1 + static_cast<std::int64_t>(random() % 100 == 0 ? random() % (40 * 86400 * kMicros)
                                                                  : random() % (round % 2 == 0 ? 60 * kMicros : 100));
            double value = std::bit_cast<double>(random());
            value = std::isfinite(value) ? value : 0.1 * static_cast<double>(i);
            samples.emplace_back(time, value);
        }
        const std::string name = "R.V" + std::to_string(round);
        Append(Utf8ToUtf16(name), samples);
        options.variables = {Utf8ToUtf16(name)};
        options.format = formats[round % 4];
        const std::string text = Text();
        CsvImportOptions back;
        back.dataSet = u"back";
        back.zone = TimeZone(-5 * 3600, {});
        CsvMapping& mapping = back.mappings.emplace_back();
        mapping.column = name;
        mapping.variable = u"B.V";
        MemoryLoggerStore other;
        CsvImport import(back, other);
        TextSource source(text, 1000);
        ASSERT_EQ(import.Run(source, nullptr), CsvImport::Result::Done) << import.Error();
        ASSERT_TRUE(import.Faults().empty()) << import.Faults().front();
        ASSERT_EQ(Stored(other, u"B.V"), samples) << round;
    }
}

}  // namespace
}  // namespace zr
