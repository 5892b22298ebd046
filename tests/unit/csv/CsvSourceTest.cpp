#include "siblings/tools/CsvSource.h"

#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <array>

namespace zr {
namespace {

class CsvSourceTest : public testing::Test {
protected:
    std::string ReadAll()
    {
        std::array<char, 3> room{};
        std::string text;
        for (std::size_t got = source.Read(room); got > 0; got = source.Read(room)) {
            text.append(room.data(), got);
        }
        return text;
    }

    test::TempFolder folder;
    CsvFileSource source;
    std::string error;
};

TEST_F(CsvSourceTest, ReadsAFileTwice)
{
    ASSERT_TRUE(source.Open(folder.Write("a.csv", "a,b\n1,2\n"), error)) << error;
    EXPECT_EQ(source.Size(), 8u);
    EXPECT_EQ(ReadAll(), "a,b\n1,2\n");
    EXPECT_TRUE(source.Rewind());
    EXPECT_EQ(ReadAll(), "a,b\n1,2\n");
    EXPECT_EQ(source.Error(), "");
}

TEST_F(CsvSourceTest, NamesWhatCanNotBeOpened)
{
    EXPECT_FALSE(source.Open(folder / "none.csv", error));
    EXPECT_THAT(error, testing::StartsWith((folder / "none.csv").string() + ": can't be opened: "));
    EXPECT_FALSE(source.Open(folder.Path(), error));
    EXPECT_EQ(error, folder.Path().string() + ": is a folder");
}

TEST_F(CsvSourceTest, StandardInputCanNotBeReadTwice)
{
    ASSERT_TRUE(source.Open("-", error)) << error;
    EXPECT_EQ(source.Name(), "standard input");
    EXPECT_EQ(source.Size(), 0u);
    EXPECT_FALSE(source.Rewind());
}

}  // namespace
}  // namespace zr
