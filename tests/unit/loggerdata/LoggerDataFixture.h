// A store in memory, samples in it, and the records that ZRLoggerData gives of them.
#pragma once

#include "siblings/driversupport/ZRLoggerData.h"

#include "siblings/driversupport/store/MemoryLoggerStore.h"

#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <vector>

namespace zr::test {

inline constexpr std::int64_t kMicros = 1000000;
inline constexpr std::int64_t kEpoch = 946684800;
inline constexpr ZRDateTimeSpan kRecorded(0, 0);
inline constexpr ZRDateTimeSpan kQuarter(900, 0);
inline constexpr ZRDateTimeSpan kHour(3600, 0);
inline constexpr ZRDateTimeSpan kDay(86400, 0);
inline constexpr ZRDateTimeSpan kMonth(2678400, 0);

inline ZRDateTime Date(int day, int month, int year, int hour = 0, int minute = 0)
{
    ZRDateTime date;
    date.SetDateTime(year, month, day, hour, minute, 0, 0, 0);
    return date;
}

// Of a date in UTC.
inline std::int64_t Micros(const ZRDateTime& utc)
{
    return (kEpoch + utc.seconds) * kMicros + utc.microseconds;
}

inline TimeZone Paris()
{
    return {3600, {{Micros(Date(31, 3, 2002, 1)) / kMicros, 7200}, {Micros(Date(27, 10, 2002, 1)) / kMicros, 3600}}};
}

class Meter final : public ZRDeviceDriver {
public:
    Meter()
    {
        std::vector<VariableDescription> variables(2);
        variables[0].name = u"E";
        variables[0].variableClass = VariableClass::Counter;
        variables[0].splittable = true;
        variables[1].name = u"U";
        SetVariables(std::make_shared<VariableTable>(variables));
        SetName(u"M");
    }
};

class LoggerDataFixture : public testing::Test {
protected:
    LoggerDataFixture()
    {
        SetLoggerStore(&store);
        SetPlantZone(TimeZone());
    }
    ~LoggerDataFixture() override
    {
        SetLoggerStore(nullptr);
        SetPlantZone(TimeZone::System());
    }

    void SetVariables(const std::vector<const wchar*>& names)
    {
        ZRLoggerInfo info;
        for (const wchar* name : names) {
            info.AddVariable(name);
        }
        data.Setup(info);
    }

    void Record(const wchar* variable, VariableClass variableClass, const ZRDateTime& utc, double value)
    {
        const int series = store.OpenSeries(variable, static_cast<std::int32_t>(variableClass));
        const std::vector<LoggerAppend> batch = {{series, Micros(utc), value}};
        ASSERT_TRUE(store.Append(batch));
    }

    // A value a minute, counted from 0.
    void RecordMinutes(const wchar* variable, VariableClass variableClass, const ZRDateTime& utc, int count)
    {
        const int series = store.OpenSeries(variable, static_cast<std::int32_t>(variableClass));
        std::vector<LoggerAppend> batch;
        for (int i = 0; i < count; ++i) {
            batch.push_back({series, Micros(utc) + i * 60 * kMicros, static_cast<double>(i)});
        }
        ASSERT_TRUE(store.Append(batch));
    }

    ZRLoggerData::CRecordGroup& Select(const ZRDateTime& from, const ZRDateTime& to, const ZRDateTimeSpan& period)
    {
        EXPECT_TRUE(data.SelectData(from, to, nullptr));
        ZRLoggerData::CRecordGroup& group = data.RecordGroup(period, nullptr);
        group.SelectData(from, to, true);
        return group;
    }

    static std::vector<ZRDateTime> TimesOf(const ZRLoggerData::CRecordGroup& group)
    {
        std::vector<ZRDateTime> times;
        for (auto record = group.first; record != group.last; ++record) {
            times.push_back((*record)->time);
        }
        EXPECT_EQ(static_cast<std::size_t>(group.count), times.size());
        return times;
    }

    // -1 for what isn't valid.
    static std::vector<double> ValuesOf(const ZRLoggerData::CRecordGroup& group, std::size_t column)
    {
        std::vector<double> values;
        for (auto record = group.first; record != group.last; ++record) {
            const LoggedValue& value = (*record)->values[column];
            values.push_back(value.valid != 0 ? value.value : -1.0);
        }
        return values;
    }

    static void ExpectEmpty(const ZRLoggerData::CRecordGroup& group)
    {
        EXPECT_EQ(group.count, 0);
        EXPECT_EQ(group.first, group.last);
    }

    MemoryLoggerStore store;
    ZRLoggerData data;
};

}  // namespace zr::test
