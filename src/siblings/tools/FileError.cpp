#include "siblings/tools/FileError.h"

namespace zr {

std::string FileError::Message() const
{
    std::string message = file;
    if (line != 0) {
        message += (message.empty() ? "" : ":") + std::to_string(line);
    }
    return message.empty() ? reason : message + ": " + reason;
}

}  // namespace zr
