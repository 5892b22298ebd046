// The records of a logged data set, read for a range of time and grouped at sample periods.
#pragma once

#include "siblings/driversupport/hours/HourSplit.h"
#include "siblings/driversupport/RecordArena.h"
#include "siblings/driversupport/SampleGrouper.h"
#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/tools/Progress.h"
#include "siblings/tools/TimeZone.h"
#include "siblings/tools/ZRDateTime.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

// Reads from the store in force (zr::SetLoggerStore); times are local to the plant (zr::PlantZone).
//
// Setup once, right after construction. Then SelectData for a range, and RecordGroup for each period. A loader thread
// and the thread of the viewers may use it in turn, never at once. Where a store fails, or is not there, groups are
// empty.
//
// A full reference (`file.MVDF@hour#driver.variable`) has the samples of its plain variable that lie in its hour type,
// by the calendar that the filter file holds when SelectData reads it: a tariff that is changed splits all history
// anew. Where the file isn't fit, the column has no values and Problems() tells why.
class ZRLoggerData {
public:
    // The records of the range at one sample period. Valid until the next SelectData.
    class CRecordGroup {
    public:
        using iterator = zr::RecordIterator;

        // Restricts the selection to a range of local time: with flag set `to` is exclusive, as everybody asks for,
        // without it inclusive. Nothing is selected where one of them is no date.
        void SelectData(const ZRDateTime& from, const ZRDateTime& to, bool flag);

        // Read directly.
        iterator first;  // the first selected record
        iterator last;   // one past the last
        int count = 0;   // of the selected ones

        // All records of the range, selected or not, with the UTC that tells the passes of a doubled hour apart.
        [[nodiscard]] std::span<const zr::RecordChunk> Chunks() const { return m_arena.Chunks(); }
        // How many values a record has; 0 where nothing could be read.
        [[nodiscard]] std::size_t ValuesOfRecord() const { return m_arena.ValuesOfRecord(); }
        // What the group was built at; 0: as recorded.
        [[nodiscard]] const ZRDateTimeSpan& Period() const { return m_period; }
        // Where the period ends that holds a time, both in microseconds since 1970 UTC: the next cut (see PeriodCuts),
        // be it beyond the range. The time itself for records as recorded, and outside the years of the zones.
        [[nodiscard]] std::int64_t EndOfPeriod(std::int64_t time) const;

    private:
        friend class ZRLoggerData;
        // What went wrong while the group was read; see Failure() and Damage().
        struct Reading {
            std::string failure;
            std::vector<std::string> damage;
        };
        CRecordGroup(zr::RecordArena arena, const ZRDateTimeSpan& period, const zr::TimeZone& zone, Reading reading);
        void Select(std::size_t firstIndex, std::size_t lastIndex);

        zr::RecordArena m_arena;
        Reading m_reading;
        ZRDateTimeSpan m_period;
        const zr::TimeZone& m_zone;  // of the data that this is a group of
    };

    ZRLoggerData();
    ZRLoggerData(const ZRLoggerData&) = delete;
    ZRLoggerData& operator=(const ZRLoggerData&) = delete;

    // The variables, as given to Setup. Read directly.
    ZRLoggerInfo loggerInfo;

    // The virtual operations stand in the order of their slots.
    virtual ~ZRLoggerData();
    // Which variables there are. Takes a copy.
    virtual void Setup(const ZRLoggerInfo& info);
    // Gets ready to read a range; false when there is no store to read. SelectData calls it.
    virtual bool Load(const ZRDateTime& from, const ZRDateTime& to, zr::Progress* progress);

    // Takes a range of local time, `to` exclusive, and drops all groups. False, with nothing to read, when there is no
    // store or the range is empty. Progress may be null.
    bool SelectData(const ZRDateTime& from, const ZRDateTime& to, zr::Progress* progress);
    // The records of the range at a period: as recorded for 0, else one a period with the time at which it begins (see
    // PeriodCuts and SampleGrouper); periods without a value of any variable have none. Read on the first call, later
    // ones give the same group with its selection. Progress may be null.
    CRecordGroup& RecordGroup(const ZRDateTimeSpan& period, zr::Progress* progress);
    // Why the group that was asked for last is empty, as the store failed, there is none, or its
    // records are too many for the memory; empty when it didn't fail. English.
    [[nodiscard]] const std::string& Failure() const { return m_reading.failure; }
    // What was damaged in the store, and so left out of the group that was asked for last: one line each, naming file
    // or node.
    [[nodiscard]] const std::vector<std::string>& Damage() const { return m_reading.damage; }
    // Why columns of the selection have no values: one line each, in English, naming the filter file.
    [[nodiscard]] const std::vector<std::string>& Problems() const { return m_split.Problems(); }

private:
    struct Column {
        ZRBasicString variable;      // plain reference
        std::int32_t infoCode = 0;   // 0: not known from the device
        bool isSplit = false;        // by a filter
        ZRBasicString filter;        // of a full reference
        ZRBasicString hour;          // likewise
        zr::HourSplit::Hours hours;  // likewise, while the range holds

        [[nodiscard]] bool HasSamples() const { return !isSplit || hours.runs != nullptr; }
    };

    // Shows the visitor the blocks of a column, for their samples. False when the store fails or the visitor ended it.
    bool ReadColumn(const Column& column, std::int64_t from, std::int64_t to, zr::LoggerBlockVisitor& visitor);
    [[nodiscard]] zr::RecordArena BuildRecorded(zr::Progress* progress);
    [[nodiscard]] zr::RecordArena BuildGrouped(std::int32_t period, zr::Progress* progress);
    // One grouper a column. False when the store fails or the work is to stop.
    bool GroupColumns(std::span<const std::int64_t> cuts, zr::Progress* progress,
                      std::vector<zr::SampleGrouper>& groupers);

    // Takes down what was damaged while blocks were read, if anything; without a text the reading failed, and so false.
    bool NoteReading(const std::optional<std::string>& damage);

    CRecordGroup::Reading m_reading;  // of the group that is read, or was asked for last
    std::vector<Column> m_columns;
    std::unique_ptr<zr::LoggerReader> m_reader;  // null: nothing to read
    bool m_isStoreMissing = false;               // for a range that there is
    zr::HourSplit m_split;                       // while the range holds
    zr::TimeZone m_zone;                         // while the range holds
    std::int64_t m_from = 0;                     // UTC, microseconds since 1970
    std::int64_t m_to = 0;                       // Exclusive.
    std::map<std::pair<std::int32_t, std::uint32_t>, std::unique_ptr<CRecordGroup>> m_groups;  // by period
};
