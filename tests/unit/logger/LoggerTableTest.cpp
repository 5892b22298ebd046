#include "logger/LoggerTable.h"

#include "logger/SuiteKey.h"
#include "unit/logger/LoggedFixture.h"
#include "unit/logger/MemoryTableList.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <map>
#include <random>

namespace zr::logger {
namespace {

// A character is ten wide and twenty high.
class EvenMeasure final : public PrintMeasure {
public:
    PrintExtent Extent(std::u16string_view text) override { return {10 * static_cast<int>(text.size()), 20}; }
};

class LoggerTableTest : public LoggedFixture {
protected:
    LoggerTableTest() { document.Create(u"main"); }

    void Show(const std::vector<ZRBasicString>& names = {u"M.U", u"M.E", u"M.PF"})
    {
        table.Setup(Info(names), document.root);
        info = Info(names);
    }

    void RecordOne(const ZRDateTime& time, double u, double e, double pf)
    {
        Record(u"M.U", time, u);
        Record(u"M.E", time, e);
        Record(u"M.PF", time, pf);
    }

    void Update(int groupBy = kGroupByDay) { table.Update(groupBy, LoadDay(info)); }

    std::string Cell(int row, int subItem) { return Narrow(table.CellText(row, subItem)); }

    std::vector<std::string> Titles() const
    {
        std::vector<std::string> titles;
        for (const TableColumn& column : list.columns) {
            titles.push_back(Narrow(column.text));
        }
        return titles;
    }

    std::uint32_t StoredWidth(const wchar* name) const
    {
        std::uint32_t width = 4711;
        SuiteKey(kTablesKey).ReadNumber(name, width);
        return width;
    }

    using Texts = std::vector<std::string>;

