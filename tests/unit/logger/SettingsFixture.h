// The tree of settings that viewers share, and what stands in it.
#pragma once

#include "logger/ViewerSettings.h"
#include "support/XmlTree.h"
#include "unit/logger/LoggedFixture.h"

#include <string>
#include <vector>

namespace zr::logger {

class SettingsFixture : public LoggedFixture {
protected:
    using Texts = std::vector<std::string>;

    SettingsFixture() { document.Create(u"main"); }

    // Logs these names, and calls add with each variable that can be described, what it tells, and its position.
    template <typename Add>
    void ForEachLogged(const std::vector<ZRBasicString>& names, const Add& add)
    {
        info = Info(names);
        info.Lock();
        int position = 0;
        for (const ZRDriverVariable* variable : info.variables) {
            ZRDeviceDriver::tagSVariableInfo told;
            if (variable->Info(told)) {
                add(*variable, told, position);
            }
            ++position;
        }
    }

    void Want(const std::vector<const wchar*>& names)
    {
        XmlNode& vars = GetOrCreate(*document.root, u"Vars");
        for (const wchar* name : names) {
            vars.NewChild(u"Var")->SetValue(u"Name", name);
        }
    }
    Texts Wanted() const
    {
        Texts names;
        for (const XmlNode* child : document.root->Node(u"Vars")->children) {
            names.push_back(Narrow(child->Value(u"Name", u"-")));
        }
        return names;
    }

    XmlDocument document;
    ZRLoggerInfo info;
};

}  // namespace zr::logger
