#include "platform/ui/CDialogBar.h"

#include "platform/ui/CFrameWnd.h"
#include "platform/ui/SystemColours.h"

#include <algorithm>
#include <QCloseEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOption>
#include <QToolButton>
#include <utility>

// Holds the controls and hands their messages on.
class CDialogBar::ClientArea : public QWidget {
public:
    explicit ClientArea(CDialogBar& bar) : QWidget(&bar), m_bar(bar) { setMouseTracking(true); }

protected:
    bool event(QEvent* event) override
    {
        return event->type() == zr::ui::WndMessage::EventType() ? m_bar.Dispatch(*event) : QWidget::event(event);
    }

private:
    CDialogBar& m_bar;
};

// The gripper of a docked bar, left of the client; the caption of a floating one, above it.
class CDialogBar::Caption : public QWidget {
public:
    explicit Caption(CDialogBar& bar) : QWidget(&bar), m_bar(bar), m_close(new QToolButton(this))
    {
        setMouseTracking(true);
        m_close->setAutoRaise(true);
        m_close->setFocusPolicy(Qt::NoFocus);
        m_close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton, nullptr, this));
        m_close->hide();
        connect(m_close, &QToolButton::clicked, &bar, [&bar] {
            bar.m_isClosedByUser = true;
            bar.close();
        });
    }

    [[nodiscard]] QToolButton& CloseButton() const { return *m_close; }
    [[nodiscard]] QSize sizeHint() const override
    {
        const int gripper = zr::ui::GetSystemMetrics(zr::ui::SM_CXMENUSIZE, *this) / 2;
        return m_bar.isFloating() ? QSize(0, fontMetrics().height() + 8) : QSize(gripper, 0);
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        m_bar.isFloating() ? PaintCaption(painter) : PaintGripper(painter);
    }
    void resizeEvent(QResizeEvent*) override
    {
        const int side = height() - 4;
        m_close->setGeometry(width() - side - 2, 2, side, side);
    }

private:
    void PaintGripper(QPainter& painter) const
    {
        QStyleOption option;
        option.initFrom(this);
        option.state |= QStyle::State_Horizontal;
        style()->drawPrimitive(QStyle::PE_IndicatorToolBarHandle, &option, &painter, this);
    }
    void PaintCaption(QPainter& painter) const
    {
        const QRect text = rect().adjusted(6, 0, -height(), 0);
        const QString title = fontMetrics().elidedText(m_bar.windowTitle(), Qt::ElideRight, text.width());
        painter.fillRect(rect(), palette().color(QPalette::Button));
        style()->drawItemText(&painter, text, Qt::AlignLeft | Qt::AlignVCenter, palette(), true, title,
                              QPalette::ButtonText);
    }

    CDialogBar& m_bar;
    QToolButton* m_close;
};

CDialogBar::CDialogBar() : m_client(new ClientArea(*this)), m_caption(new Caption(*this))
{
    setMouseTracking(true);
    setWidget(m_client);
    setTitleBarWidget(m_caption);
    // So that a cursor of the bar's own shows over its bare parts alone.
    m_client->setCursor(Qt::ArrowCursor);
    m_caption->setCursor(Qt::ArrowCursor);
    setFeatures(DockWidgetClosable | DockWidgetMovable | DockWidgetFloatable | DockWidgetVerticalTitleBar);
}

CDialogBar::~CDialogBar()
{
    disconnect(this, nullptr, this, nullptr);
}

bool CDialogBar::Create(QWidget* parent, unsigned templateId, unsigned style, unsigned id)
{
    auto* const frame = dynamic_cast<CFrameWnd*>(parent);
    if (frame == nullptr || m_frame != nullptr) {
        return false;
    }
    zr::ui::SetControlId(*this, id);
    zr::ui::SetControlId(*m_client, templateId);
    m_style = style & ~zr::ui::CBRS_ALIGN_ANY;
    m_frame = frame;
    frame->Add(*this, style & zr::ui::CBRS_ALIGN_ANY);
    connect(this, &QDockWidget::topLevelChanged, this, [this](bool isFloating) { OnFloatingChanged(isFloating); });
    connect(this, &QDockWidget::dockLocationChanged, this, [this](Qt::DockWidgetArea area) {
        if (area != Qt::NoDockWidgetArea) {
            m_frame->RecalcLayout();
            OnSize();
        }
    });
    OnInitDialog();
    show();
    frame->RecalcLayout();
    return true;
}

unsigned CDialogBar::GetBarStyle() const
{
    return m_style | (m_frame != nullptr && !isFloating() ? m_frame->SideOf(*this) : 0);
}

QWidget& CDialogBar::Client() const
{
    return *m_client;
}

QRect CDialogBar::GetClientRect() const
{
    return isFloating() ? m_client->geometry() : rect();
}

QRect CDialogBar::ToClient(const QRect& rectangle) const
{
    return rectangle.translated(-m_client->pos());
}

