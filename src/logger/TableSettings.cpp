#include "logger/TableSettings.h"

#include "logger/TableColumns.h"

#include <algorithm>
#include <limits>

namespace zr::logger {

namespace {

constexpr const wchar* kTable = u"Table";
constexpr const wchar* kIndex = u"Index";
constexpr const wchar* kWidth = u"Width";
constexpr int kLastIndex = std::numeric_limits<int>::max() - 1;

}  // namespace

// A column that comes anew stands beside the one before it; CompactOrder tells them apart.
TableSettings::TableSettings(ZRTableProfile& profile, const ZRLoggerInfo& info, XmlNode* node)
    : ViewerSettings(profile, info, node, kTable, &Record::Index)
{
}

int TableSettings::GetLastConfiguration()
{
    Merge();
    return Count();
}

int TableSettings::SetLastConfiguration()
{
    if (Node() != nullptr) {
        Rewrite(GetOrCreate(*Node(), kSettingsVars), GetOrCreate(*Node(), kTable));
    }
    return 0;
}

TableSettings::Record TableSettings::NewRecord(const ZRBasicString& name, const ZRDeviceDriver::tagSVariableInfo& info,
                                               int place, int) const
{
    return {name,
            info.description,
            place,
            info.measureUnits,
            info.valueExponent,
            info.unitsDecimals,
            kNewColumnWidth,
            info.unitsExponent};
}

void TableSettings::Read(Record& record, const XmlNode& setup) const
{
    record.Index = NumberOf(setup, kIndex);
    record.Width = NumberOf(setup, kWidth);
}

void TableSettings::Write(const Record& record, XmlNode& setup) const
{
    SetNumber(setup, kIndex, record.Index);
    SetNumber(setup, kWidth, record.Width);
}

void AppendColumn(XmlNode& node, const ZRBasicString& name)
{
    XmlNode* const table = node.Node(kTable);
    if (table == nullptr) {
        return;
    }
    int last = -1;
    for (const XmlNode* const child : table->children) {
        if (child->Value(kSettingsVar, u"") == name) {
            return;
        }
        last = std::max(last, std::min(NumberOf(*child, kIndex), kLastIndex));
    }
    XmlNode& setup = *table->NewChild(kSettingsVarSetup);
    setup.SetValue(kSettingsVar, name);
    SetNumber(setup, kIndex, last + 1);
    SetNumber(setup, kWidth, kNewColumnWidth);
}

}  // namespace zr::logger
