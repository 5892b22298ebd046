#include "logger/ui/ZRVirtualLoggerDataExplorer.h"

#include "dialogs/ui/CGoToDateDlg.h"
#include "logger/ui/FillMenu.h"
#include "logger/ui/ZRVirtualLoggerDataGraphicViewer.h"
#include "logger/ui/ZRVirtualLoggerDataTableViewer.h"
#include "platform/ui/AfxMessageBox.h"
#include "platform/ui/Images.h"
#include "platform/ui/UiText.h"
#include "siblings/tools/ui/CDlgProgress.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <QCloseEvent>
#include <thread>

namespace {

using namespace zr::logger;

constexpr unsigned kImages = 63;
constexpr unsigned kHotImages = 64;
constexpr QSize kImageSize{24, 24};
constexpr QSize kMenuImageSize{22, 20};

std::u16string Wide(unsigned id)
{
    ZRBasicString text;
    return std::u16string(ZRLoadString(id, text).Text());
}

class ButtonState final : public CCmdUI {
public:
    ButtonState(CToolBar& bar, unsigned id) : CCmdUI(id), m_bar(bar) {}
    void Enable(bool enable) override { m_bar.EnableButton(m_nID, enable); }

private:
    CToolBar& m_bar;
};

}  // namespace

// What the explorer without a window asks of this one.
class ZRVirtualLoggerDataExplorer::Host final : public LoggerExplorer::Host {
public:
    explicit Host(ZRVirtualLoggerDataExplorer& window) : m_window(window) {}

    ExplorerViewer* CreateViewer(int kind) override
    {
        m_window.CreateViewer(kind);
        if (m_window.viewer != nullptr) {
            m_window.viewer->Create(&m_window, kViewerId);
            m_window.viewer->hide();
            m_window.OnSize(m_window.width(), m_window.height());
        }
        return m_window.viewer.get();
    }
    void DestroyViewer() override
    {
        m_window.viewer->DestroyWindow();
        m_window.viewer.reset();
    }
    void ShowViewer(bool visible) override
    {
        m_window.viewer->setVisible(visible);
        if (visible) {
            m_window.viewer->setFocus();
        }
    }
    void RunLoad(const std::function<void(zr::Progress&)>& work) override { m_window.RunLoad(work); }
    ZRDateTimeSpan GetSamplePeriodIfAutomatic(unsigned groupBy) override
    {
        return m_window.GetSamplePeriodIfAutomatic(groupBy);
    }
    void ShowMessage(unsigned text) override { AfxMessageBox(Wide(text), zr::ui::MB_OK | zr::ui::MB_ICONSTOP); }
    bool ChooseDate(const COleDateTime& offered, ZRDateTime& chosen) override
    {
        return m_window.ChooseDate(offered, chosen);
    }

private:
    ZRVirtualLoggerDataExplorer& m_window;
};

ZRVirtualLoggerDataExplorer::ZRVirtualLoggerDataExplorer(QWidget* parent)
    : ZRPrintPreviewDialog(zr::ui::kExplorerDialog, parent),
      m_host(std::make_unique<Host>(*this)),
      m_explorer(*m_host),
      m_reBar(this, kReBarId),
      m_toolBar(this, kToolBarId, {})
{
    setWindowFlags(Qt::Window);
}

ZRVirtualLoggerDataExplorer::~ZRVirtualLoggerDataExplorer()
{
    // Without the derived class, which has gone already.
    ZRVirtualLoggerDataExplorer::OnDestroy();
}

bool ZRVirtualLoggerDataExplorer::Create(QWidget*)
{
    if (std::exchange(m_isCreated, true)) {
        return false;
    }
    m_toolBar.setIconSize(kImageSize);
    CreateMenuBitmaps(kHotImages);
    InitializeToolBar();
    m_reBar.AddBar(m_toolBar);
    ZRPrintPreviewDialog::Create();
    OnSize(width(), height());
    UpdateCommands();
    return true;
}

bool ZRVirtualLoggerDataExplorer::InitializeToolBar()
{
    for (const ExplorerButton& button : kExplorerButtons) {
        const QIcon image = zr::ui::Image(kImages, button.image);
        if (button.isDropDown) {
            m_toolBar.AddDropDown(button.command, image, Wide(button.text));
        } else {
            m_toolBar.AddButton(button.command, image, Wide(button.text));
        }
    }
    return true;
}

