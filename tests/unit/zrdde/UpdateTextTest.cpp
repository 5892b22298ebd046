#include "hosts/zrdde/UpdateText.h"

#include "dde/ValueEncoding.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace zr::ddeclient {

namespace {

using Bytes = std::vector<std::uint8_t>;

class UpdateText : public testing::Test {
protected:
    UpdateLine Line(Format format, const Bytes& bytes)
    {
        using namespace std::chrono;
        // The hour that occurs twice in the towns of Europe: in UTC it doesn't.
        const sys_time<milliseconds> time = sys_days{year{2026} / 10 / 25} + hours{1} + milliseconds{5};
        return {time, m_topic, m_item, format, bytes};
    }
    static Bytes Table(double number)
    {
        const auto table = dde::EncodeXlTable(number);
        return {table.begin(), table.end()};
    }

    std::u16string m_topic = u"METER-1";
    std::u16string m_item = u"U1";
};

TEST_F(UpdateText, TellsTimeItemAndNumberBetweenTabs)
{
    EXPECT_EQ(PlainLine(Line(Format::XlTable, Table(230.25))), "2026-10-25T01:00:00.005Z\tU1\t230.25");
}

TEST_F(UpdateText, TellsANumberSoThatItReadsBackAsTheSame)
{
    const std::string line = PlainLine(Line(Format::XlTable, Table(0.1 + 0.2)));
    EXPECT_EQ(std::stod(line.substr(line.rfind('\t') + 1)), 0.1 + 0.2) << line;
}

TEST_F(UpdateText, TellsHowMuchOfATextIsMissing)
{
    const std::string line = PlainLine(Line(Format::Text, {0x31, 0, 0x32, 0, 0x2E, 0}));
    EXPECT_EQ(line.substr(0, line.find("12.") + 3), "2026-10-25T01:00:00.005Z\tU1\t12.");
    EXPECT_NE(line.find('4', line.find("12.")), std::string::npos) << "of 4 characters: " << line;
}

TEST_F(UpdateText, IsOneObjectOfJson)
{
    EXPECT_EQ(JsonLine(Line(Format::XlTable, Table(-1.5))),
              R"({"time":"2026-10-25T01:00:00.005Z","topic":"METER-1","item":"U1","format":"xltable","value":-1.5})");
    EXPECT_EQ(JsonLine(Line(Format::Text, {0x31, 0, 0x32, 0, 0x2E, 0})),
              R"({"time":"2026-10-25T01:00:00.005Z","topic":"METER-1","item":"U1","format":"text","text":"12.",)"
              R"("characters":4,"complete":false})");
}

TEST_F(UpdateText, JsonHasNullForWhatIsNoNumber)
{
    for (const double number : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        EXPECT_NE(JsonLine(Line(Format::XlTable, Table(number))).find("\"value\":null"), std::string::npos);
    }
    for (const Bytes& broken : {Bytes(), Bytes(19), Bytes(20, 0xFF)}) {
        EXPECT_NE(JsonLine(Line(Format::XlTable, broken)).find("\"value\":null"), std::string::npos);
    }
}

TEST_F(UpdateText, NamesFromAServerCantMoveTheCursorOrLeaveTheirText)
{
    m_item = u"U\x1B[2J\n\t\x7F\"\\";
    const std::string plain = PlainLine(Line(Format::XlTable, Table(1.0)));
    EXPECT_EQ(plain, "2026-10-25T01:00:00.005Z\tU?[2J???\"\\\t1");
    const std::string json = JsonLine(Line(Format::XlTable, Table(1.0)));
    EXPECT_NE(json.find(R"("item":"U\u001b[2J\u000a\u0009\u007f\"\\")"), std::string::npos) << json;
}

TEST_F(UpdateText, LettersBeyondAsciiAreUtf8)
{
    m_item = u"\u00E4\u03C6";
    EXPECT_NE(PlainLine(Line(Format::XlTable, Table(1.0))).find("\t\xC3\xA4\xCF\x86\t"), std::string::npos);
}

}  // namespace

}  // namespace zr::ddeclient