    XmlDocument document;
    ZRLoggerInfo info;
    MemoryTableList list;
    LoggerTable table{list};
};

TEST_F(LoggerTableTest, SetupShowsTheTimeAndEveryVariable)
{
    Show();
    EXPECT_EQ(Titles(), (Texts{"Date and time", "M Voltage (V)", "M Energy (kWh)", "M Power factor (PF)"}));
    EXPECT_EQ(list.order, (std::vector{0, 1, 2, 3}));
    EXPECT_EQ(list.columns[1].width, 100);
}

TEST_F(LoggerTableTest, AVariableThatCanNotBeDescribedIsLeftOutAndKeepsItsPositionInRecords)
{
    Show({u"X.GONE", u"M.U"});
    EXPECT_EQ(Titles(), (Texts{"Date and time", "M Voltage (V)"}));
    Record(u"M.U", kDay, 2300);
    Update();
    EXPECT_EQ(Cell(0, 1), "230.0");
    // Its place in the list stays what the settings keep at first.
    EXPECT_EQ(Narrow(document.root->Node(u"Table/VarSetup?Var=M.U?")->Value(u"Index", u"")), "1");
}

TEST_F(LoggerTableTest, NoVariablesGiveTheTimeColumnAlone)
{
    Show({});
    EXPECT_EQ(Titles(), Texts{"Date and time"});
    Update();
    EXPECT_EQ(list.count, 0);
}

TEST_F(LoggerTableTest, AGroupWithNoRecordsGivesAnEmptyList)
{
    Show();
    Update();
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(Cell(0, 0), "");
    EXPECT_EQ(Cell(0, 1), "");
}

TEST_F(LoggerTableTest, CellsShowTimeAndValues)
{
    Show();
    RecordOne(Date(30, 12, 2002, 8, 15), 2301, 1234567, -1.0);
    RecordOne(Date(30, 12, 2002, 8, 30), std::nan(""), 2000, -0.5);
    Update();
    ASSERT_EQ(list.count, 2);
    EXPECT_EQ(Cell(0, 0), "08:15:00");
    EXPECT_EQ(Cell(0, 1), "230.1");
    EXPECT_EQ(Cell(0, 2), "1,234.57");
    EXPECT_EQ(Cell(0, 3), "1.000");
    EXPECT_EQ(Cell(1, 1), "");
    EXPECT_EQ(Cell(1, 2), "2.00");
    EXPECT_EQ(Cell(1, 3), "-0.500");
    EXPECT_EQ(Cell(0, 1), "230.1");
}

TEST_F(LoggerTableTest, CellsThatAreNotThereAreEmpty)
{
    Show();
    RecordOne(kDay, 1, 2, 3);
    Update();
    EXPECT_EQ(Cell(-1, 0), "");
    EXPECT_EQ(Cell(1, 0), "");
    EXPECT_EQ(Cell(0, -1), "");
    EXPECT_EQ(Cell(0, 4), "");
}

TEST_F(LoggerTableTest, TheTimeColumnFollowsTheUnitAndItsWidthDoesNot)
{
    Show();
    const int width = list.columns[0].width;
    RecordOne(Date(30, 12, 2002, 8, 15), 1, 2, 3);
    Update(kGroupByDay);
    EXPECT_EQ(Cell(0, 0), "08:15:00");
    Update(kGroupByWeek);
    EXPECT_EQ(Cell(0, 0), "   Monday 30 08:15:00");
    Update(kGroupByMonth);
    EXPECT_EQ(Cell(0, 0), "30/12/2002 08:15:00");
    EXPECT_EQ(list.columns[0].width, width);
}

TEST_F(LoggerTableTest, InvalidDataHaveNoRowsUntilTheNextUpdate)
{
    Show();
    RecordOne(kDay, 1, 2, 3);
    Update();
    table.SetInvalidData(true);
    EXPECT_TRUE(table.InvalidData());
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(Cell(0, 0), "");
    Update();
    table.SetInvalidData(false);
    EXPECT_FALSE(table.InvalidData());
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(Cell(0, 0), "00:00:00");
}

TEST_F(LoggerTableTest, TheTimeColumnIsAsWideAsADateAtFirstAndThatIsStored)
{
    Show();
    EXPECT_EQ(list.columns[0].width, 7 * 16);
    EXPECT_EQ(StoredWidth(u"Column1"), 7U * 16);
}

TEST_F(LoggerTableTest, TheStoredWidthOfTheTimeColumnIsReadBackWithinLimits)
{
    SuiteKey(kTablesKey).WriteNumber(u"Column1", 55);
    Show();
    EXPECT_EQ(list.columns[0].width, 55);
    SuiteKey(kTablesKey).WriteNumber(u"Column1", 0xFFFFFFFF);
    Show();
    EXPECT_EQ(list.columns[0].width, kMaxColumnWidth);
}

TEST_F(LoggerTableTest, AWidthThatIsNoNumberIsReplacedByTheDefault)
{
    SuiteKey(kTablesKey).WriteText(u"Column1", u"wide");
    Show();
    EXPECT_EQ(list.columns[0].width, 7 * 16);
    EXPECT_EQ(StoredWidth(u"Column1"), 7U * 16);
}

TEST_F(LoggerTableTest, AKeyThatCanNotBeOpenedGivesTheDefaultWidth)
{
    SuiteKey(kTablesKey).WriteNumber(u"Column1", 55);
    setup.registryKey = u"";
    ZRKestrixSetup::instance = nullptr;
    Show();
    ZRKestrixSetup::instance = &setup;
    EXPECT_EQ(list.columns[0].width, 7 * 16);
}

TEST_F(LoggerTableTest, OnDestroyStoresTheWidthOfEveryColumn)
{
    Show();
    list.columns[0].width = 90;
    list.columns[2].width = 33;
    table.OnDestroy();
    EXPECT_EQ(StoredWidth(u"Column1"), 90U);
    EXPECT_EQ(StoredWidth(u"Column2"), 100U);
    EXPECT_EQ(StoredWidth(u"Column3"), 33U);
    EXPECT_EQ(StoredWidth(u"Column4"), 100U);
    EXPECT_EQ(StoredWidth(u"Column5"), 4711U);
}

TEST_F(LoggerTableTest, OnDestroyWritesNoWidthThatStandsAlready)
{
    Show();
    table.OnDestroy();
    std::map<std::filesystem::path, std::filesystem::file_time_type> before;
    const auto look = [&](const auto& visit) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path())) {
            if (entry.is_regular_file()) {
                visit(entry.path(), entry.last_write_time());
            }
        }
    };
    look([&](const auto& path, auto time) { before[path] = time; });
    table.OnDestroy();
    look([&](const auto& path, auto time) { EXPECT_EQ(before.at(path), time) << path; });
    list.columns[0].width = 41;
    table.OnDestroy();
    EXPECT_EQ(StoredWidth(u"Column1"), 41U);
}

