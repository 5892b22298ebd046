#include "hosts/kestrix/PageModel.h"

#include "devices/modbus/DeviceProfile.h"
#include "siblings/driversupport/MeasureUnits.h"
#include "WatchedDevice.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <set>

namespace zr::desktop {
namespace {
using namespace test;

int Code(MeasureUnit unit)
{
    return static_cast<int>(unit);
}

std::shared_ptr<const VariableTable> Shipped(const std::string& type)
{
    std::string error;
    const auto profile = modbus::DeviceProfile::Load(std::string(ZR_RESOURCES) + "/devices/" + type + ".xml", error);
    EXPECT_NE(profile, nullptr) << error;
    return profile != nullptr ? profile->Variables() : nullptr;
}

TEST(PageModelTest, SectionsStandInTheirOrderAndNoneIsEmpty)
{
    VariableDescription state = Number(u"I1", 0);
    state.variableClass = VariableClass::State;
    state.maximum = 1.0;
    const VariableTable table({state, Number(u"EA", Code(MeasureUnit::WattHour)),
                               Number(u"U1", Code(MeasureUnit::Volt)), Number(u"U2", Code(MeasureUnit::Volt))});
    const DevicePage page = MakeDevicePage(table);
    ASSERT_EQ(page.sections.size(), 3u);
    EXPECT_EQ(page.sections[0].section, Section::Voltages);
    EXPECT_EQ(page.sections[0].rows.size(), 2u);
    EXPECT_EQ(page.sections[1].section, Section::Energies);
    EXPECT_EQ(page.sections[2].section, Section::Inputs);
    EXPECT_EQ(page.sections[2].rows[0].kind, RowKind::Digital);
}

TEST(PageModelTest, EveryVariableOfAShippedProfileHasOneRow)
{
    for (const char* const type : {"EM3", "EM3T", "NA3", "IO8", "ORL1", "ORL7N"}) {
        const auto table = Shipped(type);
        ASSERT_NE(table, nullptr);
        std::set<std::size_t> seen;
        for (const PageSection& section : MakeDevicePage(*table).sections) {
            EXPECT_FALSE(section.rows.empty());
            for (const PageRow& row : section.rows) {
                EXPECT_TRUE(seen.insert(row.variable).second) << type;
                EXPECT_EQ(row.name, (*table)[row.variable].name);
                EXPECT_FALSE(row.description.IsEmpty());
            }
        }
        EXPECT_EQ(seen.size(), table->Size()) << type;
    }
}

TEST(PageModelTest, AMeterHasBarsForVoltagesCurrentsAndPowerFactors)
{
    const auto table = Shipped("EM3");
    ASSERT_NE(table, nullptr);
    std::vector<std::string> names;
    for (const PageRow& row : MakeDevicePage(*table).bars) {
        EXPECT_TRUE(row.limits.has_value());
        names.emplace_back(row.name.Text().begin(), row.name.Text().end());
    }
    const std::vector<std::string> expected = {"U1", "U2", "U3",  "U12", "U23", "U31", "I1",
                                               "I2", "I3", "PF1", "PF2", "PF3", "PF"};
    EXPECT_EQ(names, expected);
}

TEST(PageModelTest, TheUnitIsTheDisplayedOne)
{
    VariableDescription energy = Number(u"EA", Code(MeasureUnit::WattHour));
    energy.unitsExponent = 3;
    const DevicePage page = MakeDevicePage(VariableTable({energy, Number(u"PF", Code(MeasureUnit::PowerFactor))}));
    EXPECT_EQ(page.sections[0].rows[0].unit, u"");  // the power factor has none
    EXPECT_EQ(page.sections[1].rows[0].unit, u"kWh");
}

TEST(PageModelTest, CheckFlagsTellTheSidesThatHaveLimits)
{
    PageRow row;
    EXPECT_EQ(row.CheckFlags(), 0);
    row.limits = VariableLimits{1.0, true, 0.9, 0.8, false, 0.0, 0.0};
    EXPECT_EQ(row.CheckFlags(), 4);
    row.limits->hasHigh = true;
    EXPECT_EQ(row.CheckFlags(), 6);
    row.isPowerFactor = true;
    EXPECT_EQ(row.CheckFlags(), 38);
}

TEST(PageModelTest, AListOfNamesAndATextAreShownAsText)
{
    VariableDescription door = Number(u"DOOR", 0);
    door.variableClass = VariableClass::State;
    door.maximum = 1.0;
    door.valueTexts = {u"Open", u"Closed"};
    door.values = {0, 1};
    VariableDescription serial = Number(u"SERIAL", 0);
    serial.variableClass = VariableClass::State;
    const DevicePage page = MakeDevicePage(VariableTable({door, serial}));
    EXPECT_EQ(page.sections[0].rows[0].kind, RowKind::Text);
    EXPECT_EQ(page.sections[1].rows[0].kind, RowKind::Text);
}

TEST(PageModelTest, AGroupShowsTheSameVariablesSideBySide)
{
    const VariableTable meter({Number(u"U1", Code(MeasureUnit::Volt)), Number(u"EA", Code(MeasureUnit::WattHour))});
    const VariableTable analyser({Number(u"F", Code(MeasureUnit::Hertz)), Number(u"U1", Code(MeasureUnit::Volt))});
    const VariableTable io({Number(u"C1", Code(MeasureUnit::Pulse))});
    const auto tables = MakeGroupTables({&meter, &io, &analyser, nullptr, &meter});
    ASSERT_EQ(tables.size(), 2u);
    EXPECT_EQ(tables[0].devices, (std::vector<std::size_t>{0, 2, 4}));
    EXPECT_EQ(tables[1].devices, std::vector<std::size_t>{1});
    ASSERT_EQ(tables[0].sections[0].section, Section::Voltages);
    const GroupRow& voltage = tables[0].sections[0].rows[0];
    ASSERT_EQ(voltage.variables.size(), 3u);
    EXPECT_EQ(voltage.variables[0], 0u);
    EXPECT_EQ(voltage.variables[1], 1u);
    EXPECT_EQ(voltage.variables[2], 0u);
    const GroupRow& frequency = tables[0].sections.back().rows.back();
    EXPECT_EQ(frequency.row.name, u"F");
    EXPECT_FALSE(frequency.variables[0].has_value());
    EXPECT_TRUE(frequency.variables[1].has_value());
}

TEST(PageModelTest, OneNameWithTwoUnitsHasTwoRows)
{
    const VariableTable left({Number(u"P", Code(MeasureUnit::Watt)), Number(u"X", Code(MeasureUnit::Volt))});
    const VariableTable right({Number(u"P", Code(MeasureUnit::Var)), Number(u"X", Code(MeasureUnit::Volt))});
    const auto tables = MakeGroupTables({&left, &right});
    ASSERT_EQ(tables.size(), 1u);
    EXPECT_EQ(tables[0].sections[1].rows.size(), 2u);
}

TEST(PageModelTest, ADeviceWithoutVariablesStandsInNoTable)
{
    const VariableTable none({});
    EXPECT_TRUE(MakeGroupTables({&none, nullptr}).empty());
}

}  // namespace
}  // namespace zr::desktop
