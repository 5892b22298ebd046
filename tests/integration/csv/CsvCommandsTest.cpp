// Import, export and check of the store, as processes.
#include "integration/csv/CommandFixture.h"

#include <gmock/gmock.h>
#include <algorithm>
#include <csignal>
#include <fstream>

namespace zr::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kText = "time,p\n2003-01-01T00:00,1.5\n2003-01-01T00:01,2.5\n2003-01-01T00:30,5\n";

class CsvCommandsTest : public CommandFixture {
protected:
    void ExpectRefused(const std::vector<std::string>& arguments, const std::string& reason)
    {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments.back();
        EXPECT_THAT(outcome.errors, HasSubstr(reason));
        EXPECT_EQ(outcome.output, "");
    }
};

TEST_F(CsvCommandsTest, WhatIsImportedIsExported)
{
    const Outcome import = Import(kText);
    EXPECT_EQ(import.status, 0) << import.errors;
    EXPECT_EQ(import.errors, "");
    EXPECT_THAT(import.output, HasSubstr("t.csv: 3 rows, 3 values in "));
    EXPECT_THAT(import.output, HasSubstr("from 2003-01-01 00:00:00 +00:00 to 2003-01-01 00:30:00 +00:00, into data set "
                                         "mains (every 60 s)"));
    const Outcome recorded = Export();
    EXPECT_EQ(recorded.status, 0);
    EXPECT_EQ(recorded.errors, "3 rows, 3 values\n");
    EXPECT_EQ(recorded.output,
              "time,M.P\n2003-01-01T00:00:00+00:00,1.5\n2003-01-01T00:01:00+00:00,2.5\n"
              "2003-01-01T00:30:00+00:00,5\n");
    EXPECT_EQ(Export({"--period", "15m", "--separator", ";", "--decimal", ","}).output,
              "time;M.P\n2003-01-01T00:00:00+00:00;2\n2003-01-01T00:30:00+00:00;5\n");
    EXPECT_EQ(Export({"--zone", "Europe/Paris", "--from", "2003-01-01T01:01", "--to", "2003-01-01T01:02"}).output,
              "time,M.P\n2003-01-01T01:01:00+01:00,2.5\n");
    EXPECT_EQ(Run({"export", "--variable", "M.P", "--store", Store(), "--period", "1M"}).output,
              "time,M.P\n2003-01-01T00:00:00+00:00,3\n");
}

TEST_F(CsvCommandsTest, StandardInputIsReadAsAFile)
{
    const Outcome import = Run({"import", "-", "--dataset", "mains", "--store", Store(), "--map", "p=M.P"}, kText);
    EXPECT_EQ(import.status, 0) << import.errors;
    EXPECT_THAT(import.output, StartsWith("standard input: 3 rows"));
}

TEST_F(CsvCommandsTest, WhatIsLeftOutIsToldAndGivesStatusOne)
{
    const Outcome import =
        Import("time,p\n2003-01-01T00:00,1\n2003-01-01T00:01,x\n2003-01-01T00:00,2\nsoon,1\n2003-01-01T00:00\n");
    EXPECT_EQ(import.status, 1);
    const std::string file = (m_folder / "t.csv").string();
    EXPECT_EQ(import.errors, file + ":3: p: \"x\" is no number\n" + file +
                                 ":5: time: \"soon\" is no time, as 2006-12-16T17:24:00 is one\n" + file +
                                 ":6: 1 cells where the header has 2\n");
    EXPECT_THAT(import.output,
                HasSubstr("  1 row earlier than the one before\n  2 rows left out\n  1 cell left out\n"));
    const Outcome strict = Import("time,p\n2003-01-01T00:00,1\n2003-01-01T00:01,x\n", {"--strict"});
    EXPECT_EQ(strict.status, 2);
    EXPECT_EQ(strict.errors, file + ":3: p: \"x\" is no number\n");
}

