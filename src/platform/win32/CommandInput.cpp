#include "platform/CommandInput.h"

namespace zr {

bool CommandInput::Take(std::vector<std::string>&)
{
    return false;
}

}  // namespace zr
