#include "siblings/graphsupport/ui/ZRGraph.h"

#include "platform/ui/CDC.h"
#include "platform/ui/Clipboard.h"
#include "platform/ui/UiText.h"
#include "siblings/graphsupport/GraphModel.h"
#include "siblings/graphsupport/ui/GraphDrawing.h"
#include "siblings/graphsupport/ui/GraphKeys.h"
#include "siblings/graphsupport/ui/ScreenPicture.h"

#include <cmath>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWheelEvent>

namespace {

using zr::graph::GraphModel;
using zr::graph::PaperColours;

constexpr double kWheelStep = 120.0;  // eighths of a degree of a notch
constexpr double kScreenDpi = 96.0;

Qt::CursorShape ShapeOf(zr::graph::PointerShape shape)
{
    switch (shape) {
        case zr::graph::PointerShape::Cross:
            return Qt::CrossCursor;
        case zr::graph::PointerShape::OpenHand:
            return Qt::OpenHandCursor;
        case zr::graph::PointerShape::ClosedHand:
            return Qt::ClosedHandCursor;
        case zr::graph::PointerShape::SizeMarker:
            return Qt::SizeHorCursor;
        case zr::graph::PointerShape::Arrow:
            break;
    }
    return Qt::ArrowCursor;
}

}  // namespace

// The model, its picture, and what the window publishes of both.
class ZRGraph::Parts {
public:
    explicit Parts(ZRGraph& window) : m_window(window), m_picture(window) {}

    [[nodiscard]] const GraphModel& Model() const { return m_model; }
    [[nodiscard]] bool IsReady() const { return !m_window.invalidData || m_isUpdating; }

    // Does what is asked and shows what comes of it; nothing while the data are being replaced.
    template <typename Work>
    void Do(const Work& work)
    {
        if (!IsReady()) {
            return;
        }
        m_picture.Fit(m_model, m_picture.Ratio());
        // It may have been written from outside. Setting it ends a drag.
        if (m_window.mode != m_model.Mode()) {
            m_model.SetMode(m_window.mode);
        }
        work(m_model);
        Publish();
    }
    void SetDateText(zr::graph::DateText text)
    {
        m_model.SetDateText(text);
        Publish();
    }
    // Even while the flag stands: the data are the new ones, and the flag falls next.
    void Update(const ZRDateTime& from, const ZRDateTime& to, const ZRLoggerInfo* info,
                const ZRLoggerData::CRecordGroup* group)
    {
        std::vector<zr::graph::CurveInfo> curves;
        for (const CVarInfo* curve : m_window.varInfos) {
            curves.push_back(*curve);
        }
        m_isUpdating = true;
        m_model.Update(curves, from, to, info != nullptr ? *info : ZRLoggerInfo(), info != nullptr ? group : nullptr);
        Do([](GraphModel&) {});
        m_isUpdating = false;
    }
    void Clear()
    {
        m_model.Clear();
        Publish();
    }
    // Another font, palette or scale.
    void LooksChanged()
    {
        m_picture.LooksChanged();
        m_window.update();
    }
    void TextsChanged()
    {
        m_picture.LooksChanged();
        Do([](GraphModel& model) { model.TextsChanged(); });
    }
    void Regenerate()
    {
        m_picture.SetOld();
        m_window.update();
    }

    // For those who hear the values: the keys move the cursor without a pointer.
    void TellCursor()
    {
        const std::optional<std::int64_t> cursor = m_model.Cursor();
        if (!IsReady() || !cursor) {
            return;
        }
        QStringList words(zr::ui::ToQt(m_model.TimeText(*cursor)));
        for (const zr::graph::CurveReading& reading : m_model.ReadingsAt(*cursor)) {
            words += zr::ui::ToQt(reading.title) + QLatin1Char(' ') + zr::ui::ToQt(reading.value);
        }
        m_window.setAccessibleDescription(words.join(QStringLiteral("; ")));
    }

    void Paint(QPainter& painter)
    {
        if (!IsReady()) {
            m_picture.PaintStale(painter);
            return;
        }
        m_picture.Fit(m_model, painter.device()->devicePixelRatio());
        TakeChanges();
        if (m_hasNews) {
            // Not from within a paint.
            QTimer::singleShot(0, &m_window, [this] { Publish(); });
        }
        m_picture.Paint(painter, m_model);
        if (m_window.m_showsFocus) {
            painter.setPen(m_window.palette().color(QPalette::Highlight));
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(m_window.rect().adjusted(0, 0, -1, -1));
        }
    }

