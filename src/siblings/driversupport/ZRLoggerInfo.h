// The variables that a logged data set consists of.
#pragma once

#include "siblings/driversupport/ZRDriverVariable.h"
#include "siblings/tools/ZRBasicString.h"

#include <list>

// An ordered list; the position of a variable is the number of its column in every record. Copies are deep, and a
// locked list gives a locked copy.
//
// Fill, then Lock, then read. To grow a locked list: Unlock, AddVariable, Lock. One thread at a time.
class ZRLoggerInfo {
public:
    ZRLoggerInfo() = default;
    ZRLoggerInfo(const ZRLoggerInfo& other);
    ZRLoggerInfo& operator=(const ZRLoggerInfo& other);
    virtual ~ZRLoggerInfo();

    // Appends a variable by its full name. Nothing is checked.
    void AddVariable(const ZRBasicString& name);
    void DeleteAll();
    // Binds the names to the live variables, so that Info can be asked. A variable that isn't there stays in its place,
    // unlocked.
    void Lock();
    void Unlock();

    // Read directly. Owned.
    std::list<ZRDriverVariable*> variables;
};
