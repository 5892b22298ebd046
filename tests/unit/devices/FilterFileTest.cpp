#include "siblings/driversupport/FilterFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace zr {
namespace {

const char* const kCompanion = R"(<hours><hour name="A"/><hour name="B"/></hours>)";
const char* const kFilter = R"(<filter><hourTypes>
<hour name="A" color="FF8000"/>
<other name="B"/>
</hourTypes></filter>)";

class FilterFileTest : public testing::Test {
protected:
    FilterFileTest() { std::filesystem::create_directories(m_folder); }
    ~FilterFileTest() override { std::filesystem::remove_all(m_folder); }

    bool Load(const std::string& filter, const std::string& companion = kCompanion)
    {
        std::ofstream(m_folder / "F.MVDF", std::ios::binary) << filter;
        std::ofstream(m_folder / "F.MVDFI", std::ios::binary) << companion;
        m_error.clear();
        return m_filter.Load(m_folder / "F.MVDF", m_error);
    }
    // The error without the folder.
    std::string ErrorOf(const std::string& filter, const std::string& companion = kCompanion)
    {
        EXPECT_FALSE(Load(filter, companion));
        const std::string folder = (m_folder / "").string();
        EXPECT_EQ(m_error.rfind(folder, 0), 0u) << m_error;
        return m_error.substr(std::min(folder.size(), m_error.size()));
    }
    static std::string With(const std::string& hours) { return "<f><hourTypes>" + hours + "</hourTypes></f>"; }

    std::filesystem::path m_folder = std::filesystem::path(testing::TempDir()) / "filterfile";
    FilterFile m_filter;
    std::string m_error;
};

TEST_F(FilterFileTest, HourTypesComeInOrderWithTheirColours)
{
    ASSERT_TRUE(Load(kFilter)) << m_error;
    ASSERT_EQ(m_filter.HourTypes().size(), 2u);
    EXPECT_EQ(m_filter.HourTypes()[0].name, u"A");
    EXPECT_EQ(m_filter.HourTypes()[0].color, 0xFF8000u);
    EXPECT_EQ(m_filter.HourTypes()[1].name, u"B");
    EXPECT_FALSE(m_filter.HourTypes()[1].color.has_value());
}

TEST_F(FilterFileTest, AFaultIsToldWithFileAndLine)
{
    EXPECT_EQ(ErrorOf("<f/>"), "F.MVDF:1: hourTypes: missing");
    EXPECT_EQ(ErrorOf(With("")), "F.MVDF:1: hourTypes: no hour type");
    EXPECT_EQ(ErrorOf(With("\n<hour/>")), "F.MVDF:2: name: missing");
    EXPECT_EQ(ErrorOf(With("<hour name=\"A\"/>\n<hour name=\"A\"/>")), "F.MVDF:2: name: \"A\" is used before");
    EXPECT_NE(ErrorOf(With("<hour name=\"A#B\"/>")).find("name: an hour type is named by"), std::string::npos);
    EXPECT_EQ(ErrorOf(With("<hour name=\"A\" color=\"red\"/>")), "F.MVDF:1: color: not 1 to 6 hexadecimal digits");
    EXPECT_EQ(ErrorOf(With("<hour name=\"A\" color=\"\"/>")), "F.MVDF:1: color: not 1 to 6 hexadecimal digits");
    EXPECT_EQ(ErrorOf("<f>").rfind("F.MVDF:1: ", 0), 0u);
}

TEST_F(FilterFileTest, MoreHourTypesThanTheLimitAreRefused)
{
    std::string hours;
    for (int at = 0; at < 65; ++at)
        hours += "<hour name=\"H" + std::to_string(at) + "\"/>";
    EXPECT_EQ(ErrorOf(With(hours)), "F.MVDF:1: more than 64 hour types");
}

TEST_F(FilterFileTest, TheCompanionNamesTheSameHourTypes)
{
    EXPECT_EQ(ErrorOf(kFilter, R"(<hours><hour name="A"/></hours>)"),
              "F.MVDFI:1: hour: an hour type of the filter is missing");
    EXPECT_EQ(ErrorOf(kFilter, R"(<hours><hour name="C"/></hours>)"), "F.MVDFI:1: name: no hour type of the filter");
    EXPECT_EQ(ErrorOf(kFilter, R"(<hours><hour name="A"/><hour name="A"/></hours>)"), "F.MVDFI:1: name: used before");
    EXPECT_TRUE(Load(kFilter, R"(<hours><hour name="B"/><note name="C"/><hour/><hour name="A"/></hours>)")) << m_error;
}

TEST_F(FilterFileTest, AMissingCompanionIsToldByItsName)
{
    ASSERT_TRUE(Load(kFilter));
    std::filesystem::remove(m_folder / "F.MVDFI");
    EXPECT_FALSE(m_filter.Load(m_folder / "F.MVDF", m_error));
    EXPECT_NE(m_error.find("F.MVDFI"), std::string::npos);
}

TEST_F(FilterFileTest, ARefusedFileLeavesWhatWasLoaded)
{
    ASSERT_TRUE(Load(kFilter));
    EXPECT_FALSE(Load("<f/>"));
    EXPECT_EQ(m_filter.HourTypes().size(), 2u);
}

TEST_F(FilterFileTest, TenThousandMutatedFilesAreReadOrRefusedWithALine)
{
    std::mt19937 random(11);
    std::size_t refused = 0;
    for (int round = 0; round < 10000; ++round) {
        std::string text = kFilter;
        for (unsigned edit = 0; edit <= random() % 3; ++edit) {
            const std::size_t at = random() % text.size();
            if (random() % 2 == 0) {
                text[at] = static_cast<char>(random() % 256);
            } else {
                text.erase(at, random() % 6);
            }
        }
        std::string error;
        if (m_filter.LoadText(text, kCompanion, "F.MVDF", error))
            continue;
        ++refused;
        EXPECT_EQ(error.rfind("F.MVDF", 0), 0u) << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
    EXPECT_GT(refused, 5000u);
}

}  // namespace
}  // namespace zr
