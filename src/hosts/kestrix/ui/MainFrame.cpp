#include "hosts/kestrix/ui/MainFrame.h"

#include "diagnostics/DiagnosticsIds.h"
#include "diagnostics/ui/CDebugDlgBar.h"
#include "hosts/kestrix/ui/Commands.h"
#include "hosts/kestrix/ui/DevicePageView.h"
#include "hosts/kestrix/ui/GroupPageView.h"
#include "hosts/kestrix/ui/LoggedDataPageView.h"
#include "hosts/kestrix/ui/LoggedDataWindow.h"
#include "hosts/kestrix/ui/Theme.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/FileReplace.h"

#include <algorithm>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QToolButton>
#include <utility>
#include <vector>

namespace zr::desktop {
namespace {

constexpr std::chrono::milliseconds kUpdatePeriod{250};
constexpr const wchar* kProfile = u"Main";  // of the warning bar's sizes

WindowPlace PlaceOf(const QRect& rect)
{
    return {rect.left(), rect.top(), rect.width(), rect.height(), false};
}

// The first one first.
std::vector<WindowPlace> Screens()
{
    std::vector<WindowPlace> places{PlaceOf(QGuiApplication::primaryScreen()->availableGeometry())};
    for (const QScreen* const screen : QGuiApplication::screens()) {
        places.push_back(PlaceOf(screen->availableGeometry()));
    }
    return places;
}

}  // namespace

MainFrame::MainFrame(supervision::Supervisor& supervisor, DesktopSettings& settings)
    : m_supervisor(supervisor), m_settings(settings)
{
    LoadQtTexts();
    MakeCentre();
    MakeMenus();
    MakeToolbar();
    MakeStatusBar();
    MakeWarningBar();
    MakeShortcuts();
    const WindowPlace place = FitToScreens(settings.window, Screens());
    setGeometry(place.left, place.top, place.width, place.height);
    if (place.isMaximised) {
        setWindowState(windowState() | Qt::WindowMaximized);
    }
    const int wanted = settings.treeWidth > 0 ? settings.treeWidth : m_tree->sizeHint().width();
    const int tree = std::min(wanted, place.width / 2);  // the page is what the window is for
    m_splitter->setSizes({tree, place.width - tree});
    RegistryCame();
    connect(&m_timer, &QTimer::timeout, this, [this] {
        // Nothing moves below the line that follows the mouse. The bar is asked, since a drag that another window ends
        // isn't told of.
        if (QWidget::mouseGrabber() != m_warnings.get()) {
            UpdateAll();
        }
    });
}

MainFrame::~MainFrame()
{
    m_timer.stop();
    CloseLoggedData(false);
    m_isFilling = true;
    SetPage(nullptr);
}

void MainFrame::Run()
{
    m_timer.start(kUpdatePeriod);
}

void MainFrame::RegistryGoes()
{
    if (m_watch != nullptr) {
        CloseLoggedData(true);
        LeaveRegistry();
        m_watch.reset();
    }
}

void MainFrame::RegistryCame()
{
    m_watch = std::make_unique<PlantWatch>();
    ShowRegistry();
    ReopenLoggedData();
}

void MainFrame::LeaveRegistry()
{
    m_settings.page = m_shownNode != DeviceTree::kNone ? m_tree->Tree().PathOf(m_shownNode) : ZRBasicString();
    m_isFilling = true;
    SetPage(nullptr);
    m_tree->Show({});
    m_isFilling = false;
}

void MainFrame::ShowRegistry()
{
    m_watch->Update(ZRDebugInfo::Get(), m_supervisor.IsOurs());
    ZRMainCfg& document = m_supervisor.Document();
    m_isFilling = true;
    DeviceTree tree(document.root != nullptr ? document.root->Node(u"DeviceGroups") : nullptr, m_watch->Names());
    if (!m_watch->Names().empty()) {
        tree.AddLoggedData();
    }
    m_tree->Show(tree);
    m_tree->UpdateStates(*m_watch);
    ShowLoggedData();
    m_isFilling = false;
    RestorePage();
    ShowBanner();
    ShowTitle();
    ShowStatus();
    ShowWarnings();
}

// The page shown last, else that of the first device.
void MainFrame::RestorePage()
{
    const DeviceTree& tree = m_tree->Tree();
    if (!m_settings.page.IsEmpty()) {
        if (const auto node = tree.FindPath(m_settings.page); node && ShowNode(*node)) {
            return;
        }
    }
    for (std::size_t node = 0; node < tree.Size(); ++node) {
        if (tree[node].kind == DeviceTree::Kind::Device) {
            ShowNode(node);
            return;
        }
    }
    SetPage(nullptr);
}

void MainFrame::UpdateAll()
{
    m_supervisor.TakeNotices();
    if (m_watch == nullptr) {
        return;
    }
    m_watch->Update(ZRDebugInfo::Get(), m_supervisor.IsOurs());
    m_tree->UpdateStates(*m_watch);
    ShowLoggedData();
    if (m_page != nullptr) {
        m_page->UpdateValues();
    }
    m_strip->UpdateValue();
    ShowStatus();
    ShowWarnings();
}

bool MainFrame::ShowNode(std::size_t node)
{
    if (node >= m_tree->Tree().Size()) {
        return false;
    }
    m_tree->SelectNode(node);
    return m_shownNode == node;
}

bool MainFrame::ShowDevice(const ZRBasicString& device)
{
    const auto node = m_tree->Tree().FindDevice(device);
    return node && ShowNode(*node);
}

// Of what is selected in the tree.
void MainFrame::ShowPage()
{
    const std::size_t node = m_tree->SelectedNode();
    if (m_watch == nullptr || node == DeviceTree::kNone) {
        SetPage(nullptr);
        return;
    }
    if (node == m_shownNode && m_page != nullptr) {
        return;
    }
    SetPage(NewPage(node));
    m_shownNode = node;
}

PageView* MainFrame::NewPage(std::size_t node)
{
    const DeviceTree::Node& shown = m_tree->Tree()[node];
    if (shown.kind == DeviceTree::Kind::Device) {
        const DeviceWatch* const watch = m_watch->Find(shown.text);
        return watch != nullptr ? new DevicePageView(m_scroll, *watch) : nullptr;
    }
    if (shown.kind == DeviceTree::Kind::LoggedData) {
        return new LoggedDataPageView(m_scroll, [this] { return LoggedData(); });
    }
    const bool isOthers = shown.kind == DeviceTree::Kind::OtherDevices;
    auto* const page =
        new GroupPageView(m_scroll, *m_watch, isOthers ? LoadText(kTextTreeOtherDevices) : ToQt(shown.text),
                          m_tree->Tree().DevicesOf(node));
    page->OnDevice([this](const ZRBasicString& device) {
        // The page is in the middle of its event.
        QTimer::singleShot(0, this, [this, device] { ShowDevice(device); });
    });
    return page;
}

LoggedDataPage MainFrame::LoggedData() const
{
    const ZRBasicString other = m_supervisor.IsOurs() ? ZRBasicString() : Utf8ToUtf16(m_supervisor.OtherProgram());
    return MakeLoggedDataPage(m_supervisor.Recording().Status(), other);
}

void MainFrame::ShowLoggedData()
{
    const LoggedDataPage page = LoggedData();
    m_tree->UpdateLoggedData(page.badge, ToQt(page.state));
}

void MainFrame::SetPage(PageView* page)
{
    m_strip->Show(std::nullopt, nullptr);
    m_shownNode = DeviceTree::kNone;
    if (m_page != nullptr) {
        // At once, since the devices may go next; not from within one of its own events.
        delete m_scroll->takeWidget();
    }
    m_page = page;
    if (m_page != nullptr) {
        m_page->OnSelection([this] { ShowSelection(); });
        m_page->OnMenu([this](QPoint place) { ShowLinkMenu(place); });
        m_scroll->setWidget(m_page);
        m_page->UpdateValues();
    }
    m_scroll->setVisible(m_page != nullptr);
    m_strip->setVisible(m_page != nullptr && m_page->HasValues());
    m_empty->setVisible(m_page == nullptr);
    const bool hasDevices = m_watch != nullptr && !m_watch->Names().empty();
    m_empty->setText(LoadText(hasDevices ? kTextPageNothingSelected : kTextPageNoDevices));
}

void MainFrame::ShowSelection()
{
    const std::optional<ValueRef>& value = m_page->Selection();
    m_strip->Show(value, value ? m_watch->Find(value->device) : nullptr);
}

void MainFrame::ShowTitle()
{
    const QString file = ToQt(Utf8ToUtf16(TextOfPath(m_supervisor.Options().document.filename())));
    const QString mark = m_supervisor.IsModified() ? QStringLiteral("*") : QString();
    setWindowTitle(FilledText(kTextWindowTitle, {FromQt(mark + file)}));
}

void MainFrame::ShowStatus()
{
    const supervision::Summary summary = supervision::Summarise();
    const int online = m_watch != nullptr ? m_watch->OnLine() : 0;
    m_statusDevices->setText(summary.devices == 1 ? FilledText(kTextStatusOneDevice, {online})
                                                  : FilledText(kTextStatusDevices, {summary.devices, online}));
    m_statusValues->setText(FilledText(kTextStatusValues, {summary.valid, summary.variables}));
    supervision::Publication& publication = m_supervisor.Publication();
    const ZRBasicString service = Utf8ToUtf16(m_supervisor.Options().serviceName);
    m_statusPublished->setText(publication.IsRunning()
                                   ? FilledText(kTextStatusPublished, {service, publication.Count().links})
                                   : LoadText(kTextStatusNotPublished));
    const auto warnings = summary.warnings;
    m_statusWarnings->setText(warnings == 0   ? LoadText(kTextStatusNoWarnings)
                              : warnings == 1 ? LoadText(kTextStatusOneWarning)
                                              : FilledText(kTextStatusWarnings, {warnings}));
}

void MainFrame::ShowWarnings()
{
    if (m_warnings != nullptr && ZRDebugInfo::Get().Size() != m_warningsShown) {
        m_warningsShown = ZRDebugInfo::Get().Size();
        m_warnings->UpdateWarningList();
    }
}

void MainFrame::ShowBanner()
{
    const bool isElsewhere = !m_supervisor.IsOurs();
    m_banner->setVisible(isElsewhere);
    if (isElsewhere) {
        const ZRBasicString program = Utf8ToUtf16(m_supervisor.OtherProgram());
        m_bannerText->setText(FilledText(kMessageSupervised, {m_supervisor.OtherProcess(), program}));
        m_bannerRetry->setText(LoadText(kTextReadAgain));
    }
}

bool MainFrame::ShowsBanner() const
{
    return m_banner->isVisibleTo(this);
}

// That of the device, or of the first device on the connection that the warning is about.
void MainFrame::ShowDeviceOfWarning(int index)
{
    if (index < 0 || index >= ZRDebugInfo::Get().Size()) {
        return;
    }
    const ZRBasicString name = ZRDebugInfo::Get().Name(index);
    if (ShowDevice(name)) {
        return;
    }
    for (const ZRBasicString& device : m_watch->Names()) {
        const ZRDeviceConnection* const connection = ZRCommSystem::Get().ConnectionOfDriver(device);
        if (connection != nullptr && connection->name == name) {
            ShowDevice(device);
            return;
        }
    }
}

bool MainFrame::OnMessage(unsigned message, std::uintptr_t wParam, std::intptr_t lParam)
{
    if (message == kWarningSelectedMessage) {
        ShowDeviceOfWarning(static_cast<int>(lParam));
        return true;
    }
    return CFrameWnd::OnMessage(message, wParam, lParam);
}

bool MainFrame::OnNotify(const ui::NMHDR& notice)
{
    if (notice.hwndFrom == m_tree && notice.code == ui::TVN_SELCHANGED && !m_isFilling) {
        ShowPage();
        return true;
    }
    return CFrameWnd::OnNotify(notice);
}

void MainFrame::KeepSettings()
{
    const QRect place = isMaximized() ? normalGeometry() : geometry();
    m_settings.window = PlaceOf(place);
    m_settings.window.isMaximised = isMaximized();
    m_settings.treeWidth = m_splitter->sizes().value(0);
    m_settings.page = m_shownNode != DeviceTree::kNone ? m_tree->Tree().PathOf(m_shownNode) : ZRBasicString();
    m_settings.document = Utf8ToUtf16(TextOfPath(m_supervisor.Options().document));
    m_warnings->SaveState(kProfile);
}

void MainFrame::MakeWarningBar()
{
    m_warnings = std::make_unique<CDebugDlgBar>();
    m_warnings->Create(this, kDebugBarDialog, kWarningBar);
    m_warnings->LoadState(kProfile);
    DockControlBar(m_warnings.get(), ui::AFX_IDW_DOCKBAR_BOTTOM);
    ShowControlBar(m_warnings.get(), m_settings.showsWarnings);
    m_warningsShown = -1;
    ShowWarnings();
}

void MainFrame::closeEvent(QCloseEvent* event)
{
    if (!AskAboutChanges()) {
        event->ignore();
        return;
    }
    KeepSettings();
    event->accept();
    EndProgram();
}

// Not quit(), which asks every window and stays when one refuses, as one does while it loads or prints.
void MainFrame::EndProgram()
{
    QApplication::exit();
}

void MainFrame::TakeColours()
{
    m_tree->TakeColours();
    if (m_page != nullptr) {
        m_page->TakeColours();
    }
    QPalette colours = palette();
    colours.setColor(QPalette::Window, NoticeColour());
    colours.setColor(QPalette::WindowText, NoticeTextColour());
    m_banner->setPalette(colours);
}

}  // namespace zr::desktop
