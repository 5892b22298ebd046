// What table and graph share of the tree of viewer settings, and how it is merged with the variables logged.
#pragma once

#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/tools/XmlDocument.h"

#include <algorithm>
#include <iterator>

namespace zr::logger {

inline constexpr const wchar* kSettingsVars = u"Vars";
inline constexpr const wchar* kSettingsVar = u"Var";
inline constexpr const wchar* kSettingsName = u"Name";
inline constexpr const wchar* kSettingsVarSetup = u"VarSetup";

// The first child of that tag; a new one where there is none.
XmlNode& GetOrCreate(XmlNode& parent, const wchar* tag);
void RemoveAll(XmlNode& parent, const wchar* tag);
// 0 where it is missing or none; held at the limits of int.
int NumberOf(const XmlNode& node, const wchar* name);
void SetNumber(XmlNode& node, const wchar* name, int number);

// Below the node that the explorer gives its viewers:
//
//   Vars/Var           Name   a variable that the user wants; shared by all viewers
//   <element>/VarSetup Var    its full name, and what the viewer keeps of it
//
// Everything goes by the full name and nothing by position, so that an arrangement survives a change of devices. The
// variables must be locked. UI thread only.
template <typename Profile>
class ViewerSettings {
public:
    ViewerSettings(const ViewerSettings&) = delete;
    ViewerSettings& operator=(const ViewerSettings&) = delete;

protected:
    using Record = typename Profile::CVariableProfile;

    // None is owned; all must outlive this. The node may be null: nothing is then merged or kept. place: what a
    // variable that comes anew takes from the record before it.
    ViewerSettings(Profile& profile, const ZRLoggerInfo& info, XmlNode* node, const wchar* element, int Record::*place)
        : m_profile(profile), m_info(info), m_node(node), m_element(element), m_place(place)
    {
    }
    virtual ~ViewerSettings() = default;

    // The record of a variable as it comes back from the settings: its title is the description. k: where it will
    // stand.
    [[nodiscard]] virtual Record NewRecord(const ZRBasicString& name, const ZRDeviceDriver::tagSVariableInfo& info,
                                           int place, int k) const = 0;
    virtual void Read(Record& record, const XmlNode& setup) const = 0;
    virtual void Write(const Record& record, XmlNode& setup) const = 0;

    // Merges the tree into the profile; the tree is filled where it named no variable. Whether it did.
    bool Merge();
    // Writes both lists anew from the profile.
    void Rewrite(XmlNode& vars, XmlNode& element);

    [[nodiscard]] int Count() const { return static_cast<int>(m_profile.NVars()); }
    [[nodiscard]] Profile& ProfileInUse() const { return m_profile; }
    [[nodiscard]] const ZRLoggerInfo& Info() const { return m_info; }
    [[nodiscard]] XmlNode* Node() const { return m_node; }

private:
    // Appends an entry to both lists for each record. True.
    bool AddActualConfiguration(XmlNode& vars, XmlNode& element);
    // Brings one variable of the tree into line. True.
    bool RemoveActualizeVariable(XmlNode& vars, XmlNode& element, const ZRBasicString& name);
    // Drops the records of variables that are logged but not wanted. True.
    bool DeleteNotFound(const XmlNode& vars);

    // Null where there is none: the profile itself would make a record that nobody frees.
    [[nodiscard]] Record* RecordAt(int position)
    {
        return position >= 0 && position < Count() ? &m_profile[static_cast<unsigned>(position)] : nullptr;
    }
    [[nodiscard]] int PositionOf(const ZRBasicString& name) const
    {
        const auto found = std::find_if(m_profile.VarsBegin(), m_profile.VarsEnd(),
                                        [&](const Record* record) { return record->Name == name; });
        return static_cast<int>(std::distance(m_profile.VarsBegin(), found));
    }
    // k in the profile, as the merge counts it; info is filled where the variable is logged.
    [[nodiscard]] int Find(const ZRBasicString& name, ZRDeviceDriver::tagSVariableInfo& info) const;

