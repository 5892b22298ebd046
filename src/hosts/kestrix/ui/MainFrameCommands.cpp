// What the main window does on a command.
#include "dde/LinkText.h"
#include "diagnostics/DiagnosticsIds.h"
#include "diagnostics/ui/CDebugDlgBar.h"
#include "hosts/kestrix/LoggedVariables.h"
#include "hosts/kestrix/ui/Commands.h"
#include "hosts/kestrix/ui/InfoDlg.h"
#include "hosts/kestrix/ui/LoggedDataWindow.h"
#include "hosts/kestrix/ui/MainFrame.h"
#include "hosts/kestrix/ui/PageSetupDlg.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/FileReplace.h"
#include "platform/ui/AfxMessageBox.h"
#include "platform/ui/Images.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/tools/Utf.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QScrollArea>
#include <QStatusBar>
#include <system_error>

namespace zr::desktop {
namespace {

constexpr int kStatusTime = 6000;  // ms

ZRBasicString FileText(const std::filesystem::path& path)
{
    return Utf8ToUtf16(TextOfPath(path));
}

void Tell(const QString& text)
{
    AfxMessageBox(ui::FromQt(text), ui::MB_OK | ui::MB_ICONEXCLAMATION);
}

void WarnOfSettings(unsigned message, const std::string& problem)
{
    const ZRBasicString reason = Utf8ToUtf16(problem);
    PostNotice(DeviceWarning::SettingsLost, {}, reason, FromQt(FilledText(message, {reason})));
}

// Whether the document can be read; the user is told why it can't.
bool CheckReadable(const std::filesystem::path& document)
{
    XmlDocument read;
    if (read.Load(document)) {
        return true;
    }
    const XmlError& error = read.Error();
    const ZRBasicString reason = Utf8ToUtf16(error.reason);
    const ZRBasicString file = FileText(document);
    Tell(error.line != 0 ? FilledText(kTextErrorRead, {file, error.line, reason})
                         : FilledText(kTextErrorOpen, {file, reason}));
    return false;
}

}  // namespace

bool MainFrame::OnCommand(unsigned id, unsigned code, QWidget* from)
{
    switch (id) {
        case kCmdOpen:
            AskForDocument();
            return true;
        case kCmdReload:
            ReloadDocument();
            return true;
        case kCmdSave:
            SaveDocument();
            return true;
        case kCmdSaveAs:
            AskWhereToSave();
            return true;
        case kCmdPageSetup:
            AskForPageSetup();
            return true;
        case kCmdPrint:
            PrintShownPage();
            return true;
        case kCmdQuit:
            close();
            return true;
        case kCmdKeys:
            std::unique_ptr<CDialog>(NewKeysDialog())->DoModal();
            return true;
        case kCmdAbout:
            std::unique_ptr<CDialog>(NewAboutDialog())->DoModal();
            return true;
        case kCmdNextPane:
            NextPane();
            return true;
        case kCmdLoggedData:
            OpenLoggedData(m_tree->SelectedNode());
            return true;
        case kCmdRenameGroup:
            m_tree->EditSelectedGroup();
            return true;
        default:
            return OnLinkCommand(id) || OnViewCommand(id) || CFrameWnd::OnCommand(id, code, from);
    }
}

bool MainFrame::OnViewCommand(unsigned id)
{
    switch (id) {
        case kCmdLanguageSystem:
            UseLanguage("");
            return true;
        case kCmdLanguageEnglish:
            UseLanguage("en");
            return true;
        case kCmdLanguageGerman:
            UseLanguage("de");
            return true;
        case kCmdLanguageSpanish:
            UseLanguage("es");
            return true;
        case kCmdColoursSystem:
        case kCmdColoursLight:
        case kCmdColoursDark:
            ChooseColours(static_cast<Colours>(id - kCmdColoursSystem));
            return true;
        case kCmdWarnings:
        case kBarClosedCommand:
            m_settings.showsWarnings = id == kCmdWarnings && !m_settings.showsWarnings;
            ShowControlBar(m_warnings.get(), m_settings.showsWarnings);
            break;
        case kCmdToolbar:
            m_settings.showsToolbar = !m_settings.showsToolbar;
            m_toolbar->setVisible(m_settings.showsToolbar);
            break;
        case kCmdStatusBar:
            m_settings.showsStatusBar = !m_settings.showsStatusBar;
            statusBar()->setVisible(m_settings.showsStatusBar);
            break;
        default:
            return false;
    }
    CheckItems();
    return true;
}

bool MainFrame::OnLinkCommand(unsigned id)
{
    if (id < kCmdLinkReference || id > kCmdForgetMark) {
        return false;
    }
    const std::optional<ValueRef>& value = m_strip->Value();
    if (!value) {
        return true;
    }
    const std::u16string service(Utf8ToUtf16(m_supervisor.Options().serviceName).Text());
    switch (id) {
        case kCmdLinkReference:
            Copy(ui::ToQt(dde::LinkReference(service, value->device, value->name)));
            break;
        case kCmdLinkFunction:
            Copy(ui::ToQt(dde::LinkFunction(service, value->device, value->name)));
            break;
        case kCmdLinkName:
            Copy(ToQt(value->device + u"." + value->name));
            break;
        case kCmdCopyValue:
            Copy(m_strip->ValueText());
            break;
        default:
            if (DeviceWatch* const watch = m_watch->Find(value->device); watch != nullptr) {
                watch->Forget(value->variable);
                UpdateAll();
            }
            break;
    }
    return true;
}

void MainFrame::Copy(const QString& text)
{
    QApplication::clipboard()->setText(text);
    statusBar()->showMessage(FilledText(kTextCopied, {FromQt(text)}), kStatusTime);
}

QMenu* MakeLinkMenu(QWidget* target, const DeviceWatch&)
{
    auto* const menu = new CMenu(target, u"");
    const auto add = [menu](unsigned command, unsigned text) { menu->AppendMenu(command, ui::FromQt(LoadText(text))); };
    add(kCmdLinkReference, kTextLinkSpreadsheet);
    add(kCmdLinkFunction, kTextLinkFunction);
    add(kCmdLinkName, kTextLinkReference);
    menu->AppendSeparator();
    add(kCmdCopyValue, kTextCopyValue);
    add(kCmdForgetMark, kTextHistoryForget);
    return menu;
}

void MainFrame::ShowLinkMenu(QPoint place)
{
    const DeviceWatch* const watch = m_strip->Value() ? m_watch->Find(m_strip->Value()->device) : nullptr;
    if (watch != nullptr) {
        QMenu* const menu = MakeLinkMenu(this, *watch);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        menu->popup(place);
    }
}

// Tree, page, warnings, and round again.
void MainFrame::NextPane()
{
    QWidget* const warnings = m_warnings->isVisible() ? m_warnings->GetDlgItem(kWarningList) : nullptr;
    QWidget* const focus = focusWidget();
    const bool isInTree = focus == m_tree || m_tree->isAncestorOf(focus);
    const bool isInPage = m_page != nullptr && focus != nullptr && m_page->isAncestorOf(focus);
    if (isInTree && m_page != nullptr) {
        for (QWidget* next = m_page->nextInFocusChain(); next != m_page; next = next->nextInFocusChain()) {
            if (m_page->isAncestorOf(next) && (next->focusPolicy() & Qt::TabFocus) != 0 && next->isVisible()) {
                next->setFocus(Qt::TabFocusReason);
                return;
            }
        }
    }
    if ((isInTree || isInPage) && warnings != nullptr) {
        warnings->setFocus(Qt::TabFocusReason);
        return;
    }
    m_tree->setFocus(Qt::TabFocusReason);
}

bool MainFrame::AskAboutChanges()
{
    if (!m_supervisor.IsModified()) {
        return true;
    }
    const QString question = FilledText(kTextAskSave, {FileText(m_supervisor.Options().document)});
    switch (AfxMessageBox(ui::FromQt(question), ui::MB_YESNOCANCEL | ui::MB_ICONQUESTION)) {
        case ui::IDYES:
            return SaveDocument();
        case ui::IDNO:
            return true;
        default:
            return false;
    }
}

bool MainFrame::Adopt(const std::filesystem::path& document)
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool good = m_supervisor.Open(document);
    QApplication::restoreOverrideCursor();
    if (!good) {
        Tell(FilledText(kTextErrorOpen, {FileText(document), Utf8ToUtf16(m_supervisor.LockProblem())}));
    }
    ShowBanner();
    ShowStatus();
    ShowWarnings();
    return good;
}

