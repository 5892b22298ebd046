// The order of DDE handles in the maps of the publication.
#pragma once

#include "platform/Ddeml.h"

#include <cstdint>
#include <utility>

namespace zr::dde {

// Orders handles as unsigned 32-bit numbers. Where handles are wider, the rest only tells apart what is equal in 32
// bits, so that two handles never become one key.
template <typename Handle>
bool HandleBefore(Handle left, Handle right)
{
    const auto leftBits = reinterpret_cast<std::uintptr_t>(left);
    const auto rightBits = reinterpret_cast<std::uintptr_t>(right);
    const auto leftNumber = static_cast<std::uint32_t>(leftBits);
    const auto rightNumber = static_cast<std::uint32_t>(rightBits);
    return leftNumber != rightNumber ? leftNumber < rightNumber : leftBits < rightBits;
}

struct ConversationOrder {
    bool operator()(HCONV left, HCONV right) const { return HandleBefore(left, right); }
};

// The first of the pair counts before the second.
struct TopicItemOrder {
    using Key = std::pair<HSZ, HSZ>;
    bool operator()(const Key& left, const Key& right) const
    {
        return left.first != right.first ? HandleBefore(left.first, right.first)
                                         : HandleBefore(left.second, right.second);
    }
};

}  // namespace zr::dde
