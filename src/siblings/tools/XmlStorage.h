// Where the texts and names of a tree lie.
#pragma once

#include "siblings/tools/XmlDocument.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <vector>

// A bump arena for the values and a table for their names; both live as long as the tree. What is replaced or erased
// leaves its room behind until then.
struct XmlDocument::XmlNode::Storage {
    // The one copy of that name; holds as long as this.
    const ZRBasicString* Intern(std::u16string_view name);

    // Room for that many units, of which Commit() keeps the first ones and gives the others back.
    wchar* Allocate(std::size_t units);
    void Commit(std::size_t used) { m_used += used; }
    // A copy of the text; null for the empty text.
    wchar* Store(std::u16string_view text);

private:
    static constexpr std::size_t kBlockUnits = 256 * 1024;

    std::unordered_set<ZRBasicString> m_names;
    std::vector<std::unique_ptr<wchar[]>> m_blocks;
    std::size_t m_used = 0;  // units of the last block
    std::size_t m_size = 0;  // likewise
};
