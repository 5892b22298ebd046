// What a window on logged data says of a load that didn't go well.
#pragma once

#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/ZRBasicString.h"

#include <string>
#include <vector>

namespace zr::desktop {

// What went wrong, as it was told.
struct LoadTrouble {
    bool wasStopped = false;              // by the user
    std::string failure;                  // why the store failed; empty when it didn't
    std::vector<std::string> damage;      // what was left out
    std::vector<std::string> problems;    // why columns have no values
    std::vector<ZRBasicString> vanished;  // variables that are logged, but no device has any more

    // Of the group that was asked for last. The data have been set up.
    static LoadTrouble Of(const ZRLoggerData& data, bool wasStopped);
};

// The same in the language in force.
struct LoadTroubleText {
    ZRBasicString line;      // the gravest, and how many more there are; empty while there is none
    ZRBasicString whole;     // a line each, those that are too many counted
    bool isWarning = false;  // something is missing that was recorded

    friend bool operator==(const LoadTroubleText&, const LoadTroubleText&) = default;
};

[[nodiscard]] LoadTroubleText Describe(const LoadTrouble& trouble);

}  // namespace zr::desktop
