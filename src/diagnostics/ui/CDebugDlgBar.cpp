#include "diagnostics/ui/CDebugDlgBar.h"

#include "diagnostics/DiagnosticsIds.h"
#include "diagnostics/ui/SizeLine.h"
#include "diagnostics/ZRDebugInfo.h"
#include "platform/ui/CButton.h"
#include "platform/ui/CFrameWnd.h"
#include "platform/ui/CListCtrl.h"
#include "platform/ui/CWinApp.h"
#include "platform/ui/SystemColours.h"
#include "platform/ui/UiText.h"
#include "siblings/tools/ui/ZRLayout.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <string>

namespace {

using namespace zr::ui;
using Size = ZRLayout::Size;

constexpr unsigned kStyle = CBRS_GRIPPER | CBRS_ALIGN_RIGHT | CBRS_BORDER_LEFT | CBRS_SIZE_DYNAMIC;
static_assert(kStyle == 0x404104);

// The dialog's default size, in layout units.
constexpr int kDefaultWidth = 160;
constexpr int kDefaultHeight = 64;

struct StateKey {
    const char16_t* name;
    zr::BarSize zr::DebugBarSizes::*size;
    int zr::BarSize::*side;
};
constexpr StateKey kStateKeys[] = {
    {u"sizeHorzCX", &zr::DebugBarSizes::sizeHorz, &zr::BarSize::cx},
    {u"sizeHorzCY", &zr::DebugBarSizes::sizeHorz, &zr::BarSize::cy},
    {u"sizeFloatCX", &zr::DebugBarSizes::sizeFloat, &zr::BarSize::cx},
    {u"sizeFloatCY", &zr::DebugBarSizes::sizeFloat, &zr::BarSize::cy},
};

std::u16string SectionOf(const char16_t* profile, unsigned id)
{
    const std::string number = std::to_string(id);
    return std::u16string(profile) + u"-SCBar-" + std::u16string(number.begin(), number.end());
}

zr::BarSize FromQt(QSize size)
{
    return {size.width(), size.height()};
}
zr::BarPoint FromQt(QPoint point)
{
    return {point.x(), point.y()};
}

}  // namespace

CDebugDlgBar::CDebugDlgBar()
    : m_list(new CListCtrl(&Client(), zr::kWarningList)),
      m_close(new CButton(&Client(), zr::kCloseBarButton)),
      m_edge(new QWidget(this))
{
    m_sizeDefault = QSize(ZRLayout::ToPixels(kDefaultWidth, *this), ZRLayout::ToPixels(kDefaultHeight, *this));
    m_close->SetWindowText(u"x");
    // The column fits the list after each layout; between two of them it may be as wide as the scroll bar too wide.
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Lies over the list in the hot zone, takes nothing, and so lets the mouse through to the bar.
    m_edge->setMouseTracking(true);
}

CDebugDlgBar::~CDebugDlgBar() = default;

bool CDebugDlgBar::Create(QWidget* parent, unsigned templateId, unsigned id)
{
    return CDialogBar::Create(parent, templateId & 0xffffu, kStyle, id);
}

void CDebugDlgBar::OnInitDialog()
{
    m_sizes.sizeHorz = FromQt(m_sizeDefault);
    m_sizes.sizeFloat = m_sizes.sizeHorz;
    m_sizes.changeDockedSize = true;
    m_line = new SizeLine(Frame());
    ZRBasicString title;
    ZRLoadString(zr::kMessageColumnTitle, title);
    setWindowTitle(ToQt(title));
    m_list->InsertColumn(0, title);
    // It is meant that the value holds no bit of the mask: lines are not selected in their whole width, and the grid
    // that the value names is not drawn.
    m_list->SetExtendedStyle(LVS_EX_FULLROWSELECT, LVS_EX_GRIDLINES);
    Layout();
    UpdateWarningList();
}

void CDebugDlgBar::UpdateWarningList()
{
    const ZRDebugInfo& warnings = ZRDebugInfo::Get();
    m_list->SetRedraw(false);
    m_list->DeleteAllItems();
    for (int i = 0; i < warnings.Size(); ++i) {
        m_list->InsertItem(i, warnings.WarningStr(i));
        m_list->SetItemData(i, static_cast<std::uintptr_t>(i));
    }
    m_list->SetRedraw(true);
}

