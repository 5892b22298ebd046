#include "hosts/kestrix/LoggedVariables.h"

#include "logger/ViewerSettings.h"
#include "siblings/driversupport/VariableReference.h"

#include <set>

namespace zr::desktop {

ZRLoggerInfo LoggedVariables(const std::vector<ZRBasicString>& devices, const std::vector<LoggerDataSet>& sets)
{
    ZRLoggerInfo info;
    std::set<ZRBasicString> taken;
    for (const ZRBasicString& device : devices) {
        for (const LoggerDataSet& set : sets) {
            for (const ZRBasicString& reference : set.variables) {
                ZRBasicString filter;
                ZRBasicString hour;
                ZRBasicString driver;
                ZRBasicString variable;
                SplitFilterDriverVariable(reference, filter, hour, driver, variable);
                if (driver == device && taken.insert(reference).second) {
                    info.AddVariable(reference);
                }
            }
        }
    }
    return info;
}

ZRLoggerInfo LoggedVariables(const std::vector<ZRBasicString>& devices)
{
    std::vector<LoggerDataSet> sets;
    LoggerStore* const store = CurrentLoggerStore();
    const std::unique_ptr<LoggerReader> reader = store != nullptr ? store->OpenReader() : nullptr;
    if (reader == nullptr || !reader->DataSets(sets)) {
        return {};
    }
    return LoggedVariables(devices, sets);
}

void WantAll(const ZRLoggerInfo& info, XmlNode& root)
{
    XmlNode* const vars = root.Node(logger::kSettingsVars);
    if (vars == nullptr || vars->children.empty()) {
        return;
    }
    std::set<ZRBasicString> listed;
    for (const XmlNode* const child : vars->children) {
        listed.insert(child->Value(logger::kSettingsName, u""));
    }
    for (const ZRDriverVariable* const variable : info.variables) {
        if (listed.insert(variable->fullName).second) {
            vars->NewChild(logger::kSettingsVar)->SetValue(logger::kSettingsName, variable->fullName);
        }
    }
}

}  // namespace zr::desktop
