// The arrangement of a graph's curves in the tree of viewer settings, and how it is merged with the variables logged.
#pragma once

#include "logger/ViewerSettings.h"
#include "profiles/ZRGraphProfile.h"

namespace zr::logger {

// The element "Graph": of each variable
//
//   Color                           six hexadecimal digits: blue, green, red
//   LineType                        pen style and width
//   Maximum, Minimum                of the axis; missing where there is none
//   Zone, MeasureUnits, Index       as in the profile
class GraphSettings final : private ViewerSettings<ZRGraphProfile> {
public:
    // None is owned; all must outlive this. The node may be null: nothing is then merged or kept.
    GraphSettings(ZRGraphProfile& profile, const ZRLoggerInfo& info, XmlNode* node);

    // Merges the tree into the profile; the tree is filled where it was empty, and firstTime then becomes true. The
    // number of variables then.
    int GetLastConfiguration(bool& firstTime);
    // Writes the tree anew from the profile. Meant: nothing where "Vars" or "Graph" is missing, unlike the table's. 0.
    int SetLastConfiguration();

private:
    [[nodiscard]] Record NewRecord(const ZRBasicString& name, const ZRDeviceDriver::tagSVariableInfo& info, int place,
                                   int k) const override;
    void Read(Record& record, const XmlNode& setup) const override;
    void Write(const Record& record, XmlNode& setup) const override;
};

}  // namespace zr::logger
