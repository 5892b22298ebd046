#include "devices/simulation/PlantDescription.h"

#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace {

using zr::PlantDescription;
using zr::PlantLine;

std::string Plant(const std::string& inner)
{
    return "<Plant Series=\"rows.csv\" Profiles=\"../devices\">\n" + inner + "</Plant>\n";
}

std::string Refusal(const std::string& text)
{
    PlantDescription plant;
    std::string error;
    EXPECT_FALSE(plant.LoadText(text, "dir/plant.xml", error)) << text;
    EXPECT_TRUE(plant.lines.empty());
    return error;
}

const std::string kGood = Plant(
    "<Converter Name=\"NORTH\" Port=\"47001\">\n"
    "<Device Name=\"M1\" Profile=\"EM3\" Unit=\"4\" Scale=\"2.5\" ShiftMinutes=\"60\" CapacitorVar=\"100\" "
    "ActiveKwh=\"12\" ReactiveKvarh=\"3\"/>\n"
    "</Converter>\n"
    "<SerialLine Name=\"LINE1\" Link=\"tty-1\"><Device Name=\"IO\" Profile=\"IO8\" Unit=\"2\"/></SerialLine>\n"
    "<Fault Device=\"M1\" Kind=\"late\" DelayMs=\"20\" Probability=\"0.5\"/><Fault Device=\"all\" Kind=\"mute\"/>\n");