void ZRVirtualLoggerDataExplorer::CreateMenuBitmaps(unsigned images)
{
    for (std::size_t i = 0; i < kExplorerButtons.size(); ++i) {
        menuBitmaps[i] = zr::ui::Image(images, kExplorerButtons[i].image).pixmap(kMenuImageSize);
    }
    MoreBitmaps(images, std::span(menuBitmaps).subspan(kExplorerButtons.size()));
}

bool ZRVirtualLoggerDataExplorer::MoreDropDown(int)
{
    return true;
}

bool ZRVirtualLoggerDataExplorer::MoreChevron(CMenu&, int)
{
    return true;
}

bool ZRVirtualLoggerDataExplorer::MoreBitmaps(unsigned, std::span<QPixmap>)
{
    return true;
}

void ZRVirtualLoggerDataExplorer::Setup(const ZRLoggerInfo& info, int* selectedViewer)
{
    m_explorer.Setup(info, selectedViewer);
    UpdateCommands();
}

void ZRVirtualLoggerDataExplorer::CreateViewer(int kind)
{
    if (kind == kGraphViewer) {
        viewer = std::make_unique<ZRVirtualLoggerDataGraphicViewer>();
    } else if (kind == kTableViewer) {
        viewer = std::make_unique<ZRVirtualLoggerDataTableViewer>();
    }
}

ZRDateTimeSpan ZRVirtualLoggerDataExplorer::GetSamplePeriodIfAutomatic(unsigned groupBy)
{
    return m_explorer.AutomaticPeriodOf(groupBy);
}

void ZRVirtualLoggerDataExplorer::SetPeriod(int groupBy, const ZRDateTimeSpan& period)
{
    LoggerWindow& window = m_explorer.Window();
    window.groupBy = groupBy;
    window.samplePeriod = IsBadCombination(static_cast<unsigned>(groupBy), period.seconds) ? AutomaticPeriod() : period;
}

void ZRVirtualLoggerDataExplorer::SelectViewer(int kind, Reading reading)
{
    m_explorer.SelectViewer(kind, reading);
    ShowNow();
}

void ZRVirtualLoggerDataExplorer::SetupData(const ZRDateTime& date, int groupBy, const ZRDateTimeSpan& period,
                                            bool force)
{
    m_explorer.SetupData(date, groupBy, period, force);
    ShowNow();
}

void ZRVirtualLoggerDataExplorer::Reload()
{
    LoggerWindow& window = m_explorer.Window();
    window.SetupDataAtPeriod(window.dateTo, window.groupBy, true);
    ShowNow();
}

void ZRVirtualLoggerDataExplorer::RunCommand(unsigned command)
{
    const bool wasInCommand = std::exchange(m_isInCommand, true);
    m_explorer.OnCommand(command);
    m_isInCommand = wasInCommand;
    ShowNow();
}

void ZRVirtualLoggerDataExplorer::ShowNow()
{
    UpdateCommands();
    OnShown();
    CloseIfAsked();
}

void ZRVirtualLoggerDataExplorer::CloseIfAsked()
{
    if (!m_isInCommand && std::exchange(m_closesLater, false)) {
        QMetaObject::invokeMethod(
            this, [this] { close(); }, Qt::QueuedConnection);
    }
}

void ZRVirtualLoggerDataExplorer::UpdateNext(CCmdUI* cmdUI)
{
    cmdUI->Enable(m_explorer.Window().UpdateNext());
}

void ZRVirtualLoggerDataExplorer::UpdateCommands()
{
    for (const ExplorerButton& button : kExplorerButtons) {
        ButtonState state(m_toolBar, button.command);
        if (button.command == kCommandNext && m_explorer.IsEnabled(kCommandPrevious)) {
            UpdateNext(&state);
        } else {
            state.Enable(m_explorer.IsEnabled(button.command));
        }
    }
    // Where a host has put them into the toolbar.
    const bool hasTable = m_explorer.IsEnabled(kCommandCopy);
    for (const unsigned id : {kCommandCopy, kCommandConfig, zr::ui::ID_FILE_PRINT, zr::ui::ID_FILE_PRINT_PREVIEW}) {
        m_toolBar.EnableButton(id, hasTable);
    }
}

