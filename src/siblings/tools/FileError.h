// Why a file was refused.
#pragma once

#include <cstddef>
#include <string>

namespace zr {

struct FileError {
    std::string file;      // as given; "" for text from memory
    std::size_t line = 0;  // one-based; 0 when the fault is the file's as a whole
    std::string reason;    // English, one line, no line end
    // "FILE:LINE: REASON", without the parts that are missing.
    [[nodiscard]] std::string Message() const;
};

}  // namespace zr
