#include "platform/ui/CFrameWnd.h"

#include "platform/ui/CDialogBar.h"
#include "platform/ui/SystemColours.h"

#include <algorithm>
#include <QApplication>
#include <QMenuBar>
#include <QProxyStyle>
#include <QStyleFactory>

namespace {

// The style of the application, but for the strips by which Qt would let the user size a bar: a bar has its own way.
class FrameStyle : public QProxyStyle {
public:
    FrameStyle() : QProxyStyle(QStyleFactory::create(QApplication::style()->name())) {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        return metric == PM_DockWidgetSeparatorExtent ? 0 : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

struct Side {
    Qt::DockWidgetArea area;
    unsigned alignment;
    unsigned dockBar;
};
constexpr Side kSides[] = {
    {Qt::BottomDockWidgetArea, zr::ui::CBRS_ALIGN_BOTTOM, zr::ui::AFX_IDW_DOCKBAR_BOTTOM},
    {Qt::TopDockWidgetArea, zr::ui::CBRS_ALIGN_TOP, zr::ui::AFX_IDW_DOCKBAR_TOP},
    {Qt::LeftDockWidgetArea, zr::ui::CBRS_ALIGN_LEFT, zr::ui::AFX_IDW_DOCKBAR_LEFT},
    {Qt::RightDockWidgetArea, zr::ui::CBRS_ALIGN_RIGHT, zr::ui::AFX_IDW_DOCKBAR_RIGHT},
};

// The first one, the bottom, for a number that isn't there.
template <typename Number>
const Side& FindSide(Number Side::*field, Number number)
{
    const auto* const found = std::find_if(std::begin(kSides), std::end(kSides),
                                           [field, number](const Side& side) { return side.*field == number; });
    return found != std::end(kSides) ? *found : kSides[0];
}

}  // namespace

CFrameWnd::CFrameWnd(QWidget* parent) : QMainWindow(parent)
{
    auto* const style = new FrameStyle;
    style->setParent(this);
    setStyle(style);
    setDockOptions(AnimatedDocks);
}

CFrameWnd::~CFrameWnd() = default;

void CFrameWnd::Add(CDialogBar& bar, unsigned alignment)
{
    m_bars.emplace_back(&bar);
    addDockWidget(FindSide(&Side::alignment, alignment).area, &bar);
}

void CFrameWnd::DockControlBar(CDialogBar* bar, unsigned dockBar)
{
    bar->setFloating(false);
    addDockWidget(FindSide(&Side::dockBar, dockBar).area, bar);
    bar->show();
    RecalcLayout();
}

void CFrameWnd::FloatControlBar(CDialogBar* bar, QPoint place)
{
    bar->setFloating(true);
    bar->move(place);
    bar->show();
}

void CFrameWnd::ShowControlBar(CDialogBar* bar, bool show)
{
    bar->setVisible(show);
    RecalcLayout();
}

void CFrameWnd::GetDockState(CDockState& state) const
{
    state.m_arrBarInfo.clear();
    for (const QPointer<CDialogBar>& bar : m_bars) {
        if (!bar.isNull()) {
            state.m_arrBarInfo.push_back({bar->GetDlgCtrlID(), bar->IsVisible(), bar->IsFloating(), bar});
        }
    }
}

unsigned CFrameWnd::SideOf(const CDialogBar& bar) const
{
    // Qt asks for a pointer that it doesn't write through.
    return FindSide(&Side::area, dockWidgetArea(const_cast<CDialogBar*>(&bar))).alignment;
}

QRect CFrameWnd::GetClientRect() const
{
    const QWidget* const menu = menuWidget();
    const int top = menu != nullptr && menu->isVisibleTo(this) ? menu->height() : 0;
    return rect().adjusted(0, top, 0, 0);
}

void CFrameWnd::RecalcLayout()
{
    if (m_isInRecalc) {
        return;
    }
    m_isInRecalc = true;
    for (const QPointer<CDialogBar>& bar : m_bars) {
        if (!bar.isNull() && !bar->isFloating()) {
            FitBar(*bar);
        }
    }
    m_isInRecalc = false;
}

void CFrameWnd::FitBar(CDialogBar& bar)
{
    using namespace zr::ui;
    const QRect client = GetClientRect();
    const int least = GetSystemMetrics(SM_CYMIN, *this);
    const bool lies = (SideOf(bar) & (CBRS_ALIGN_TOP | CBRS_ALIGN_BOTTOM)) != 0;
    const unsigned mode = lies ? LM_HORZ | LM_HORZDOCK : LM_VERTDOCK;
    const QSize wanted = bar.CalcDynamicLayout(-1, mode | LM_STRETCH);
    if (lies) {
        const int height = std::clamp(wanted.height(), least, std::max(least, client.height() - client.height() / 2));
        bar.setMinimumSize(0, least);
        bar.setMaximumSize(QWIDGETSIZE_MAX, height);
        resizeDocks({&bar}, {height}, Qt::Vertical);
    } else {
        const int width = std::clamp(wanted.width(), least, std::max(least, client.width() - client.width() / 2));
        bar.setMinimumSize(least, 0);
        bar.setMaximumSize(width, QWIDGETSIZE_MAX);
        resizeDocks({&bar}, {width}, Qt::Horizontal);
    }
}

bool CFrameWnd::event(QEvent* event)
{
    return Dispatch(*event) || QMainWindow::event(event);
}

void CFrameWnd::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    RecalcLayout();
}
