#include "siblings/driversupport/ZRLoggerInfo.h"

#include <memory>
#include <utility>

ZRLoggerInfo::ZRLoggerInfo(const ZRLoggerInfo& other)
{
    for (const ZRDriverVariable* variable : other.variables) {
        variables.push_back(new ZRDriverVariable(*variable));
    }
}

ZRLoggerInfo& ZRLoggerInfo::operator=(const ZRLoggerInfo& other)
{
    // By way of a copy, so that assignment to itself does no harm.
    ZRLoggerInfo copy(other);
    std::swap(variables, copy.variables);
    return *this;
}

ZRLoggerInfo::~ZRLoggerInfo()
{
    DeleteAll();
}

void ZRLoggerInfo::AddVariable(const ZRBasicString& name)
{
    auto variable = std::make_unique<ZRDriverVariable>();
    variable->Setup(name);
    variables.push_back(variable.release());
}

void ZRLoggerInfo::DeleteAll()
{
    for (const ZRDriverVariable* variable : variables) {
        delete variable;
    }
    variables.clear();
}

void ZRLoggerInfo::Lock()
{
    for (ZRDriverVariable* variable : variables) {
        variable->Lock();
    }
}

void ZRLoggerInfo::Unlock()
{
    for (ZRDriverVariable* variable : variables) {
        variable->Unlock();
    }
}
