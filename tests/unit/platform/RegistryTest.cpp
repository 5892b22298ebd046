#include "RegistryFixture.h"

#include <gtest/gtest.h>
#include <cstring>
#include <thread>

namespace {

using namespace zr;

class Registry : public test::RegistryFixture {};

TEST_F(Registry, OpeningAnAbsentKeyFindsNothing)
{
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\Kestrix", 0, KEY_QUERY_VALUE, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    EXPECT_TRUE(m_folder.Names().empty());
}

TEST_F(Registry, CreatingAKeyMakesTheOnesAboveIt)
{
    std::uint32_t disposition = 0;
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\Kestrix\\Tables", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                              &key, &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    for (const char16_t* path :
         {u"Software", u"Software\\Kestrix", u"SOFTWARE\\kestrix\\tables", u"Software\\Kestrix\\"}) {
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_READ, nullptr, &key, &disposition),
                  ERROR_SUCCESS);
        EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
        EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    }
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Soft", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Kestrix\\Tables", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, ValuesComeBackAsTheyWereSet)
{
    HKEY key = Create(u"Software\\Kestrix");
    EXPECT_EQ(SetDword(key, u"Column1", 160), ERROR_SUCCESS);
    EXPECT_EQ(SetText(key, u"LastLoggerGroup", u"2"), ERROR_SUCCESS);
    EXPECT_EQ(SetText(key, u"Odd \"name\" = \\ \n", std::u16string_view(u"a\"b\\c\n\u00E9\0\xD800 x", 11)),
              ERROR_SUCCESS);
    EXPECT_EQ(SetText(key, nullptr, u"default"), ERROR_SUCCESS);
    const std::uint8_t bytes[] = {0, 1, 255};
    EXPECT_EQ(RegSetValueExW(key, u"Raw", 0, REG_BINARY, bytes, 3), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(key, u"Empty", 0, REG_BINARY, nullptr, 0), ERROR_SUCCESS);
    RegCloseKey(key);

    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"software\\KESTRIX", 0, KEY_QUERY_VALUE, &key), ERROR_SUCCESS);
    EXPECT_EQ(Dword(key, u"column1"), 160U);
    EXPECT_EQ(Text(key, u"LastLoggerGroup"), u"2");
    EXPECT_EQ(Text(key, u"Odd \"name\" = \\ \n"), std::u16string_view(u"a\"b\\c\n\u00E9\0\xD800 x", 11));
    EXPECT_EQ(Text(key, u""), u"default");
    std::uint8_t read[3] = {};
    std::uint32_t size = 3;
    std::uint32_t type = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"Raw", nullptr, &type, read, &size), ERROR_SUCCESS);
    EXPECT_EQ(type, REG_BINARY);
    EXPECT_EQ(std::memcmp(read, bytes, 3), 0);
    EXPECT_EQ(RegQueryValueExW(key, u"Empty", nullptr, nullptr, read, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(RegQueryValueExW(key, u"Absent", nullptr, nullptr, nullptr, nullptr), ERROR_FILE_NOT_FOUND);
    RegCloseKey(key);
    EXPECT_TRUE(RegistryFaults().empty());
}

TEST_F(Registry, ATextWithoutItsTerminatingZeroComesBackWithoutIt)
{
    HKEY key = Create(u"K");
    const std::uint8_t bytes[] = {'a', 0, 'b', 0};
    EXPECT_EQ(RegSetValueExW(key, u"V", 0, REG_SZ, bytes, 4), ERROR_SUCCESS);
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"V", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 4U);
    EXPECT_EQ(type, REG_SZ);
    RegCloseKey(key);
}

TEST_F(Registry, AShortBufferGetsTheSizeAndNothingElse)
{
    HKEY key = Create(u"K");
    SetText(key, u"V", u"four");
    std::uint8_t bytes[10] = {};
    std::uint32_t size = 9;
    std::uint32_t type = 0;
    EXPECT_EQ(RegQueryValueExW(key, u"V", nullptr, &type, bytes, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 10U);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(RegQueryValueExW(key, u"V", nullptr, nullptr, bytes, &size), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(key, u"V", nullptr, nullptr, bytes, nullptr), ERROR_INVALID_PARAMETER);
    RegCloseKey(key);
}

TEST_F(Registry, HoldsToTheAccessThatWasAskedFor)
{
    HKEY key = Create(u"K", KEY_QUERY_VALUE);
    EXPECT_EQ(SetDword(key, u"V", 1), ERROR_ACCESS_DENIED);
    RegCloseKey(key);
    key = Create(u"K", KEY_SET_VALUE);
    EXPECT_EQ(SetDword(key, u"V", 1), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(key, u"V", nullptr, nullptr, nullptr, nullptr), ERROR_ACCESS_DENIED);
    RegCloseKey(key);
}

TEST_F(Registry, ASubKeyIsSoughtBelowTheOpenKey)
{
    HKEY top = Create(u"Software\\Kestrix");
    HKEY tables = nullptr;
    ASSERT_EQ(RegCreateKeyExW(top, u"Tables", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &tables, nullptr), ERROR_SUCCESS);
    SetDword(tables, u"Column1", 7);
    HKEY same = nullptr;
    ASSERT_EQ(RegOpenKeyExW(tables, nullptr, 0, KEY_READ, &same), ERROR_SUCCESS);
    EXPECT_EQ(Dword(same, u"Column1"), 7U);
    EXPECT_EQ(Dword(top, u"Column1"), 0xEEEEEEEE);
    for (HKEY key : {top, tables, same}) {
        EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    }
}

TEST_F(Registry, ManyThreadsLoseNoValue)
{
    HKEY key = Create(u"K");
    std::vector<std::thread> threads;
    for (char16_t thread = 0; thread < 4; ++thread) {
        threads.emplace_back([key, thread] {
            for (char16_t i = 0; i < 10; ++i) {
                const char16_t name[] = {static_cast<char16_t>(u'A' + thread), static_cast<char16_t>(u'0' + i), 0};
                EXPECT_EQ(SetDword(key, name, 100U * thread + i), ERROR_SUCCESS);
                EXPECT_EQ(Dword(key, name), 100U * thread + i);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(Dword(key, u"A0"), 0U);
    EXPECT_EQ(Dword(key, u"D9"), 309U);
    RegCloseKey(key);
}

}  // namespace
