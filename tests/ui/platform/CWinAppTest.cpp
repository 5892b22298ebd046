#include "platform/ui/CWinApp.h"

#include "platform/Registry.h"
#include "support/Environment.h"
#include "support/TempFolder.h"
#include "support/UserText.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

class CWinAppTest : public ::testing::Test {
protected:
    CWinAppTest() : m_configuration("XDG_CONFIG_HOME", m_folder.Path().string()) {}

private:
    zr::test::TempFolder m_folder;
    zr::test::Environment m_configuration;

protected:
    CWinApp application{u"Software\\Kestrix"};
};

TEST_F(CWinAppTest, IsTheOneThatAfxGetAppReturns)
{
    EXPECT_EQ(AfxGetApp(), &application);
}

TEST_F(CWinAppTest, GivesTheDefaultForWhatIsNotThere)
{
    EXPECT_EQ(application.GetProfileIntW(u"main", u"width", 77), 77);
}

TEST_F(CWinAppTest, KeepsNumbers)
{
    for (const int value : {0, 1, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_TRUE(application.WriteProfileInt(u"main\\places", u"width", value));
        EXPECT_EQ(application.GetProfileIntW(u"main\\places", u"width", 77), value);
    }
}

TEST_F(CWinAppTest, KeepsThemBelowTheSuitesKey)
{
    ASSERT_TRUE(application.WriteProfileInt(u"main", u"width", 5));
    zr::HKEY key = nullptr;
    ASSERT_EQ(zr::RegOpenKeyExW(zr::HKEY_CURRENT_USER, u"Software\\Kestrix\\main", 0, zr::KEY_READ, &key),
              zr::ERROR_SUCCESS);
    std::uint32_t type = 0;
    EXPECT_EQ(zr::RegQueryValueExW(key, u"width", nullptr, &type, nullptr, nullptr), zr::ERROR_SUCCESS);
    EXPECT_EQ(type, zr::REG_DWORD);
    zr::RegCloseKey(key);
}

TEST_F(CWinAppTest, GivesTheDefaultForAValueOfAnotherKind)
{
    zr::test::WriteUserText(u"Software\\Kestrix\\main", u"width", u"wide");
    EXPECT_EQ(application.GetProfileIntW(u"main", u"width", 77), 77);
}

}  // namespace
