// A window on the logged data of a device or a group.
#pragma once

#include "hosts/kestrix/LoggedDataSettings.h"
#include "hosts/kestrix/TableExport.h"
#include "logger/ui/ZRVirtualLoggerDataExplorer.h"

#include <filesystem>

class ZRVirtualLoggerDataGraphicViewer;

namespace zr::desktop {

class StatusLine;

inline constexpr unsigned kLoggedExport = 33202;
inline constexpr unsigned kLoggedGraph = 33203;
inline constexpr unsigned kLoggedTable = 33204;
inline constexpr unsigned kLoggedStatus = 33210;

// The explorer with buttons to copy, print and export, keys for its commands, and a line that tells how many records of
// which time are shown, how they were reduced, and what could not be read. Goes when it is closed. UI thread only.
class LoggedDataWindow : public ZRVirtualLoggerDataExplorer {
public:
    // name: of the device or group. settings: of this name, kept when the window closes; may be null, is not owned and
    // must outlive the window.
    LoggedDataWindow(QWidget* parent, const ZRBasicString& name, LoggedDataSettings::View* settings);
    ~LoggedDataWindow() override;

    // The viewer that was in use last, else the table, on the unit and period that the user chose last. Blocks while
    // data are loaded.
    void Open(const ZRLoggerInfo& info);
    // Table or graph, by the number of the viewer. Records that are at hand for the window of time are not read again:
    // both show the same ones until the user asks for a new reading or another window.
    void ShowAs(int kind);
    // The records shown, whether as table or as graph. By the extension: .csv, .xlsx or .pdf, in small or capital
    // letters. False after the user was told why not, or has stopped it. Blocks.
    bool ExportTo(const std::filesystem::path& file);
    [[nodiscard]] QString Status() const;

    bool InitializeToolBar() override;

protected:
    void OnShown() override;
    void OnSize(int width, int height) override;
    void OnDestroy() override;
    bool OnCommand(unsigned id, unsigned code, QWidget* from) override;
    bool OnNotify(const ui::NMHDR& notice) override;

private:
    void MakeShortcuts();
    void AskWhereToExport();
    void Copy();
    // False with the reason; without one when the user has stopped it.
    bool Export(const std::filesystem::path& file, std::string& reason);
    bool ExportPages(const std::filesystem::path& file, std::string& reason);
    [[nodiscard]] ExportedTable Table();
    [[nodiscard]] ZRDateTimeSpan PeriodShown();
    [[nodiscard]] QString PeriodText();
    // Null while it isn't shown.
    [[nodiscard]] ZRVirtualLoggerDataGraphicViewer* GraphViewer() const;
    // Of the graph, where it is zoomed in; else empty.
    [[nodiscard]] QString ZoomText();
    [[nodiscard]] QString RecordsText();
    // Into the list of warnings, once for each failure.
    void TellFailure(const std::string& failure);

    ZRBasicString m_name;
    LoggedDataSettings::View* m_settings;
    StatusLine* m_status;  // Owned by Qt.
    std::string m_toldFailure;
};

}  // namespace zr::desktop