    Profile& m_profile;
    const ZRLoggerInfo& m_info;
    XmlNode* m_node;
    const wchar* m_element;
    int Record::*m_place;
};

template <typename Profile>
bool ViewerSettings<Profile>::Merge()
{
    if (m_node == nullptr) {
        return false;
    }
    XmlNode& vars = GetOrCreate(*m_node, kSettingsVars);
    XmlNode& element = GetOrCreate(*m_node, m_element);
    bool isAnyWanted = false;
    for (const XmlNode* child : vars.children) {
        if (child->tag == kSettingsVar) {
            RemoveActualizeVariable(vars, element, child->Value(kSettingsName, u""));
            isAnyWanted = true;
        }
    }
    if (!isAnyWanted) {
        AddActualConfiguration(vars, element);
    }
    DeleteNotFound(vars);
    return isAnyWanted;
}

template <typename Profile>
void ViewerSettings<Profile>::Rewrite(XmlNode& vars, XmlNode& element)
{
    RemoveAll(element, kSettingsVarSetup);
    RemoveAll(vars, kSettingsVar);
    AddActualConfiguration(vars, element);
}

template <typename Profile>
int ViewerSettings<Profile>::Find(const ZRBasicString& name, ZRDeviceDriver::tagSVariableInfo& info) const
{
    for (const ZRDriverVariable* variable : m_info.variables) {
        if (variable->fullName == name) {
            variable->Info(info);
            return PositionOf(name);
        }
    }
    // Meant: of a variable that isn't logged k is the last position of the list of variables, and what is stored for
    // it lands on the record there, with no further test.
    return static_cast<int>(m_info.variables.size()) - 1;
}

template <typename Profile>
bool ViewerSettings<Profile>::RemoveActualizeVariable(XmlNode& vars, XmlNode& element, const ZRBasicString& name)
{
    const XmlNode* const setup = element.NodeV(u"VarSetup?Var=%s?", name);
    ZRDeviceDriver::tagSVariableInfo info;
    const int k = Find(name, info);
    if (setup == nullptr) {
        if (vars.NodeV(u"Var?Name=%s?", name) != nullptr) {
            element.NewChild(kSettingsVarSetup)->SetValue(kSettingsVar, name);
            if (k == Count()) {
                const Record* const before = RecordAt(k - 1);
                m_profile.AddVariable(NewRecord(name, info, (before != nullptr ? *before : Record()).*m_place, k));
            }
            return true;
        }
        if (k != -1) {
            m_profile.DeleteVariable(k);
        }
        return true;
    }
    if (k == Count()) {
        m_profile.AddVariable(NewRecord(name, info, 0, k));
    }
    if (Record* const record = RecordAt(k)) {
        Read(*record, *setup);
    }
    return true;
}

template <typename Profile>
bool ViewerSettings<Profile>::AddActualConfiguration(XmlNode& vars, XmlNode& element)
{
    for (auto at = m_profile.VarsBegin(); at != m_profile.VarsEnd(); ++at) {
        vars.NewChild(kSettingsVar)->SetValue(kSettingsName, (*at)->Name);
        XmlNode& setup = *element.NewChild(kSettingsVarSetup);
        setup.SetValue(kSettingsVar, (*at)->Name);
        Write(**at, setup);
    }
    return true;
}

template <typename Profile>
bool ViewerSettings<Profile>::DeleteNotFound(const XmlNode& vars)
{
    const auto isLogged = [&](const ZRBasicString& name) {
        return std::any_of(m_info.variables.begin(), m_info.variables.end(),
                           [&](const ZRDriverVariable* variable) { return variable->fullName == name; });
    };
    // Whatever the tag of the child.
    const auto isWanted = [&](const ZRBasicString& name) {
        return std::any_of(vars.children.begin(), vars.children.end(),
                           [&](const XmlNode* child) { return child->Value(kSettingsName, u"") == name; });
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

}  // namespace zr::logger
