// Whatever passes the gate is parsed, and survives being written and read again.
#include "siblings/tools/XmlDocument.h"
#include "support/XmlTree.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    XmlDocument document;
    if (!document.LoadText(std::string_view(reinterpret_cast<const char*>(data), size))) {
        // A refusal by the gate names a line; one by the parser behind it doesn't, and must not happen.
        if (document.root != nullptr || document.Error().reason.empty() || document.Error().line == 0) {
            std::abort();
        }
        return 0;
    }
    XmlDocument again;
    if (!again.LoadText(document.SaveText()) || zr::test::DescribeTree(again) != zr::test::DescribeTree(document)) {
        std::abort();
    }
    return 0;
}
