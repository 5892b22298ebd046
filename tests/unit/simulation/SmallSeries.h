// A series of a few rows, whose values a test can reckon in the head.
#pragma once

#include "devices/simulation/HouseholdSeries.h"

#include <gtest/gtest.h>
#include <string>

namespace zr::test {

inline constexpr const char* kSeriesHeader =
    "time,active_kW,reactive_kvar,voltage_V,current_A,sub1_Wh,sub2_Wh,sub3_Wh\n";

// Four minutes from 23:58 on; the third was not measured.
inline const std::string kSmallSeries = std::string(kSeriesHeader) +
                                        "2007-01-01T23:58,1.2,0.6,240,5.6,6,0,12\n"
                                        "2007-01-01T23:59,2.4,0,230,10.4,0,3,12\n"
                                        "2007-01-02T00:00,,,,,,,\n"
                                        "2007-01-02T00:01,1.2,0.6,240,5.6,0,0,12\n";

inline void LoadSeries(HouseholdSeries& series, const std::string& text = kSmallSeries)
{
    std::string error;
    ASSERT_TRUE(series.LoadText(text, "small.csv", error)) << error;
}

// The measured house.
inline void LoadHouse(HouseholdSeries& series)
{
    std::string error;
    ASSERT_TRUE(series.Load(ZR_RESOURCES "/demo/household/household_1min.csv", error)) << error;
}

}  // namespace zr::test
