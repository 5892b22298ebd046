// The arrangement of a table's columns in the tree of viewer settings, and how it is merged with the variables logged.
#pragma once

#include "profiles/ZRTableProfile.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/tools/XmlDocument.h"

namespace zr::logger {

// Below the node that the explorer gives its viewers:
//
//   Vars/Var        Name           a variable that the user wants; shared with the graph
//   Table/VarSetup  Var            its full name
//                   Index, Width   place and width of its column; 0 where missing
//
// Everything goes by the full name and nothing by position, so that an arrangement survives a change of devices. The
// variables must be locked. UI thread only.
class TableSettings {
public:
    // None is owned; all must outlive this. The node may be null: nothing is then merged or kept.
    TableSettings(ZRTableProfile& profile, const ZRLoggerInfo& info, XmlNode* node)
        : m_profile(profile), m_info(info), m_node(node)
    {
    }

    // Merges the tree into the profile; the tree is filled where it was empty. The number of variables then.
    int GetLastConfiguration();
    // Writes the tree anew from the profile. 0.
    int SetLastConfiguration();

private:
    // Appends an entry to both lists for each record. True.
    bool AddActualConfiguration(XmlNode& vars, XmlNode& table);
    // Brings one variable of the tree into line. True.
    bool RemoveActualizeVariable(XmlNode& vars, XmlNode& table, const ZRBasicString& name);
    // Drops the records of variables that are logged but not wanted. True.
    bool DeleteNotFound(const XmlNode& vars);

    // Null where there is none.
    [[nodiscard]] ZRTableProfile::CVariableProfile* RecordAt(int position);
    [[nodiscard]] int Count() const { return static_cast<int>(m_profile.NVars()); }

    ZRTableProfile& m_profile;
    const ZRLoggerInfo& m_info;
    XmlNode* m_node;
};

}  // namespace zr::logger
