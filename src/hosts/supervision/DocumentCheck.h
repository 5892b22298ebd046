// What the registry would leave out of a document without a word, found before it is loaded.
#pragma once

#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/tools/XmlDocument.h"

#include <cstddef>
#include <vector>

namespace zr::supervision {

struct Finding {
    std::size_t line;  // of the node in its file, one-based
    DeviceNotice notice;
};

// Looks at every connection and device below the `CommSystem` node: types that no class goes by, nodes that their class
// refuses, names that occur twice, connections that are named and not there. Empty for a null node. To be called while
// the registry is empty, since it builds and drops each object once.
std::vector<Finding> CheckDocument(const XmlNode* commSystem);

}  // namespace zr::supervision
