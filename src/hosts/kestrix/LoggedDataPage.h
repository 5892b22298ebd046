// What the page of logged data shows, in the language in force.
#pragma once

#include "hosts/kestrix/DeviceState.h"
#include "hosts/supervision/Recording.h"
#include "siblings/tools/ZRBasicString.h"

#include <vector>

namespace zr::desktop {

// A plain value of finished texts; numbers are in the user's format.
struct LoggedDataPage {
    struct Store {
        ZRBasicString title;
        DeviceState badge = DeviceState::NotPolled;
        ZRBasicString state;          // with the time since when, while it is away
        ZRBasicString waiting;        // samples in the spool; empty when it isn't told
        ZRBasicString waitingOnDisk;  // "0.3 of 64", MiB; likewise
        ZRBasicString trouble;        // why; empty while there is none
        friend bool operator==(const Store&, const Store&) = default;
    };
    struct DataSet {
        ZRBasicString name;
        ZRBasicString period;     // with its unit
        ZRBasicString retention;  // likewise, or "for ever"
        ZRBasicString variables;
        ZRBasicString recorded;     // samples; this and the next are empty when they aren't told
        ZRBasicString notRecorded;  // likewise
        ZRBasicString reasons;      // of those; empty while there are none
        ZRBasicString last;         // time of the last sample, local to the plant, or "none yet"
        friend bool operator==(const DataSet&, const DataSet&) = default;
    };

    DeviceState badge = DeviceState::NotPolled;
    ZRBasicString state;  // of the whole, in a few words
    ZRBasicString place;  // the recording file, or that there is none
    std::vector<Store> stores;
    std::vector<DataSet> dataSets;

    friend bool operator==(const LoggedDataPage&, const LoggedDataPage&) = default;
};

// otherProgram: which supervises the document; empty when this program does. Any thread.
[[nodiscard]] LoggedDataPage MakeLoggedDataPage(const supervision::RecordingStatus& status,
                                                const ZRBasicString& otherProgram);

// Date and time of the plant; empty where no date has it. Microseconds UTC since 1970.
[[nodiscard]] ZRBasicString PlantTimeText(std::int64_t time);

// Seconds in the largest unit that gives a whole number, as "10 min".
[[nodiscard]] ZRBasicString PeriodText(std::int64_t seconds);

}  // namespace zr::desktop