TEST(PlantDescription, ReadsLinesDevicesAndFaults)
{
    PlantDescription plant;
    std::string error;
    ASSERT_TRUE(plant.LoadText(kGood, "dir/plant.xml", error)) << error;
    EXPECT_EQ(plant.series, std::filesystem::path("dir/rows.csv"));
    EXPECT_EQ(plant.profileFolder, std::filesystem::path("dir/../devices"));
    ASSERT_EQ(plant.lines.size(), 2u);
    EXPECT_EQ(plant.lines[0].kind, PlantLine::Kind::Converter);
    EXPECT_EQ(plant.lines[0].address, "127.0.0.1");
    EXPECT_EQ(plant.lines[0].port, 47001);
    const zr::PlantDevice& meter = plant.lines[0].devices.at(0);
    EXPECT_EQ(meter.name, "M1");
    EXPECT_EQ(meter.unit, 4);
    EXPECT_EQ(meter.meter.scale, 2.5);
    EXPECT_EQ(meter.meter.activeWhBefore, 12'000.0);
    EXPECT_EQ(meter.meter.reactiveVarhBefore, 3'000.0);
    EXPECT_EQ(meter.fileLine, 3u);
    EXPECT_EQ(plant.lines[1].kind, PlantLine::Kind::Serial);
    EXPECT_EQ(plant.lines[1].link, "tty-1");
    ASSERT_EQ(plant.faults.size(), 2u);
    EXPECT_EQ(plant.faults[0].fault->delay.count(), 20);
    EXPECT_EQ(plant.faults[0].fault->probability, 0.5);
    EXPECT_EQ(plant.faults[1].target, "all");
}

TEST(PlantDescription, RefusesWithFileAndLine)
{
    const std::string place = "dir/plant.xml:2: ";
    EXPECT_EQ(Refusal("<Plan/>"), "dir/plant.xml:1: the root must be Plant");
    EXPECT_EQ(Refusal("<Plant Series=\"x\"/>"), "dir/plant.xml:1: Plant needs the value Profiles");
    EXPECT_EQ(Refusal(Plant("")), "dir/plant.xml:1: the plant has no device");
    EXPECT_EQ(Refusal(Plant("<Cable/>")), place + "unknown element Cable");
    EXPECT_EQ(Refusal(Plant("<Converter Name=\"N\" Prot=\"1\"/>")), place + "unknown value Prot of Converter");
    EXPECT_EQ(Refusal(Plant("<Converter Name=\"N\" Port=\"1.5\"/>")), place + "Port must be a whole number");
    EXPECT_EQ(Refusal(Plant("<Converter Name=\"N\" Port=\"65536\"/>")),
              place + "Port must be a number from 0 to 65535");
    EXPECT_EQ(Refusal(Plant("<Converter Name=\"N\"/><Converter Name=\"N\"/>")), place + "Name \"N\" is taken");
    EXPECT_EQ(Refusal(Plant("<Converter Name=\"a b\"/>")),
              place + "Name of Converter must be 1 to 64 letters, digits, \"-\" or \"_\", not \"all\"");
}

TEST(PlantDescription, RefusesDevicesAndFaultsThatCannotBe)
{
    const auto device = [](const std::string& values) {
        return Refusal(Plant("<Converter Name=\"N\"><Device Name=\"A\" Profile=\"EM3\" Unit=\"1\"/><Device " + values +
                             "/></Converter>"));
    };
    const std::string place = "dir/plant.xml:2: ";
    EXPECT_EQ(device("Name=\"A\" Profile=\"EM3\" Unit=\"2\""), place + "Name \"A\" is taken");
    EXPECT_EQ(device("Name=\"B\" Profile=\"EM3\" Unit=\"1\""), place + "Unit 1 is taken by A");
    EXPECT_EQ(device("Name=\"B\" Profile=\"EM3\""), place + "Unit must be a whole number from 1 to 247");
    EXPECT_EQ(device("Name=\"B\" Profile=\"../EM3\" Unit=\"2\""), place + "Profile must name a device profile");
    EXPECT_EQ(device("Name=\"B\" Profile=\"EM3\" Unit=\"2\" Scale=\"0\""),
              place + "Scale must be a number from 0.001 to 10000");
    const auto fault = [](const std::string& values) {
        return Refusal(
            Plant("<Converter Name=\"N\"><Device Name=\"A\" Profile=\"EM3\" Unit=\"1\"/></Converter><Fault " + values +
                  "/>"));
    };
    EXPECT_EQ(fault("Device=\"B\" Kind=\"mute\""), place + "there is no device \"B\"");
    EXPECT_EQ(fault("Device=\"A mute\" Kind=\"0.5\""),
              place + "Device of Fault must be the name of a device, or \"all\"");
    EXPECT_EQ(fault("Device=\"A\" Kind=\"mute\" DelayMs=\"5\""), place + "DelayMs is for the kind late alone");
    EXPECT_EQ(fault("Device=\"A\" Kind=\"cut\" Probability=\"2\""), place + "a probability is above 0 and at most 1");
    EXPECT_EQ(fault("Device=\"A\" Kind=\"none\""), place + "Kind can't be none here");
}

TEST(PlantDescription, TellsWhyAFileCannotBeRead)
{
    PlantDescription plant;
    std::string error;
    EXPECT_FALSE(plant.Load("no/such/plant.xml", error));
    EXPECT_EQ(error.substr(0, 18), "no/such/plant.xml:");
}

TEST(PlantDescription, SurvivesTenThousandMutatedFiles)
{
    std::mt19937 random(20240101);
    constexpr std::string_view kPieces[] = {"<",         ">",          "/>",     "\"",   "=",    " ",   "0",
                                            "-1",        "1e999",      "Device", "Name", "&#0;", "all", "\xFF",
                                            "<Device/>", "Unit=\"1\"", "nan",    "..",   "'",    "<!--"};
    std::size_t accepted = 0;
    for (int i = 0; i < 10'000; ++i) {
        std::string text = kGood;
        for (std::size_t times = 1 + random() % 3; times > 0; --times) {
            const std::size_t at = random() % text.size();
            const std::size_t length = random() % 6;
            text.replace(at, length, kPieces[random() % std::size(kPieces)]);
        }
        PlantDescription plant;
        std::string error;
        const bool isGood = plant.LoadText(text, "dir/plant.xml", error);
        accepted += isGood ? 1u : 0u;
        ASSERT_EQ(isGood, error.empty()) << text;
        ASSERT_EQ(isGood, !plant.lines.empty()) << text;
        ASSERT_EQ(error.find('\n'), std::string::npos) << error;
    }
    EXPECT_GT(accepted, 0u);
    EXPECT_LT(accepted, 10'000u);
}

}  // namespace