TEST_F(LoggerTableTest, OnDestroyKeepsTheVariablesInTheirOrderAndThePlacesBeside)
{
    Show();
    list.order = {0, 3, 1, 2};
    table.OnDestroy();
    Texts kept;
    for (const XmlNode* const child : document.root->Node(u"Table")->children) {
        kept.push_back(Narrow(child->Value(u"Var", u"")) + ":" + Narrow(child->Value(u"Index", u"")));
    }
    EXPECT_EQ(kept, (Texts{"M.U:1", "M.E:2", "M.PF:0"}));
}

TEST_F(LoggerTableTest, AnArrangementSurvivesTheViewer)
{
    Show();
    list.columns[2].width = 33;
    list.order = {0, 3, 1, 2};
    table.OnDestroy();

    MemoryTableList secondList;
    LoggerTable second(secondList);
    second.Setup(info, document.root);
    EXPECT_EQ(secondList.order, (std::vector{0, 3, 1, 2}));
    EXPECT_EQ(secondList.columns[2].width, 33);
}

TEST_F(LoggerTableTest, AnArrangementSurvivesAChangeOfDevices)
{
    test::LiveDevice other(u"N", {Described(u"I", u"Current", 2, 0, 0, 1)});
    Show();
    list.columns[3].width = 33;
    list.order = {0, 3, 1, 2};
    table.OnDestroy();

    MemoryTableList secondList;
    LoggerTable second(secondList);
    second.Setup(Info({u"N.I", u"M.PF", u"M.U"}), document.root);
    ASSERT_EQ(secondList.columns.size(), 3U);  // the current isn't among the variables wanted
    EXPECT_EQ(Narrow(secondList.columns[1].text), "M Power factor (PF)");
    EXPECT_EQ(secondList.columns[1].width, 33);
}

TEST_F(LoggerTableTest, SetupOfAFilledProfileRefreshesTheColumnsAlone)
{
    Show();
    document.root->Node(u"Table/VarSetup")->SetValue(u"Width", u"7");
    table.Setup(Info({u"M.E", u"M.U"}), document.root);
    EXPECT_EQ(table.Profile().NVars(), 3U);
    EXPECT_EQ(table.TotalProfile().NVars(), 3U);
    // The last record has no variable any more, and so no column.
    EXPECT_EQ(Titles(), (Texts{"Date and time", "M Voltage (V)", "M Energy (kWh)"}));
    EXPECT_EQ(list.columns[1].width, 100);
}

TEST_F(LoggerTableTest, ValuesOfAVariableThatVanishedAreEmpty)
{
    Show({u"M.U", u"M.E"});
    RecordOne(kDay, 10, 2000, 1);
    info = Info({u"M.E"});
    table.Setup(info, document.root);
    Update();
    EXPECT_EQ(Cell(0, 1), "");
    EXPECT_EQ(Cell(0, 2), "2.00");
}

TEST_F(LoggerTableTest, GetLoggerInfoGivesTheNamesInAnUnlockedList)
{
    Show();
    ZRLoggerInfo out = Info({u"X.Y"});
    table.GetLoggerInfo(out);
    ASSERT_EQ(out.variables.size(), 3U);
    EXPECT_EQ(out.variables.front()->fullName, ZRBasicString(u"M.U"));
    EXPECT_FALSE(out.variables.front()->IsLocked());
}

