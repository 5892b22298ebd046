// Six voltages a minute, as many records as are asked for: in memory as a viewer gets them, or in a store.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "support/LiveDevice.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zr::bench {

inline constexpr int kCurves = 6;

// Ends the program with that message unless it is right.
void Require(bool isRight, const char* what);

class LoggedCurves {
public:
    // Loads them, unless they are to be loaded later.
    explicit LoggedCurves(std::int64_t records);

    [[nodiscard]] std::int64_t Records() const { return m_records; }
    [[nodiscard]] ZRDateTime From() const;
    [[nodiscard]] ZRDateTime To() const;  // Exclusive.
    [[nodiscard]] const ZRLoggerInfo& Info() const { return m_data.loggerInfo; }

    // Writes all samples, batch by batch.
    void Fill(LoggerStore& store) const;
    // Out of the store in force.
    const ZRLoggerData::CRecordGroup& Load();
    // Out of a store in memory that goes again.
    const ZRLoggerData::CRecordGroup& LoadFromMemory();
    // What the records take: a node of the list, a record, its time and its values.
    [[nodiscard]] double RecordBytes() const;

    // UTC, seconds since 1970.
    [[nodiscard]] std::vector<double> Times() const;
    // Volts of a curve, as shown.
    [[nodiscard]] std::vector<double> Values(int curve) const;

private:
    static double StoredValue(int curve, std::int64_t record);

    std::int64_t m_records;
    test::LiveDevice m_meter;
    ZRLoggerData m_data;
};

}  // namespace zr::bench
