// A meter with logged data, texts and formats as in English, and a registry of its own.
#pragma once

#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/support/ZRKestrixSetup.h"
#include "siblings/tools/LanguageFile.h"
#include "siblings/tools/TimeZone.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLoadString.h"
#include "siblings/tools/ZRLocaleInformation.h"
#include "support/Environment.h"
#include "support/LiveDevice.h"
#include "support/TempFolder.h"
#ifdef _WIN32
#include "unit/platform/RegistryRedirection.h"
#endif

#include <gtest/gtest.h>
#include <cmath>
#include <string>
#include <vector>

namespace zr::logger {

inline ZRDateTime Date(int day, int month, int year, int hour = 0, int minute = 0, int second = 0)
{
    ZRDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second, 0, 0);
    return date;
}

constexpr ZRDateTimeSpan kEveryRecord(0, 0);

inline VariableDescription Described(const wchar* name, const wchar* description, int measureUnits, int valueExponent,
                                     int unitsExponent, int decimals)
{
    VariableDescription variable = test::Variable(name, decimals, valueExponent, unitsExponent, measureUnits);
    variable.description = description;
    return variable;
}

// The plant's clock is UTC. The meter M has a voltage U (stored in tenths), an energy E (shown in kWh) and a power
// factor PF.
class LoggedFixture : public testing::Test {
protected:
    LoggedFixture()
    {
        setup.registryKey = u"Software\\Kestrix-LoggedFixture";
        SetLoggerStore(&store);
        SetPlantZone(TimeZone());
        SetLocaleInformation("en");
        EXPECT_TRUE(language.Load(ZR_RESOURCES "/language/en.txt")) << language.Error().Message();
        SetLanguage(&language);
    }
    ~LoggedFixture() override
    {
        SetLanguage(nullptr);
        SetLocaleInformation("");
        SetPlantZone(TimeZone::System());
        SetLoggerStore(nullptr);
    }

    static ZRLoggerInfo Info(const std::vector<ZRBasicString>& names)
    {
        ZRLoggerInfo info;
        for (const ZRBasicString& name : names) {
            info.AddVariable(name);
        }
        return info;
    }

    // NaN stands for no value.
    void Record(const wchar* variable, const ZRDateTime& time, double value)
    {
        if (std::isnan(value)) {
            return;
        }
        constexpr std::int64_t kEpoch = 946684800;
        const int series = store.OpenSeries(variable, 1);
        const std::vector<LoggerAppend> batch = {{series, (kEpoch + time.seconds) * 1000000, value}};
        ASSERT_TRUE(store.Append(batch));
    }

    // A record a minute from a time on, with these values of M.U.
    void RecordVoltages(const ZRDateTime& first, const std::vector<double>& values)
    {
        for (std::size_t i = 0; i < values.size(); ++i) {
            Record(u"M.U", ZRDateTime(first.seconds + static_cast<std::uint32_t>(i) * 60, 0), values[i]);
        }
    }

    // Every record of a stretch of time.
    const ZRLoggerData::CRecordGroup& Load(const ZRLoggerInfo& info, const ZRDateTime& from, const ZRDateTime& to)
    {
        data.Setup(info);
        EXPECT_TRUE(data.SelectData(from, to, nullptr));
        ZRLoggerData::CRecordGroup& group = data.RecordGroup(kEveryRecord, nullptr);
        group.SelectData(from, to, true);
        return group;
    }
    const ZRLoggerData::CRecordGroup& LoadDay(const ZRLoggerInfo& info) { return Load(info, kDay, Date(31, 12, 2002)); }

    static std::string Narrow(const ZRBasicString& text) { return Utf16ToUtf8(text); }

    const ZRDateTime kDay = Date(30, 12, 2002);

    test::TempFolder folder;
    test::Environment config{"XDG_CONFIG_HOME", folder.Path().string()};
#ifdef _WIN32
    test::RegistryRedirection registry;
#endif
    ZRKestrixSetup setup;
    LanguageFile language;
    MemoryLoggerStore store;
    ZRLoggerData data;
    test::LiveDevice meter{u"M",
                           {Described(u"U", u"Voltage", 1, -1, 0, 1), Described(u"E", u"Energy", 8, 0, 3, 2),
                            Described(u"PF", u"Power factor", 7, 0, 0, 3)}};
};

}  // namespace zr::logger
