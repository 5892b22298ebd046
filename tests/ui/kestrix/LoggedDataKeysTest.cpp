#include "hosts/kestrix/ui/UiTexts.h"
#include "LoggedDataFixture.h"

#include <QAction>
#include <QClipboard>
#include <QHeaderView>
#include <QMimeData>
#include <QPrintDialog>
#include <QScrollBar>
#include <QShortcut>
#include <QTimer>

namespace zr::desktop {
namespace {

// Keys that are pressed where the focus is, as the user's are.
class LoggedDataKeysTest : public LoggedDataFixture {
protected:
    void OpenOnAll()
    {
        StartWithData();
        m_window = OpenFor(u"METER-1");
        ASSERT_NE(m_window, nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window));
        ShowAll(*m_window);
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window));
        ASSERT_EQ(List().GetItemCount(), kRecords);
    }
    // The window has the keys again before the next one is pressed, as a user waits for it.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window));
        ASSERT_EQ(QApplication::focusWidget(), &List());
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    CVirtualListCtrl& List() { return LoggedDataFixture::List(*m_window); }
    int Row() { return List().currentIndex().row(); }
    int Selected()
    {
        int rows = 0;
        for (const auto& [first, last] : List().GetSelectedRanges()) {
            rows += last - first + 1;
        }
        return rows;
    }

    QPointer<LoggedDataWindow> m_window;
};

TEST_F(LoggedDataKeysTest, LeftAndRightGoBackAndOnAgainAndAgain)
{
    OpenOnAll();
    Press(Qt::Key_Left);
    const ZRDateTime before = m_window->Window().dateFrom;
    for (int i = 0; i < 3; ++i) {
        Press(Qt::Key_Left);
        EXPECT_LT(m_window->Window().dateFrom, before) << i;
        Press(Qt::Key_Right);
        EXPECT_EQ(m_window->Window().dateFrom, before) << i;
    }
    Press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_GT(m_window->Window().dateFrom, before);
    Press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(m_window->Window().dateFrom, before);
}

TEST_F(LoggedDataKeysTest, RightStaysWhereThereIsNoLaterWindow)
{
    OpenOnAll();
    while (ui::FindControl(*m_window, logger::kCommandNext)->isEnabled()) {
        Press(Qt::Key_Right);
    }
    const ZRDateTime last = m_window->Window().dateFrom;
    Press(Qt::Key_Right);
    EXPECT_EQ(m_window->Window().dateFrom, last);
}

TEST_F(LoggedDataKeysTest, PageKeysAndArrowsMoveThroughTheRows)
{
    OpenOnAll();
    m_window->resize(700, 300);
    Settle();
    const ZRDateTime shown = m_window->Window().dateFrom;
    Press(Qt::Key_Down);
    Press(Qt::Key_Down);
    EXPECT_EQ(Row(), 2);
    Press(Qt::Key_Up);
    EXPECT_EQ(Row(), 1);
    Press(Qt::Key_PageDown);
    const int page = Row() - 1;
    EXPECT_GT(page, 2);
    EXPECT_LT(page, kRecords / 2);
    Press(Qt::Key_PageUp);
    EXPECT_EQ(Row(), 1);
    Press(Qt::Key_End);
    EXPECT_EQ(Row(), kRecords - 1);
    EXPECT_EQ(List().verticalScrollBar()->value(), List().verticalScrollBar()->maximum());
    Press(Qt::Key_PageDown);
    EXPECT_EQ(Row(), kRecords - 1);
    Press(Qt::Key_Home);
    EXPECT_EQ(Row(), 0);
    Press(Qt::Key_PageDown, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), page + 1);
    Press(Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), kRecords);
    Press(Qt::Key_End);
    EXPECT_EQ(Selected(), 1);
    EXPECT_EQ(List().GetSelectedRanges().at(0).first, kRecords - 1);
    Press(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(Row(), 0);
    EXPECT_EQ(List().GetSelectedRanges().at(0).first, kRecords - 1);
    EXPECT_EQ(m_window->Window().dateFrom, shown);  // none of them is a command
}

