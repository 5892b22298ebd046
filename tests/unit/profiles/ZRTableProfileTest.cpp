#include "profiles/ZRTableProfile.h"

#include <gtest/gtest.h>
#include <limits>
#include <type_traits>

namespace {

using Record = ZRTableProfile::CVariableProfile;

static_assert(std::has_virtual_destructor_v<ZRTableProfile>);
static_assert(!std::is_assignable_v<ZRTableProfile&, const ZRTableProfile&>);

// A record whose every field differs from its default and from every other record made so.
Record MakeRecord(const ZRBasicString& name, int number)
{
    return Record(name, u"title of " + name, number, number + 1, number + 2, number + 3, number + 4, number + 5);
}

void ExpectRecord(const Record& record, const ZRBasicString& name, int number)
{
    EXPECT_EQ(record.Name, name);
    EXPECT_EQ(record.Title, u"title of " + name);
    EXPECT_EQ(record.Index, number);
    EXPECT_EQ(record.MeasureUnits, number + 1);
    EXPECT_EQ(record.ValueExponent, number + 2);
    EXPECT_EQ(record.Decimals, number + 3);
    EXPECT_EQ(record.Width, number + 4);
    EXPECT_EQ(record.UnitsExponent, number + 5);
}

class ZRTableProfileTest : public testing::Test {
protected:
    void SetUp() override
    {
        profile.AddVariable(MakeRecord(u"M1.U1", 100));
        profile.AddVariable(MakeRecord(u"M1.U2", 200));
        profile.AddVariable(MakeRecord(u"M1.U3", 300));
    }