TEST_F(LoggerTableTest, TheDialogSeesTheColumnsInTheOrderOfTheScreen)
{
    Show();
    list.order = {0, 3, 1, 2};
    Texts seen;
    const bool result = table.OnConfig([&](ZRTableProfile& copy, ZRTableProfile& total, ZRLoggerInfo& variables) {
        for (unsigned i = 0; i < copy.NVars(); ++i) {
            seen.push_back(Narrow(copy[i].Name));
        }
        EXPECT_EQ(total.NVars(), 3U);
        EXPECT_EQ(variables.variables.size(), 3U);
        copy.DeleteVariable(0);
        return true;
    });
    EXPECT_TRUE(result);
    EXPECT_EQ(seen, (Texts{"M.PF", "M.U", "M.E"}));
    EXPECT_EQ(table.Profile().NVars(), 2U);
    EXPECT_EQ(document.root->Node(u"Vars")->children.size(), 2U);
    EXPECT_EQ(document.root->Node(u"Table")->children.size(), 2U);
}

TEST_F(LoggerTableTest, CancelLeavesTheViewerAsItWas)
{
    Show();
    RecordOne(kDay, 10, 2000, 1);
    Update();
    list.order = {0, 3, 1, 2};
    const bool result = table.OnConfig([](ZRTableProfile& copy, ZRTableProfile&, ZRLoggerInfo&) {
        copy.DeleteAll();
        return false;
    });
    EXPECT_FALSE(result);
    ASSERT_EQ(table.Profile().NVars(), 3U);
    EXPECT_EQ(Narrow(table.Profile()[0].Name), "M.U");
    EXPECT_EQ(Cell(0, 1), "1.0");
    const TableCopy copy = table.ClipboardCopy();
    EXPECT_EQ(copy.TextPlain(),
              "Date and time\tM Voltage (V)\tM Energy (kWh)\tM Power factor (PF)\t\r\n00:00:00\t1.0\t2.00\t1.000\r\n");
}

TEST_F(LoggerTableTest, CancelBringsBackTheVariablesThatTheDialogTookOrAdded)
{
    EvenMeasure measure;
    Show({u"M.U", u"M.E"});
    RecordOne(kDay, 10, 2000, 1);
    Update();
    // What the dialog does at once when a row is deleted and another variable chosen.
    const bool result = table.OnConfig([](ZRTableProfile& copy, ZRTableProfile&, ZRLoggerInfo& variables) {
        copy.DeleteVariable(0);
        delete variables.variables.front();
        variables.variables.pop_front();
        for (const wchar* name : {u"M.PF", u"M.U"}) {
            variables.AddVariable(name);
        }
        variables.Lock();
        return false;
    });
    EXPECT_FALSE(result);
    EXPECT_EQ(Cell(0, 1), "1.0");
    EXPECT_EQ(table.ClipboardCopy().TextPlain(),
              "Date and time\tM Voltage (V)\tM Energy (kWh)\t\r\n00:00:00\t1.0\t2.00\r\n");
    table.OnBeginPrinting({1000, 1000, 250}, measure);
    Texts printed;
    for (const PrintText& text : table.Print(1, {0, 0, 1000, 1000}, u"").texts) {
        printed.push_back(Narrow(text.text));
    }
    EXPECT_EQ(printed, (Texts{"", "Date and time", "M Voltage", "M Energy", "00:00:00", "1.0", "2.00", "1 / 1"}));
    ZRLoggerInfo out;
    table.GetLoggerInfo(out);
    ASSERT_EQ(out.variables.size(), 2U);
    EXPECT_EQ(Narrow(out.variables.front()->fullName), "M.U");
}

TEST_F(LoggerTableTest, CancelKeepsWhatTheUserHasDraggedAndWidened)
{
    Show();
    list.order = {0, 3, 1, 2};
    list.columns[3].width = 33;
    table.OnConfig([](ZRTableProfile&, ZRTableProfile&, ZRLoggerInfo&) { return false; });
    EXPECT_EQ(list.order, (std::vector{0, 3, 1, 2}));
    table.OnDestroy();
    const XmlNode* const entry = document.root->Node(u"Table/VarSetup?Var=M.PF?");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(Narrow(entry->Value(u"Index", u"")), "0");
    EXPECT_EQ(Narrow(entry->Value(u"Width", u"")), "33");
}

