#include "logger/GraphSettings.h"

#include "logger/GraphLayout.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/Numbers.h"

namespace zr::logger {

namespace {

constexpr const wchar* kGraph = u"Graph";
constexpr const wchar* kColor = u"Color";
constexpr const wchar* kLineType = u"LineType";
constexpr const wchar* kMaximum = u"Maximum";
constexpr const wchar* kMinimum = u"Minimum";
constexpr const wchar* kZone = u"Zone";
constexpr const wchar* kMeasureUnits = u"MeasureUnits";
constexpr const wchar* kIndex = u"Index";

double LimitOf(const XmlNode& setup, const wchar* name, double unset)
{
    const ZRBasicString text = setup.Value(name, u"");
    return text.IsEmpty() ? unset : TextToDouble(text);
}

void SetLimit(XmlNode& setup, const wchar* name, double limit, double unset)
{
    if (limit != unset) {
        setup.SetValue(name, FormatText(u"%f", {limit}));
    }
}

}  // namespace

// A curve that comes anew joins the zone of the one before it.
GraphSettings::GraphSettings(ZRGraphProfile& profile, const ZRLoggerInfo& info, XmlNode* node)
    : ViewerSettings(profile, info, node, kGraph, &Record::Zone)
{
}

int GraphSettings::GetLastConfiguration(bool& firstTime)
{
    if (!Merge()) {
        firstTime = true;
    }
    ChangeNamesVars(ProfileInUse(), Info());
    return Count();
}

int GraphSettings::SetLastConfiguration()
{
    XmlNode* const vars = Node() != nullptr ? Node()->Node(kSettingsVars) : nullptr;
    XmlNode* const graph = Node() != nullptr ? Node()->Node(kGraph) : nullptr;
    if (vars != nullptr && graph != nullptr) {
        Rewrite(*vars, *graph);
    }
    return 0;
}

GraphSettings::Record GraphSettings::NewRecord(const ZRBasicString& name, const ZRDeviceDriver::tagSVariableInfo& info,
                                               int place, int k) const
{
    return {name,
            info.description,
            place,
            0,
            0,
            info.measureUnits,
            info.valueExponent,
            info.unitsDecimals,
            info.infoCode,
            k,
            Record::kNoMinimum,
            Record::kNoMaximum,
            info.unitsExponent};
}

void GraphSettings::Read(Record& record, const XmlNode& setup) const
{
    // Digits of either case.
    const ZRBasicString color = setup.Value(kColor, u"");
    record.Color = HtoL(color.CStr(), color.Length());
    record.LineType = NumberOf(setup, kLineType);
    record.Maximum = LimitOf(setup, kMaximum, Record::kNoMaximum);
    record.Minimum = LimitOf(setup, kMinimum, Record::kNoMinimum);
    record.Zone = NumberOf(setup, kZone);
    record.MeasureUnits = NumberOf(setup, kMeasureUnits);
    // Meant: the saved one, even where the variable stands at another position of the list since.
    record.Index = NumberOf(setup, kIndex);
}

void GraphSettings::Write(const Record& record, XmlNode& setup) const
{
    setup.SetValue(kColor, FormatText(u"%06X", {record.Color}));
    SetNumber(setup, kLineType, record.LineType);
    SetLimit(setup, kMaximum, record.Maximum, Record::kNoMaximum);
    SetLimit(setup, kMinimum, record.Minimum, Record::kNoMinimum);
    SetNumber(setup, kZone, record.Zone);
    SetNumber(setup, kMeasureUnits, record.MeasureUnits);
    SetNumber(setup, kIndex, record.Index);
}

}  // namespace zr::logger
