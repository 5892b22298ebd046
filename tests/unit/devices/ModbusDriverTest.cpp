#include "devices/modbus/ModbusDriver.h"

#include "AnsweringDevice.h"
#include "devices/modbus/ModbusDrivers.h"
#include "platform/Clock.h"
#include "ProfileText.h"
#include "siblings/tools/Utf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace zr::modbus {
namespace {
using namespace test;
using Outcome = ZRDeviceTransaction::Outcome;

const char* const kVariables = R"(
  <variable name="U" description="Voltage" function="4" register="0" type="u16" registerExponent="-1" unit="V"/>
  <variable name="T" description="Float" function="4" register="1" type="f32"/>
  <variable name="SERIAL" description="Serial" function="3" register="10" type="text" length="2"/>
  <variable name="LEVEL" description="Level" function="3" register="20" type="u16" write="6" registerExponent="-1"
            minimum="0" maximum="100"/>
  <variable name="POINT" description="Set point" function="3" register="22" type="f32" words="little" write="16"/>
  <variable name="K" description="Relay" function="1" register="5" write="5">
    <value number="0" text="Open"/><value number="1" text="Closed"/>
  </variable>
  <variable name="L" description="Lamp" function="1" register="6" write="15"/>
)";

class TurnedClock : public Clock {
public:
    std::chrono::steady_clock::time_point now{std::chrono::hours(1)};
    [[nodiscard]] std::chrono::steady_clock::time_point Steady() const override { return now; }
    [[nodiscard]] std::chrono::system_clock::time_point Utc() const override { return {}; }
    void Sleep(std::chrono::milliseconds duration) override { now += duration; }
};

class ModbusDriverTest : public testing::Test {
protected:
    ModbusDriverTest()
    {
        SetClock(&m_clock);
        TakeNotices();
        MakeDriver("");
        Load({{u"Name", u"D1"}, {u"Unit", u"7"}});
    }
    ~ModbusDriverTest() override
    {
        m_driver.reset();
        SetClock(nullptr);
        TakeNotices();
    }

    void MakeDriver(const std::string& head)
    {
        std::string error;
        auto profile = Profile(ProfileText(kVariables, head), error);
        ASSERT_NE(profile, nullptr) << error;
        m_driver = std::make_unique<ModbusDriver>(std::move(profile));
    }

    bool Load(const std::vector<std::pair<const wchar*, const wchar*>>& values)
    {
        XmlDocument document;
        document.Create(u"Device");
        for (const auto& [name, value] : values)
            document.root->SetValue(name, value);
        return m_driver->LoadCfg(*document.root);
    }

    std::string LoadErrorOf(const std::vector<std::pair<const wchar*, const wchar*>>& values)
    {
        EXPECT_FALSE(Load(values));
        return Utf16ToUtf8(m_driver->LoadError());
    }

    VariableHandle Handle(const wchar* variable)
    {
        VariableHandle handle = 0;
        EXPECT_TRUE(m_driver->LockVariable(variable, handle));
        return handle;
    }

    bool Valid(const wchar* variable) { return m_driver->IsVariableValid(Handle(variable)); }
    tagSVariableValue Value(const wchar* variable)
    {
        tagSVariableValue value;
        m_driver->VariableValue(Handle(variable), value);
        return value;
    }

    // "TYPE:DETAIL" of what was posted since the last call.
    static std::vector<std::string> Posted()
    {
        std::vector<std::string> posted;
        for (const DeviceNotice& notice : TakeNotices()) {
            EXPECT_EQ(notice.name, u"D1");
            posted.push_back(std::to_string(static_cast<int>(notice.type)) + ":" + Utf16ToUtf8(notice.detail));
        }
        return posted;
    }

    TurnedClock m_clock;
    AnsweringDevice m_device;
    std::unique_ptr<ModbusDriver> m_driver;
};

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(ModbusDriverTest, LoadCfgTakesWhatTheNodeTells)
{
    MakeDriver(R"(image="meter" filter="DAYS")");
    EXPECT_TRUE(
        Load({{u"Name", u"Cellar"}, {u"Unit", u"247"}, {u"Period", u"2.5"}, {u"Description", u"In the cellar"}}));
    EXPECT_EQ(m_driver->name, u"Cellar");
    EXPECT_EQ(m_driver->Unit(), 247);
    EXPECT_EQ(m_driver->Period(), std::chrono::milliseconds(2500));
    EXPECT_EQ(ZRBasicString(m_driver->Description()), u"In the cellar");
    EXPECT_EQ(ZRBasicString(m_driver->DriverType()), u"T1");
    EXPECT_EQ(ZRBasicString(m_driver->ImageName()), u"meter");
    EXPECT_EQ(ZRBasicString(m_driver->DefaultFilter()), u"DAYS");
    EXPECT_EQ(m_driver->GetRuntimeClass(), &ModbusDriver::runtimeClass);
    EXPECT_EQ(m_driver->VariableCount(), 7u);
    EXPECT_EQ(ZRDeviceDriver::LockDriver(u"Cellar", false), m_driver.get());
}

