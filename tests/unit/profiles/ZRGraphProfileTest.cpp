#include "profiles/ZRGraphProfile.h"

#include <gtest/gtest.h>
#include <limits>
#include <type_traits>

namespace {

using Record = ZRGraphProfile::CVariableProfile;

static_assert(std::has_virtual_destructor_v<ZRGraphProfile>);
static_assert(!std::is_assignable_v<ZRGraphProfile&, const ZRGraphProfile&>);

// A record whose every field differs from its default and from every other record made so.
Record MakeRecord(const ZRBasicString& name, int number)
{
    return Record(name, u"title of " + name, number, number + 1, static_cast<unsigned long>(number) + 2, number + 3,
                  number + 4, number + 5, number + 6, number + 7, number + 0.5, number + 0.25, number + 8);
}

void ExpectRecord(const Record& record, const ZRBasicString& name, int number)
{
    EXPECT_EQ(record.Name, name);
    EXPECT_EQ(record.Title, u"title of " + name);
    EXPECT_EQ(record.Zone, number);
    EXPECT_EQ(record.LineType, number + 1);
    EXPECT_EQ(record.Color, static_cast<unsigned long>(number) + 2);
    EXPECT_EQ(record.MeasureUnits, number + 3);
    EXPECT_EQ(record.ValueExponent, number + 4);
    EXPECT_EQ(record.Decimals, number + 5);
    EXPECT_EQ(record.InfoCode, number + 6);
    EXPECT_EQ(record.Index, number + 7);
    EXPECT_EQ(record.Minimum, number + 0.5);
    EXPECT_EQ(record.Maximum, number + 0.25);
    EXPECT_EQ(record.UnitsExponent, number + 8);
}

class ZRGraphProfileTest : public testing::Test {
protected:
    void SetUp() override
    {
        profile.AddVariable(MakeRecord(u"M1.U1", 100));
        profile.AddVariable(MakeRecord(u"M1.U2", 200));
        profile.AddVariable(MakeRecord(u"M1.U3", 300));
    }

