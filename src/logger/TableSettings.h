// The arrangement of a table's columns in the tree of viewer settings, and how it is merged with the variables logged.
#pragma once

#include "logger/ViewerSettings.h"
#include "profiles/ZRTableProfile.h"

namespace zr::logger {

// The element "Table": of each variable
//
//   Index, Width   place and width of its column; 0 where missing
class TableSettings final : private ViewerSettings<ZRTableProfile> {
public:
    // None is owned; all must outlive this. The node may be null: nothing is then merged or kept.
    TableSettings(ZRTableProfile& profile, const ZRLoggerInfo& info, XmlNode* node);

    // Merges the tree into the profile; the tree is filled where it was empty. The number of variables then.
    int GetLastConfiguration();
    // Writes the tree anew from the profile, and makes what of it is missing. 0.
    int SetLastConfiguration();

private:
    [[nodiscard]] Record NewRecord(const ZRBasicString& name, const ZRDeviceDriver::tagSVariableInfo& info, int place,
                                   int k) const override;
    void Read(Record& record, const XmlNode& setup) const override;
    void Write(const Record& record, XmlNode& setup) const override;
};

// Gives a variable that an arrangement doesn't have yet a column behind all others. Nothing where the tree has no
// table; node: that of the viewer settings.
void AppendColumn(XmlNode& node, const ZRBasicString& name);

}  // namespace zr::logger
