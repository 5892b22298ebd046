#include "hosts/kestrix/PageModel.h"

#include "hosts/kestrix/DeviceWatch.h"
#include "siblings/driversupport/MeasureUnits.h"
#include "siblings/tools/DescriptionTable.h"

#include <algorithm>
#include <map>
#include <utility>

namespace zr::desktop {
namespace {

constexpr int kCheckHigh = 2;
constexpr int kCheckLow = 4;
constexpr int kCheckPowerFactor = 32;

RowKind KindOf(const VariableDescription& variable)
{
    const bool isState = variable.variableClass == VariableClass::State && variable.measureUnits == 0;
    const bool isBit = isState && variable.minimum == 0.0 && variable.maximum == 1.0;
    const std::vector<ZRBasicString>& texts = variable.valueTexts;
    if (isBit && (texts.empty() || texts == std::vector<ZRBasicString>{u"Off", u"On"})) {
        return RowKind::Digital;
    }
    // A state that is neither a bit nor has a unit is a text of the device, or one of a list of names.
    return isState || !texts.empty() ? RowKind::Text : RowKind::Number;
}

Section SectionOf(const VariableDescription& variable)
{
    if (variable.output) {
        return Section::Outputs;
    }
    switch (static_cast<MeasureUnit>(variable.measureUnits)) {
        case MeasureUnit::Volt:
            return Section::Voltages;
        case MeasureUnit::Ampere:
            return Section::Currents;
        case MeasureUnit::Watt:
        case MeasureUnit::Var:
        case MeasureUnit::VoltAmpere:
            return Section::Powers;
        case MeasureUnit::PowerFactor:
            return Section::PowerFactors;
        case MeasureUnit::WattHour:
        case MeasureUnit::VarHour:
        case MeasureUnit::VoltAmpereHour:
            return Section::Energies;
        case MeasureUnit::Pulse:
            return Section::Counters;
        case MeasureUnit::Percent:
            return Section::Harmonics;
        default:
            break;
    }
    return KindOf(variable) == RowKind::Digital || !variable.values.empty() ? Section::Inputs : Section::Other;
}

PageRow RowOf(const VariableDescription& variable, std::size_t index)
{
    PageRow row;
    row.variable = index;
    row.name = variable.name;
    row.description = variable.description.IsEmpty() ? variable.name : TranslateDescription(variable.description);
    row.isPowerFactor = IsPowerFactor(variable);
    row.kind = KindOf(variable);
    // The unit of a power factor is its name, which the description tells.
    if (row.kind == RowKind::Number && !row.isPowerFactor) {
        ZRDeviceDriver::MeasureUnitsText(row.unit, variable.measureUnits, variable.unitsExponent);
    }
    row.limits = variable.limits;
    return row;
}

bool HasBar(Section section)
{
    return section == Section::Voltages || section == Section::Currents || section == Section::PowerFactors;
}

// Whether they have a variable of one name and unit in common.
bool SharesVariable(const VariableTable& left, const VariableTable& right)
{
    for (std::size_t i = 0; i < left.Size(); ++i) {
        const auto found = right.Find(left[i].name);
        if (found && right[*found].measureUnits == left[i].measureUnits &&
            right[*found].unitsExponent == left[i].unitsExponent) {
            return true;
        }
    }
    return false;
}

// The rows of one table, a variable of several devices being known by its name and displayed unit.
class TableMaker {
public:
    explicit TableMaker(std::size_t columns) : m_columns(columns) {}

    void Add(std::size_t column, const VariableTable& variables)
    {
        for (std::size_t i = 0; i < variables.Size(); ++i) {
            const VariableDescription& variable = variables[i];
            const Key key{SectionOf(variable), variable.name, variable.measureUnits, variable.unitsExponent};
            const auto [place, isNew] = m_places.emplace(key, m_rows[key.section].size());
            std::vector<GroupRow>& rows = m_rows[key.section];
            if (isNew) {
                rows.push_back({RowOf(variable, i), std::vector<std::optional<std::size_t>>(m_columns)});
            }
            rows[place->second].variables[column] = i;
        }
    }

    std::vector<GroupSection> Take()
    {
        std::vector<GroupSection> sections;
        for (auto& [section, rows] : m_rows) {
            sections.push_back({section, std::move(rows)});
        }
        return sections;
    }

private:
    struct Key {
        Section section;
        ZRBasicString name;
        std::int32_t unit;
        std::int32_t exponent;
        friend auto operator<=>(const Key&, const Key&) = default;
    };
    std::size_t m_columns;
    std::map<Key, std::size_t> m_places;
    std::map<Section, std::vector<GroupRow>> m_rows;
};

}  // namespace

int PageRow::CheckFlags() const
{
    if (!limits) {
        return 0;
    }
    return (limits->hasHigh ? kCheckHigh : 0) | (limits->hasLow ? kCheckLow : 0) |
           (isPowerFactor ? kCheckPowerFactor : 0);
}

DevicePage MakeDevicePage(const VariableTable& variables)
{
    std::map<Section, std::vector<PageRow>> sections;
    DevicePage page;
    for (std::size_t i = 0; i < variables.Size(); ++i) {
        const Section section = SectionOf(variables[i]);
        sections[section].push_back(RowOf(variables[i], i));
    }
    for (auto& [section, rows] : sections) {
        for (const PageRow& row : rows) {
            if (row.limits && HasBar(section)) {
                page.bars.push_back(row);
            }
        }
        page.sections.push_back({section, std::move(rows)});
    }
    return page;
}

std::vector<GroupTable> MakeGroupTables(const std::vector<const VariableTable*>& devices)
{
    std::vector<GroupTable> tables;
    for (std::size_t i = 0; i < devices.size(); ++i) {
        if (devices[i] == nullptr || devices[i]->Size() == 0) {
            continue;
        }
        const auto fits = std::find_if(tables.begin(), tables.end(), [&](const GroupTable& table) {
            const VariableTable& first = *devices[table.devices.front()];
            return &first == devices[i] || SharesVariable(first, *devices[i]);
        });
        if (fits == tables.end()) {
            tables.push_back({{i}, {}});
        } else {
            fits->devices.push_back(i);
        }
    }
    for (GroupTable& table : tables) {
        TableMaker maker(table.devices.size());
        for (std::size_t column = 0; column < table.devices.size(); ++column) {
            maker.Add(column, *devices[table.devices[column]]);
        }
        table.sections = maker.Take();
    }
    return tables;
}

}  // namespace zr::desktop
