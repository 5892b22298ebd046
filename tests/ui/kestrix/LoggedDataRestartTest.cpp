#include "LoggedDataFixture.h"

#include <fstream>
#include <iterator>
#include <QHeaderView>
#include <string>

namespace zr::desktop {
namespace {

using logger::kTableViewer;

// What is there again when the program is started anew.
class LoggedDataRestartTest : public LoggedDataFixture {
protected:
    // The main window as the program makes it.
    void Restart()
    {
        m_frame.reset();
        Open();
        m_frame->KeepLoggedDataSettings(m_file);
    }
    LoggedDataWindow* OpenAgain(const wchar* device)
    {
        Restart();
        LoggedDataWindow* const window = OpenFor(device);
        EXPECT_NE(window, nullptr);
        return window;
    }
    // The settings of one meter's window with that content of its tree.
    void WriteTree(const std::string& tree, const std::string& viewer = "2")
    {
        m_folder.Write("windows.xml", "<LoggedDataWindows Version=\"1\"><Window Name=\"North&#10;METER-1\" Viewer=\"" +
                                          viewer + "\"><main>" + tree + "</main></Window></LoggedDataWindows>");
    }
    std::string Bytes() const
    {
        std::ifstream stream(m_file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::vector<std::string> Warnings()
    {
        m_frame->UpdateAll();
        std::vector<std::string> told;
        for (int i = 0; i < ZRDebugInfo::Get().Size(); ++i) {
            const std::string text = Utf16ToUtf8(ZRDebugInfo::Get().WarningStr(i));
            if (text.find("arrangement") != std::string::npos) {
                told.push_back(text);
            }
        }
        return told;
    }

    std::filesystem::path m_file = m_folder / "windows.xml";
};

TEST_F(LoggedDataRestartTest, ColumnsStandWhereTheUserLeftThem)
{
    StartWithData();
    LoggedDataWindow* window = OpenAgain(u"METER-1");
    List(*window).horizontalHeader()->resizeSection(2, 187);
    List(*window).SetColumnOrder(2, 1);
    ASSERT_NE(OpenFor(u"METER-2"), nullptr);  // which is left as it is
    window = OpenAgain(u"METER-1");
    EXPECT_EQ(List(*window).GetColumnWidth(2), 187);
    EXPECT_EQ(List(*window).GetColumnOrder(2), 1);
    EXPECT_EQ(List(*OpenFor(u"METER-2")).GetColumnWidth(1), 100);
    EXPECT_TRUE(Warnings().empty());
}

TEST_F(LoggedDataRestartTest, AreKeptWhenTheWindowClosesAndNotOnlyAtTheEnd)
{
    StartWithData();
    LoggedDataWindow* const window = OpenAgain(u"METER-1");
    List(*window).horizontalHeader()->resizeSection(1, 143);
    EXPECT_EQ(Bytes(), "");
    window->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_NE(Bytes().find("Width=\"143\""), std::string::npos) << Bytes();
}

TEST_F(LoggedDataRestartTest, TheViewerInUseIsThatOfLastTime)
{
    StartWithData();
    LoggedDataWindow* window = OpenAgain(u"METER-1");
    EXPECT_EQ(window->SelectedViewer(), kTableViewer);
    const int graph = logger::kGraphViewer;
    window->SelectViewer(graph);
    const bool hasGraph = window->Viewer() != nullptr;
    Restart();
    EXPECT_NE(Bytes().find("Viewer=\"1\""), std::string::npos) << Bytes();
    window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->SelectedViewer(), hasGraph ? graph : kTableViewer);
    EXPECT_NE(window->Viewer(), nullptr);
}

TEST_F(LoggedDataRestartTest, AViewerThatThereIsNotGivesTheTable)
{
    StartWithData();
    for (const char* const viewer : {"0", "57", "99"}) {
        m_frame.reset();
        WriteTree("", viewer);
        LoggedDataWindow* const window = OpenAgain(u"METER-1");
        EXPECT_EQ(window->SelectedViewer(), kTableViewer) << viewer;
        EXPECT_EQ(List(*window).GetColumnCount(), 3) << viewer;
    }
    EXPECT_TRUE(Warnings().empty());
}

TEST_F(LoggedDataRestartTest, ADamagedFileIsPutAsideWithAWarning)
{
    StartWithData();
    m_folder.Write("windows.xml", "<LoggedDataWindows Version=\"1\">\n<Window");
    LoggedDataWindow* const window = OpenAgain(u"METER-1");
    EXPECT_EQ(List(*window).GetColumnWidth(2), 100);
    ASSERT_EQ(Warnings().size(), 1U);
    EXPECT_NE(Warnings()[0].find("windows.xml.damaged1"), std::string::npos) << Warnings()[0];
    EXPECT_TRUE(m_asked.empty());
    EXPECT_TRUE(std::filesystem::exists(m_folder / "windows.xml.damaged1"));
    Restart();
    EXPECT_NE(Bytes().find("METER-1.U1"), std::string::npos);
}

TEST_F(LoggedDataRestartTest, TellsOnceThatTheyCannotBeKept)
{
    StartWithData();
    m_file = m_folder.Write("file", "") / "windows.xml";
    Restart();
    for (int i = 0; i < 2; ++i) {
        LoggedDataWindow* const window = OpenFor(u"METER-1");
        ASSERT_NE(window, nullptr);
        window->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    EXPECT_EQ(Warnings().size(), 1U);
}

// Of every kind of nonsense: the window opens with its columns, they can be seen and moved, and it closes.
TEST_F(LoggedDataRestartTest, NumbersThatMakeNoSenseDoNoHarm)
{
    StartWithData();
    const std::string vars = "<Vars><Var Name=\"METER-1.U1\"/><Var Name=\"METER-1.U2\"/></Vars>";
    const auto setup = [](const std::string& index, const std::string& width) {
        return "<VarSetup Var=\"METER-1.U1\" Index=\"" + index + "\" Width=\"" + width + "\"/>";
    };
    const std::string other = "<VarSetup Var=\"METER-1.U2\" Index=\"0\" Width=\"120\"/>";
    std::string doubled;
    for (int i = 0; i < 50; ++i) {
        doubled += vars + "<Table>" + setup("-1", "50") + other + other + "</Table>";
    }
    const std::vector<std::string> trees = {
        "",
        vars,
        vars + "<Table/>",
        vars + "<Table><VarSetup Var=\"METER-1.U1\"/>" + other + "</Table>",
        vars + "<Table><VarSetup/>" + other + "</Table>",
        vars + "<Table>" + setup("-1", "-1") + other + "</Table>",
        vars + "<Table>" + setup("2147483647", "2147483647") + other + "</Table>",
        vars + "<Table>" + setup("-2147483648", "-2147483648") + other + "</Table>",
        vars + "<Table>" + setup("99999999999999999999", "99999999999999999999") + other + "</Table>",
        vars + "<Table>" + setup("0", "abc") + other + "</Table>",
        vars + "<Table>" + setup("", "") + other + "</Table>",
        vars + "<Table>" + setup("1e9", "0x10") + setup("7", "77") + other + "</Table>",
        "<Vars><Var/><Var Name=\"\"/><Other Name=\"METER-1.U1\"/></Vars><Table>" + other + "</Table>",
        "<Vars><Var Name=\"METER-1.U1\"/><Var Name=\"METER-1.U1\"/></Vars><Table>" + setup("5", "60") + "</Table>",
        "<Vars><Var Name=\"GONE.U1\"/><Var Name=\"a?b/c\"/></Vars><Table><VarSetup Var=\"GONE.U1\" "
        "Index=\"-5\"/></Table>",
        doubled,
    };
    for (const std::string& tree : trees) {
        m_frame.reset();
        WriteTree(tree);
        LoggedDataWindow* const window = OpenAgain(u"METER-1");
        ShowAll(*window);
        CVirtualListCtrl& list = List(*window);
        EXPECT_EQ(list.GetItemCount(), kRecords) << tree;
        EXPECT_EQ(list.GetColumnCount(), 3) << tree;
        std::vector<bool> isTaken(3, false);
        for (int column = 0; column < list.GetColumnCount(); ++column) {
            EXPECT_GE(list.GetColumnWidth(column), 0) << tree;
            EXPECT_LE(list.GetColumnWidth(column), 32767) << tree;
            ASSERT_LT(static_cast<unsigned>(list.GetColumnOrder(column)), isTaken.size()) << tree;
            isTaken[static_cast<std::size_t>(list.GetColumnOrder(column))] = true;
        }
        EXPECT_EQ(isTaken, std::vector<bool>(3, true)) << tree;
        Settle();
        list.horizontalHeader()->resizeSection(1, 90);
        list.horizontalHeader()->resizeSection(2, 91);
        window->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    EXPECT_TRUE(Warnings().empty());
    LoggedDataWindow* const window = OpenAgain(u"METER-1");
    EXPECT_EQ(List(*window).GetColumnWidth(1), 90);
    EXPECT_EQ(List(*window).GetColumnWidth(2), 91);
}

}  // namespace
}  // namespace zr::desktop