    ZRGraphProfile profile;
};

TEST_F(ZRGraphProfileTest, ANewRecordHasItsDefaults)
{
    const Record record;
    EXPECT_TRUE(record.Title.IsEmpty());
    EXPECT_TRUE(record.Name.IsEmpty());
    EXPECT_EQ(record.Zone, -1);
    EXPECT_EQ(record.LineType, 0);
    EXPECT_EQ(record.MeasureUnits, 0);
    EXPECT_EQ(record.ValueExponent, 0);
    EXPECT_EQ(record.Decimals, 0);
    EXPECT_EQ(record.InfoCode, 0);
    EXPECT_EQ(record.Index, 0);
    EXPECT_EQ(record.UnitsExponent, 0);
    EXPECT_EQ(record.Minimum, 2.2250738585072014e-308);
    EXPECT_EQ(record.Maximum, 1.7976931348623157e308);
    EXPECT_EQ(record.Color, 0u);
}

TEST_F(ZRGraphProfileTest, ArgumentsOfAddVariableReachTheirFields)
{
    ZRGraphProfile other;
    other.AddVariable(u"name", u"title", 1, 2, 3, 4, 5, 6, 7, 8, 9.5, 10.5, 11);
    const Record& record = other[0];
    EXPECT_EQ(record.Name, u"name");
    EXPECT_EQ(record.Title, u"title");
    EXPECT_EQ(record.Zone, 1);
    EXPECT_EQ(record.LineType, 2);
    EXPECT_EQ(record.Color, 3u);
    EXPECT_EQ(record.MeasureUnits, 4);
    EXPECT_EQ(record.ValueExponent, 5);
    EXPECT_EQ(record.Decimals, 6);
    EXPECT_EQ(record.InfoCode, 7);
    EXPECT_EQ(record.Index, 8);
    EXPECT_EQ(record.Minimum, 9.5);
    EXPECT_EQ(record.Maximum, 10.5);
    EXPECT_EQ(record.UnitsExponent, 11);
}

TEST_F(ZRGraphProfileTest, KeepsTheOrderOfAddition)
{
    ASSERT_EQ(profile.NVars(), 3u);
    ExpectRecord(profile[0], u"M1.U1", 100);
    ExpectRecord(profile[1], u"M1.U2", 200);
    ExpectRecord(profile[2], u"M1.U3", 300);
}

TEST_F(ZRGraphProfileTest, AddVariableCopiesTheRecord)
{
    Record record = MakeRecord(u"M1.F", 400);
    profile.AddVariable(record);
    record.Name = u"changed";
    record.Zone = 0;
    ExpectRecord(profile[3], u"M1.F", 400);
}

TEST_F(ZRGraphProfileTest, TheSameNameTwiceGivesTwoRecords)
{
    profile.AddVariable(MakeRecord(u"M1.U1", 100));
    EXPECT_EQ(profile.NVars(), 4u);
    EXPECT_EQ(profile[0].Name, profile[3].Name);
    EXPECT_NE(&profile[0], &profile[3]);
}

TEST_F(ZRGraphProfileTest, AssignmentIsADeepCopyInOrder)
{
    ZRGraphProfile copy;
    copy.AddVariable(MakeRecord(u"old", 1));
    ZRGraphProfile& result = copy = profile;
    EXPECT_EQ(&result, &copy);
    profile[1].Name = u"changed";
    ASSERT_EQ(copy.NVars(), 3u);
    ExpectRecord(copy[0], u"M1.U1", 100);
    ExpectRecord(copy[1], u"M1.U2", 200);
    ExpectRecord(copy[2], u"M1.U3", 300);
}

TEST_F(ZRGraphProfileTest, AssignedToItselfItEndsUpEmpty)
{
    ZRGraphProfile& same = profile;
    profile = same;
    EXPECT_EQ(profile.NVars(), 0u);
}

TEST_F(ZRGraphProfileTest, AssignedFromAnEmptyProfileItIsEmpty)
{
    ZRGraphProfile empty;
    profile = empty;
    EXPECT_EQ(profile.NVars(), 0u);
}

TEST_F(ZRGraphProfileTest, TheCopyConstructorSharesTheRecords)
{
    ZRGraphProfile copy(profile);
    ASSERT_EQ(copy.NVars(), 3u);
    EXPECT_EQ(&copy[0], &profile[0]);
    EXPECT_EQ(&copy[2], &profile[2]);
    // Both would free them: the copy lets go of what is the source's.
    for (auto record = copy.VarsBegin(); record != copy.VarsEnd(); ++record) {
        *record = nullptr;
    }
}

TEST_F(ZRGraphProfileTest, DeleteVariableTakesOutOneRecord)
{
    EXPECT_TRUE(profile.DeleteVariable(1));
    ASSERT_EQ(profile.NVars(), 2u);
    ExpectRecord(profile[0], u"M1.U1", 100);
    ExpectRecord(profile[1], u"M1.U3", 300);
}

TEST_F(ZRGraphProfileTest, DeleteVariableRefusesWhatNamesNoRecord)
{
    EXPECT_FALSE(profile.DeleteVariable(static_cast<int>(profile.NVars())));
    EXPECT_FALSE(profile.DeleteVariable(-1));
    EXPECT_FALSE(profile.DeleteVariable(std::numeric_limits<int>::min()));
    EXPECT_FALSE(profile.DeleteVariable(std::numeric_limits<int>::max()));
    EXPECT_EQ(profile.NVars(), 3u);
}

TEST_F(ZRGraphProfileTest, DeleteAllEmptiesIt)
{
    profile.DeleteAll();
    EXPECT_EQ(profile.NVars(), 0u);
    EXPECT_EQ(profile.VarsBegin(), profile.VarsEnd());
    EXPECT_FALSE(profile.DeleteVariable(0));
}

TEST_F(ZRGraphProfileTest, BeyondTheEndThereIsADefaultRecordOfNoList)
{
    Record* const beyond = &profile[profile.NVars()];
    EXPECT_EQ(beyond->Zone, -1);
    EXPECT_TRUE(beyond->Name.IsEmpty());
    EXPECT_EQ(profile.NVars(), 3u);
    Record* const negative = &profile[static_cast<unsigned int>(-1)];
    EXPECT_EQ(negative->Zone, -1);
    EXPECT_NE(negative, beyond);
    // The profile hands them out for good; freed here, so that the leak check goes on to watch all else.
    delete beyond;
    delete negative;
}

TEST_F(ZRGraphProfileTest, SwapExchangesEveryFieldAndMovesNoRecord)
{
    const Record* const first = &profile[0];
    const Record* const last = &profile[2];
    EXPECT_TRUE(profile.Swap(0, 2));
    EXPECT_EQ(&profile[0], first);
    EXPECT_EQ(&profile[2], last);
    ExpectRecord(*first, u"M1.U3", 300);
    ExpectRecord(*last, u"M1.U1", 100);
    ExpectRecord(profile[1], u"M1.U2", 200);
}

TEST_F(ZRGraphProfileTest, SwapOfARecordWithItselfLeavesItAsItWas)
{
    EXPECT_TRUE(profile.Swap(1, 1));
    ExpectRecord(profile[1], u"M1.U2", 200);
}

TEST_F(ZRGraphProfileTest, SwapRefusesWhatNamesNoRecord)
{
    const int count = static_cast<int>(profile.NVars());
    EXPECT_FALSE(profile.Swap(0, count));
    EXPECT_FALSE(profile.Swap(count, 0));
    EXPECT_FALSE(profile.Swap(-1, 0));
    EXPECT_FALSE(profile.Swap(0, -1));
    ExpectRecord(profile[0], u"M1.U1", 100);
}

TEST_F(ZRGraphProfileTest, IteratorsRunThroughTheRecords)
{
    unsigned int i = 0;
    for (auto record = profile.VarsBegin(); record != profile.VarsEnd(); ++record, ++i) {
        EXPECT_EQ(*record, &profile[i]);
    }
    EXPECT_EQ(i, 3u);
    const ZRGraphProfile& unchanging = profile;
    EXPECT_EQ((*unchanging.VarsBegin())->Name, u"M1.U1");
    EXPECT_EQ(std::distance(unchanging.VarsBegin(), unchanging.VarsEnd()), 3);
}

}  // namespace