void CDebugDlgBar::SelectFirstWarning()
{
    if (m_list->GetItemCount() > 0 && Frame() != nullptr) {
        m_list->SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
    }
}

bool CDebugDlgBar::OnNotify(const NMHDR& notice)
{
    if (notice.idFrom != zr::kWarningList || notice.code != LVN_ITEMCHANGED) {
        return CDialogBar::OnNotify(notice);
    }
    const auto& change = reinterpret_cast<const NMLISTVIEW&>(notice);
    if (change.iItem >= 0 && (change.uNewState & LVIS_SELECTED) != 0 && Frame() != nullptr) {
        PostMessage(Frame(), zr::kWarningSelectedMessage, 0,
                    static_cast<std::intptr_t>(m_list->GetItemData(change.iItem)));
    }
    return true;
}

bool CDebugDlgBar::OnCommand(unsigned id, unsigned code, QWidget* from)
{
    if (id != zr::kCloseBarButton) {
        return CDialogBar::OnCommand(id, code, from);
    }
    HideDebugWindow();
    return true;
}

void CDebugDlgBar::OnWindowPosChanged(unsigned flags)
{
    constexpr unsigned kClosed = SWP_HIDEWINDOW | SWP_NOREDRAW;
    if ((flags & kClosed) == kClosed) {
        HideDebugWindow();
    }
}

void CDebugDlgBar::HideDebugWindow()
{
    if (QWidget* const parent = parentWidget(); parent != nullptr) {
        SendCommand(parent, zr::kBarClosedCommand, 0, nullptr);
    }
}

void CDebugDlgBar::OnSize()
{
    Layout();
}

void CDebugDlgBar::Layout()
{
    m_close->setEnabled(!IsFloating());
    m_close->setVisible(!IsFloating());
    if (IsFloating()) {
        unsetCursor();
    }
    IsFloating() ? LayoutFloating() : LayoutDocked();
    PlaceEdge();
    FitColumn();
}

void CDebugDlgBar::LayoutFloating()
{
    ZRVerticalLayout stack(Client());
    stack.AddGap();
    stack.AddControl(*m_list, Size::Percent(100));
    stack.AddGap();
    stack.Fill(ToClient(GetClientRect()));
}

void CDebugDlgBar::LayoutDocked()
{
    const Size cell = Size::Fixed(zr::CloseButtonCell(ZRLayout::kControlSize));
    auto buttons = std::make_unique<ZRVerticalLayout>(Client());
    buttons->AddControl(*m_close, cell);
    ZRHoritzontalLayout row(Client());
    row.AddGap();
    row.AddLayout(std::move(buttons), cell);
    row.AddGap();
    row.AddControl(*m_list, Size::Percent(100));
    row.AddGap();
    QRect room = GetClientRect();
    // Leaves the gripper free.
    room.setLeft(room.left() + GetSystemMetrics(SM_CXMENUSIZE, *this) / 2);
    row.Fill(ToClient(room));
}

void CDebugDlgBar::PlaceEdge()
{
    const QRect client = GetClientRect();
    const zr::HotZone zone = zr::HotZoneOf(Alignment(), client.height(), GetSystemMetrics(SM_CXEDGE, *this));
    m_edge->setGeometry(client.left(), client.top() + zone.first, client.width(), zone.rows);
    m_edge->setVisible(zone.rows > 0);
    m_edge->raise();
}

void CDebugDlgBar::FitColumn()
{
    m_list->SetColumnWidth(
        0, zr::WarningColumnWidth(m_list->GetClientRect().width(), m_list->GetItemCount(), m_list->GetCountPerPage(),
                                  GetSystemMetrics(SM_CXBORDER, *m_list), GetSystemMetrics(SM_CXVSCROLL, *m_list)));
}

QSize CDebugDlgBar::CalcDynamicLayout(int length, unsigned mode)
{
    const zr::BarSize size = m_sizes.CalcDynamicLayout(length, mode, FromQt(GetClientRect().size()));
    return {size.cx, size.cy};
}

void CDebugDlgBar::LoadState(const char16_t* profile)
{
    const CWinApp* const application = AfxGetApp();
    if (application == nullptr) {
        return;
    }
    const std::u16string section = SectionOf(profile, GetDlgCtrlID());
    for (const StateKey& key : kStateKeys) {
        int& value = m_sizes.*key.size.*key.side;
        const int kept = application->GetProfileIntW(section, key.name, value);
        value = kept >= 0 && kept <= zr::kAsLongAsTheSide ? kept : value;
    }
    if (Frame() != nullptr) {
        Frame()->RecalcLayout();
    }
}