void ZRVirtualLoggerDataExplorer::RunLoad(const std::function<void(zr::Progress&)>& work)
{
    m_wasLoadStopped = !RunUnderProgress(kTextLoading, work);
}

// The worker waits for the dialog, and has ended when this returns, even where the program's end has taken the dialog's
// loop away.
bool ZRVirtualLoggerDataExplorer::RunUnderProgress(unsigned title, const std::function<void(zr::Progress&)>& work)
{
    CDlgProgress dialog(this);
    const ZRBasicString titleText(Wide(title));
    m_loading = &dialog;
    std::thread worker([&] {
        dialog.WaitForWindow();
        dialog.SetTitle(titleText);
        dialog.SetText(kLoadingText);
        work(dialog);
        dialog.End(true);
    });
    dialog.DoModal();
    const bool wasStopped = dialog.IsCancelled();
    dialog.Cancel();
    worker.join();
    m_loading = nullptr;
    return !wasStopped;
}

bool ZRVirtualLoggerDataExplorer::ChooseDate(const COleDateTime& offered, ZRDateTime& chosen)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(offered.Date());
    // It stands on its button.
    const QPoint corner = m_toolBar.mapToGlobal(m_toolBar.GetButtonRect(kCommandGoTo).topLeft());
    dialog.SetLeftBottomPosition(corner.x(), corner.y());
    if (dialog.DoModal() != static_cast<int>(zr::ui::IDOK)) {
        return false;
    }
    chosen = dialog.GetDate();
    return true;
}

bool ZRVirtualLoggerDataExplorer::CreateGroupByMenu(CMenu& menu)
{
    zr::ui::FillMenu(menu, m_explorer.GroupByMenu(), this, zr::ui::MenuMark::Radio);
    return true;
}

bool ZRVirtualLoggerDataExplorer::CreatePeriodMenu(CMenu& menu)
{
    zr::ui::FillMenu(menu, m_explorer.PeriodMenu(), this, zr::ui::MenuMark::Radio);
    return true;
}

void ZRVirtualLoggerDataExplorer::DropMenu(unsigned command, const std::function<bool(CMenu&)>& fill)
{
    auto* const menu = new CMenu(this, {});
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fill(*menu);
    const QRect button = m_toolBar.GetButtonRect(command);
    menu->popup(m_toolBar.mapToGlobal(button.topLeft() + QPoint(0, button.height() + 1)));
}

void ZRVirtualLoggerDataExplorer::OnDropDown(int command)
{
    if (command == static_cast<int>(kCommandGroupBy)) {
        DropMenu(kCommandGroupBy, [this](CMenu& menu) { return CreateGroupByMenu(menu); });
    } else if (command == static_cast<int>(kCommandPeriod)) {
        DropMenu(kCommandPeriod, [this](CMenu& menu) { return CreatePeriodMenu(menu); });
    }
    MoreDropDown(command);
}

void ZRVirtualLoggerDataExplorer::OnChevronPushed(const QRect& chevron)
{
    std::vector<ShownButton> buttons;
    for (const unsigned id : m_toolBar.Buttons()) {
        const QRect place = m_toolBar.GetButtonRect(id);
        buttons.push_back({id,
                           ZRBasicString(zr::ui::FromQt(m_toolBar.GetButtonText(id))),
                           m_toolBar.IsDropDown(id),
                           m_toolBar.IsButtonEnabled(id),
                           {place.left(), place.right() + 1}});
    }
    const QRect visible = m_reBar.GetBandRect();
    zr::ui::FilledMenus hostMenus;
    const auto subMenu = [&](unsigned command, ExplorerMenu& entries) {
        if (m_explorer.DropDownMenu(command, entries)) {
            return true;
        }
        auto popup = std::make_unique<CMenu>(this, zr::ui::FromQt(m_toolBar.GetButtonText(command)));
        if (!MoreChevron(*popup, static_cast<int>(command)) || popup->isEmpty()) {
            return false;
        }
        hostMenus[command] = popup.release();
        return true;
    };
    const ExplorerMenu entries = ChevronMenu(buttons, {visible.left(), visible.right() + 1}, subMenu);
    if (entries.empty()) {
        return;
    }
    auto* const menu = new CMenu(this, {});
    menu->setAttribute(Qt::WA_DeleteOnClose);
    zr::ui::FillMenu(*menu, entries, this, zr::ui::MenuMark::Radio, hostMenus);
    menu->popup(m_reBar.mapToGlobal(chevron.bottomLeft()));
}