TEST_F(ModbusDriverTest, LoadCfgHasDefaults)
{
    MakeDriver(R"(period="400")");
    EXPECT_TRUE(Load({{u"Name", u"D2"}}));
    EXPECT_EQ(m_driver->Unit(), 1);
    EXPECT_EQ(m_driver->Period(), std::chrono::milliseconds(400));
    EXPECT_EQ(ZRBasicString(m_driver->Description()), u"Test device");
    EXPECT_EQ(m_driver->DefaultFilter(), nullptr);
}

TEST_F(ModbusDriverTest, APeriodOfZeroIsContinuousAndATinyOneIsNot)
{
    EXPECT_TRUE(Load({{u"Name", u"D1"}, {u"Period", u"0"}}));
    EXPECT_EQ(m_driver->Period(), std::chrono::milliseconds(0));
    EXPECT_TRUE(Load({{u"Name", u"D1"}, {u"Period", u"0.0001"}}));
    EXPECT_EQ(m_driver->Period(), std::chrono::milliseconds(1));
}

TEST_F(ModbusDriverTest, ABadValueIsNamedAndNothingIsLoaded)
{
    EXPECT_EQ(LoadErrorOf({}), "Name: missing");
    EXPECT_THAT(LoadErrorOf({{u"Name", u"a.b"}}), HasSubstr("Name: \"a.b\" is not a name"));
    EXPECT_THAT(LoadErrorOf({{u"Name", u"X"}, {u"Unit", u"0"}}), HasSubstr("Unit: \"0\" is not a whole number"));
    EXPECT_THAT(LoadErrorOf({{u"Name", u"X"}, {u"Unit", u"248"}}), HasSubstr("Unit: \"248\""));
    EXPECT_THAT(LoadErrorOf({{u"Name", u"X"}, {u"Period", u"1,5"}}), HasSubstr("Period: \"1,5\" is not a number"));
    EXPECT_THAT(LoadErrorOf({{u"Name", u"X"}, {u"Period", u"-1"}}), HasSubstr("Period: \"-1\""));
    EXPECT_EQ(m_driver->name, u"D1");
    EXPECT_EQ(m_driver->Unit(), 7);
    EXPECT_EQ(ZRDeviceDriver::LockDriver(u"X", false), nullptr);
}

