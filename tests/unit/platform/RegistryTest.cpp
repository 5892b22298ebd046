#include "platform/Registry.h"

#include "support/Environment.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <cstring>
#include <thread>

namespace {

using namespace zr;

constexpr char kUserFile[] = "kestrix/registry-current-user.txt";

// Its own pair of files, in a folder of its own.
class Registry : public testing::Test {
protected:
    Registry() : m_environment("XDG_CONFIG_HOME", m_folder.Path().string()) {}

    HKEY Create(const char16_t* path, std::uint32_t access = KEY_ALL_ACCESS, HKEY root = HKEY_CURRENT_USER)
    {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(root, path, 0, nullptr, 0, access, nullptr, &key, nullptr), ERROR_SUCCESS);
        return key;
    }

    static std::int32_t SetDword(HKEY key, const char16_t* name, std::uint32_t number)
    {
        std::uint8_t bytes[4];
        std::memcpy(bytes, &number, sizeof bytes);
        return RegSetValueExW(key, name, 0, REG_DWORD, bytes, sizeof bytes);
    }

    static std::int32_t SetText(HKEY key, const char16_t* name, std::u16string_view text)
    {
        const std::u16string terminated(text);
        std::vector<std::uint8_t> bytes(2 * (text.size() + 1));
        std::memcpy(bytes.data(), terminated.c_str(), bytes.size());
        return RegSetValueExW(key, name, 0, REG_SZ, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    }

    static std::uint32_t Dword(HKEY key, const char16_t* name)
    {
        std::uint32_t number = 0xEEEEEEEE;
        std::uint8_t bytes[4] = {};
        std::uint32_t size = sizeof bytes;
        if (RegQueryValueExW(key, name, nullptr, nullptr, bytes, &size) == ERROR_SUCCESS) {
            std::memcpy(&number, bytes, sizeof number);
        }
        return number;
    }

    static std::u16string Text(HKEY key, const char16_t* name)
    {
        std::uint32_t size = 0;
        std::uint32_t type = 0;
        EXPECT_EQ(RegQueryValueExW(key, name, nullptr, &type, nullptr, &size), ERROR_SUCCESS);
        EXPECT_EQ(type, REG_SZ);
        std::vector<std::uint8_t> bytes(size);
        EXPECT_EQ(RegQueryValueExW(key, name, nullptr, nullptr, bytes.data(), &size), ERROR_SUCCESS);
        std::u16string text(size / 2, u'\0');
        std::memcpy(text.data(), bytes.data(), size);
        EXPECT_TRUE(text.ends_with(u'\0'));
        text.pop_back();
        return text;
    }

    void WriteUserFile(std::string_view text)
    {
        std::filesystem::create_directories(m_folder / "kestrix");
        m_folder.Write(kUserFile, text);
    }

    test::TempFolder m_folder;
    test::Environment m_environment;
};

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
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Software", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
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

TEST_F(Registry, RefusesHandlesAndPathsThatAreNone)
{
    HKEY key = Create(u"K");
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(key, u"V", 1), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegOpenKeyExW(nullptr, u"K", 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"K", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
    for (const char16_t* path : {u"\\K", u"K\\\\L", u"K\nL", u"K\xD800"}) {
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_READ, nullptr, &key, nullptr),
                  ERROR_BAD_PATHNAME);
    }
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

TEST_F(Registry, TheFileIsForItsOwnerOnlyAndReadsAsDocumented)
{
    HKEY key = Create(u"Software\\Kestrix\\Tables");
    SetDword(key, u"Column1", 160);
    SetText(key, u"Note", u"\u00E9 \"x\"");
    RegCloseKey(key);
    EXPECT_EQ(m_folder.Read(kUserFile),
              "[Software\\Kestrix\\Tables]\n\"Column1\" = dword:000000a0\n\"Note\" = \"\xC3\xA9 \\\"x\\\"\"\n");
    EXPECT_EQ(std::filesystem::status(m_folder / kUserFile).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(std::filesystem::status(m_folder / "kestrix").permissions(), std::filesystem::perms(0700));
}

TEST_F(Registry, BrokenLinesAreReportedAndKept)
{
    const std::string before =
        "\"early\" = \"x\"\n# a comment\n[K]\n\"V\" = dword:00000001\n\"V\" = dword:00000002\nnonsense\n\"W\" = 5\n"
        "\"X\" \"y\"\n\xFF\xFE\n\"Z\" = hex(3):1\n\n[L]\n\"V\" = dword:00000003";
    WriteUserFile(before);
    std::vector<std::size_t> lines;
    for (const RegistryFault& fault : RegistryFaults()) {
        EXPECT_EQ(fault.file, (m_folder / kUserFile).string());
        EXPECT_FALSE(fault.reason.empty());
        lines.push_back(fault.line);
    }
    EXPECT_THAT(lines, testing::ElementsAre(1U, 5U, 6U, 7U, 8U, 9U, 10U));

    HKEY key = Create(u"K");
    EXPECT_EQ(Dword(key, u"V"), 1U);
    EXPECT_EQ(SetDword(key, u"V", 9), ERROR_SUCCESS);
    RegCloseKey(key);
    std::string after = before + "\n";
    after.replace(after.find("dword:00000001"), 14, "dword:00000009");
    EXPECT_EQ(m_folder.Read(kUserFile), after);
}

TEST_F(Registry, ANewValueStandsWithItsKey)
{
    WriteUserFile("[K]\n\"A\" = \"1\"\n\n[L]\n");
    HKEY key = Create(u"k");
    SetText(key, u"B", u"2");
    RegCloseKey(key);
    EXPECT_EQ(m_folder.Read(kUserFile), "[K]\n\"A\" = \"1\"\n\"B\" = \"2\"\n\n[L]\n");
}

TEST_F(Registry, SeesWhatAnotherHandHasWritten)
{
    HKEY key = Create(u"K");
    SetDword(key, u"V", 1);
    EXPECT_EQ(Dword(key, u"V"), 1U);
    WriteUserFile("[K]\n\"V\" = dword:00000002\n\"New\" = dword:00000003\n");
    EXPECT_EQ(Dword(key, u"V"), 2U);
    SetDword(key, u"V", 4);
    EXPECT_EQ(Dword(key, u"New"), 3U);
    RegCloseKey(key);
}

TEST_F(Registry, AFileThatCannotBeReadIsNotReplaced)
{
    std::filesystem::create_directories(m_folder / kUserFile);
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"K", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_ACCESS_DENIED);
    ASSERT_EQ(RegistryFaults().size(), 1U);
    EXPECT_EQ(RegistryFaults()[0].line, 0U);
    EXPECT_TRUE(std::filesystem::is_directory(m_folder / kUserFile));
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
