// The registry value that says how numbers are published as text, read at each start of a server.
#include "DdeFixture.h"
#include "NumberFormatValue.h"
#include "siblings/support/ZRKestrixSetup.h"

namespace zr::test {
namespace {

class NumberFormatSettingTest : public DdeFixture {
protected:
    void SetUp() override {}  // the tests start the server themselves
    // Any word but 0 is the default.
    void TearDown() override { Write(RegistryType::Word, {1, 0, 0, 0}); }

    void Write(RegistryType type, const Bytes& bytes)
    {
        EXPECT_TRUE(WriteNumberFormatValue(m_setup.registryKey, type, bytes));
    }
    bool UsesLocalAfterStart()
    {
        EXPECT_TRUE(server.Start());
        const bool uses = ZRDDEServer::UseLocalNumberFormat();
        server.Stop();
        return uses;
    }

private:
    ZRKestrixSetup m_setup;
};

TEST_F(NumberFormatSettingTest, WithoutTheValueTheUsersFormatIsUsed)
{
    EXPECT_TRUE(UsesLocalAfterStart());
}

TEST_F(NumberFormatSettingTest, ZeroTurnsItOffAndAnyOtherWordOn)
{
    Write(RegistryType::Word, {0, 0, 0, 0});
    EXPECT_FALSE(UsesLocalAfterStart());
    Write(RegistryType::Word, {0, 0, 0, 0x80});
    EXPECT_TRUE(UsesLocalAfterStart());
    Write(RegistryType::Word, {1, 0, 0, 0});
    EXPECT_TRUE(UsesLocalAfterStart());
}

TEST_F(NumberFormatSettingTest, TheTypeOfTheValueIsNotLookedAt)
{
    Write(RegistryType::Binary, {0, 0, 0, 0});
    EXPECT_FALSE(UsesLocalAfterStart());
    Write(RegistryType::Binary, {0, 1});
    EXPECT_TRUE(UsesLocalAfterStart());
    Write(RegistryType::Binary, {0});
    EXPECT_FALSE(UsesLocalAfterStart());
}

TEST_F(NumberFormatSettingTest, AValueThatCantBeReadLeavesTheUsersFormat)
{
    Write(RegistryType::Binary, {0, 0, 0, 0, 0});  // longer than the word
    EXPECT_TRUE(UsesLocalAfterStart());
}

TEST_F(NumberFormatSettingTest, WithTheValueAtZeroTheTextHasSixDigitsAndAPointWhateverTheDecimals)
{
    Write(RegistryType::Word, {0, 0, 0, 0});
    ASSERT_TRUE(server.Start());
    meter[U1].WriteNumber(12.5);
    ZRDDEValues::ZRTopicItem item;
    ASSERT_TRUE(item.Setup(Handle(kDevice), Handle(u"U1")));
    EXPECT_EQ(item.decimals, 2);
    EXPECT_EQ(TakeBytes(item.CreateData(CF_TEXT)), (Bytes{0x31, 0x00, 0x32, 0x00, 0x2E, 0x00}));
}

}  // namespace
}  // namespace zr::test
