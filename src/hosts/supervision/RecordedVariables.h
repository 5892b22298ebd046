// The variables that a recording file means, looked up among the devices of the registry.
#pragma once

#include "siblings/driversupport/recorder/RecordingFile.h"
#include "siblings/driversupport/store/LoggerStore.h"

#include <vector>

namespace zr::supervision {

struct RecordedVariables {
    struct Missing {
        ZRBasicString dataSet;
        ZRBasicString device;
    };

    std::vector<LoggerDataSet> dataSets;  // in order of the file, each variable once
    std::vector<Missing> missing;         // devices that are recorded whole and aren't there
};

// A device that is recorded whole gives its variables in the order of its table, those that are texts left out. A
// single variable is taken whether it is there or not. To be called while the registry is filled.
RecordedVariables LookUpVariables(const RecordingFile& recording);

}  // namespace zr::supervision