TEST_F(LoggedDataKeysTest, MovesThroughTheRowsOfTheWindowThatAnArrowLedTo)
{
    OpenOnAll();
    Press(Qt::Key_End);
    Press(Qt::Key_Left);
    EXPECT_EQ(List().GetItemCount(), 0);
    Press(Qt::Key_Down);
    Press(Qt::Key_PageDown);
    EXPECT_EQ(Row(), -1);
    Press(Qt::Key_Right);
    ASSERT_EQ(List().GetItemCount(), kRecords);
    EXPECT_EQ(Selected(), 0);
    Press(Qt::Key_Down);
    EXPECT_EQ(Row(), 1);
}

TEST_F(LoggedDataKeysTest, SelectsAllAndCopiesIt)
{
    OpenOnAll();
    Press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Selected(), kRecords);
    Press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().count(u'\n'), kRecords + 1);
    EXPECT_TRUE(QApplication::clipboard()->mimeData()->hasHtml());
    Press(Qt::Key_Home);
    EXPECT_EQ(Selected(), 1);
    // The other key that copies does the same, and not what a list would do by itself.
    for (const auto& [key, modifier] :
         {std::pair(Qt::Key_C, Qt::ControlModifier), std::pair(Qt::Key_Insert, Qt::ControlModifier)}) {
        QApplication::clipboard()->setText("before");
        Press(key, modifier);
        EXPECT_EQ(QApplication::clipboard()->text().count(u'\n'), 2) << key;
    }
}

TEST_F(LoggedDataKeysTest, PrintsByItsKey)
{
    OpenOnAll();
    bool wasAsked = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        if (auto* const dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget()); dialog != nullptr) {
            wasAsked = true;
            dialog->reject();
        }
    });
    look.start(0);
    Press(Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(wasAsked);
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(LoggedDataKeysTest, ScrollsSidewaysWithCtrl)
{
    OpenOnAll();
    List().horizontalHeader()->resizeSection(1, 900);
    List().horizontalHeader()->resizeSection(2, 900);
    Settle();
    const ZRDateTime shown = m_window->Window().dateFrom;
    const QScrollBar& bar = *List().horizontalScrollBar();
    ASSERT_GT(bar.maximum(), 0);
    Press(Qt::Key_Right, Qt::ControlModifier);
    const int once = bar.value();
    EXPECT_GT(once, 0);
    for (int i = 0; i < 100 && bar.value() < bar.maximum(); ++i) {
        Press(Qt::Key_Right, Qt::ControlModifier);
    }
    EXPECT_EQ(bar.value(), bar.maximum());
    Press(Qt::Key_Left, Qt::ControlModifier);
    EXPECT_LT(bar.value(), bar.maximum());
    EXPECT_EQ(m_window->Window().dateFrom, shown);
    EXPECT_EQ(Selected(), 0);
}

TEST_F(LoggedDataKeysTest, TheListOfKeysHasEveryKey)
{
    OpenOnAll();
    std::vector<QString> keys;
    for (const QAction* const action : m_frame->findChildren<QAction*>()) {
        keys.push_back(action->shortcut().toString(QKeySequence::PortableText));
    }
    for (const QWidget* const window : {static_cast<QWidget*>(m_frame.get()), static_cast<QWidget*>(m_window)}) {
        for (const QShortcut* const shortcut : window->findChildren<QShortcut*>()) {
            keys.push_back(shortcut->key().toString(QKeySequence::PortableText));
        }
    }
    EXPECT_GT(keys.size(), 20U);
    QStringList listed;
    for (const QString& line : LoadText(kTextKeys).split('\n')) {
        listed += line.section('\t', 0, 0).split(", ");
    }
    const QList<QKeySequence> copies = QKeySequence::keyBindings(QKeySequence::Copy);
    for (const QString& key : keys) {
        // Of those that copy one is enough.
        if (!key.isEmpty() && (key == "Ctrl+C" || !copies.contains(QKeySequence(key)))) {
            EXPECT_TRUE(listed.contains(key)) << key.toStdString();
        }
    }
}

// A million texts would be made to find none.
TEST_F(LoggedDataKeysTest, LettersMoveNowhere)
{
    OpenOnAll();
    Press(Qt::Key_End);
    for (const Qt::Key key : {Qt::Key_M, Qt::Key_2, Qt::Key_0}) {
        Press(key);
        EXPECT_EQ(Row(), kRecords - 1);
    }
}

TEST_F(LoggedDataKeysTest, ClosesByEscape)
{
    OpenOnAll();
    Press(Qt::Key_Escape);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(m_window.isNull());
}

}  // namespace
}  // namespace zr::desktop
