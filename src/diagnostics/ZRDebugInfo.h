// The list of warnings and events.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstdint>
#include <vector>

// What went wrong or what happened, a device or a connection at a time, in order of arrival. It grows until
// Invalidate: nothing is dropped or merged, doubled entries included, and nothing is written to a file. The program
// makes one object and reaches it by Get().
//
// No lock: whoever uses it from more than one thread serialises the calls. The device side doesn't call it but posts
// notices, see DeviceWarning.h; the host hands them over on its own thread.
//
// An index is zero-based, and one that is out of range is the caller's error.
class ZRDebugInfo {
public:
    // Becomes the one that Get() returns.
    ZRDebugInfo();
    // The copy shares the records, and Get() goes on returning what it did. Both would destroy the records, so all but
    // one of them must be given an empty list before they go.
    ZRDebugInfo(const ZRDebugInfo& other) = default;
    ZRDebugInfo& operator=(const ZRDebugInfo& other) = default;
    // Afterwards there is no list to Get().
    ~ZRDebugInfo();

    // The list constructed last. No test for null.
    static ZRDebugInfo& Get() { return *instance; }

    // Appends copies. type: see zr::DeviceWarning; bit 8 marks an event. name: what it is about, goes into the message.
    // info: for the reader of the record. detail: trailing text of the message, may be empty. Nobody is told.
    void AddWarning(int type, const ZRBasicString& name, const ZRBasicString& info, const ZRBasicString& detail);

    [[nodiscard]] int Size() const { return static_cast<int>(warnings.size()); }
    [[nodiscard]] int Type(int index) const { return At(index).type; }
    [[nodiscard]] const ZRBasicString& Name(int index) const { return At(index).name; }
    [[nodiscard]] const ZRBasicString& Info(int index) const { return At(index).info; }
    // Whether it is an event and not a warning.
    [[nodiscard]] bool IsEvent(int index) const { return ((Type(index) >> 8) & 1) != 0; }
    // The message in the user's language: the text of the type, filled with the name and cut at 1023 characters, then
    // a blank and the detail if there is one. A type that has no text gives an empty first part. Valid until the next
    // call on any object. Not re-entrant.
    [[nodiscard]] const ZRBasicString& WarningStr(int index) const;

    // Destroys all records; the array keeps its storage.
    void Invalidate();

private:
    struct ZRDebugInfoRecord {
        std::int32_t type;
        ZRBasicString name;
        ZRBasicString info;
        ZRBasicString detail;
    };

    [[nodiscard]] const ZRDebugInfoRecord& At(int index) const { return *warnings[static_cast<std::size_t>(index)]; }

    static ZRDebugInfo* instance;

    std::vector<ZRDebugInfoRecord*> warnings;  // Owned.
};
