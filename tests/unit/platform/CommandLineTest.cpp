#include "platform/CommandLine.h"

#include <gtest/gtest.h>
#include <array>
#include <string>

namespace {

TEST(CommandLine, HasTheProgramFirstAndANullBehindTheLastWord)
{
    std::string program = "zrdde";
    std::string word = "Z\xC3\xA4hler";
    std::array<char*, 3> given = {program.data(), word.data(), nullptr};
    zr::CommandLine line(2, given.data());
    ASSERT_GE(line.Count(), 1);
    EXPECT_EQ(line.Values()[line.Count()], nullptr);
#ifdef _WIN32
    // Those of the process itself.
    EXPECT_NE(std::string(line.Values()[0]).find("test_platform"), std::string::npos) << line.Values()[0];
#else
    ASSERT_EQ(line.Count(), 2);
    EXPECT_EQ(std::string(line.Values()[0]), program);
    EXPECT_EQ(std::string(line.Values()[1]), word);
#endif
}

}  // namespace