    ZRTableProfile profile;
};

TEST_F(ZRTableProfileTest, ANewRecordHasItsDefaults)
{
    const Record record;
    EXPECT_TRUE(record.Title.IsEmpty());
    EXPECT_TRUE(record.Name.IsEmpty());
    EXPECT_EQ(record.Index, -1);
    EXPECT_EQ(record.MeasureUnits, 0);
    EXPECT_EQ(record.ValueExponent, 0);
    EXPECT_EQ(record.Decimals, 0);
    EXPECT_EQ(record.Width, 0);
    EXPECT_EQ(record.UnitsExponent, 0);
}

TEST_F(ZRTableProfileTest, ArgumentsOfAddVariableReachTheirFields)
{
    ZRTableProfile other;
    other.AddVariable(u"name", u"title", 1, 2, 3, 4, 5, 6);
    const Record& record = other[0];
    EXPECT_EQ(record.Name, u"name");
    EXPECT_EQ(record.Title, u"title");
    EXPECT_EQ(record.Index, 1);
    EXPECT_EQ(record.MeasureUnits, 2);
    EXPECT_EQ(record.ValueExponent, 3);
    EXPECT_EQ(record.Decimals, 4);
    EXPECT_EQ(record.Width, 5);
    EXPECT_EQ(record.UnitsExponent, 6);
}

TEST_F(ZRTableProfileTest, KeepsTheOrderOfAddition)
{
    ASSERT_EQ(profile.NVars(), 3u);
    ExpectRecord(profile[0], u"M1.U1", 100);
    ExpectRecord(profile[1], u"M1.U2", 200);
    ExpectRecord(profile[2], u"M1.U3", 300);
}

TEST_F(ZRTableProfileTest, AddVariableCopiesTheRecord)
{
    Record record = MakeRecord(u"M1.F", 400);
    profile.AddVariable(record);
    record.Name = u"changed";
    record.Width = 0;
    ExpectRecord(profile[3], u"M1.F", 400);
}

TEST_F(ZRTableProfileTest, TheSameNameTwiceGivesTwoRecords)
{
    profile.AddVariable(MakeRecord(u"M1.U1", 100));
    EXPECT_EQ(profile.NVars(), 4u);
    EXPECT_EQ(profile[0].Name, profile[3].Name);
    EXPECT_NE(&profile[0], &profile[3]);
}

TEST_F(ZRTableProfileTest, AssignmentIsADeepCopyInOrder)
{
    ZRTableProfile copy;
    copy.AddVariable(MakeRecord(u"old", 1));
    ZRTableProfile& result = copy = profile;
    EXPECT_EQ(&result, &copy);
    profile[1].Name = u"changed";
    ASSERT_EQ(copy.NVars(), 3u);
    ExpectRecord(copy[0], u"M1.U1", 100);
    ExpectRecord(copy[1], u"M1.U2", 200);
    ExpectRecord(copy[2], u"M1.U3", 300);
}

TEST_F(ZRTableProfileTest, AssignedToItselfItEndsUpEmpty)
{
    ZRTableProfile& same = profile;
    profile = same;
    EXPECT_EQ(profile.NVars(), 0u);
}

TEST_F(ZRTableProfileTest, AssignedFromAnEmptyProfileItIsEmpty)
{
    ZRTableProfile empty;
    profile = empty;
    EXPECT_EQ(profile.NVars(), 0u);
}

TEST_F(ZRTableProfileTest, TheCopyConstructorSharesTheRecords)
{
    ZRTableProfile copy(profile);
    ASSERT_EQ(copy.NVars(), 3u);
    EXPECT_EQ(&copy[0], &profile[0]);
    EXPECT_EQ(&copy[2], &profile[2]);
    // Both would free them: the copy lets go of what is the source's.
    for (auto record = copy.VarsBegin(); record != copy.VarsEnd(); ++record) {
        *record = nullptr;
    }
}

TEST_F(ZRTableProfileTest, DeleteVariableTakesOutOneRecord)
{
    EXPECT_TRUE(profile.DeleteVariable(1));
    ASSERT_EQ(profile.NVars(), 2u);
    ExpectRecord(profile[0], u"M1.U1", 100);
    ExpectRecord(profile[1], u"M1.U3", 300);
}

TEST_F(ZRTableProfileTest, DeleteVariableRefusesWhatNamesNoRecord)
{
    EXPECT_FALSE(profile.DeleteVariable(static_cast<int>(profile.NVars())));
    EXPECT_FALSE(profile.DeleteVariable(-1));
    EXPECT_FALSE(profile.DeleteVariable(std::numeric_limits<int>::max()));
    EXPECT_EQ(profile.NVars(), 3u);
}

TEST_F(ZRTableProfileTest, DeleteAllEmptiesIt)
{
    profile.DeleteAll();
    EXPECT_EQ(profile.NVars(), 0u);
    EXPECT_EQ(profile.VarsBegin(), profile.VarsEnd());
    EXPECT_FALSE(profile.DeleteVariable(0));
}

TEST_F(ZRTableProfileTest, BeyondTheEndThereIsADefaultRecordOfNoList)
{
    Record* const beyond = &profile[profile.NVars()];
    EXPECT_EQ(beyond->Index, -1);
    EXPECT_TRUE(beyond->Name.IsEmpty());
    EXPECT_EQ(profile.NVars(), 3u);
    // The profile hands it out for good; freed here, so that the leak check goes on to watch all else.
    delete beyond;
}

TEST_F(ZRTableProfileTest, SwapTakesTheIndexAlongWithTheVariable)
{
    const int old = profile[1].Index;
    EXPECT_TRUE(profile.Swap(0, 1));
    EXPECT_EQ(profile[0].Index, old);
}

TEST_F(ZRTableProfileTest, SwapExchangesEveryFieldAndMovesNoRecord)
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

TEST_F(ZRTableProfileTest, SwapOfARecordWithItselfLeavesItAsItWas)
{
    EXPECT_TRUE(profile.Swap(1, 1));
    ExpectRecord(profile[1], u"M1.U2", 200);
}

TEST_F(ZRTableProfileTest, SwapRefusesWhatNamesNoRecord)
{
    const int count = static_cast<int>(profile.NVars());
    EXPECT_FALSE(profile.Swap(0, count));
    EXPECT_FALSE(profile.Swap(count, 0));
    EXPECT_FALSE(profile.Swap(-1, 0));
    EXPECT_FALSE(profile.Swap(0, -1));
    ExpectRecord(profile[0], u"M1.U1", 100);
}

TEST_F(ZRTableProfileTest, IteratorsRunThroughTheRecords)
{
    unsigned int i = 0;
    for (auto record = profile.VarsBegin(); record != profile.VarsEnd(); ++record, ++i) {
        EXPECT_EQ(*record, &profile[i]);
    }
    EXPECT_EQ(i, 3u);
    const ZRTableProfile& unchanging = profile;
    EXPECT_EQ((*unchanging.VarsBegin())->Name, u"M1.U1");
    EXPECT_EQ(std::distance(unchanging.VarsBegin(), unchanging.VarsEnd()), 3);
}

}  // namespace
