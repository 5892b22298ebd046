// An explorer on the logged data of a meter, on 15 January 2003.
#pragma once

#include "logger/ui/ZRVirtualLoggerDataExplorer.h"
#include "logger/ui/ZRVirtualLoggerDataGraphicViewer.h"
#include "logger/ui/ZRVirtualLoggerDataTableViewer.h"
#include "platform/ui/AfxMessageBox.h"
#include "platform/ui/Clipboard.h"
#include "platform/ui/Images.h"
#include "siblings/tools/ui/CDlgProgress.h"
#include "support/ManualClock.h"
#include "ui/logger/StoreWithGate.h"
#include "ui/support/KeepPicture.h"
#include "unit/logger/LoggedFixture.h"

#include <QApplication>
#include <QDialog>
#include <QHeaderView>
#include <QTest>
#include <QTimer>
#include <QToolButton>

namespace zr::logger {

// With what a test looks at and drives.
class ExplorerWindow : public ZRVirtualLoggerDataExplorer {
public:
    ExplorerWindow() : ZRVirtualLoggerDataExplorer(nullptr) {}
    ~ExplorerWindow() override { OnDestroy(); }

    using ZRVirtualLoggerDataExplorer::menuBitmaps;
    using ZRVirtualLoggerDataExplorer::ToolBar;

    void CreateViewer(int kind) override
    {
        if (kind == kTableViewer && profileDialog) {
            viewer = std::make_unique<ZRVirtualLoggerDataTableViewer>(profileDialog);
            return;
        }
        if (kind == kGraphViewer && graphDialog) {
            viewer = std::make_unique<ZRVirtualLoggerDataGraphicViewer>(graphDialog);
            return;
        }
        ZRVirtualLoggerDataExplorer::CreateViewer(kind);
    }
    void OnShown() override { ++shown; }
    bool OnNotify(const ui::NMHDR& notice) override
    {
        graphShown += notice.idFrom == ui::kGraphId && notice.code == ui::GRN_SHOWN ? 1 : 0;
        return ZRVirtualLoggerDataExplorer::OnNotify(notice);
    }

    LoggerTable::ProfileDialog profileDialog;
    LoggerGraph::ProfileDialog graphDialog;
    int shown = 0;
    int graphShown = 0;
};

class ExplorerFixture : public LoggedFixture {
protected:
    ExplorerFixture()
    {
        ui::SetImageFolder(ZR_RESOURCES "/images");
        SetLoggerStore(&gate);
        ui::SetMessageBoxHook([this](const std::u16string& text, unsigned style) {
            messages.push_back(Utf16ToUtf8(ZRBasicString(text)));
            styles.push_back(style);
            return static_cast<int>(ui::IDOK);
        });
    }
    ~ExplorerFixture() override
    {
        ui::SetModalHook(nullptr);
        ui::SetClipboardHook(nullptr);
        ui::SetMessageBoxHook(nullptr);
        QApplication::closeAllWindows();
    }

    // The explorer with its table on the present week, on the screen.
    void Open(const std::vector<ZRBasicString>& variables = {u"M.U", u"M.E", u"M.PF"})
    {
        window.Create(nullptr);
        window.Setup(Info(variables), &selected);
        window.SelectViewer(kTableViewer);
        window.resize(760, 420);
        window.show();
        QApplication::processEvents();
    }
    // The week from 30 December 2002 on, every record.
    void OpenWeek()
    {
        Open();
        window.SetupData(Date(6, 1, 2003), kGroupByWeek, kEveryRecord, false);
    }

    ZRVirtualLoggerDataTableViewer& Viewer() { return dynamic_cast<ZRVirtualLoggerDataTableViewer&>(*window.Viewer()); }
    CVirtualListCtrl& List() { return *Viewer().List(); }
    std::string Cell(int row, int column) { return Utf16ToUtf8(ZRBasicString(List().GetItemText(row, column))); }
    std::string Title(int column)
    {
        return List().model()->headerData(column, Qt::Horizontal).toString().toStdString();
    }
    void ClickButton(unsigned id) { QTest::mouseClick(ui::FindControl(window, id), Qt::LeftButton); }
    // The menu that is open; null for none.
    static CMenu* OpenMenu() { return dynamic_cast<CMenu*>(QApplication::activePopupWidget()); }
    // Drops the menu of a button and clicks an entry of it.
    void Choose(unsigned button, unsigned entry)
    {
        ClickButton(button);
        CMenu* const menu = OpenMenu();
        ASSERT_NE(menu, nullptr);
        QAction* const action = menu->FindItem(entry);
        ASSERT_NE(action, nullptr);
        QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(action).center());
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    // Prints, and cancels the dialog of the printer.
    void ExpectNothingPrintedWhenCancelled()
    {
        bool wasAsked = false;
        QTimer::singleShot(0, &window, [&] {
            auto* const dialog = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            wasAsked = true;
            dialog->reject();
        });
        ui::SendCommand(&window, ui::ID_FILE_PRINT, 0, nullptr);
        EXPECT_TRUE(wasAsked);
        EXPECT_TRUE(messages.empty());
    }
    static ZRDateTimeSpan Minutes(int minutes) { return {minutes * 60, 0}; }

    test::ManualClock clock{std::chrono::sys_days(std::chrono::year(2003) / std::chrono::January / 15) +
                            std::chrono::hours(12)};
    StoreWithGate gate{store};
    std::vector<std::string> messages;
    std::vector<unsigned> styles;
    int selected = -1;
    ExplorerWindow window;
};

}  // namespace zr::logger