TEST_F(ModbusDriverTest, ACycleIsTheRequestsOfThePlanAndBringsTheValues)
{
    m_device.registers = {{0, 2301}, {1, 0x4366}, {2, 0}, {10, 0x4B33}, {11, 0x2D31}, {20, 255}, {22, 0}, {23, 0x3F80}};
    m_device.bits = {{5, true}};
    EXPECT_EQ(m_device.Cycle(*m_driver), static_cast<int>(m_driver->Profile().Plan().size()));
    for (const Request& request : m_device.asked)
        EXPECT_EQ(request.unit, 7);
    EXPECT_EQ(Value(u"U").number, 230.1);
    EXPECT_EQ(Value(u"T").number, 230.0);
    EXPECT_EQ(Value(u"SERIAL").type, tagSVariableValue::kText);
    EXPECT_EQ(Value(u"SERIAL").text, u"K3-1");
    EXPECT_EQ(Value(u"LEVEL").number, 25.5);
    EXPECT_EQ(Value(u"POINT").number, 1.0);
    EXPECT_EQ(Value(u"K").type, tagSVariableValue::kNumber);
    EXPECT_EQ(Value(u"K").number, 1.0);
    EXPECT_EQ(Value(u"L").number, 0.0);
    EXPECT_TRUE(Valid(u"K"));
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(ModbusDriverTest, AFloatThatIsNoNumberIsInvalidAloneUntilItIsOneAgain)
{
    m_device.registers = {{0, 2301}, {1, 0x7FC0}, {2, 0}};
    m_device.Cycle(*m_driver);
    EXPECT_FALSE(Valid(u"T"));
    EXPECT_TRUE(Valid(u"U"));
    m_device.registers[1] = 0x4366;
    m_device.Cycle(*m_driver);
    EXPECT_TRUE(Valid(u"T"));
}

TEST_F(ModbusDriverTest, ARefusedRequestIsPostedOnceAndTheOthersGoOn)
{
    m_device.Cycle(*m_driver);
    const auto refuseFirst = [&] {
        m_driver->BeginCycle();
        m_device.refuse = Exception::IllegalDataAddress;
        m_device.Serve(*m_driver);
        m_device.refuse = Exception::None;
        while (m_device.Serve(*m_driver)) {
        }
    };
    refuseFirst();
    EXPECT_FALSE(Valid(u"K"));
    EXPECT_FALSE(Valid(u"L"));
    EXPECT_TRUE(Valid(u"U"));
    EXPECT_THAT(Posted(), ElementsAre("3:(function 1, bits 5 to 6: exception 2, illegal data address)"));
    refuseFirst();
    EXPECT_THAT(Posted(), IsEmpty());
    m_device.Cycle(*m_driver);
    EXPECT_TRUE(Valid(u"K"));
    refuseFirst();
    EXPECT_EQ(Posted().size(), 1u);
}

TEST_F(ModbusDriverTest, ARequestWithoutAnswerLeavesTheValuesAndTheCycleGoesOn)
{
    m_device.Cycle(*m_driver);
    const auto requests = m_device.asked.size();
    m_device.outcome = Outcome::TimedOut;
    m_device.Cycle(*m_driver);
    EXPECT_EQ(m_device.asked.size(), 2 * requests);
    EXPECT_TRUE(Valid(u"U"));
}

TEST_F(ModbusDriverTest, AnOutputGoesAheadAndIsReadBack)
{
    m_device.Cycle(*m_driver);
    m_device.asked.clear();
    m_driver->BeginCycle();
    EXPECT_TRUE(m_driver->SetOutput(Handle(u"K"), 1.0));
    EXPECT_TRUE(m_driver->TakeServiceCall());
    m_device.Serve(*m_driver);
    EXPECT_EQ(m_device.asked[0].function, Function::WriteSingleCoil);
    EXPECT_EQ(m_device.asked[0].first, 5);
    EXPECT_TRUE(m_device.bits[5]);
    EXPECT_THAT(Posted(), ElementsAre("264:K = Closed"));
    EXPECT_TRUE(m_driver->TakeServiceCall());
    m_device.Serve(*m_driver);
    EXPECT_EQ(m_device.asked[1].function, Function::ReadCoils);
    EXPECT_EQ(Value(u"K").number, 1.0);
}

TEST_F(ModbusDriverTest, EveryWriteFunctionSetsItsOutput)
{
    EXPECT_TRUE(m_driver->SetOutput(Handle(u"LEVEL"), 25.5));
    EXPECT_TRUE(m_driver->SetOutput(Handle(u"POINT"), 1.0));
    EXPECT_TRUE(m_driver->SetOutput(Handle(u"L"), 1.0));
    m_device.Cycle(*m_driver);
    EXPECT_EQ(m_device.asked[0].function, Function::WriteSingleRegister);
    EXPECT_EQ(m_device.asked[1].function, Function::WriteMultipleRegisters);
    EXPECT_EQ(m_device.asked[2].function, Function::WriteMultipleCoils);
    EXPECT_EQ(m_device.registers[20], 255);
    EXPECT_EQ(m_device.registers[22], 0x0000);
    EXPECT_EQ(m_device.registers[23], 0x3F80);
    EXPECT_TRUE(m_device.bits[6]);
    EXPECT_THAT(Posted(), ElementsAre("264:LEVEL = 25.5", "264:POINT = 1", "264:L = 1"));
}

TEST_F(ModbusDriverTest, WhatIsNoOutputOrOutOfRangeIsNotTaken)
{
    EXPECT_FALSE(m_driver->SetOutput(Handle(u"U"), 1.0));
    EXPECT_FALSE(m_driver->SetOutput(Handle(u"LEVEL"), 100.1));
    EXPECT_FALSE(m_driver->SetOutput(Handle(u"LEVEL"), -0.1));
    EXPECT_FALSE(m_driver->SetOutput(Handle(u"K"), 2.0));
    EXPECT_FALSE(m_driver->SetOutput(Handle(u"L"), 0.5));
    EXPECT_FALSE(m_driver->SetOutput(Handle(u"POINT"), 1e39));
    EXPECT_FALSE(m_driver->SetOutput(0, 1.0));
    EXPECT_FALSE(m_driver->TakeServiceCall());
}

TEST_F(ModbusDriverTest, ARefusedOutputIsPosted)
{
    m_driver->SetOutput(Handle(u"K"), 1.0);
    m_device.refuse = Exception::ServerDeviceFailure;
    m_device.Serve(*m_driver);
    EXPECT_THAT(Posted(), ElementsAre("16:K = Closed"));
}

TEST_F(ModbusDriverTest, AnUnansweredOutputIsPostedAndNotRepeated)
{
    for (const Outcome outcome : {Outcome::TimedOut, Outcome::NoLine, Outcome::Cancelled}) {
        m_driver->SetOutput(Handle(u"K"), 0.0);
        m_device.outcome = outcome;
        m_device.Serve(*m_driver);
        EXPECT_THAT(Posted(), ElementsAre("17:K = Open"));
    }
    m_device.asked.clear();
    m_device.Serve(*m_driver);
    EXPECT_TRUE(IsReadFunction(m_device.asked[0].function));
}

TEST_F(ModbusDriverTest, AnOutputAskedForTwiceIsSetOnceToTheNewerValue)
{
    m_driver->SetOutput(Handle(u"LEVEL"), 1.0);
    m_driver->SetOutput(Handle(u"LEVEL"), 2.0);
    m_device.Cycle(*m_driver);
    EXPECT_EQ(m_device.registers[20], 20);
    EXPECT_THAT(Posted(), ElementsAre("264:LEVEL = 2.0"));
}

TEST_F(ModbusDriverTest, AnOldWishIsGivenUpAndNotCarriedOut)
{
    m_driver->SetOutput(Handle(u"K"), 1.0);
    m_clock.now += ModbusDriver::kOutputLife + std::chrono::milliseconds(1);
    m_device.Serve(*m_driver, m_driver->ProbeTransaction());
    EXPECT_TRUE(IsReadFunction(m_device.asked[0].function));
    EXPECT_THAT(Posted(), ElementsAre("17:K = Closed"));
    m_device.Cycle(*m_driver);
    EXPECT_FALSE(m_device.bits[5]);
}

TEST_F(ModbusDriverTest, AProbeIsTheFirstReadAndNeverAnOutput)
{
    m_driver->SetOutput(Handle(u"K"), 1.0);
    m_device.Serve(*m_driver, m_driver->ProbeTransaction());
    EXPECT_EQ(m_device.asked[0].function, Function::ReadCoils);
    m_device.Serve(*m_driver);
    EXPECT_EQ(m_device.asked[1].function, Function::WriteSingleCoil);
}

TEST_F(ModbusDriverTest, ValueInfoHasTheNamedValuesAndTheRange)
{
    ZRDeviceDriver::tagSVariableValueInfo info;
    ASSERT_TRUE(m_driver->VariableValueInfo(Handle(u"K"), info));
    EXPECT_THAT(info.values, ElementsAre(0, 1));
    EXPECT_EQ(info.valueTexts[1], u"Closed");
    ASSERT_TRUE(m_driver->VariableValueInfo(Handle(u"LEVEL"), info));
    EXPECT_EQ(info.maximum, 100.0);
    EXPECT_EQ(info.decimals, 1);
    EXPECT_TRUE(info.values.empty());
}

TEST_F(ModbusDriverTest, OverTcpEveryRequestHasItsOwnNumber)
{
    MakeDriver(R"(framing="tcp")");
    Load({{u"Name", u"D1"}});
    m_device = AnsweringDevice(Framing::Tcp);
    m_device.registers = {{0, 2301}};
    ASSERT_GT(m_device.Cycle(*m_driver), 1);
    EXPECT_NE(m_device.asked[0].transaction, m_device.asked[1].transaction);
    EXPECT_EQ(Value(u"U").number, 230.1);
    m_driver->BeginCycle();
    EXPECT_TRUE(m_driver->NextTransaction()->repliesAreNumbered);
}

TEST(ModbusDriversTest, RegisteredProfilesMakeDriversOfTheirTypes)
{
    std::vector<std::string> errors;
    RegisterDrivers(std::filesystem::path(ZR_RESOURCES) / "devices", errors);
    EXPECT_THAT(errors, IsEmpty());
    const std::unique_ptr<ZRDeviceDriver> driver(ZRDeviceDriver::NewDriver(u"ORL7N"));
    ASSERT_NE(driver, nullptr);
    EXPECT_EQ(ZRBasicString(driver->DriverType()), u"ORL7N");
    EXPECT_EQ(ZRDeviceDriver::DriverImages()[static_cast<std::size_t>(driver->ImageIndex())], u"relay");
    EXPECT_EQ(ZRDeviceDriver::NewDriver(u"orl7n"), nullptr);
    EXPECT_EQ(ZRDeviceDriver::NewDriver(u""), nullptr);
    EXPECT_NE(FindProfile(u"EM3"), nullptr);
    EXPECT_EQ(FindProfile(u"EM9"), nullptr);
    ZRDeviceDriver::ClearFactories();
}

}  // namespace
}  // namespace zr::modbus