bool ZRVirtualLoggerDataExplorer::OnCommand(unsigned id, unsigned code, QWidget* from)
{
    const bool isOurs = id == kCommandPrevious || id == kCommandNext || id == kCommandGoTo || id == kCommandConfig ||
                        id == kCommandCopy || FindGroupUnit(id) != nullptr || FindPeriod(id) != nullptr;
    if (isOurs) {
        RunCommand(id);
        return true;
    }
    const bool isPrint = id == zr::ui::ID_FILE_PRINT || id == zr::ui::ID_FILE_PRINT_PREVIEW;
    if (isPrint && !m_explorer.IsEnabled(kCommandCopy)) {
        // There is nothing to print without a viewer.
        return true;
    }
    return ZRPrintPreviewDialog::OnCommand(id, code, from);
}

bool ZRVirtualLoggerDataExplorer::OnNotify(const zr::ui::NMHDR& notice)
{
    if (notice.idFrom == kToolBarId && notice.code == zr::ui::TBN_DROPDOWN) {
        OnDropDown(static_cast<int>(reinterpret_cast<const zr::ui::NMTOOLBAR&>(notice).iItem));
        return true;
    }
    if (notice.idFrom == kReBarId && notice.code == zr::ui::RBN_CHEVRONPUSHED) {
        OnChevronPushed(reinterpret_cast<const zr::ui::NMREBARCHEVRON&>(notice).rc);
        return true;
    }
    return ZRPrintPreviewDialog::OnNotify(notice);
}

void ZRVirtualLoggerDataExplorer::OnSize(int width, int height)
{
    const int bar = m_reBar.GetBarHeight();
    m_reBar.setGeometry(0, std::max(height - bar, 0), width, bar);
    if (viewer != nullptr) {
        viewer->setGeometry(0, 0, width, std::max(height - bar, 0));
    }
}

void ZRVirtualLoggerDataExplorer::resizeEvent(QResizeEvent* event)
{
    ZRPrintPreviewDialog::resizeEvent(event);
    OnSize(width(), height());
}

// Next is offered once its window has begun, which no command tells.
bool ZRVirtualLoggerDataExplorer::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate) {
        UpdateCommands();
    }
    return ZRPrintPreviewDialog::event(event);
}

void ZRVirtualLoggerDataExplorer::closeEvent(QCloseEvent* event)
{
    if (m_loading != nullptr) {
        m_loading->Cancel();
    }
    // A command that shows a dialog goes on with the viewer when that has ended.
    m_closesLater = m_closesLater || m_loading != nullptr || m_isInCommand;
    if (m_closesLater || m_isPrinting) {
        event->ignore();
        return;
    }
    OnDestroy();
    event->accept();
}

void ZRVirtualLoggerDataExplorer::OnDestroy()
{
    if (!std::exchange(m_isDestroyed, true)) {
        m_explorer.DestroyViewer();
    }
}

bool ZRVirtualLoggerDataExplorer::OnPreparePrinting(CPrintInfo* info)
{
    const unsigned flags = info->m_pPD->m_flags;
    if (viewer == nullptr || viewer->OnPreparePrinting(info) == 0) {
        info->m_pPD->m_flags = flags;
        return false;
    }
    return true;
}

void ZRVirtualLoggerDataExplorer::OnBeginPrinting(CDC* dc, CPrintInfo* info)
{
    m_isPrinting = true;
    if (viewer != nullptr) {
        viewer->OnBeginPrinting(dc, info);
    }
}

void ZRVirtualLoggerDataExplorer::OnPrint(CDC* dc, CPrintInfo* info)
{
    viewer->Print(dc, info);
}

void ZRVirtualLoggerDataExplorer::OnEndPrinting(CDC* dc, CPrintInfo* info)
{
    if (viewer != nullptr) {
        viewer->OnEndPrinting(dc, info);
    }
    m_isPrinting = false;
}