TEST_F(CsvCommandsTest, ManyFaultsAreToldInFewLines)
{
    std::string text = "time,p\n";
    for (int i = 0; i < 5000; ++i) {
        text += "x,1\n";
    }
    const Outcome import = Import(text);
    EXPECT_EQ(import.status, 1);
    EXPECT_EQ(std::count(import.errors.begin(), import.errors.end(), '\n'), 11);
    EXPECT_THAT(import.errors, HasSubstr("... and 4,990 more like these\n"));
}

TEST_F(CsvCommandsTest, ACommandLineThatIsWrongEndsWithStatusTwo)
{
    const std::string file = m_folder.Write("t.csv", kText).string();
    const std::vector<std::string> good{"import", file, "--dataset", "mains", "--store", Store(), "--map", "p=M.P"};
    const auto with = [&](const std::vector<std::string>& more) {
        std::vector<std::string> arguments = good;
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    };
    ExpectRefused({"import", file, "--dataset", "mains", "--store", Store(), "--map", "x=M.P"},
                  "t.csv:1: there is no column \"x\"; there are \"time\", \"p\"");
    ExpectRefused({"import", file, "--dataset", "mains", "--store", Store(), "--map", "p=M"},
                  "--map 'p=M': \"M\" is no variable");
    ExpectRefused({"import", file, "--dataset", "mains", "--map", "p=M.P"}, "which store?");
    ExpectRefused({"import", file, "--dataset", "mains", "--store", Store()}, "--map is required");
    ExpectRefused({"import", file, "--dataset", "a/b", "--store", Store(), "--map", "p=M.P"}, "--dataset: 'a/b'");
    ExpectRefused(
        {"import", (m_folder / "none.csv").string(), "--dataset", "mains", "--store", Store(), "--map", "p=M.P"},
        "none.csv: can't be opened");
    ExpectRefused(with({"--zone", "Mars"}), "--zone: no time zone of the name \"Mars\"");
    ExpectRefused(with({"--separator", "x"}), "--separator: 'x'");
    ExpectRefused(with({"--decimal", ";"}), "--decimal: ';'");
    ExpectRefused(with({"--period", "soon"}), "--period: 'soon'");
    ExpectRefused(with({"--end", "soon"}), "--end: 'soon' is no time");
    ExpectRefused(with({"--time", "at"}), "there is no column \"at\"");
    ExpectRefused(with({"--recording", file}), "--store excludes --recording");
    ASSERT_EQ(Import(kText).status, 0);
    const std::vector<std::string> exporting{"export", "--store", Store()};
    ExpectRefused(exporting, "what is to be exported?");
    ExpectRefused({"export", "--store", Store(), "--dataset", "main"}, "no data set 'main'; there are mains");
    ExpectRefused({"export", "--store", Store(), "--variable", "M.Q"}, "nothing is recorded of 'M.Q'");
    ExpectRefused({"export", "--store", Store(), "--dataset", "mains", "--decimal", ","}, "can't be the separator");
    ExpectRefused({"export", "--store", Store(), "--dataset", "mains", "--format", "xml"}, "--format");
    ExpectRefused({"export", "--store", Store(), "--dataset", "mains", "--from", "2003", "--to", "now"}, "--from");
    ExpectRefused({"export", "--store", Store(), "--dataset", "mains", "--from", "2003-01-02", "--to", "2003-01-01"},
                  "--to");
}

TEST_F(CsvCommandsTest, AStoreThatIsNotThereIsNotMadeByReading)
{
    ExpectRefused({"export", "--store", Store(), "--dataset", "mains"}, "s.zrlog: there is no such file");
    ExpectRefused({"check-store", "--store", Store()}, "s.zrlog: there is no such file");
    EXPECT_FALSE(std::filesystem::exists(Store()));
}

