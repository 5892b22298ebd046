#include "dde/LinkName.h"

#include "dde/DdeIds.h"

#include <array>

namespace zr::dde {

bool ReadLinkName(DWORD instance, HSZ handle, ZRBasicString& out)
{
    // Room for one unit more than a name may have: DDE cuts what doesn't fit, and a cut name could be another's.
    std::array<wchar, kMaxNameLength + 2> buffer{};
    const DWORD length = DdeQueryStringW(instance, handle, buffer.data(), buffer.size(), CP_WINUNICODE);
    if (length == 0 || length > kMaxNameLength) {
        return false;
    }
    out = ZRBasicString(buffer.data(), length);
    return true;
}

}  // namespace zr::dde
