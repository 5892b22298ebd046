// The list has to post exactly what looking at every item each time would post.
#include "dde/WatchList.h"

#include "DdeFixture.h"

#include <cmath>
#include <limits>
#include <random>

namespace zr::test {
namespace {

class WatchListTest : public DdeFixture {
protected:
    ZRDDEValues::ZRTopicItem& Watch(const std::u16string& variable)
    {
        auto& item = *watched.emplace_back(std::make_unique<ZRDDEValues::ZRTopicItem>());
        EXPECT_TRUE(item.Setup(Handle(kDevice), Handle(variable)));
        list.Add(item);
        return item;
    }
    std::uint64_t PostsOfUpdate()
    {
        return PostsOf([this] { list.Update(); });
    }

    std::vector<std::unique_ptr<ZRDDEValues::ZRTopicItem>> watched;
    dde::WatchList list;
};

TEST_F(WatchListTest, PostsWhatWasWrittenAndChanged)
{
    meter[U1].WriteNumber(230.0);
    meter[I1].WriteNumber(5.0);
    Watch(u"U1");
    Watch(u"I1");
    EXPECT_EQ(PostsOfUpdate(), 2u) << "the first post of each";
    EXPECT_EQ(PostsOfUpdate(), 0u);
    meter[U1].WriteNumber(230.0);
    EXPECT_EQ(PostsOfUpdate(), 0u) << "written anew with what it had";
    meter[I1].WriteNumber(6.0);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(watched[1]->value.number, 6.0);
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(WatchListTest, PostsAnItemWithoutATypeEachTime)
{
    Watch(u"U1");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(PostsOfUpdate(), 1u);
    }
    // The type is a change; the first post is still due then.
    meter[U1].WriteNumber(0.0);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(WatchListTest, IsEmptyAfterClear)
{
    Watch(u"U1");
    list.Clear();
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

void WriteSomething(LiveValue& live, std::mt19937& random)
{
    constexpr std::array kNumbers = {0.0, 1.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                                     std::numeric_limits<double>::infinity()};
    switch (random() % 6) {
        case 0:
            live.WriteBoolean(random() % 2 == 0);
            break;
        case 1:
            live.WriteText(random() % 2 == 0 ? u"on" : u"ON");
            break;
        case 2:
            live.WriteWords(static_cast<std::int32_t>(random() % 2), 7);
            break;
        case 3:
            live.Invalidate();
            break;
        default:
            live.WriteNumber(kNumbers[random() % kNumbers.size()]);
            break;
    }
}

TEST_F(WatchListTest, PostsJustWhatLookingAtEveryItemEachTimeWouldPost)
{
    std::mt19937 random(3);
    const std::vector<std::u16string> names = {u"U1", u"I1", u"STATE", u"NOTE", u"PAIR"};
    std::vector<ZRDDEValues::ZRTopicItem> plain(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        Watch(names[i]);
        ASSERT_TRUE(plain[i].Setup(Handle(kDevice), Handle(names[i])));
    }
    for (int round = 0; round < 5000; ++round) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (random() % 3 == 0) {
                WriteSomething(meter[i], random);
            }
        }
        const std::uint64_t expected = PostsOf([&plain] {
            for (ZRDDEValues::ZRTopicItem& item : plain) {
                item.Update();
            }
        });
        ASSERT_EQ(PostsOfUpdate(), expected) << "round " << round;
        for (std::size_t i = 0; i < names.size(); ++i) {
            const tagSVariableValue& value = watched[i]->value;
            ASSERT_EQ(value.type, plain[i].value.type);
            ASSERT_TRUE(value.number == plain[i].value.number || std::isnan(value.number));
            ASSERT_EQ(value.text, plain[i].value.text);
            ASSERT_EQ(value.first, plain[i].value.first);
            ASSERT_EQ(value.boolean, plain[i].value.boolean);
        }
    }
}

}  // namespace
}  // namespace zr::test
