// The measured minutes that the plant replays.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

// What the house took at one instant, in SI units.
struct HouseholdSample {
    double activeW = 0.0;
    double reactiveVar = 0.0;
    double voltageV = 0.0;                  // phase voltage
    std::array<double, 3> subMeterW = {};   // mean of the minute
    std::array<double, 3> subMeterWh = {};  // since position 0
};

// One row a minute, read from a CSV file with the columns `time`, `active_kW`, `reactive_kvar`, `voltage_V`,
// `current_A`, `sub1_Wh`, `sub2_Wh`, `sub3_Wh`; empty fields are missing values.
//
// A position is a time in minutes since the first row; the series repeats endlessly, so that position Size() is again
// the first row. Powers and voltage run straight from the start of one minute to the start of the next; over rows
// without values they run straight from the last measured row to the next one. Immutable once loaded: any thread.
class HouseholdSeries {
public:
    static constexpr std::size_t kMaxRows = 1'000'000;

    // False if the file can't be read or a row is refused: the series is then empty and error tells
    // "FILE:LINE: REASON". Needs at least two rows; the first and the last must be measured.
    bool Load(const std::filesystem::path& path, std::string& error);
    // As Load(), from memory; name stands for the file in errors.
    bool LoadText(std::string_view text, const std::string& name, std::string& error);

    // In rows, which are minutes.
    [[nodiscard]] std::size_t Size() const { return m_rows.size(); }
    // False for a row that had no values. Zero-based; no range test.
    [[nodiscard]] bool IsMeasured(std::size_t row) const { return m_rows[row].measured; }
    // The values at a position of at least 0. The series must not be empty.
    [[nodiscard]] HouseholdSample At(double position) const;
    // Integral of the active power from position 0, in Wh.
    [[nodiscard]] double ActiveWh(double position) const;
    // Integral of the reactive power from position 0, in varh.
    [[nodiscard]] double ReactiveVarh(double position) const;
    // Reactive power at the start of a row, in var. Zero-based; no range test.
    [[nodiscard]] double ReactiveVar(std::size_t row) const { return m_rows[row].reactiveVar; }

    // The position of a local time "YYYY-MM-DDThh:mm"; empty when it isn't one of the rows.
    [[nodiscard]] std::optional<double> Find(std::string_view time) const;
    // The first position of at least one day at which the wall clock of the series shows that time of day.
    [[nodiscard]] double FindTimeOfDay(double secondOfDay) const;
    // Minutes from midnight to the first row, 0 to 1439.
    [[nodiscard]] int FirstMinuteOfDay() const;

private:
    struct Row {
        bool measured = false;
        double activeW = 0.0;
        double reactiveVar = 0.0;
        double voltageV = 0.0;
        std::array<double, 3> subMeterWh = {};      // in this minute
        std::array<double, 3> subMeterBefore = {};  // from the first row to the start of this one, Wh
        double activeBefore = 0.0;                  // likewise, Wh
        double reactiveBefore = 0.0;                // likewise, varh
    };
    // A position taken apart.
    struct Place {
        double passes;    // whole passes before it
        std::size_t row;  // of the present pass
        double fraction;  // of the minute
    };
    [[nodiscard]] Place PlaceOf(double position) const;
    [[nodiscard]] const Row& Next(std::size_t row) const { return m_rows[row + 1 == m_rows.size() ? 0 : row + 1]; }
    bool AddRow(std::string_view line, std::string& reason);
    void BridgeGaps();
    void SumUp();

    std::vector<Row> m_rows;
    std::int64_t m_firstMinute = 0;    // since 1970, on the wall clock of the series
    double m_totalActiveWh = 0.0;      // of one pass
    double m_totalReactiveVarh = 0.0;  // likewise
    std::array<double, 3> m_totalSubMeterWh = {};
};

// Minutes since 1970-01-01T00:00 of "YYYY-MM-DDThh:mm", no zone; empty if it isn't such a time.
std::optional<std::int64_t> ParseMinute(std::string_view text);

}  // namespace zr
