#include "logger/RecordCursor.h"

#include "unit/logger/LoggedFixture.h"

namespace zr::logger {
namespace {

class RecordCursorTest : public LoggedFixture {
protected:
    RecordCursorTest()
    {
        std::vector<double> values(100);
        for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] = static_cast<double>(i);
        }
        RecordVoltages(kDay, values);
        cursor.Reset(&LoadDay(Info({u"M.U"})));
    }

    void ExpectRow(int row)
    {
        const LoggedRecord* const record = cursor.MoveTo(row);
        ASSERT_NE(record, nullptr) << row;
        EXPECT_EQ(record->values[0].value, static_cast<double>(row));
        EXPECT_EQ(cursor.Row(), row);
    }

    RecordCursor cursor;
};

TEST_F(RecordCursorTest, StartsAtTheFirstRecord)
{
    EXPECT_EQ(cursor.Count(), 100);
    EXPECT_EQ(cursor.Row(), 0);
    ExpectRow(0);
}

TEST_F(RecordCursorTest, ScrollingUpMovesBackwardsThroughThePreviousLinks)
{
    for (int row = 40; row < 60; ++row) {
        ExpectRow(row);
    }
    for (int row = 59; row >= 0; --row) {
        ExpectRow(row);
    }
}

TEST_F(RecordCursorTest, FindsAnyRowFromAnyOther)
{
    for (int from = 0; from < 100; from += 7) {
        for (int to = 0; to < 100; ++to) {
            ExpectRow(from);
            ExpectRow(to);
        }
    }
}

TEST_F(RecordCursorTest, KeepsItsPlaceWhenARowIsNotThere)
{
    ExpectRow(50);
    EXPECT_EQ(cursor.MoveTo(100), nullptr);
    EXPECT_EQ(cursor.MoveTo(-1), nullptr);
    EXPECT_EQ(cursor.Row(), 50);
    ExpectRow(51);
}

TEST_F(RecordCursorTest, CountsFromTheFirstSelectedRecord)
{
    ZRLoggerData::CRecordGroup& group = data.RecordGroup(kEveryRecord, nullptr);
    group.SelectData(Date(30, 12, 2002, 0, 10), Date(30, 12, 2002, 0, 20), true);
    cursor.Reset(&group);
    ASSERT_EQ(cursor.Count(), 10);
    EXPECT_EQ(cursor.MoveTo(0)->values[0].value, 10.0);
    EXPECT_EQ(cursor.MoveTo(9)->values[0].value, 19.0);
    EXPECT_EQ(cursor.MoveTo(10), nullptr);
}

TEST_F(RecordCursorTest, HasNoRowsWithoutRecordsOrWithoutAGroup)
{
    cursor.Reset(&Load(Info({u"M.U"}), Date(1, 1, 2001), Date(2, 1, 2001)));
    EXPECT_EQ(cursor.Count(), 0);
    EXPECT_EQ(cursor.MoveTo(0), nullptr);
    cursor.Reset(nullptr);
    EXPECT_EQ(cursor.MoveTo(0), nullptr);
}

}  // namespace
}  // namespace zr::logger
