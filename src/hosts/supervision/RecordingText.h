// Recording in one line.
#pragma once

#include "hosts/supervision/Recording.h"

#include <string>

namespace zr::supervision {

// As "Recording: 3 data sets, 425 variables, 12,345 samples recorded, 0 waiting, 12 not recorded (no valid value 12)",
// in the user's number format; what is wrong with a store follows. Empty when the document has no recording file.
std::string RecordingLine(const RecordingStatus& status);

// As "no valid value 12, too late 3", in the order of the reasons; empty when everything was recorded.
ZRBasicString UnrecordedText(const RecorderCounts& counts);

}  // namespace zr::supervision