TEST_F(LoggerTableTest, ATableThatWasNeverSetUpKeepsNothing)
{
    SuiteKey(kTablesKey).WriteNumber(u"Column1", 55);
    table.OnDestroy();
    EXPECT_EQ(StoredWidth(u"Column1"), 55U);
}

TEST_F(LoggerTableTest, CopyTakesTheSelectedRows)
{
    Show({u"M.U"});
    RecordVoltages(kDay, {0, 10, 20, 30, 40, 50, 60, 70, 80});
    Update();
    list.selected = {{7, 7}, {3, 3}};
    EXPECT_EQ(table.ClipboardCopy().TextPlain(),
              "Date and time\tM Voltage (V)\t\r\n00:03:00\t3.0\r\n00:07:00\t7.0\r\n");
}

TEST_F(LoggerTableTest, CopyWithoutVariablesHoldsTheTimeAlone)
{
    Show({});
    EXPECT_EQ(table.ClipboardCopy().TextPlain(), "Date and time\t\r\n");
}

TEST_F(LoggerTableTest, CopyFindsAVariableByItsTitleAndSoNotOneThatCameBackFromTheSettings)
{
    Show({u"M.U"});
    table.Profile()[0].Title = u"Voltage";
    table.Setup(info, document.root);
    Record(u"M.U", kDay, 10);
    Update();
    EXPECT_EQ(Cell(0, 1), "1.0");
    EXPECT_EQ(table.ClipboardCopy().TextPlain(), "Date and time\tVoltage (V)\t\r\n00:00:00\t \r\n");
}

TEST_F(LoggerTableTest, PrintFindsAVariableByItsTitleAsCopyDoes)
{
    EvenMeasure measure;
    Show({u"M.U"});
    table.Profile()[0].Title = u"Voltage";
    table.Setup(info, document.root);
    Record(u"M.U", kDay, 10);
    Update();
    table.OnBeginPrinting({1000, 1000, 250}, measure);
    Texts printed;
    for (const PrintText& text : table.Print(1, {0, 0, 1000, 1000}, u"").texts) {
        printed.push_back(Narrow(text.text));
    }
    EXPECT_EQ(printed, (Texts{"", "Date and time", "Voltage", "00:00:00", "1 / 1"}));
}

TEST_F(LoggerTableTest, CopyWhileTheDataAreInvalidHoldsTheTitlesAlone)
{
    Show({u"M.U"});
    Record(u"M.U", kDay, 10);
    Update();
    table.SetInvalidData(true);
    EXPECT_EQ(table.ClipboardCopy().TextPlain(), "Date and time\tM Voltage (V)\t\r\n");
}

TEST_F(LoggerTableTest, PrintGivesPagesBetweenItsBeginningAndItsEnd)
{
    EvenMeasure measure;
    Show({u"M.U"});
    RecordVoltages(kDay, {10, 20, 30, 40});
    Update();
    list.selected = {{1, 2}};
    EXPECT_TRUE(table.Print(1, {0, 0, 1000, 1000}, u"").texts.empty());
    const TablePrint& print = table.OnBeginPrinting({1000, 1000, 250}, measure);
    EXPECT_EQ(print.Rows(), 2);
    EXPECT_EQ(print.MaxPage(), 1);
    EXPECT_FALSE(table.Print(1, {0, 0, 1000, 1000}, u"").texts.empty());
    table.OnEndPrinting();
    EXPECT_TRUE(table.Print(1, {0, 0, 1000, 1000}, u"").texts.empty());
}

TEST_F(LoggerTableTest, PrintingEndsWhenTheDataGo)
{
    EvenMeasure measure;
    Show({u"M.U"});
    RecordVoltages(kDay, {10});
    Update();
    table.OnBeginPrinting({1000, 1000, 250}, measure);
    table.SetInvalidData(true);
    EXPECT_TRUE(table.Print(1, {0, 0, 1000, 1000}, u"").texts.empty());
}

