#include "siblings/driversupport/ZRDeviceDriver.h"

#include "siblings/driversupport/ZRDriverVariable.h"
#include "TestDevice.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace zr::test {

namespace {

// Position in the table of virtual operations, by the Itanium C++ ABI (2.3, pointers to member functions); a virtual
// destructor takes two entries there.
template <typename Member>
std::size_t EntryOf(Member member)
{
    std::uintptr_t words[2];
    static_assert(sizeof words == sizeof member);
    std::memcpy(words, &member, sizeof words);
    return (words[0] - 1) / sizeof(void*);
}

TEST(ZRDeviceDriverTest, SlotsStandInTheGivenOrder)
{
    using D = ZRDeviceDriver;
    EXPECT_EQ(EntryOf(&D::GetRuntimeClass), 0u);
    EXPECT_EQ(EntryOf(&D::Release), 5u + 1);
    EXPECT_EQ(EntryOf(&D::LockVariable), 9u + 1);
    EXPECT_EQ(EntryOf(&D::UnlockVariable), 10u + 1);
    EXPECT_EQ(EntryOf(&D::VariableInfo), 14u + 1);
    EXPECT_EQ(EntryOf(&D::LoadCfg), 18u + 1);
    EXPECT_EQ(EntryOf(&D::DriverType), 21u + 1);
    EXPECT_EQ(EntryOf(&D::ImageIndex), 23u + 1);
    EXPECT_EQ(EntryOf(&D::VariableNameBegin), 25u + 1);
    EXPECT_EQ(EntryOf(&D::DefaultFilter), 27u + 1);

    using C = ZRDeviceConnection;
    EXPECT_EQ(EntryOf(&C::CanDoTransaction), 1u + 1);
    EXPECT_EQ(EntryOf(&C::DoTransaction), 2u + 1);
    EXPECT_EQ(EntryOf(&C::Open), 3u + 1);
    EXPECT_EQ(EntryOf(&C::Close), 4u + 1);
    EXPECT_EQ(EntryOf(&C::LoadCfg), 5u + 1);
    EXPECT_EQ(EntryOf(&C::CanSetOutput), 6u + 1);
    EXPECT_EQ(EntryOf(&C::SetOutput), 7u + 1);

    using V = ZRVariable;
    EXPECT_EQ(EntryOf(&V::Lock), 1u + 1);
    EXPECT_EQ(EntryOf(&V::Unlock), 2u + 1);
    EXPECT_EQ(EntryOf(&V::IsLocked), 3u + 1);
    EXPECT_EQ(EntryOf(&V::Info), 4u + 1);
    EXPECT_EQ(EntryOf(&V::IsValid), 5u + 1);
    EXPECT_EQ(EntryOf(&V::Value), 6u + 1);
}

TEST(ZRDeviceDriverTest, NewDriverGivesNullForAnUnknownType)
{
    ZRDeviceDriver::ClearFactories();
    EXPECT_EQ(ZRDeviceDriver::NewDriver(u"X"), nullptr);
    ZRDeviceDriver::AddFactory([](const ZRBasicString& type) -> ZRDeviceDriver* {
        return type == u"ECHO" ? new EchoDriver(u"MADE", 1, std::chrono::seconds(1)) : nullptr;
    });
    EXPECT_EQ(ZRDeviceDriver::NewDriver(u"echo"), nullptr);
    const std::unique_ptr<ZRDeviceDriver> made(ZRDeviceDriver::NewDriver(u"ECHO"));
    EXPECT_NE(made, nullptr);
    ZRDeviceDriver::ClearFactories();
}

TEST(ZRDeviceDriverTest, LocksTheFirstLiveDriverOfANameAnyNumberOfTimes)
{
    auto first = std::make_unique<EchoDriver>(u"SAME", 1, std::chrono::seconds(1));
    EchoDriver second(u"SAME", 2, std::chrono::seconds(1));
    EXPECT_EQ(ZRDeviceDriver::LockDriver(u"SAME", false), first.get());
    EXPECT_EQ(ZRDeviceDriver::LockDriver(u"SAME", true), first.get());
    EXPECT_EQ(ZRDeviceDriver::LockDriver(u"same", false), nullptr);
    EXPECT_EQ(first->Locks(), 2);
    ZRDeviceDriver::UnlockDriver(first.get());
    first->Release();
    first->Release();
    EXPECT_EQ(first->Locks(), 0);
    first.reset();
    EXPECT_EQ(ZRDeviceDriver::LockDriver(u"SAME", false), &second);
    ZRDeviceDriver::UnlockDriver(nullptr);
    EXPECT_EQ(ZRDeviceDriver::LockDriver(nullptr, false), nullptr);
}

TEST(ZRDeviceDriverTest, WalksTheNamesOfItsVariables)
{
    EchoDriver driver(u"WALK", 1, std::chrono::seconds(1), 3);
    ZRDriverVariableNameIterator names;
    EXPECT_EQ(driver.VariableNameBegin(names), &names);
    std::vector<ZRBasicString> found;
    for (; !(names == ZRDeviceDriver::variableNameIteratorEnd); names++) {
        found.push_back(names.Name());
    }
    EXPECT_EQ(found, (std::vector<ZRBasicString>{u"V0", u"V1", u"V2"}));
    names++;
    EXPECT_TRUE(names == ZRDeviceDriver::variableNameIteratorEnd);
}

TEST(ZRDeviceDriverTest, DescribesAVariableByItsHandle)
{
    EchoDriver driver(u"INFO", 1, std::chrono::seconds(1), 2);
    VariableHandle handle = 99;
    ZRDeviceDriver::tagSVariableInfo info;
    EXPECT_FALSE(driver.LockVariable(u"v0", handle));
    EXPECT_EQ(handle, 99u);
    EXPECT_FALSE(driver.VariableInfo(handle, info));
    ASSERT_TRUE(driver.LockVariable(u"V0", handle));
    ASSERT_TRUE(driver.VariableInfo(handle, info));
    EXPECT_EQ(ZRBasicString(info.name), u"V0");
    EXPECT_EQ(info.flags, ZRDeviceDriver::kOutput);
    driver.UnlockVariable(handle);
    EXPECT_FALSE(driver.IsVariableValid(handle));
}

TEST(ZRDeviceDriverTest, HasNoDefaultFilterUnlessItsClassSaysSo)
{
    const EchoDriver driver(u"NO FILTER", 1, std::chrono::seconds(1));
    EXPECT_EQ(driver.DefaultFilter(), nullptr);
}

TEST(ZRDeviceDriverTest, AcceptsAnOutputAtItsLimitsAndNotBeyond)
{
    EchoDriver driver(u"LIMITS", 1, std::chrono::seconds(1), 2);
    VariableHandle output = 0;
    VariableHandle input = 0;
    ASSERT_TRUE(driver.LockVariable(u"V0", output) && driver.LockVariable(u"V1", input));
    EXPECT_TRUE(driver.SetOutput(output, 0.0));
    EXPECT_TRUE(driver.SetOutput(output, 200.0));
    EXPECT_FALSE(driver.SetOutput(output, 200.5));
    EXPECT_FALSE(driver.SetOutput(output, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(driver.SetOutput(input, 1.0));
}

TEST(ZRDeviceConnectionTest, ABuriedConnectionIsHarmlessToFollowAndToDelete)
{
    auto* made = new ZRUDPDeviceConnection;
    made->name = u"A NAME LONG ENOUGH TO BE ON THE HEAP";
    ZRDeviceConnection* entry = made;
    ZRDeviceConnection::Bury(entry);
    EXPECT_TRUE(entry->name.IsEmpty());
    EXPECT_FALSE(entry->Open());
    EXPECT_FALSE(entry->CanDoTransaction());
    entry->Close();
    ZRDeviceConnection::Bury(entry);
    delete entry;
    ZRDeviceConnection::Bury(nullptr);
}

}  // namespace

}  // namespace zr::test
