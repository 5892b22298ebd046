#include "logger/TableSettings.h"

#include "logger/TableColumns.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/Numbers.h"

#include <algorithm>

namespace zr::logger {

namespace {

using Record = ZRTableProfile::CVariableProfile;

constexpr const wchar* kVars = u"Vars";
constexpr const wchar* kVar = u"Var";
constexpr const wchar* kName = u"Name";
constexpr const wchar* kTable = u"Table";
constexpr const wchar* kVarSetup = u"VarSetup";
constexpr const wchar* kIndex = u"Index";
constexpr const wchar* kWidth = u"Width";

XmlNode& GetOrCreate(XmlNode& parent, const wchar* tag)
{
    XmlNode* const node = parent.Node(tag);
    return node != nullptr ? *node : *parent.NewChild(tag);
}

void RemoveAll(XmlNode& parent, const wchar* tag)
{
    while (XmlNode* const child = parent.Node(tag)) {
        parent.RemoveChild(child);
    }
}

int NumberOf(const XmlNode& node, const wchar* name)
{
    return TextToInt(node.Value(name, u""));
}

void SetNumber(XmlNode& node, const wchar* name, int number)
{
    node.SetValue(name, FormatText(u"%d", {number}));
}

int PositionOf(const ZRTableProfile& profile, const ZRBasicString& name)
{
    const auto found = std::find_if(profile.VarsBegin(), profile.VarsEnd(),
                                    [&](const Record* record) { return record->Name == name; });
    return static_cast<int>(std::distance(profile.VarsBegin(), found));
}

// A record as it comes back from the settings: its title is the description.
Record RecordFrom(const ZRBasicString& name, const ZRDeviceDriver::tagSVariableInfo& info, int index)
{
    return {name,
            info.description,
            index,
            info.measureUnits,
            info.valueExponent,
            info.unitsDecimals,
            kNewColumnWidth,
            info.unitsExponent};
}

}  // namespace

int TableSettings::GetLastConfiguration()
{
    if (m_node == nullptr) {
        return Count();
    }
    XmlNode& vars = GetOrCreate(*m_node, kVars);
    XmlNode& table = GetOrCreate(*m_node, kTable);
    int wanted = 0;
    for (const XmlNode* child : vars.children) {
        if (child->tag == kVar) {
            RemoveActualizeVariable(vars, table, child->Value(kName, u""));
            ++wanted;
        }
    }
    if (wanted == 0) {
        AddActualConfiguration(vars, table);
    }
    DeleteNotFound(vars);
    return Count();
}

int TableSettings::SetLastConfiguration()
{
    if (m_node != nullptr) {
        XmlNode& vars = GetOrCreate(*m_node, kVars);
        XmlNode& table = GetOrCreate(*m_node, kTable);
        RemoveAll(table, kVarSetup);
        RemoveAll(vars, kVar);
        AddActualConfiguration(vars, table);
    }
    return 0;
}

bool TableSettings::RemoveActualizeVariable(XmlNode& vars, XmlNode& table, const ZRBasicString& name)
{
    const XmlNode* const setup = table.NodeV(u"VarSetup?Var=%s?", name);
    ZRDeviceDriver::tagSVariableInfo info;
    // Meant: of a variable that isn't logged k is the last position of the list of variables, and what is stored for
    // it lands on the record there, with no further test.
    int k = static_cast<int>(m_info.variables.size()) - 1;
    for (const ZRDriverVariable* variable : m_info.variables) {
        if (variable->fullName == name) {
            variable->Info(info);
            k = PositionOf(m_profile, name);
            break;
        }
    }
    if (setup == nullptr) {
        if (vars.NodeV(u"Var?Name=%s?", name) != nullptr) {
            table.NewChild(kVarSetup)->SetValue(kVar, name);
            if (k == Count()) {
                // Beside the record before it; CompactOrder tells them apart.
                const Record* const before = RecordAt(k - 1);
                m_profile.AddVariable(RecordFrom(name, info, before != nullptr ? before->Index : Record().Index));
            }
            return true;
        }
        if (k != -1) {
            m_profile.DeleteVariable(k);
        }
        return true;
    }
    if (k == Count()) {
        m_profile.AddVariable(RecordFrom(name, info, 0));
    }
    if (Record* const record = RecordAt(k)) {
        record->Index = NumberOf(*setup, kIndex);
        record->Width = NumberOf(*setup, kWidth);
    }
    return true;
}

bool TableSettings::AddActualConfiguration(XmlNode& vars, XmlNode& table)
{
    for (auto at = m_profile.VarsBegin(); at != m_profile.VarsEnd(); ++at) {
        const Record& record = **at;
        vars.NewChild(kVar)->SetValue(kName, record.Name);
        XmlNode& setup = *table.NewChild(kVarSetup);
        setup.SetValue(kVar, record.Name);
        SetNumber(setup, kIndex, record.Index);
        SetNumber(setup, kWidth, record.Width);
    }
    return true;
}

bool TableSettings::DeleteNotFound(const XmlNode& vars)
{
    const auto isLogged = [&](const ZRBasicString& name) {
        return std::any_of(m_info.variables.begin(), m_info.variables.end(),
                           [&](const ZRDriverVariable* variable) { return variable->fullName == name; });
    };
    // Whatever the tag of the child.
    const auto isWanted = [&](const ZRBasicString& name) {
        return std::any_of(vars.children.begin(), vars.children.end(),
                           [&](const XmlNode* child) { return child->Value(kName, u"") == name; });
    };
    for (int i = 0; i < Count();) {
        const ZRBasicString& name = RecordAt(i)->Name;
        if (isLogged(name) && !isWanted(name)) {
            m_profile.DeleteVariable(i);
        } else {
            // Meant: a record whose variable isn't logged stays.
            ++i;
        }
    }
    return true;
}

ZRTableProfile::CVariableProfile* TableSettings::RecordAt(int position)
{
    // The profile itself would make a record that nobody frees.
    return position >= 0 && position < Count() ? &m_profile[static_cast<unsigned>(position)] : nullptr;
}

}  // namespace zr::logger