TEST_F(LoggerTableTest, SettingsWithNumbersOutOfAllBoundsShowEveryColumn)
{
    XmlNode* const vars = document.root->NewChild(u"Vars");
    XmlNode* const setups = document.root->NewChild(u"Table");
    const std::vector<std::pair<const wchar*, const wchar*>> numbers = {
        {u"2147483647", u"-2147483648"}, {u"-2147483648", u"2147483647"}, {u"2147483647", u"0"}};
    std::size_t i = 0;
    for (const wchar* name : {u"M.U", u"M.E", u"M.PF"}) {
        vars->NewChild(u"Var")->SetValue(u"Name", name);
        XmlNode* const node = setups->NewChild(u"VarSetup");
        node->SetValue(u"Var", name);
        node->SetValue(u"Index", numbers[i].first);
        node->SetValue(u"Width", numbers[i].second);
        ++i;
    }
    Show();
    EXPECT_EQ(list.order, (std::vector{0, 2, 1, 3}));
    EXPECT_EQ(list.columns[1].width, 0);
    EXPECT_EQ(list.columns[2].width, kMaxColumnWidth);
}

TEST_F(LoggerTableTest, AnySettingsGiveATableThatCanBeShownArrangedAndKept)
{
    std::mt19937 random(1);
    const auto any = [&](const auto& from) { return from[random() % std::size(from)]; };
    const std::array names = {u"M.U", u"M.E", u"M.PF", u"X.GONE", u"", u"M"};
    const std::array numbers = {u"0", u"1", u"2", u"-1", u"2147483647", u"-2147483648", u"x", u""};
    const std::array tags = {u"Var", u"VarSetup", u"Other"};
    for (int round = 0; round < 60; ++round) {
        XmlDocument settings;
        settings.Create(u"main");
        for (const wchar* element : {u"Vars", u"Table"}) {
            XmlNode* const node = settings.root->NewChild(element);
            for (auto entries = random() % 6; entries > 0; --entries) {
                XmlNode* const entry = node->NewChild(any(tags));
                entry->SetValue(random() % 8 != 0 ? (node->tag == u"Vars" ? u"Name" : u"Var") : u"else", any(names));
                entry->SetValue(u"Index", any(numbers));
                entry->SetValue(u"Width", any(numbers));
            }
        }
        ZRLoggerInfo logged;
        for (auto variables = random() % 5; variables > 0; --variables) {
            logged.AddVariable(any(names));
        }
        MemoryTableList control;
        LoggerTable shown(control);
        shown.Setup(logged, settings.root);
        std::vector<int> sorted = control.order;
        std::sort(sorted.begin(), sorted.end());
        ASSERT_EQ(sorted.size(), control.columns.size());
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            ASSERT_EQ(sorted[i], static_cast<int>(i));
        }
        std::shuffle(control.order.begin(), control.order.end(), random);
        shown.OnConfig([](ZRTableProfile&, ZRTableProfile&, ZRLoggerInfo&) { return true; });
        shown.Setup(logged, settings.root);
        shown.OnDestroy();
        std::size_t kept = 0;
        for (const XmlNode* child : settings.root->Node(u"Table")->children) {
            kept += child->tag == u"VarSetup" ? 1U : 0U;
        }
        ASSERT_EQ(kept, shown.Profile().NVars());
    }
}

TEST_F(LoggerTableTest, NamesOfTenThousandCharactersAreShownAndCopied)
{
    const ZRBasicString longText(std::u16string(10000, u'x'));
    test::LiveDevice device(u"L", {Described(u"V", longText.CStr(), 1, 0, 0, 0)});
    Show({u"L.V"});
    EXPECT_EQ(list.columns[1].text.Length(), 10000U + 2 + 4);
    Record(u"L.V", kDay, 7);
    Update();
    EXPECT_EQ(Cell(0, 1), "7");
    const std::string plain = table.ClipboardCopy().TextPlain();
    EXPECT_EQ(plain, "Date and time\tL " + std::string(253, 'x') + "\t\r\n00:00:00\t7\r\n");
    table.OnDestroy();
}

}  // namespace
}  // namespace zr::logger