void CDebugDlgBar::SaveState(const char16_t* profile)
{
    CWinApp* const application = AfxGetApp();
    if (application == nullptr) {
        return;
    }
    const std::u16string section = SectionOf(profile, GetDlgCtrlID());
    for (const StateKey& key : kStateKeys) {
        application->WriteProfileInt(section, key.name, m_sizes.*key.size.*key.side);
    }
}

unsigned CDebugDlgBar::Alignment() const
{
    if (Frame() == nullptr) {
        return 0;
    }
    CDockState state;
    Frame()->GetDockState(state);
    const auto found = std::find_if(state.m_arrBarInfo.begin(), state.m_arrBarInfo.end(),
                                    [this](const CControlBarInfo& info) { return info.m_pBar == this; });
    return found != state.m_arrBarInfo.end() ? found->m_pBar->GetBarStyle() & CBRS_ALIGN_ANY : 0;
}

void CDebugDlgBar::UpdateDockSide(QPoint point)
{
    m_drag.Hover(Alignment(), FromQt(point), GetClientRect().height(), GetSystemMetrics(SM_CXEDGE, *this));
    if (!IsFloating()) {
        // The edges of a floating one have cursors of their own.
        SetCursor(m_drag.DockSide() != 0 ? Qt::SizeVerCursor : Qt::ArrowCursor);
    }
}

void CDebugDlgBar::SetCursor(Qt::CursorShape shape)
{
    setCursor(shape);
    // Qt gives the children of such a window cursors of their own.
    m_edge->setCursor(shape);
}

bool CDebugDlgBar::OnMouseMove(QPoint point)
{
    if (!m_drag.IsDragging()) {
        UpdateDockSide(point);
        return m_drag.DockSide() != 0;
    }
    m_drag.Follow(FromQt(point), Limits());
    DrawSizeLine(m_drag.Current());
    return true;
}

bool CDebugDlgBar::OnLButtonDown(QPoint point)
{
    // A finger presses without moving there first.
    UpdateDockSide(point);
    if (m_drag.DockSide() == 0) {
        return false;
    }
    PostMessage(Frame(), zr::kBarDragMessage, 0, 0);
    SetCapture();
    m_drag.Begin(FromQt(point));
    DrawSizeLine(m_drag.Current());
    SetCursor(Qt::SizeVerCursor);
    return true;
}

bool CDebugDlgBar::OnLButtonUp(QPoint point)
{
    if (!m_drag.IsDragging()) {
        return false;
    }
    ReleaseCapture();
    PostMessage(Frame(), zr::kBarDragMessage, 1, 0);
    m_line->hide();
    ResizeDialogBar(m_drag.End(FromQt(point), Limits()));
    return true;
}

void CDebugDlgBar::OnCaptureChanged()
{
    if (m_drag.IsDragging()) {
        // It is meant that the frame isn't told of an end.
        m_drag.Lose();
        m_line->hide();
        SetCursor(Qt::ArrowCursor);
    }
}

zr::DragLimits CDebugDlgBar::Limits() const
{
    return {GetClientRect().height(), GetSystemMetrics(SM_CYMIN, *this), Frame()->GetClientRect().height()};
}

void CDebugDlgBar::ResizeDialogBar(int d)
{
    if (d == 0) {
        return;
    }
    // A frame that became too low has given less than it was asked for: what the user dragged is what he saw.
    m_sizes.sizeHorz.cy = std::min(m_sizes.sizeHorz.cy, GetClientRect().height());
    m_sizes.Grow(d);
    // Twice: the middle of the frame may ask for more room than the first time left it.
    Frame()->RecalcLayout();
    Frame()->RecalcLayout();
}

void CDebugDlgBar::DrawSizeLine(zr::BarPoint point)
{
    const int rows = GetSystemMetrics(SM_CXEDGE, *this) + 1;
    const int top = m_drag.DockSide() == CBRS_ALIGN_TOP ? point.y : point.y - rows + 1;
    const QRect client = GetClientRect();
    m_line->Show(QRect(mapTo(Frame(), QPoint(client.left(), top)), QSize(client.width(), rows)));
}
