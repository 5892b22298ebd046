// The registry value that says how numbers are published as text, read at each start of a server.
#include "DdeFixture.h"
#include "platform/Registry.h"
#include "siblings/support/ZRKestrixSetup.h"

namespace zr::test {
namespace {

class NumberFormatSettingTest : public DdeFixture {
protected:
    void SetUp() override {}  // the tests start the server themselves
    void TearDown() override { RegDeleteForTest(); }

    void Write(std::uint32_t type, const Bytes& bytes)
    {
        zr::HKEY key = nullptr;
        ASSERT_EQ(zr::RegCreateKeyExW(zr::HKEY_LOCAL_MACHINE, m_setup.registryKey.CStr(), 0, nullptr, 0,
                                      zr::KEY_SET_VALUE, nullptr, &key, nullptr),
                  zr::ERROR_SUCCESS);
        EXPECT_EQ(zr::RegSetValueExW(key, u"DDE_UseLocalNumberFormat", 0, type, bytes.data(),
                                     static_cast<std::uint32_t>(bytes.size())),
                  zr::ERROR_SUCCESS);
        zr::RegCloseKey(key);
    }
    bool UsesLocalAfterStart()
    {
        EXPECT_TRUE(server.Start());
        const bool uses = ZRDDEServer::UseLocalNumberFormat();
        server.Stop();
        return uses;
    }

private:
    // Any word but 0 is the default.
    void RegDeleteForTest() { Write(zr::REG_DWORD, {1, 0, 0, 0}); }

    ZRKestrixSetup m_setup;
};

TEST_F(NumberFormatSettingTest, WithoutTheValueTheUsersFormatIsUsed)
{
    EXPECT_TRUE(UsesLocalAfterStart());
}

TEST_F(NumberFormatSettingTest, ZeroTurnsItOffAndAnyOtherWordOn)
{
    Write(zr::REG_DWORD, {0, 0, 0, 0});
    EXPECT_FALSE(UsesLocalAfterStart());
    Write(zr::REG_DWORD, {0, 0, 0, 0x80});
    EXPECT_TRUE(UsesLocalAfterStart());
    Write(zr::REG_DWORD, {1, 0, 0, 0});
    EXPECT_TRUE(UsesLocalAfterStart());
}

TEST_F(NumberFormatSettingTest, TheTypeOfTheValueIsNotLookedAt)
{
    Write(zr::REG_BINARY, {0, 0, 0, 0});
    EXPECT_FALSE(UsesLocalAfterStart());
    Write(zr::REG_BINARY, {0, 1});
    EXPECT_TRUE(UsesLocalAfterStart());
    Write(zr::REG_BINARY, {0});
    EXPECT_FALSE(UsesLocalAfterStart());
}

TEST_F(NumberFormatSettingTest, AValueThatCantBeReadLeavesTheUsersFormat)
{
    Write(zr::REG_BINARY, {0, 0, 0, 0, 0});  // longer than the word
    EXPECT_TRUE(UsesLocalAfterStart());
}

}  // namespace
}  // namespace zr::test