    [[nodiscard]] zr::graph::Point At(const QPointF& place) const
    {
        return {static_cast<int>(std::floor(place.x() * Ratio())), static_cast<int>(std::floor(place.y() * Ratio()))};
    }
    [[nodiscard]] double Ratio() const { return m_picture.Ratio(); }

private:
    void TakeChanges()
    {
        const zr::graph::GraphChanges changes = m_model.TakeChanges();
        if (changes.under) {
            m_picture.SetOld();
        }
        m_hasNews = m_hasNews || changes.shown;
        if (changes.under || changes.over) {
            m_window.update();
        }
    }
    void Publish()
    {
        TakeChanges();
        m_window.mode = m_model.Mode();
        m_window.zoomHistory = m_model.History();
        if (IsReady()) {
            // It depends on where the curves stand, and so on the records.
            m_window.setCursor(ShapeOf(m_model.Shape()));
        }
        if (!m_hasNews) {
            return;
        }
        m_hasNews = false;
        zr::ui::SendNotify(m_window.parentWidget(), {&m_window, m_window.GetDlgCtrlID(), zr::ui::GRN_SHOWN});
    }

    ZRGraph& m_window;
    zr::graph::ScreenPicture m_picture;
    GraphModel m_model;
    bool m_hasNews = false;  // for the parent
    bool m_isUpdating = false;
};

ZRGraph::ZRGraph() : m_parts(std::make_unique<Parts>(*this))
{
    hide();
}

ZRGraph::~ZRGraph()
{
    for (const CVarInfo* curve : varInfos) {
        delete curve;
    }
}

bool ZRGraph::Create(QWidget* parent, unsigned id)
{
    if (m_isCreated) {
        return false;
    }
    m_isCreated = true;
    setParent(parent);
    zr::ui::SetControlId(*this, id);
    setWindowTitle(QStringLiteral("Graph"));
    setAccessibleName(windowTitle());
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    m_parts->LooksChanged();
    show();
    return true;
}

void ZRGraph::SetDateText(zr::graph::DateText text)
{
    m_parts->SetDateText(text);
}

void ZRGraph::ClearVariables(unsigned long)
{
    for (const CVarInfo* curve : varInfos) {
        delete curve;
    }
    varInfos.clear();
    m_parts->Clear();
}

void ZRGraph::Update(const ZRDateTime& from, const ZRDateTime& to, const ZRLoggerInfo* info,
                     const ZRLoggerData::CRecordGroup* group)
{
    m_parts->Update(from, to, info, group);
}

void ZRGraph::SetMode(int newMode)
{
    m_parts->Do([newMode](GraphModel& model) { model.SetMode(newMode); });
}

void ZRGraph::UndoZoom()
{
    m_parts->Do([](GraphModel& model) { model.UndoZoom(); });
}

void ZRGraph::UndoLastZoom(bool)
{
    m_parts->Do([](GraphModel& model) { model.UndoLastZoom(); });
}

void ZRGraph::Print(CDC* dc, const QRect& rect, bool monochrome)
{
    if (dc == nullptr || rect.isEmpty() || !m_parts->IsReady()) {
        return;
    }
    DrawOnPaper(dc->Painter(), rect, dc->GetDeviceCaps(zr::ui::LOGPIXELSX) / kScreenDpi, m_parts->Model(), font(),
                monochrome ? PaperColours::BlackAndWhite : PaperColours::Coloured);
}

void ZRGraph::Regenerate(CDC*, bool)
{
    m_parts->Regenerate();
}

bool ZRGraph::CopyToClipboard(bool monochrome)
{
    if (!m_parts->IsReady() || size().isEmpty() || !zr::ui::OpenClipboard()) {
        return false;
    }
    std::unique_ptr<QMimeData> picture =
        GraphMimeData(m_parts->Model(), size(), m_parts->Ratio(), font(),
                      monochrome ? PaperColours::BlackAndWhite : PaperColours::Coloured);
    if (picture == nullptr) {
        return false;
    }
    zr::ui::SetClipboardData(std::move(picture));
    return true;
}

double ZRGraph::RecordsPerColumn() const
{
    return m_parts->IsReady() ? m_parts->Model().Status().recordsPerColumn : 0.0;
}

