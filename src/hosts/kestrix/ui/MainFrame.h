// The main window.
#pragma once

#include "hosts/kestrix/DesktopSettings.h"
#include "hosts/kestrix/LoggedDataPage.h"
#include "hosts/kestrix/LoggedDataSettings.h"
#include "hosts/kestrix/PlantWatch.h"
#include "hosts/kestrix/ui/DeviceTreeView.h"
#include "hosts/kestrix/ui/PageView.h"
#include "hosts/kestrix/ui/SelectionStrip.h"
#include "hosts/supervision/Supervisor.h"
#include "platform/ui/CFrameWnd.h"
#include "platform/ui/CMenu.h"
#include "platform/ui/CToolBar.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <QPointer>
#include <QTimer>
#include <QTranslator>
#include <string>

class CDebugDlgBar;
class QLabel;
class QScrollArea;
class QSplitter;
class QToolButton;

namespace zr::desktop {

class LoggedDataWindow;

// Tree at the left, page in the middle with the strip of the selected value below it, warnings at the bottom, menu,
// toolbar and status bar. Shows the registry of a supervisor that has loaded its document. UI thread only.
class MainFrame : public CFrameWnd {
public:
    // Not owned; must outlive this. The settings are kept up to date; the host stores them.
    MainFrame(supervision::Supervisor& supervisor, DesktopSettings& settings);
    ~MainFrame() override;

    // The devices go, and new ones are there.
    void RegistryGoes();
    void RegistryCame();

    // Reads everything once; the frame does so by itself four times a second once Run was called.
    void UpdateAll();
    void Run();

    // Each asks about unsaved changes first, and tells the user of a failure. False when nothing was done.
    bool OpenDocument(const std::filesystem::path& document);
    bool ReloadDocument();
    bool SaveDocument();
    bool SaveDocumentAs(const std::filesystem::path& document);

    // Texts, numbers and dates; the title of a language file, empty for that of the system.
    bool UseLanguage(const std::string& language);
    void ChooseColours(Colours colours);

    // Shows the page of the device; false when there is none.
    bool ShowDevice(const ZRBasicString& device);
    bool ShowNode(std::size_t node);
    // A window on the logged data of a device or a group, beside those that are open; the one of that node comes to the
    // front where there is one. Null, after the user was told, where nothing is recorded.
    LoggedDataWindow* OpenLoggedData(std::size_t node);
    // From now on the arrangement of those windows is kept in that file, from which it is taken first. A file that
    // isn't fit is put aside with a warning.
    void KeepLoggedDataSettings(const std::filesystem::path& file);
    [[nodiscard]] DeviceTreeView& Tree() const { return *m_tree; }
    // Null while nothing is selected in the tree.
    [[nodiscard]] PageView* Page() const { return m_page; }
    [[nodiscard]] const PlantWatch& Watch() const { return *m_watch; }
    [[nodiscard]] bool ShowsBanner() const;
    // Window place, page and bars into the settings.
    void KeepSettings();
    // Ends all message loops, also those of dialogs. Windows go with the main window: what is loaded or printed
    // meanwhile ends at its next step.
    static void EndProgram();
    // The language of the system among those that there are texts for.
    [[nodiscard]] static std::string SystemLanguage();
    // A new dialog of the help menu; not owned.
    [[nodiscard]] CDialog* NewAboutDialog();
    [[nodiscard]] CDialog* NewKeysDialog();

protected:
    bool OnCommand(unsigned id, unsigned code, QWidget* from) override;
    bool OnMessage(unsigned message, std::uintptr_t wParam, std::intptr_t lParam) override;
    bool OnNotify(const ui::NMHDR& notice) override;
    void closeEvent(QCloseEvent* event) override;

private:
    // Of the parts that have colours of their own.
    void TakeColours();
    void MakeCentre();
    void MakeBanner();
    void MakeMenus();
    void MakeFileMenu();
    void MakeViewMenu();
    void MakeHelpMenu();
    void MakeToolbar();
    void MakeStatusBar();
    void MakeWarningBar();
    void MakeShortcuts();
    // The texts of the dialogs that are Qt's own, where the machine has them.
    void LoadQtTexts();
    // Everything that holds texts, anew.
    void Translate();
    void CheckItems();

    // Tree and page, away and anew; what is known of the devices since the start stays.
    void LeaveRegistry();
    void ShowRegistry();
    void ShowPage();
    [[nodiscard]] PageView* NewPage(std::size_t node);
    [[nodiscard]] LoggedDataPage LoggedData() const;
    void ShowLoggedData();
    void SetPage(PageView* page);
    void RestorePage();
    void ShowSelection();
    void ShowLinkMenu(QPoint place);
    void ShowBanner();
    void ShowTitle();
    void ShowStatus();
    void ShowWarnings();
    void ShowDeviceOfWarning(int index);
    void NextPane();
    // Those that are open, to be opened anew with the next registry where reopen is set.
    void CloseLoggedData(bool reopen);
    void ReopenLoggedData();
    void StoreLoggedDataSettings();

    // False when the user wants to stay.
    bool AskAboutChanges();
    bool Adopt(const std::filesystem::path& document);
    void AskForDocument();
    void AskWhereToSave();
    void AskForPageSetup();
    void PrintShownPage();
    bool OnLinkCommand(unsigned id);
    bool OnViewCommand(unsigned id);
    void Copy(const QString& text);

    supervision::Supervisor& m_supervisor;
    DesktopSettings& m_settings;
    std::unique_ptr<PlantWatch> m_watch;
    QTranslator m_qtTexts;

    // By the path of the node: the window while it is open, which owns itself.
    struct LoggedDataView {
        QPointer<LoggedDataWindow> window;
        bool reopens = false;
    };
    std::map<ZRBasicString, LoggedDataView> m_loggedData;
    LoggedDataSettings m_loggedDataSettings;
    std::string m_toldNotKept;

    // Owned by Qt.
    QSplitter* m_splitter = nullptr;
    DeviceTreeView* m_tree = nullptr;
    QScrollArea* m_scroll = nullptr;
    QLabel* m_empty = nullptr;  // shown instead of a page
    PageView* m_page = nullptr;
    SelectionStrip* m_strip = nullptr;
    QFrame* m_banner = nullptr;
    QLabel* m_bannerText = nullptr;
    QToolButton* m_bannerRetry = nullptr;
    CMenu* m_file = nullptr;
    CMenu* m_view = nullptr;
    CMenu* m_help = nullptr;
    CMenu* m_language = nullptr;
    CMenu* m_colours = nullptr;
    CToolBar* m_toolbar = nullptr;
    QLabel* m_statusDevices = nullptr;
    QLabel* m_statusValues = nullptr;
    QLabel* m_statusPublished = nullptr;
    QLabel* m_statusWarnings = nullptr;
    std::unique_ptr<CDebugDlgBar> m_warnings;

    std::size_t m_shownNode = DeviceTree::kNone;
    int m_warningsShown = -1;
    QTimer m_timer;
    bool m_isFilling = false;
};

}  // namespace zr::desktop