TEST_F(CsvCommandsTest, AnOutputWithoutRoomIsTold)
{
    ASSERT_EQ(Import("time,p\n1041379200,1\n").status, 0);
    Process process(
        {"/bin/sh", "-c", R"(exec "$0" export --dataset mains --store "$1" > /dev/full)", ZR_KESTRIXD, Store()},
        Environment());
    EXPECT_EQ(process.WaitForExit(std::chrono::seconds(120)), 2);
    EXPECT_THAT(process.Errors(), HasSubstr("standard output: No space left on device"));
}

TEST_F(CsvCommandsTest, AFileIsReplacedAsAWhole)
{
    ASSERT_EQ(Import(kText).status, 0);
    const std::string file = m_folder.Write("out.csv", "old").string();
    EXPECT_EQ(Export({"--output", file}).status, 0);
    EXPECT_EQ(m_folder.Read("out.csv"), Export().output);
    const std::vector<std::string> names = m_folder.Names();
    EXPECT_TRUE(std::none_of(names.begin(), names.end(), [](const auto& name) { return name.starts_with(".out"); }));
    const Outcome refused = Export({"--output", m_folder.Path().string()});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, HasSubstr("is not a regular file"));
}

TEST_F(CsvCommandsTest, TheDocumentTellsStoreClassesAndUnits)
{
    const std::string document =
        m_folder
            .Write("plant.xml",
                   "<Configuration><CommSystem><Connections><Connection Name=\"L\" Type=\"UDP\" "
                   "Address=\"127.0.0.1\" Socket=\"9\"/></Connections><Devices><Device "
                   "Name=\"M\" Driver=\"EM3\" Connection=\"L\"/></Devices></CommSystem>"
                   "</Configuration>")
            .string();
    m_folder.Write("plant.recording.xml",
                   "<Recording><Store File=\"kept.zrlog\"/><DataSet Name=\"mains\" Period=\"30\" "
                   "Retention=\"700\"><Device Name=\"M\"/></DataSet></Recording>");
    const std::string file =
        m_folder.Write("e.csv", "time,e\n2003-01-01T00:00,100\n2003-01-01T01:00,130\n2003-01-01T02:00,140\n").string();
    const std::vector<std::string> place{"--document", document, "--data", (m_folder / "logged").string()};
    const auto with = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), place.begin(), place.end());
        return arguments;
    };
    const Outcome import = Run(with({"import", file, "--dataset", "mains", "--map", "e=M.EAI"}));
    EXPECT_EQ(import.status, 0) << import.errors;
    EXPECT_THAT(import.output, HasSubstr("into data set mains (every 30 s)"));
    EXPECT_TRUE(std::filesystem::exists(m_folder / "logged/kept.zrlog"));
    const Outcome exported = Run(with({"export", "--dataset", "mains", "--period", "1d"}));
    EXPECT_EQ(exported.output, "time,M.EAI [Wh]\n2003-01-01T00:00:00+00:00,40\n") << exported.errors;
    const Outcome check = Run(with({"check-store"}));
    EXPECT_EQ(check.status, 0);
    EXPECT_THAT(check.output, HasSubstr("data set mains: 1 variable, every 30 s, kept 700 days"));
    // The recording file alone finds it, too.
    const Outcome again = Run({"check-store", "--recording", (m_folder / "plant.recording.xml").string(), "--data",
                               (m_folder / "logged").string()});
    EXPECT_EQ(again.output, check.output) << again.errors;
}

TEST_F(CsvCommandsTest, TheHistoryOfTheDemoIsImportedOnce)
{
    const std::vector<std::string> arguments{"import",
                                             ZR_RESOURCES "/demo/household/household_1min.csv",
                                             "--once",
                                             "--end",
                                             "now",
                                             "--store",
                                             Store(),
                                             "--dataset",
                                             "mains",
                                             "--map",
                                             "voltage_V=METER-1.U1",
                                             "active_kW=METER-1.EAI*1000/60:counter:sum=0"};
    const Outcome first = Run(arguments);
    EXPECT_EQ(first.status, 0) << first.errors;
    EXPECT_THAT(first.output, HasSubstr("47,960 rows, 95,910 values"));
    const Outcome check = Run({"check-store", "--store", Store()});
    const Outcome second = Run(arguments);
    EXPECT_EQ(second.status, 0);
    EXPECT_THAT(second.output, HasSubstr("METER-1.U1 has samples already, so nothing is imported"));
    EXPECT_EQ(Run({"check-store", "--store", Store()}).output, check.output);
}