ZRBasicString ZRGraph::StatusText() const
{
    return m_parts->IsReady() ? m_parts->Model().Status().text : ZRBasicString();
}

zr::graph::Zoom ZRGraph::InView() const
{
    return m_parts->Model().InView();
}

void ZRGraph::OnPaint(QPainter& painter)
{
    m_parts->Paint(painter);
}

void ZRGraph::mousePressEvent(QMouseEvent* event)
{
    // The menu of the right button is the parent's.
    event->setAccepted(event->button() == Qt::LeftButton);
    if (event->isAccepted()) {
        const bool isShift = event->modifiers().testFlag(Qt::ShiftModifier);
        m_parts->Do([&](GraphModel& model) { model.Press(m_parts->At(event->position()), isShift); });
    }
}

void ZRGraph::mouseMoveEvent(QMouseEvent* event)
{
    m_parts->Do([&](GraphModel& model) {
        // The button went up where nobody told: while the data were replaced, or another window was on top.
        if (model.IsDragging() && !event->buttons().testFlag(Qt::LeftButton)) {
            model.CancelDrag();
        }
        model.Move(m_parts->At(event->position()));
    });
}

void ZRGraph::mouseReleaseEvent(QMouseEvent* event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
    if (event->isAccepted()) {
        m_parts->Do([&](GraphModel& model) { model.Release(m_parts->At(event->position())); });
    }
}

void ZRGraph::mouseDoubleClickEvent(QMouseEvent* event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
    if (event->isAccepted()) {
        m_parts->Do([&](GraphModel& model) { model.DoubleClick(m_parts->At(event->position())); });
    }
}

void ZRGraph::wheelEvent(QWheelEvent* event)
{
    const QPoint turn = event->angleDelta();
    const bool isSideways = event->modifiers().testFlag(Qt::ShiftModifier);
    const double sideways = -(isSideways ? turn.x() + turn.y() : turn.x()) / kWheelStep;
    const double steps = isSideways ? 0.0 : turn.y() / kWheelStep;
    m_parts->Do([&](GraphModel& model) {
        if (steps != 0.0) {
            model.Wheel(m_parts->At(event->position()), steps);
        }
        if (sideways != 0.0) {
            model.WheelSideways(sideways);
        }
    });
    event->accept();
}

void ZRGraph::leaveEvent(QEvent*)
{
    m_parts->Do([](GraphModel& model) { model.Leave(); });
}

void ZRGraph::keyPressEvent(QKeyEvent* event)
{
    const std::optional<zr::graph::GraphAction> action = zr::graph::ActionOf(*event);
    event->setAccepted(action.has_value());
    if (action) {
        m_parts->Do([&](GraphModel& model) { model.Do(*action); });
        m_parts->TellCursor();
    }
}

void ZRGraph::focusInEvent(QFocusEvent* event)
{
    m_showsFocus = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    update();
}

void ZRGraph::focusOutEvent(QFocusEvent*)
{
    m_showsFocus = false;
    m_parts->Do([](GraphModel& model) { model.CancelDrag(); });
    update();
}

void ZRGraph::hideEvent(QHideEvent*)
{
    m_parts->Do([](GraphModel& model) {
        model.CancelDrag();
        model.Leave();
    });
}

void ZRGraph::resizeEvent(QResizeEvent*)
{
    m_parts->Do([](GraphModel&) {});
}

void ZRGraph::changeEvent(QEvent* event)
{
    switch (event->type()) {
        case QEvent::PaletteChange:
        case QEvent::FontChange:
        case QEvent::StyleChange:
            m_parts->LooksChanged();
            break;
        case QEvent::LanguageChange:
        case QEvent::LocaleChange:
            m_parts->TextsChanged();
            break;
        case QEvent::EnabledChange:
            m_parts->Do([](GraphModel& model) { model.CancelDrag(); });
            break;
        default:
            break;
    }
    CWnd::changeEvent(event);
}

// Its own keys go before the shortcuts of the window that it is in, but for arrows that would move nothing.
bool ZRGraph::IsOwnKey(const QKeyEvent& event) const
{
    const std::optional<zr::graph::GraphAction> action = zr::graph::ActionOf(event);
    const bool isArrow = action == zr::graph::GraphAction::PanLeft || action == zr::graph::GraphAction::PanRight;
    return action && !(isArrow && zoomHistory.empty());
}

bool ZRGraph::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && IsOwnKey(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return CWnd::event(event);
}
