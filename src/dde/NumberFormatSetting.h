// The machine's setting of how numbers are published as text.
#pragma once

namespace zr::dde {

// Whether the text form uses the user's number format. True unless the registry value
// kUseLocalNumberFormatValue below the suite's key of the machine can be read and is 0.
bool ReadUseLocalNumberFormat();

}  // namespace zr::dde