QSize CDialogBar::CalcDynamicLayout(int, unsigned mode)
{
    const bool isStretched = (mode & zr::ui::LM_STRETCH) != 0;
    const int width = isStretched && (mode & zr::ui::LM_HORZDOCK) != 0 ? QWIDGETSIZE_MAX : m_sizeDefault.width();
    const int height = isStretched && (mode & zr::ui::LM_VERTDOCK) != 0 ? QWIDGETSIZE_MAX : m_sizeDefault.height();
    return {width, height};
}

void CDialogBar::OnSize() {}

void CDialogBar::OnWindowPosChanged(unsigned) {}

bool CDialogBar::OnMouseMove(QPoint)
{
    return false;
}

bool CDialogBar::OnLButtonDown(QPoint)
{
    return false;
}

bool CDialogBar::OnLButtonUp(QPoint)
{
    return false;
}

void CDialogBar::OnCaptureChanged() {}

void CDialogBar::SetCapture()
{
    m_hasCapture = true;
    grabMouse();
}

void CDialogBar::ReleaseCapture()
{
    if (std::exchange(m_hasCapture, false)) {
        releaseMouse();
    }
}

bool CDialogBar::OnMouse(QMouseEvent& event)
{
    const QPoint point = event.position().toPoint();
    switch (event.type()) {
        case QEvent::MouseMove:
            if (m_hasCapture && (event.buttons() & Qt::LeftButton) == 0) {
                // Released where nobody told the bar.
                ReleaseCapture();
                OnCaptureChanged();
            }
            // With a button down and no capture the bar is being moved, which is Qt's.
            return (m_hasCapture || event.buttons() == Qt::NoButton) && OnMouseMove(point);
        case QEvent::MouseButtonPress:
            return event.button() == Qt::LeftButton && OnLButtonDown(point);
        case QEvent::MouseButtonRelease:
            return event.button() == Qt::LeftButton && OnLButtonUp(point);
        default:
            return m_hasCapture;
    }
}

bool CDialogBar::event(QEvent* event)
{
    switch (event->type()) {
        case QEvent::MouseMove:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
            if (OnMouse(static_cast<QMouseEvent&>(*event))) {
                event->accept();
                return true;
            }
            break;
        case QEvent::WindowDeactivate:
        case QEvent::Hide:
        case QEvent::UngrabMouse:
            if (m_hasCapture) {
                ReleaseCapture();
                OnCaptureChanged();
            }
            break;
        default:
            break;
    }
    return Dispatch(*event) || QDockWidget::event(event);
}

void CDialogBar::resizeEvent(QResizeEvent* event)
{
    QDockWidget::resizeEvent(event);
    if (isFloating() && m_isSizedByUser) {
        const QSize size = m_client->size();
        CalcDynamicLayout(size.width(), zr::ui::LM_HORZ);
        CalcDynamicLayout(size.height(), zr::ui::LM_HORZ | zr::ui::LM_LENGTHY);
    }
    OnSize();
}

void CDialogBar::closeEvent(QCloseEvent* event)
{
    m_isClosedByUser = m_isClosedByUser || event->spontaneous();
    QDockWidget::closeEvent(event);
}

void CDialogBar::hideEvent(QHideEvent* event)
{
    QDockWidget::hideEvent(event);
    if (!event->spontaneous()) {
        const bool byUser = std::exchange(m_isClosedByUser, false);
        OnWindowPosChanged(zr::ui::SWP_HIDEWINDOW | (byUser ? zr::ui::SWP_NOREDRAW : 0));
    }
}

QSize CDialogBar::SizeOfFrame() const
{
    const int frame = style()->pixelMetric(QStyle::PM_DockWidgetFrameWidth, nullptr, this);
    return {2 * frame, 2 * frame + m_caption->sizeHint().height()};
}

void CDialogBar::OnFloatingChanged(bool isFloating)
{
    // Beside the client a gripper stands, above it a caption lies.
    const DockWidgetFeatures others = features() & ~DockWidgetFeatures(DockWidgetVerticalTitleBar);
    setFeatures(isFloating ? others : others | DockWidgetVerticalTitleBar);
    m_caption->CloseButton().setVisible(isFloating);
    m_caption->updateGeometry();
    m_isSizedByUser = false;
    if (isFloating) {
        const QSize least(4 * zr::ui::GetSystemMetrics(zr::ui::SM_CYMIN, *this),
                          2 * zr::ui::GetSystemMetrics(zr::ui::SM_CYMIN, *this));
        setMinimumSize(least);
        setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
        const QSize wanted = CalcDynamicLayout(-1, zr::ui::LM_HORZ | zr::ui::LM_MRUWIDTH) + SizeOfFrame();
        resize(wanted.expandedTo(least).boundedTo(screen()->availableSize()));
        m_isSizedByUser = true;
    } else {
        m_frame->RecalcLayout();
    }
    OnSize();
}
