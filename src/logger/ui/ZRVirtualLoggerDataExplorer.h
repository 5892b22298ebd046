// The window in which logged data are explored.
#pragma once

#include "logger/LoggerExplorer.h"
#include "logger/ui/ZRVirtualLoggerDataViewer.h"
#include "platform/ui/CCmdUI.h"
#include "platform/ui/CMenu.h"
#include "platform/ui/CReBar.h"
#include "platform/ui/CToolBar.h"
#include "siblings/support/ui/ZRPrintPreviewDialog.h"

#include <array>
#include <functional>
#include <memory>
#include <QPixmap>
#include <span>

class CDlgProgress;

namespace zr::ui {

inline constexpr unsigned kExplorerDialog = 167;

}  // namespace zr::ui

// Modeless. A viewer fills it, a toolbar stands below. See zr::logger::LoggerExplorer for what its commands do.
//
// Create, Setup, SelectViewer, then show; the order of the first two may be either. A host derives from it and adds
// buttons by the More... operations. The window stays alive while data are loaded; closed meanwhile, it ends the load
// and goes when that is over, as it does when a command with a dialog is. It must not be deleted while either runs. UI
// thread only.
class ZRVirtualLoggerDataExplorer : public ZRPrintPreviewDialog {
public:
    explicit ZRVirtualLoggerDataExplorer(QWidget* parent);
    ~ZRVirtualLoggerDataExplorer() override;

    // The window with its toolbar. False when it has been created.
    bool Create(QWidget* parent);

    // Each: see LoggerExplorer.
    virtual void Setup(const ZRLoggerInfo& info, int* selectedViewer);
    // Makes a viewer of that kind in `viewer`: 1 is the graph, 2 the table, others leave it null.
    virtual void CreateViewer(int kind);
    // Fills the toolbar. True.
    virtual bool InitializeToolBar();
    // For further buttons; true each. A drop-down button of the host was pushed:
    virtual bool MoreDropDown(int command);
    // It is to fill its menu for the chevron; false: it has none.
    virtual bool MoreChevron(CMenu& menu, int command);
    // Pictures at menu size for the buttons behind the explorer's own.
    virtual bool MoreBitmaps(unsigned images, std::span<QPixmap> bitmaps);
    // See LoggerPeriod.
    virtual ZRDateTimeSpan GetSamplePeriodIfAutomatic(unsigned groupBy);

    // Unit and period for the first load; the automatic period where they don't go together. Before SelectViewer.
    void SetPeriod(int groupBy, const ZRDateTimeSpan& period);
    void SelectViewer(int kind, zr::logger::Reading reading = zr::logger::Reading::Anew);
    [[nodiscard]] int SelectedViewer() const { return m_explorer.SelectedViewer(); }
    void SetupData(const ZRDateTime& date, int groupBy, const ZRDateTimeSpan& period, bool force);
    // Reads the data of the window anew.
    void Reload();

    void OnPrevious() { RunCommand(zr::logger::kCommandPrevious); }
    void OnNext() { RunCommand(zr::logger::kCommandNext); }
    void OnGoTo() { RunCommand(zr::logger::kCommandGoTo); }
    void OnGroupByMenuItem(unsigned id) { RunCommand(id); }
    void OnPeriodMenuItem(unsigned id) { RunCommand(id); }
    void OnConfig() { RunCommand(zr::logger::kCommandConfig); }
    void OnEditCopy() { RunCommand(zr::logger::kCommandCopy); }
    // Whether there is a later window.
    void UpdateNext(CCmdUI* cmdUI);

    // Of five buttons and those of MoreBitmaps, from a strip of pictures.
    void CreateMenuBitmaps(unsigned images);
    // The units, and the sample periods, with a mark at the one in force. True.
    bool CreateGroupByMenu(CMenu& menu);
    bool CreatePeriodMenu(CMenu& menu);

    [[nodiscard]] const zr::logger::LoggerWindow& Window() const { return m_explorer.Window(); }
    // The tree of viewer settings; complete once the window is closed.
    [[nodiscard]] XmlDocument& Config() { return m_explorer.Config(); }
    // Null before Setup.
    [[nodiscard]] ZRLoggerData* Data() { return m_explorer.Data(); }
    [[nodiscard]] ZRVirtualLoggerDataViewer* Viewer() const { return viewer.get(); }
    // Null but while data are loaded, or a host's work runs.
    [[nodiscard]] CDlgProgress* Loading() const { return m_loading; }
    // Whether the user has stopped the last load, so that not all may be there.
    [[nodiscard]] bool WasLoadStopped() const { return m_wasLoadStopped; }

protected:
    bool OnPreparePrinting(CPrintInfo* info) override;
    void OnBeginPrinting(CDC* dc, CPrintInfo* info) override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    void OnEndPrinting(CDC* dc, CPrintInfo* info) override;

    // What is shown has changed: another window of time, other data, another viewer.
    virtual void OnShown() {}
    // The viewer gets all but the toolbar's height at the bottom.
    virtual void OnSize(int width, int height);
    // The window goes: the viewer keeps its settings. Once.
    virtual void OnDestroy();
    // Runs work on a thread of its own, under a modal dialog of that title, and returns when it is over. It may read
    // the records shown. False when the user has stopped it. Blocks; the window stays alive.
    bool RunUnderProgress(unsigned title, const std::function<void(zr::Progress&)>& work);
    // Behind such work: the window goes where it was closed meanwhile.
    void CloseIfAsked();
    // Runs a command of the explorer, if it is enabled.
    void RunCommand(unsigned command);
    // Enables the buttons.
    void UpdateCommands();
    [[nodiscard]] CToolBar& ToolBar() { return m_toolBar; }

    bool OnCommand(unsigned id, unsigned code, QWidget* from) override;
    bool OnNotify(const zr::ui::NMHDR& notice) override;
    // Like the close box.
    void OnCancel() override { close(); }
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

    // Owned; null while there is none.
    std::unique_ptr<ZRVirtualLoggerDataViewer> viewer;
    std::array<QPixmap, 32> menuBitmaps;  // of the buttons; nothing draws them yet

private:
    class Host;

    void RunLoad(const std::function<void(zr::Progress&)>& work);
    bool ChooseDate(const COleDateTime& offered, ZRDateTime& chosen);
    void OnDropDown(int command);
    void OnChevronPushed(const QRect& chevron);
    void DropMenu(unsigned command, const std::function<bool(CMenu&)>& fill);
    void ShowNow();

    std::unique_ptr<Host> m_host;
    zr::logger::LoggerExplorer m_explorer;
    CReBar m_reBar;
    CToolBar m_toolBar;
    CDlgProgress* m_loading = nullptr;
    bool m_isCreated = false;
    bool m_isDestroyed = false;
    bool m_isPrinting = false;
    bool m_isInCommand = false;
    bool m_closesLater = false;
    bool m_wasLoadStopped = false;
};
