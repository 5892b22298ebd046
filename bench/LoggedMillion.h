// A million logged records of ten variables, as a table shows them.
#pragma once

#include "logger/TableColumns.h"
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/support/ZRKestrixSetup.h"
#include "siblings/tools/TimeZone.h"
#include "siblings/tools/ZRLocaleInformation.h"
#include "support/Environment.h"
#include "support/LiveDevice.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace zr::bench {

// Milliseconds that a piece of work takes once.
template <typename Work>
double OnceMs(const Work& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// The median of an odd number of rounds.
template <typename Work>
double MedianMs(int rounds, const Work& work)
{
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        times.push_back(OnceMs(work));
    }
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[static_cast<std::size_t>(rounds / 2)];
}

// Of three times the least: what a short piece of work takes where nothing comes in between.
template <typename Work>
double UndisturbedMs(const Work& work)
{
    return std::min({OnceMs(work), OnceMs(work), OnceMs(work)});
}

// A meter of ten variables, and a million records of them from 1 January 2003 on, in the plant's time, which is UTC:
// voltages, powers and counters, every seventh power missing. Numbers and dates are written as in German, with group
// marks.
class MillionMeter {
public:
    static constexpr int kVariables = 10;
    static constexpr std::int64_t kRecords = 1000000;
    static constexpr std::uint32_t kFirstSecond = 94694400;

    MillionMeter() : m_meter(u"M", Descriptions())
    {
        SetPlantZone(TimeZone());
        SetLocaleInformation("de");
        for (int v = 0; v < kVariables; ++v) {
            m_info.AddVariable(NameOf(v));
        }
    }

    [[nodiscard]] const ZRLoggerInfo& Info() const { return m_info; }

    // With so many seconds from record to record.
    static void Fill(MemoryLoggerStore& store, int period)
    {
        for (int v = 0; v < kVariables; ++v) {
            const int series = store.OpenSeries(NameOf(v), 1);
            std::vector<LoggerAppend> batch;
            for (std::int64_t r = 0; r < kRecords; ++r) {
                if (v < 4 || v >= 8 || (r + v) % 7 != 0) {
                    batch.push_back({series, (kEpoch + kFirstSecond + r * period) * kMicros, ValueOf(v, r)});
                }
            }
            store.Append(batch);
        }
    }

private:
    static constexpr std::int64_t kEpoch = 946684800;
    static constexpr std::int64_t kMicros = 1000000;

    static ZRBasicString VariableOf(int variable) { return ZRBasicString(u"V") + static_cast<wchar>(u'0' + variable); }
    static ZRBasicString NameOf(int variable) { return u"M." + VariableOf(variable); }

    static std::vector<VariableDescription> Descriptions()
    {
        std::vector<VariableDescription> variables;
        for (int v = 0; v < kVariables; ++v) {
            VariableDescription variable =
                test::Variable(VariableOf(v).CStr(), 1 + v % 2, v < 4 ? -1 : 0, 0, 1 + v % 5);
            variable.description = ZRBasicString(u"Quantity ") + static_cast<wchar>(u'0' + v);
            variables.push_back(std::move(variable));
        }
        return variables;
    }

    static double ValueOf(int variable, std::int64_t record)
    {
        const auto number = static_cast<double>(record);
        if (variable < 4) {
            return std::round(2300.0 + 50.0 * std::sin(number * 0.01 + variable));
        }
        return variable < 8 ? std::round(90000.0 * std::sin(number * 0.001 + variable)) / 10.0 : number * 2.5;
    }

    test::LiveDevice m_meter;
    ZRLoggerInfo m_info;
};

// The records a minute apart, as a viewer gets them.
class LoggedMillion {
public:
    static constexpr int kVariables = MillionMeter::kVariables;
    static constexpr std::int64_t kRecords = MillionMeter::kRecords;

    LoggedMillion()
    {
        // What was recorded goes again, so that only what a viewer needs is in memory.
        MemoryLoggerStore store;
        MillionMeter::Fill(store, 60);
        SetLoggerStore(&store);
        m_data.Setup(Info());
        const ZRDateTime from(MillionMeter::kFirstSecond, 0);
        const ZRDateTime to(MillionMeter::kFirstSecond + 60 * static_cast<std::uint32_t>(kRecords), 0);
        m_data.SelectData(from, to, nullptr);
        m_group = &m_data.RecordGroup(ZRDateTimeSpan(0, 0), nullptr);
        SetLoggerStore(nullptr);
    }

    [[nodiscard]] const ZRLoggerInfo& Info() const { return m_meter.Info(); }
    [[nodiscard]] const ZRLoggerData::CRecordGroup& Group() const { return *m_group; }

private:
    MillionMeter m_meter;
    ZRLoggerData m_data;
    const ZRLoggerData::CRecordGroup* m_group = nullptr;
};

// A list control of no screen, and settings that nobody keeps.
class NoScreen final : public logger::TableList {
public:
    [[nodiscard]] int StringWidth(const ZRBasicString& text) const override
    {
        return 7 * static_cast<int>(text.Length());
    }
    void SetColumns(const std::vector<logger::TableColumn>&, const std::vector<int>&) override {}
    void SetItemCount(int) override {}
    [[nodiscard]] int ColumnOrder(int column) const override { return column; }
    [[nodiscard]] int ColumnWidth(int) const override { return 100; }
    [[nodiscard]] std::vector<logger::RowRange> SelectedRows() const override { return {}; }

private:
    test::TempFolder m_folder;
    test::Environment m_config{"XDG_CONFIG_HOME", m_folder.Path().string()};
    ZRKestrixSetup m_setup;
};

}  // namespace zr::bench