bool MainFrame::OpenDocument(const std::filesystem::path& document)
{
    if (!AskAboutChanges() || !CheckReadable(document)) {
        return false;
    }
    return Adopt(document);
}

bool MainFrame::ReloadDocument()
{
    const std::filesystem::path document = m_supervisor.Options().document;
    if (m_supervisor.IsModified()) {
        const QString question = FilledText(kTextAskReload, {FileText(document)});
        if (AfxMessageBox(ui::FromQt(question), ui::MB_YESNO | ui::MB_ICONQUESTION | ui::MB_DEFBUTTON2) != ui::IDYES) {
            return false;
        }
    }
    if (!CheckReadable(document) || !Adopt(document)) {
        return false;
    }
    statusBar()->showMessage(FilledText(kTextStatusReloaded, {FileText(document)}), kStatusTime);
    return true;
}

bool MainFrame::SaveDocument()
{
    const std::filesystem::path document = m_supervisor.Options().document;
    if (!m_supervisor.Save()) {
        const ZRBasicString reason = Utf8ToUtf16(m_supervisor.Document().Error().reason);
        Tell(FilledText(kTextErrorSave, {FileText(document), reason}));
        return false;
    }
    ShowTitle();
    statusBar()->showMessage(FilledText(kTextStatusSaved, {FileText(document)}), kStatusTime);
    return true;
}

