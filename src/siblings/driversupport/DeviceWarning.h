// What goes wrong or happens on the device side, by the type codes of the warning list, and the way from the
// threads where it happens to the thread that shows it.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <vector>

namespace zr {

// Values are the `type` of a record of ZRDebugInfo. Bit 8 marks an event; the others are warnings. The list has no text
// for those marked so: the detail of their notices says it all.
enum class DeviceWarning : int {
    DeviceSilent = 1,
    DeviceAnswersDamaged = 2,
    DeviceRefusesRequest = 3,
    ConnectionLost = 4,
    AddressUnknown = 5,
    ForeignFrames = 6,
    UnknownDeviceType = 7,
    UnknownConnectionType = 8,
    DuplicateDevice = 9,
    DuplicateConnection = 10,
    ConnectionMissing = 11,
    ConnectionRejected = 12,
    DeviceRejected = 13,
    ProfileRejected = 14,
    FilterRejected = 15,
    OutputRefused = 16,
    OutputTimedOut = 17,
    ConverterSilent = 18,
    ConverterRefuses = 19,
    StoreAway = 20,
    StoreFull = 21,
    SamplesLost = 22,
    SpoolFull = 23,
    ClockWentBack = 24,
    ClockJumped = 25,
    MeterExchanged = 26,
    LimitPassed = 27,
    PublicationFailed = 28,
    SupervisedElsewhere = 29,
    ConfigurationRefused = 30,
    StoreDamaged = 31,  // no text of its own
    LoadFailed = 32,    // no text of its own
    SettingsLost = 33,  // no text of its own
    DeviceAnswersAgain = 257,
    ConnectionOpened = 258,
    ConfigurationLoaded = 260,
    OutputSwitched = 264,
    OutputSwitchedByHost = 272,
    StoreBack = 276,  // no text of its own
    SpoolBack = 279,  // no text of its own
};

struct DeviceNotice {
    DeviceWarning type;
    ZRBasicString name;    // device or connection
    ZRBasicString info;    // for the reader of the record
    ZRBasicString detail;  // trailing text of the message, may be empty
};

// Keeps at most kMaxNotices until they are taken; what comes after that is counted and dropped, so that a host
// that never looks costs no memory.
inline constexpr std::size_t kMaxNotices = 10000;

// Any thread.
void PostNotice(DeviceWarning type, const ZRBasicString& name, const ZRBasicString& info = {},
                const ZRBasicString& detail = {});
// All notices since the last call, oldest first; the host hands them to ZRDebugInfo on its own thread. Any thread.
std::vector<DeviceNotice> TakeNotices();
// Notices dropped since the start of the program. Any thread.
std::size_t DroppedNotices();

}  // namespace zr
