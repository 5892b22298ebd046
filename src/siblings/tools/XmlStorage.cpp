#include "siblings/tools/XmlStorage.h"

#include <algorithm>

const ZRBasicString* XmlDocument::XmlNode::Storage::Intern(std::u16string_view name)
{
    return &*m_names.emplace(name).first;
}

wchar* XmlDocument::XmlNode::Storage::Allocate(std::size_t units)
{
    // A document made in memory is mostly small, so that blocks begin small and double.
    constexpr std::size_t kFirstUnits = 1024;
    if (m_size - m_used < units) {
        const std::size_t next = std::clamp(m_size * 2, kFirstUnits, kBlockUnits);
        const std::size_t size = std::max(next, units);
        m_blocks.push_back(std::make_unique_for_overwrite<wchar[]>(size));
        m_size = size;
        m_used = 0;
    }
    return m_blocks.empty() ? nullptr : m_blocks.back().get() + m_used;
}

wchar* XmlDocument::XmlNode::Storage::Store(std::u16string_view text)
{
    if (text.empty()) {
        return nullptr;
    }
    wchar* const room = Allocate(text.size());
    std::copy(text.begin(), text.end(), room);
    Commit(text.size());
    return room;
}
