#include "siblings/user/CanAccessResources.h"

#include <gtest/gtest.h>

namespace {

int g_kind = 0;
ZRBasicString g_name;

bool OnlyMeters(int kind, const wchar* name, CWnd* /*parent*/)
{
    g_kind = kind;
    g_name = name;
    return g_name == u"Meter";
}

TEST(CanAccessResources, AllowsEverythingByDefault)
{
    EXPECT_TRUE(CanAccessResources(kResourceDevice, u"Meter", nullptr));
    EXPECT_TRUE(CanAccessResources(99, nullptr, nullptr));
}

TEST(CanAccessResources, AsksThePolicyOfTheHost)
{
    SetResourcePolicy(&OnlyMeters);
    EXPECT_TRUE(CanAccessResources(2, u"Meter", nullptr));
    EXPECT_EQ(g_kind, 2);
    EXPECT_FALSE(CanAccessResources(2, u"Pump", nullptr));
    EXPECT_FALSE(CanAccessResources(2, nullptr, nullptr));
    EXPECT_EQ(g_name, u"");
    SetResourcePolicy(nullptr);
    EXPECT_TRUE(CanAccessResources(2, u"Pump", nullptr));
}

}  // namespace