TEST_F(CsvCommandsTest, ACheckTellsWhatIsThereAndWhatIsWrong)
{
    std::string text = "time,p\n";
    for (int i = 0; i < 20000; ++i) {
        text += std::to_string(1041379200 + i * 60) + "," + std::to_string(i * 7919 % 10007) + "\n";
    }
    ASSERT_EQ(Import(text).status, 0);
    const Outcome sound = Run({"check-store", "--store", Store()});
    EXPECT_EQ(sound.status, 0) << sound.errors;
    EXPECT_THAT(sound.output, HasSubstr("s.zrlog: 1 variable, 334 blocks with 20,000 samples"));
    EXPECT_THAT(sound.output, HasSubstr("from 2003-01-01 00:00:00 +00:00 to 2003-01-14 21:19:00 +00:00"));
    EXPECT_THAT(sound.output, HasSubstr("nothing is wrong"));
    {
        std::fstream file(Store(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(std::filesystem::file_size(Store()) / 2));
        file << std::string(3000, 'x');
    }
    const Outcome damaged = Run({"check-store", "--store", Store()});
    EXPECT_EQ(damaged.status, 1) << damaged.output << damaged.errors;
    EXPECT_THAT(damaged.output, HasSubstr("s.zrlog: "));
    EXPECT_THAT(damaged.output, testing::Not(HasSubstr("nothing is wrong")));
    m_folder.Write("s.zrlog", "this is no store, and never was one; it is long enough to be looked at as one");
    const Outcome foreign = Run({"check-store", "--store", Store()});
    EXPECT_EQ(foreign.status, 2) << foreign.output;
    EXPECT_THAT(foreign.errors, HasSubstr("s.zrlog: is no store of logged data"));
    EXPECT_THAT(Export().errors, HasSubstr("s.zrlog: is no store of logged data"));
    EXPECT_THAT(Import("time,p\n1041379200,1\n").errors, HasSubstr("s.zrlog: is no store of logged data"));
}

TEST_F(CsvCommandsTest, ProgressIsShownOnATerminalOnly)
{
    std::string text = "time,p\n";
    for (int i = 0; i < 20000; ++i) {
        text += std::to_string(1041379200 + i) + ",1\n";
    }
    EXPECT_EQ(Import(text).errors, "");
    const std::string command = std::string(ZR_KESTRIXD) + " import '" + (m_folder / "t.csv").string() +
                                "' --dataset mains --map p=M.P --store '" + Store() + "'";
    Process terminal({"script", "-qec", command, "/dev/null"}, Environment());
    EXPECT_EQ(terminal.WaitForExit(), 0) << terminal.Output();
    EXPECT_THAT(terminal.Output(), HasSubstr("Importing "));
    EXPECT_THAT(terminal.Output(), HasSubstr("100 %"));
    EXPECT_THAT(terminal.Output(), HasSubstr("20,000 rows"));
}

TEST_F(CsvCommandsTest, HelpTellsOfTheCommands)
{
    const Outcome help = Run({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* command : {"import", "export", "check-store"}) {
        EXPECT_THAT(help.output, HasSubstr(command));
        const Outcome own = Run({command, "--help"});
        EXPECT_EQ(own.status, 0);
        EXPECT_THAT(own.output, HasSubstr("--store"));
        EXPECT_THAT(own.output, HasSubstr("Exit status"));
    }
}

}  // namespace
}  // namespace zr::test
