#include "platform/LargeMemory.h"

#include <gtest/gtest.h>
#include <cstring>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace zr {
namespace {

class LargeMemoryTest : public testing::TestWithParam<std::size_t> {};

TEST_P(LargeMemoryTest, GivesAllTheBytesThatWereAskedFor)
{
    std::vector<LargeMemory> pieces;
    for (int value = 1; value <= 3; ++value) {
        pieces.emplace_back(GetParam());
        ASSERT_NE(pieces.back().Data(), nullptr);
        EXPECT_EQ(pieces.back().Size(), GetParam());
        std::memset(pieces.back().Data(), value, GetParam());
    }
    for (std::size_t i = 0; i < pieces.size() && GetParam() > 0; ++i) {
        EXPECT_EQ(pieces[i].Data()[0], static_cast<std::byte>(i + 1));
        EXPECT_EQ(pieces[i].Data()[GetParam() - 1], static_cast<std::byte>(i + 1));
    }
}

TEST_P(LargeMemoryTest, StaysWhereItIsWhenItIsMoved)
{
    LargeMemory memory(GetParam());
    const std::byte* const data = memory.Data();
    LargeMemory moved(std::move(memory));
    EXPECT_EQ(moved.Data(), data);
    LargeMemory other(1);
    other = std::move(moved);
    EXPECT_EQ(other.Data(), data);
    EXPECT_EQ(other.Size(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Sizes, LargeMemoryTest,
                         testing::Values(0, 1, 4096, LargeMemory::kLarge - 1, LargeMemory::kLarge,
                                         LargeMemory::kLarge + 1, 5 * LargeMemory::kLarge + 4097));

TEST(LargeMemory, MoreThanThereIsIsRefused)
{
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
    for (const std::size_t bytes : {kMost, kMost / 2}) {
        EXPECT_THROW(LargeMemory{bytes}, std::bad_alloc);
    }
}

}  // namespace
}  // namespace zr
