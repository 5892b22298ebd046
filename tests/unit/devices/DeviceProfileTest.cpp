#include "devices/modbus/DeviceProfile.h"

#include "devices/modbus/ProfileCatalogue.h"
#include "ProfileText.h"
#include "siblings/driversupport/FilterFile.h"
#include "siblings/driversupport/MeasureUnits.h"
#include "siblings/tools/Utf.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <set>

namespace zr::modbus {
namespace {
using namespace test;

const char* const kGood = R"(function="4" register="7" type="u16")";

std::string ErrorOf(const std::string& text)
{
    std::string error;
    EXPECT_EQ(Profile(text, error), nullptr);
    return error;
}

TEST(DeviceProfileTest, EveryValueOfAVariableArrives)
{
    std::string error;
    const auto profile = Profile(
        ProfileText(R"(<variable name="EAI" description="Energy" function="3" register="42" type="u32" words="little"
            write="16" writeRegister="90" registerExponent="-1" valueExponent="1" decimals="2" unit="Wh"
            unitsExponent="3" unitsDecimals="4" class="counter" splittable="yes" minimum="-5" maximum="1e3"/>)",
                    R"(image="meter" framing="tcp" period="250" filter="DAYS")"),
        error);
    ASSERT_NE(profile, nullptr) << error;
    EXPECT_EQ(profile->Type(), u"T1");
    EXPECT_EQ(profile->Description(), u"Test device");
    EXPECT_EQ(profile->Image(), u"meter");
    EXPECT_EQ(profile->FrameForm(), Framing::Tcp);
    EXPECT_EQ(profile->Period(), std::chrono::milliseconds(250));
    ASSERT_NE(profile->DefaultFilter(), nullptr);
    EXPECT_EQ(*profile->DefaultFilter(), u"DAYS");
    const VariableDescription& variable = (*profile->Variables())[0];
    EXPECT_EQ(variable.name, u"EAI");
    EXPECT_EQ(variable.description, u"Energy");
    EXPECT_EQ(variable.variableClass, VariableClass::Counter);
    EXPECT_EQ(variable.measureUnits, static_cast<int>(MeasureUnit::WattHour));
    EXPECT_EQ(variable.valueExponent, 1);
    EXPECT_EQ(variable.decimals, 2);
    EXPECT_EQ(variable.unitsExponent, 3);
    EXPECT_EQ(variable.unitsDecimals, 4);
    EXPECT_TRUE(variable.splittable);
    EXPECT_TRUE(variable.output);
    EXPECT_FALSE(variable.isText);
    EXPECT_EQ(variable.minimum, -5.0);
    EXPECT_EQ(variable.maximum, 1000.0);
    const VariableLayout& layout = profile->Layout(0);
    EXPECT_EQ(layout.function, Function::ReadHoldingRegisters);
    EXPECT_EQ(layout.first, 42);
    EXPECT_EQ(layout.count, 2);
    EXPECT_EQ(layout.type, DataType::U32);
    EXPECT_EQ(layout.words, WordOrder::Little);
    EXPECT_EQ(layout.registerExponent, -1);
    EXPECT_EQ(layout.write, Function::WriteMultipleRegisters);
    EXPECT_EQ(layout.writeFirst, 90);
}

TEST(DeviceProfileTest, TellsWhichVariableIsAText)
{
    std::string error;
    const auto profile =
        Profile(ProfileText(R"(<variable name="SERIAL" description="Serial number" function="3" register="0" type="text"
            length="4"/>)"),
                error);
    ASSERT_NE(profile, nullptr) << error;
    EXPECT_TRUE((*profile->Variables())[0].isText);
}

TEST(DeviceProfileTest, LimitsArriveAroundTheirNominalValue)
{
    std::string error;
    const auto profile =
        Profile(ProfileText(Variable(R"(function="4" register="7" type="u16" unit="V" nominal="230" lowWarning="207"
            lowAlarm="195.5" highAlarm="264.5")")),
                error);
    ASSERT_NE(profile, nullptr) << error;
    const std::optional<VariableLimits>& limits = (*profile->Variables())[0].limits;
    ASSERT_TRUE(limits.has_value());
    EXPECT_EQ(limits->nominal, 230.0);
    EXPECT_TRUE(limits->hasLow);
    EXPECT_EQ(limits->lowWarning, 207.0);
    EXPECT_EQ(limits->lowAlarm, 195.5);
    EXPECT_TRUE(limits->hasHigh);
    EXPECT_EQ(limits->highWarning, 264.5);  // the alarm limit when it is left out
    EXPECT_EQ(limits->highAlarm, 264.5);
}

TEST(DeviceProfileTest, LimitsOfAPowerFactorAreOrderedOnItsFoldedScale)
{
    std::string error;
    const auto profile =
        Profile(ProfileText(Variable(R"(function="4" register="7" type="i16" unit="PF" nominal="1" lowWarning="0.9"
            lowAlarm="0.8" highWarning="-0.9" highAlarm="-0.8")")),
                error);
    ASSERT_NE(profile, nullptr) << error;
    EXPECT_EQ((*profile->Variables())[0].limits->highAlarm, -0.8);
}

TEST(DeviceProfileTest, LimitsThatMakeNoSenseAreRefusedByName)
{
    struct Row {
        const char* values;
        const char* complaint;
    };
    const Row rows[] = {
        {R"(type="u16" lowAlarm="1")", "lowAlarm: needs nominal"},
        {R"(type="u16" nominal="0" lowAlarm="-1")", "nominal: not above 0"},
        {R"(type="u16" nominal="5")", "nominal: stands only with limits"},
        {R"(type="u16" nominal="5" lowWarning="4")", "lowAlarm: missing"},
        {R"(type="u16" nominal="5" lowWarning="3" lowAlarm="4")", "lowWarning: not from lowAlarm to below nominal"},
        {R"(type="u16" nominal="5" lowAlarm="5")", "lowWarning: not from lowAlarm to below nominal"},
        {R"(type="u16" nominal="5" highAlarm="5")", "highWarning: not from above nominal to highAlarm"},
        {R"(type="u16" nominal="5" highAlarm="nan")", "highAlarm: \"nan\" is not a number"},
        {R"(type="text" length="4" nominal="5" highAlarm="6")", "nominal: only a number has one"},
    };
    for (const Row& row : rows) {
        const std::string error =
            ErrorOf(ProfileText(Variable(std::string(R"(function="4" register="7" )") + row.values)));
        EXPECT_NE(error.find(row.complaint), std::string::npos) << row.values << ": " << error;
    }
}

TEST(DeviceProfileTest, WhatIsLeftOutHasItsDefault)
{
    std::string error;
    const auto profile =
        Profile(ProfileText(Variable(R"(function="4" register="7" type="i16" registerExponent="-2" unit="W")")), error);
    ASSERT_NE(profile, nullptr) << error;
    EXPECT_EQ(profile->FrameForm(), Framing::Rtu);
    EXPECT_EQ(profile->Period(), std::chrono::seconds(1));
    EXPECT_EQ(profile->DefaultFilter(), nullptr);
    EXPECT_EQ(profile->Limits().gapRegisters, 0);
    EXPECT_EQ(profile->Limits().maxRegisters, 125);
    EXPECT_EQ(profile->Limits().maxBits, 2000);
    const VariableDescription& variable = (*profile->Variables())[0];
    EXPECT_EQ(variable.variableClass, VariableClass::Instantaneous);
    EXPECT_EQ(variable.decimals, 2);
    EXPECT_EQ(variable.unitsDecimals, 2);
    EXPECT_FALSE(variable.output);
    EXPECT_FALSE(variable.splittable);
}

TEST(DeviceProfileTest, NamedValuesAreTheRangeOfTheirVariable)
{
    std::string error;
    const auto profile =
        Profile(ProfileText(R"(<variable name="M" description="Mode" function="3" register="0" type="u16" write="6">
            <value number="2" text="Hand"/><value number="5" text="Auto"/></variable>)"),
                error);
    ASSERT_NE(profile, nullptr) << error;
    const VariableDescription& variable = (*profile->Variables())[0];
    EXPECT_EQ(variable.values, (std::vector<int>{2, 5}));
    EXPECT_EQ(variable.valueTexts[1], u"Auto");
    EXPECT_EQ(variable.minimum, 2.0);
    EXPECT_EQ(variable.maximum, 5.0);
}

TEST(DeviceProfileTest, AFaultIsToldWithFileLineVariableAndValue)
{
    EXPECT_EQ(ErrorOf(ProfileText("\n" + Variable(R"(function="4" register="65536" type="u16")"))),
              "t1.xml:3: variable \"V\": register: \"65536\" is not a whole number from 0 to 65535");
}

TEST(DeviceProfileTest, EveryValueIsHeldToItsRule)
{
    const struct {
        const char* values;
        const char* error;
    } rows[] = {
        {R"(register="7" type="u16")", "function: missing"},
        {R"(function="5" register="7" type="u16")", "function: \"5\" is not a whole number from 1 to 4"},
        {R"(function="4" type="u16")", "register: missing"},
        {R"(function="4" register="-1" type="u16")", "register: \"-1\" is not"},
        {R"(function="4" register="0x10" type="u16")", "register: \"0x10\" is not"},
        {R"(function="4" register="7 " type="u16")", "register: \"7 \" is not"},
        {R"(function="4" register="65535" type="u32")", "register: reaches beyond 65535"},
        {R"(function="4" register="7")", "type: missing"},
        {R"(function="4" register="7" type="u15")", "type: \"u15\" is not one of: u16, i16"},
        {R"(function="1" register="7" type="u16")", "type: \"u16\" is not one of: bit"},
        {R"(function="4" register="7" type="bit")", "bit: missing"},
        {R"(function="4" register="7" type="bit" bit="16")", "bit: \"16\" is not"},
        {R"(function="4" register="7" type="u16" bit="1")", "bit: only a bit"},
        {R"(function="1" register="7" bit="1")", "bit: only a bit"},
        {R"(function="4" register="7" type="text")", "length: missing"},
        {R"(function="4" register="7" type="text" length="126")", "length: \"126\" is not"},
        {R"(function="4" register="7" type="u16" length="2")", "length: only a text"},
        {R"(function="4" register="7" type="u16" words="big")", "words: only a number"},
        {R"(function="4" register="7" type="u32" words="middle")", "words: \"middle\" is not one of: big, little"},
        {R"(function="4" register="7" type="u16" registerExponent="13")", "registerExponent: \"13\" is not"},
        {R"(function="4" register="7" type="u16" valueExponent="x")", "valueExponent: \"x\" is not"},
        {R"(function="4" register="7" type="u16" decimals="10")", "decimals: \"10\" is not"},
        {R"(function="4" register="7" type="u16" unitsExponent="-13")", "unitsExponent: \"-13\" is not"},
        {R"(function="4" register="7" type="u16" unitsDecimals="-1")", "unitsDecimals: \"-1\" is not"},
        {R"(function="4" register="7" type="u16" unit="horse")", "unit: \"horse\" is not known"},
        {R"(function="4" register="7" type="u16" class="sum")", "class: \"sum\" is not one of: instantaneous"},
        {R"(function="4" register="7" type="u16" splittable="1")", "splittable: \"1\" is not one of: no, yes"},
        {R"(function="4" register="7" type="u16" minimum="1")", "minimum: stands only together with maximum"},
        {R"(function="4" register="7" type="u16" minimum="2" maximum="2")", "maximum: not above minimum"},
        {R"(function="4" register="7" type="u16" minimum="0" maximum="nan")", "maximum: \"nan\" is not a number"},
        {R"(function="4" register="7" type="text" length="1" unit="V")", "unit: a text has none"},
        {R"(function="4" register="7" type="text" length="1" splittable="yes")", "splittable: a text can't be split"},
        {R"(function="3" register="7" type="u16" write="5")", "write: bits are written by 5 and 15"},
        {R"(function="1" register="7" write="6")", "write: bits are written by 5 and 15"},
        {R"(function="3" register="7" type="u32" write="6")", "write: function 6 writes one register"},
        {R"(function="3" register="7" type="bit" bit="0" write="6")", "write: of what lies in registers"},
        {R"(function="3" register="7" type="u16" writeRegister="1")", "writeRegister: only an output"},
        {R"(function="3" register="7" type="u32" write="16" writeRegister="65535")", "writeRegister: reaches beyond"},
        {R"(function="4" register="7" type="u16" colour="red")", "colour: no value of this name is known"},
    };
    for (const auto& row : rows) {
        const std::string error = ErrorOf(ProfileText(Variable(row.values)));
        EXPECT_EQ(error.rfind(std::string("t1.xml:2: variable \"V\": ") + row.error, 0), 0u) << error;
    }
}

TEST(DeviceProfileTest, TheHeadIsHeldToItsRules)
{
    const std::string one = Variable(kGood);
    const struct {
        std::string text;
        const char* error;
    } rows[] = {
        {ProfileText(one, R"(framing="ascii")"), "framing: \"ascii\" is not one of: rtu, tcp"},
        {ProfileText(one, R"(period="86400001")"), "period: \"86400001\" is not"},
        {ProfileText(one, R"(gapRegisters="125")"), "gapRegisters: \"125\" is not"},
        {ProfileText(one, R"(maxRegisters="0")"), "maxRegisters: \"0\" is not"},
        {ProfileText(one, R"(maxBits="2001")"), "maxBits: \"2001\" is not"},
        {ProfileText(one, R"(filter="../x")"), "filter: \"../x\" is not a name"},
        {ProfileText(one, R"(icon="x")"), "icon: no value of this name is known"},
        {ProfileText(""), "no variable"},
        {"<profile/>", "the root is not \"deviceProfile\""},
        {R"(<deviceProfile version="2" type="T" description=""/>)", "version: \"2\" is not"},
        {R"(<deviceProfile version="1" type="a.b" description=""/>)", "type: \"a.b\" is not a name"},
        {R"(<deviceProfile version="1" type="T"/>)", "description: missing"},
    };
    for (const auto& row : rows) {
        const std::string error = ErrorOf(row.text);
        EXPECT_EQ(error.rfind(std::string("t1.xml:1: ") + row.error, 0), 0u) << error;
    }
}

TEST(DeviceProfileTest, AVariableNeedsANameOfItsOwnInUpperCase)
{
    const auto named = [](const char* name) {
        return std::string("<variable description=\"\" ") + kGood + " name=\"" + name + "\"/>\n";
    };
    EXPECT_EQ(ErrorOf(ProfileText(named("u1"))), "t1.xml:2: variable \"u1\": name: must be in upper case");
    EXPECT_EQ(ErrorOf(ProfileText(named("U1") + named("U1"))), "t1.xml:3: variable \"U1\": name: used before");
    EXPECT_NE(ErrorOf(ProfileText(named("U.1"))).find("name: \"U.1\" is not a name"), std::string::npos);
}

TEST(DeviceProfileTest, NamedValuesAreHeldToTheirRules)
{
    const auto with = [](const std::string& values, const char* place) {
        return ProfileText(std::string("<variable name=\"V\" description=\"\" ") + place + ">\n" + values +
                           "</variable>\n");
    };
    const char* const number = R"(function="3" register="0" type="u16")";
    EXPECT_NE(ErrorOf(with(R"(<value text="A"/>)", number)).find("value: number: missing"), std::string::npos);
    EXPECT_NE(ErrorOf(with(R"(<value number="1" text=""/>)", number)).find("text: empty"), std::string::npos);
    EXPECT_NE(ErrorOf(with(R"(<value number="1" text="A"/><value number="1" text="B"/>)", number))
                  .find("number: used before"),
              std::string::npos);
    EXPECT_NE(
        ErrorOf(with(R"(<value number="1" text="A"/><value number="2" text="A"/>)", number)).find("text: used before"),
        std::string::npos);
    EXPECT_NE(ErrorOf(with(R"(<value number="2" text="A"/>)", R"(function="1" register="0")")).find("from 0 to 1"),
              std::string::npos);
    EXPECT_NE(ErrorOf(with(R"(<name number="2" text="A"/>)", number)).find("only \"value\""), std::string::npos);
    EXPECT_NE(ErrorOf(with(R"(<value number="2" text="A"/>)", R"(function="3" register="0" type="text" length="1")"))
                  .find("a text has no named values"),
              std::string::npos);
}

TEST(DeviceProfileTest, AVariableLongerThanARequestIsRefused)
{
    EXPECT_NE(ErrorOf(ProfileText(Variable(R"(function="4" register="7" type="f64")"), R"(maxRegisters="3")"))
                  .find("type: 4 registers, and a request may read 3"),
              std::string::npos);
}

TEST(DeviceProfileTest, AFileThatIsMissingIsToldByName)
{
    std::string error;
    EXPECT_EQ(DeviceProfile::Load("/nonexistent/x.xml", error), nullptr);
    EXPECT_EQ(error.rfind("/nonexistent/x.xml", 0), 0u) << error;
}

std::string FileText(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// One to four random edits: a byte changed, removed, doubled or a piece cut out or copied elsewhere.
std::string Mutated(std::string text, std::mt19937& random)
{
    const auto below = [&](std::size_t limit) { return limit == 0 ? 0 : random() % limit; };
    for (unsigned edit = 0; edit <= random() % 4; ++edit) {
        const std::size_t at = below(text.size());
        const std::size_t length = below(std::min<std::size_t>(40, text.size() - at));
        switch (random() % 5) {
            case 0:
                text[at] = static_cast<char>(random() % 256);
                break;
            case 1:
                text.erase(at, length);
                break;
            case 2:
                text.insert(below(text.size()), text.substr(at, length));
                break;
            case 3:
                text.insert(at, std::to_string(static_cast<int>(random())));
                break;
            default:
                text.resize(at + 1);
                break;
        }
    }
    return text;
}

TEST(DeviceProfileTest, TenThousandMutatedFilesAreReadOrRefusedWithALine)
{
    const std::filesystem::path folder = std::filesystem::path(ZR_RESOURCES) / "devices";
    const std::string texts[] = {FileText(folder / "ORL14.xml"), FileText(folder / "ORL13.xml"),
                                 FileText(folder / "EM3.xml")};
    std::mt19937 random(7);
    std::size_t refused = 0;
    for (int round = 0; round < 10000; ++round) {
        std::string error;
        const auto profile = DeviceProfile::LoadText(Mutated(texts[round % 3], random), "m.xml", error);
        if (profile != nullptr) {
            EXPECT_GT(profile->Variables()->Size(), 0u);
            EXPECT_FALSE(profile->Plan().empty());
            continue;
        }
        ++refused;
        EXPECT_EQ(error.rfind("m.xml:", 0), 0u) << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
    EXPECT_GT(refused, 5000u);
}

// The catalogue as it is shipped.
class ShippedProfilesTest : public testing::Test {
protected:
    ShippedProfilesTest() { m_catalogue.Load(std::filesystem::path(ZR_RESOURCES) / "devices", m_errors); }

    ProfileCatalogue m_catalogue;
    std::vector<std::string> m_errors;
};

TEST_F(ShippedProfilesTest, AllAreRead)
{
    EXPECT_EQ(m_errors, std::vector<std::string>());
    for (const wchar* type : {u"EM3", u"EM3T", u"NA3", u"IO8"})
        EXPECT_NE(m_catalogue.Find(type), nullptr);
}

TEST_F(ShippedProfilesTest, EveryOutputModelHasAnOutput)
{
    for (const wchar* type : {u"ORL1", u"ORL1N", u"ORL2", u"ORL3", u"ORL4", u"ORL5", u"ORL6", u"ORL7", u"ORL7N",
                              u"ORL8", u"ORL9", u"ORL10", u"ORL11", u"ORL12", u"ORL13", u"ORL14"}) {
        const auto profile = m_catalogue.Find(type);
        ASSERT_NE(profile, nullptr) << Utf16ToUtf8(ZRBasicString(type));
        EXPECT_TRUE((*profile->Variables())[0].output);
    }
}

TEST_F(ShippedProfilesTest, ACycleTakesFewRequests)
{
    const auto requests = [&](const wchar* type) { return m_catalogue.Find(type)->Plan().size(); };
    EXPECT_EQ(requests(u"EM3"), 1u);
    EXPECT_EQ(requests(u"NA3"), 2u);
    EXPECT_EQ(requests(u"IO8"), 3u);
    for (const auto& [type, profile] : m_catalogue.Profiles())
        EXPECT_LE(profile->Plan().size(), 3u);
}

TEST_F(ShippedProfilesTest, EveryVariableHasADescriptionAndEveryCounterAUnit)
{
    for (const auto& [type, profile] : m_catalogue.Profiles()) {
        for (std::size_t at = 0; at < profile->Variables()->Size(); ++at) {
            const VariableDescription& variable = (*profile->Variables())[at];
            EXPECT_FALSE(variable.description.IsEmpty());
            EXPECT_TRUE(variable.variableClass != VariableClass::Counter || variable.measureUnits != 0);
        }
    }
}

TEST_F(ShippedProfilesTest, EveryFilterThatAProfileNamesIsThere)
{
    for (const auto& [type, profile] : m_catalogue.Profiles()) {
        if (profile->DefaultFilter() == nullptr)
            continue;
        const std::string title = Utf16ToUtf8(*profile->DefaultFilter());
        FilterFile filter;
        std::string error;
        EXPECT_TRUE(filter.Load(std::filesystem::path(ZR_RESOURCES) / "filters" / (title + ".MVDF"), error)) << error;
        EXPECT_TRUE(filter.Calendar().has_value()) << title;
    }
}

TEST(ProfileCatalogueTest, AFileThatIsRefusedLeavesTheOthers)
{
    const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "catalogue";
    std::filesystem::create_directories(folder);
    const auto write = [&](const char* name, const std::string& text) { std::ofstream(folder / name) << text; };
    write("a.xml", ProfileText(Variable(kGood)));
    write("b.xml", "<broken");
    write("c.xml", ProfileText(Variable(kGood)));
    write("d.txt", "not a profile");
    ProfileCatalogue catalogue;
    std::vector<std::string> errors;
    catalogue.Load(folder, errors);
    std::filesystem::remove_all(folder);
    EXPECT_NE(catalogue.Find(u"T1"), nullptr);
    EXPECT_EQ(catalogue.Find(u"t1"), nullptr);
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_NE(errors[0].find("b.xml:1: "), std::string::npos) << errors[0];
    EXPECT_NE(errors[1].find("c.xml: type: \"T1\" is told by another file"), std::string::npos) << errors[1];
}

TEST(ProfileCatalogueTest, AFolderThatIsMissingIsTold)
{
    ProfileCatalogue catalogue;
    std::vector<std::string> errors;
    catalogue.Load("/nonexistent/devices", errors);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].rfind("/nonexistent/devices: ", 0), 0u);
}

}  // namespace
}  // namespace zr::modbus
