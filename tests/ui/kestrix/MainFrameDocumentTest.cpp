// The main window and its document: opened, read again, changed, saved.
#include "DesktopFixture.h"

#include <filesystem>

namespace zr::desktop {
namespace {

class MainFrameDocumentTest : public DesktopFixture {};

TEST_F(MainFrameDocumentTest, OpensAnotherDocument)
{
    Start();
    const auto other = m_folder.Write("other.xml", Document("A-1", "A-2"));
    ASSERT_TRUE(m_frame->OpenDocument(other));
    EXPECT_EQ(ShownNode(), u"A-1");
    EXPECT_EQ(m_frame->windowTitle(), "other.xml - Kestrix");
    EXPECT_FALSE(m_frame->ShowDevice(u"METER-1"));
}

TEST_F(MainFrameDocumentTest, TellsWhereADocumentCannotBeReadAndKeepsTheOldOne)
{
    Start();
    const auto bad = m_folder.Write("bad.xml", "<Kestrix>\n<Broken\n</Kestrix>");
    EXPECT_FALSE(m_frame->OpenDocument(bad));
    ASSERT_EQ(m_asked.size(), 1u);
    EXPECT_NE(m_asked[0].find(u"bad.xml"), std::u16string::npos);
    EXPECT_NE(m_asked[0].find(u"Line "), std::u16string::npos);
    EXPECT_FALSE(m_frame->OpenDocument(m_folder / "none.xml"));
    EXPECT_EQ(m_asked.size(), 2u);
    EXPECT_EQ(ShownNode(), u"METER-1");
}

TEST_F(MainFrameDocumentTest, TellsWhyADocumentCannotBeTakenAndKeepsTheOldOne)
{
    Start();
    const auto other = m_folder.Write("other.xml", Document("A-1", "A-2"));
    // Whoever may write there could hold any lock.
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_folder / "run")) {
        if (entry.is_directory()) {
            std::filesystem::permissions(entry.path(), std::filesystem::perms::all);
        }
    }
    EXPECT_FALSE(m_frame->OpenDocument(other));
    ASSERT_EQ(m_asked.size(), 1u);
    EXPECT_NE(m_asked[0].find(u"other.xml"), std::u16string::npos);
    EXPECT_NE(m_asked[0].find(u"open to others"), std::u16string::npos);
    EXPECT_EQ(ShownNode(), u"METER-1");
}

TEST_F(MainFrameDocumentTest, ReloadShowsTheDocumentAsItIsNowAndStaysOnThePage)
{
    Start();
    m_frame->ShowDevice(u"METER-2");
    m_folder.Write("plant.xml", Document("METER-9", "METER-2"));
    Command(kCmdReload);
    EXPECT_EQ(ShownNode(), u"METER-2");
    EXPECT_TRUE(m_frame->ShowDevice(u"METER-9"));
}

TEST_F(MainFrameDocumentTest, ARenamedGroupIsSavedWithTheDocument)
{
    Start();
    m_frame->Tree().topLevelItem(0)->setText(0, QStringLiteral("Cellar"));
    EXPECT_EQ(m_frame->windowTitle(), "*plant.xml - Kestrix");
    Command(kCmdSave);
    EXPECT_EQ(m_frame->windowTitle(), "plant.xml - Kestrix");
    XmlDocument saved;
    ASSERT_TRUE(saved.Load(m_document));
    EXPECT_NE(saved.root->Node(u"DeviceGroups/Groups/Group?Id=Cellar?"), nullptr);
}

TEST_F(MainFrameDocumentTest, AGroupKeepsItsNameWhenNothingIsTyped)
{
    Start();
    m_frame->Tree().topLevelItem(0)->setText(0, QStringLiteral("  "));
    EXPECT_EQ(m_frame->Tree().topLevelItem(0)->text(0), "North");
    EXPECT_FALSE(m_supervisor->IsModified());
}

TEST_F(MainFrameDocumentTest, UnsavedChangesAreAskedForOnQuit)
{
    Start();
    m_frame->Tree().topLevelItem(0)->setText(0, QStringLiteral("Cellar"));
    m_answer = static_cast<int>(ui::IDCANCEL);
    EXPECT_FALSE(m_frame->close());
    EXPECT_EQ(m_asked.size(), 1u);
    m_answer = ui::IDYES;
    EXPECT_TRUE(m_frame->close());
    XmlDocument saved;
    ASSERT_TRUE(saved.Load(m_document));
    EXPECT_NE(saved.root->Node(u"DeviceGroups/Groups/Group?Id=Cellar?"), nullptr);
}

TEST_F(MainFrameDocumentTest, ReloadAsksBeforeItLosesChanges)
{
    Start();
    m_frame->Tree().topLevelItem(0)->setText(0, QStringLiteral("Cellar"));
    m_answer = ui::IDNO;
    EXPECT_FALSE(m_frame->ReloadDocument());
    EXPECT_TRUE(m_supervisor->IsModified());
    m_answer = ui::IDYES;
    EXPECT_TRUE(m_frame->ReloadDocument());
    EXPECT_EQ(m_frame->Tree().topLevelItem(0)->text(0), "North");
}

TEST_F(MainFrameDocumentTest, TellsWhyADocumentCannotBeSaved)
{
    Start();
    EXPECT_FALSE(m_frame->SaveDocumentAs(m_folder / "none" / "copy.xml"));
    ASSERT_EQ(m_asked.size(), 1u);
    EXPECT_NE(m_asked[0].find(u"copy.xml"), std::u16string::npos);
}

TEST_F(MainFrameDocumentTest, SaveAsGoesOverToTheCopy)
{
    Start();
    ASSERT_TRUE(m_frame->SaveDocumentAs(m_folder / "copy.xml"));
    EXPECT_EQ(m_frame->windowTitle(), "copy.xml - Kestrix");
    EXPECT_EQ(m_supervisor->Options().document, m_folder / "copy.xml");
}

}  // namespace
}  // namespace zr::desktop