// The copy becomes the document, under its own lock.
bool MainFrame::SaveDocumentAs(const std::filesystem::path& document)
{
    XmlDocument copy(m_supervisor.Document());
    copy.SetFileName(FileText(document).CStr());
    if (!copy.Save()) {
        Tell(FilledText(kTextErrorSave, {FileText(document), Utf8ToUtf16(copy.Error().reason)}));
        return false;
    }
    return Adopt(document);
}

void MainFrame::AskForDocument()
{
    const QString filter =
        QStringLiteral("%1 (*.xml);;%2 (*)").arg(LoadText(kTextFilterDocuments), LoadText(kTextFilterAllFiles));
    std::error_code ignored;  // the folder that the program was started in may be gone
    const std::filesystem::path shown = std::filesystem::absolute(m_supervisor.Options().document, ignored);
    const QString folder = ui::ToQt(FileText(shown.parent_path()));
    const QString file = QFileDialog::getOpenFileName(this, LoadText(kTextTitleOpen), folder, filter);
    if (!file.isEmpty()) {
        OpenDocument(PathFromText(ui::FromQt(file)));
    }
}

void MainFrame::AskWhereToSave()
{
    const QString filter =
        QStringLiteral("%1 (*.xml);;%2 (*)").arg(LoadText(kTextFilterDocuments), LoadText(kTextFilterAllFiles));
    const QString file = QFileDialog::getSaveFileName(this, LoadText(kTextTitleSave),
                                                      ToQt(FileText(m_supervisor.Options().document)), filter);
    if (!file.isEmpty()) {
        SaveDocumentAs(PathFromText(ui::FromQt(file)));
    }
}

void MainFrame::AskForPageSetup()
{
    PageSetupDlg dialog(this, m_settings);
    if (dialog.DoModal() == static_cast<int>(ui::IDOK)) {
        m_settings = dialog.Settings();
    }
}

void MainFrame::PrintShownPage()
{
    if (m_page != nullptr && !PrintPage(*m_page, m_settings, this)) {
        Tell(LoadText(kTextErrorPrint));
    }
}

LoggedDataWindow* MainFrame::OpenLoggedData(std::size_t node)
{
    const DeviceTree& tree = m_tree->Tree();
    if (node >= tree.Size()) {
        return nullptr;
    }
    LoggedDataView& view = m_loggedData[tree.PathOf(node)];
    if (view.window == nullptr) {
        const ZRLoggerInfo info = LoggedVariables(tree.DevicesOf(node));
        const ZRBasicString name = FromQt(m_tree->NodeText(node));
        if (info.variables.empty()) {
            Tell(FilledText(kTextLoggedNone, {name}));
            return nullptr;
        }
        view.window = new LoggedDataWindow(nullptr, name, &m_loggedDataSettings.Of(tree.PathOf(node)));
        connect(view.window, &QObject::destroyed, this, [this] { StoreLoggedDataSettings(); });
        view.window->show();
        view.window->Open(info);
    }
    if (view.window != nullptr) {
        view.window->raise();
        view.window->activateWindow();
    }
    return view.window;
}

// They read from the store, which goes with the registry.
void MainFrame::CloseLoggedData(bool reopen)
{
    for (auto& [path, view] : m_loggedData) {
        view.reopens = reopen && view.window != nullptr;
        if (view.window != nullptr) {
            delete view.window;
        }
    }
}

void MainFrame::KeepLoggedDataSettings(const std::filesystem::path& file)
{
    std::string problem;
    if (!m_loggedDataSettings.Load(file, problem)) {
        WarnOfSettings(kMessageArrangementLost, problem);
    }
}

// Once for each reason: they are stored with every window that closes.
void MainFrame::StoreLoggedDataSettings()
{
    std::string problem;
    if (m_loggedDataSettings.Store(problem)) {
        problem.clear();
    } else if (problem != m_toldNotKept) {
        WarnOfSettings(kMessageArrangementNotKept, problem);
    }
    m_toldNotKept = problem;
}

void MainFrame::ReopenLoggedData()
{
    for (auto& [path, view] : m_loggedData) {
        const auto node = m_tree->Tree().FindPath(path);
        if (std::exchange(view.reopens, false) && node) {
            OpenLoggedData(*node);
        }
    }
}

CDialog* MainFrame::NewAboutDialog()
{
    const QString text = FilledText(kTextAbout, {ZRBasicString(u"" ZR_VERSION)});
    return new InfoDlg(this, LoadText(kTextTitleAbout), text, ui::NamedImage(QStringLiteral("kestrix")));
}

CDialog* MainFrame::NewKeysDialog()
{
    return new InfoDlg(this, LoadText(kTextTitleKeys), LoadText(kTextKeys), ui::NamedImage(QStringLiteral("keys")));
}

}  // namespace zr::desktop
