// The explorer of logged data: what it holds and decides, without the window.
#pragma once

#include "logger/ExplorerMenus.h"
#include "logger/LoggerWindow.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/Progress.h"
#include "siblings/tools/XmlDocument.h"

#include <functional>
#include <memory>
#include <optional>

namespace zr::logger {

inline constexpr int kNoViewer = 0;
inline constexpr int kGraphViewer = 1;
inline constexpr int kTableViewer = 2;

// Whether a viewer that takes the place of another gets data that are read for it.
enum class Reading {
    Anew,
    // Not where those at hand are of the window and period in force, and complete.
    WhereNeeded,
};

// What the explorer asks of the viewer that fills it. UI thread only.
class ExplorerViewer {
public:
    // New variables; the node is that of the viewer settings and outlives the viewer.
    virtual void Setup(const ZRLoggerInfo& info, XmlNode* node) = 0;
    // New data for a window of time, `to` exclusive; the group is good until SetInvalidData(true).
    virtual void Update(const ZRDateTime& from, const ZRDateTime& to, const ZRDateTimeSpan& period, int groupBy,
                        const ZRLoggerData::CRecordGroup& group) = 0;
    virtual void ClipboardCopy() = 0;
    // Lets the user change what is shown; true: the data have to be loaded anew.
    virtual bool OnConfig() = 0;
    // Fills info with the variables that are to be logged.
    virtual void GetLoggerInfo(ZRLoggerInfo& info) = 0;
    // With true, nothing of the data may be touched until the next Update.
    virtual void SetInvalidData(bool invalid) = 0;

protected:
    ~ExplorerViewer() = default;
};

// One window of logged time in one viewer. UI thread only, but for what RunLoad runs.
//
// Setup, then SelectViewer, then any command. The commands of the window of time are those of Window().
class LoggerExplorer final : private LoggerWindow::Host {
public:
    // The window around it. Not owned; must outlive this.
    class Host {
    public:
        // A viewer of that kind, made but hidden, in the room that the toolbar leaves; null for a kind that there
        // isn't. Owned by the host until DestroyViewer.
        virtual ExplorerViewer* CreateViewer(int viewer) = 0;
        // Its window goes, upon which it keeps its settings, and it goes itself.
        virtual void DestroyViewer() = 0;
        virtual void ShowViewer(bool visible) = 0;
        // Runs the work on a thread of its own, under a modal dialog that shows its progress, and returns when the work
        // is over and the dialog closed. The work must not begin before the dialog is there. Blocks.
        virtual void RunLoad(const std::function<void(Progress&)>& work) = 0;
        // What the automatic period stands for. May be overridden by a derived explorer; forward to
        // LoggerExplorer::AutomaticPeriodOf otherwise.
        virtual ZRDateTimeSpan GetSamplePeriodIfAutomatic(unsigned groupBy) = 0;
        // See LoggerWindow::Host.
        virtual void ShowMessage(unsigned text) = 0;
        virtual bool ChooseDate(const COleDateTime& offered, ZRDateTime& chosen) = 0;

    protected:
        ~Host() = default;
    };

    explicit LoggerExplorer(Host& host);
    LoggerExplorer(const LoggerExplorer&) = delete;
    LoggerExplorer& operator=(const LoggerExplorer&) = delete;
    // The host has destroyed the viewer before.
    ~LoggerExplorer() = default;

    // The variables to show, and where the host keeps the number of the viewer in use (may be null, is not owned). The
    // window of time becomes the present week at 30 minutes; nothing is loaded yet.
    void Setup(const ZRLoggerInfo& info, int* selectedViewer);

    // Nothing for the one in force. Otherwise that viewer takes the place of the one before, which keeps its settings,
    // and the data are loaded; a kind that there isn't leaves none.
    void SelectViewer(int viewer, Reading reading = Reading::Anew);
    [[nodiscard]] int SelectedViewer() const { return m_selectedViewer; }
    // Takes the viewer away when the window goes; SelectedViewer() and the host's variable stay.
    void DestroyViewer();

    // See LoggerWindow::SetupData.
    void SetupData(const ZRDateTime& date, int groupBy, const ZRDateTimeSpan& period, bool force);
    // Runs the viewer's dialog, and on OK sets up and loads anew with the variables that it then asks for.
    void OnConfig();
    void OnEditCopy();
    // Any command of the toolbar, the menus and the keyboard; false for one that isn't the explorer's. One that isn't
    // enabled does nothing.
    bool OnCommand(unsigned command);
    // All want a viewer and no load under way; Next wants a window that has ended as well.
    [[nodiscard]] bool IsEnabled(unsigned command) const;

    [[nodiscard]] ExplorerMenu GroupByMenu() const { return logger::GroupByMenu(m_window.groupBy); }
    [[nodiscard]] ExplorerMenu PeriodMenu() const { return logger::PeriodMenu(m_window.samplePeriod); }
    // The sub-menu of a drop-down button; false for one that isn't the explorer's.
    bool DropDownMenu(unsigned command, ExplorerMenu& menu) const;

    // By the variables of the data.
    [[nodiscard]] ZRDateTimeSpan AutomaticPeriodOf(unsigned groupBy) const;

    [[nodiscard]] LoggerWindow& Window() { return m_window; }
    [[nodiscard]] const LoggerWindow& Window() const { return m_window; }
    // The tree of viewer settings, whose root is "main"; for a host to load before the first viewer, and to save.
    [[nodiscard]] XmlDocument& Config() { return m_config; }
    // Null before Setup.
    [[nodiscard]] ZRLoggerData* Data() { return m_data.get(); }
    // Null when there is none.
    [[nodiscard]] ExplorerViewer* Viewer() { return m_viewer; }

private:
    // The window's host.
    void Load(bool select) override;
    ZRDateTimeSpan GetSamplePeriodIfAutomatic(unsigned groupBy) override;
    void ShowMessage(unsigned text) override { m_host.ShowMessage(text); }
    bool ChooseDate(const COleDateTime& offered, ZRDateTime& chosen) override;

    void NewData(const ZRLoggerInfo& info);
    // Hands the viewer the records of the window at a period, reading what isn't there.
    void UpdateViewer(const ZRDateTimeSpan& period);
    [[nodiscard]] ZRDateTimeSpan PeriodInForce();
    [[nodiscard]] bool IsLoaded();

    // What the last load has read to its end.
    struct Loaded {
        ZRDateTime from;
        ZRDateTime to;
        ZRDateTimeSpan period;
    };

    Host& m_host;
    LoggerWindow m_window;
    ExplorerViewer* m_viewer = nullptr;  // Owned by the host.
    std::unique_ptr<ZRLoggerData> m_data;
    std::optional<Loaded> m_loaded;  // none where the last load was stopped or failed
    XmlDocument m_config;
    int* m_selectedViewerPtr = nullptr;  // Not owned.
    int m_selectedViewer = kNoViewer;
    bool m_isLoading = false;
};

}  // namespace zr::logger
