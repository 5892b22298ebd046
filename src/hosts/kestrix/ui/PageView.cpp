#include "hosts/kestrix/ui/PageView.h"

#include "hosts/kestrix/DeviceWatch.h"
#include "hosts/kestrix/ui/Theme.h"
#include "hosts/kestrix/ui/UiTexts.h"

#include <algorithm>
#include <QContextMenuEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QTimer>

namespace zr::desktop {
namespace {

constexpr unsigned kDialogId = 230;
constexpr unsigned kFirstValueId = 10000;
constexpr int kBarHeight = 16;       // pixels
constexpr int kBarFontSize = 90;     // tenths of a point
constexpr int kVCentredRight = 128;  // alignment of ZRValueControl

// What it is, its unit, and its name in links.
QString TipOf(const ValueRef& ref, const PageRow& row)
{
    const QString unit = row.unit.IsEmpty() ? QString() : QStringLiteral(" (%1)").arg(ToQt(row.unit));
    return ToQt(ref.description) + unit + QLatin1Char('\n') + ToQt(ref.device + u"." + ref.name);
}

}  // namespace

QWidget& PageView::Value::Window() const
{
    if (number != nullptr) {
        return *number;
    }
    return text != nullptr ? static_cast<QWidget&>(*text) : static_cast<QWidget&>(*bar);
}

bool PageView::Value::Selected() const
{
    if (number != nullptr) {
        return number->Selected();
    }
    return text != nullptr ? text->Selected() : bar->Selected(controls::kPresentSlot);
}

void PageView::Value::Select(bool isSelected) const
{
    if (Selected() == isSelected) {
        return;
    }
    if (number != nullptr) {
        number->Select(isSelected);
    } else if (text != nullptr) {
        text->Select(isSelected);
    } else {
        bar->Select(controls::kPresentSlot, isSelected);
    }
}

void PageView::Value::Update() const
{
    if (number != nullptr) {
        number->Update();
    } else if (text != nullptr) {
        text->Update();
    } else {
        bar->Update();
    }
}

PageView::PageView(QWidget* parent) : ZRBaseViewDlg(kDialogId, parent)
{
    // A page is no window of its own but a part of the frame.
    setWindowFlags(Qt::Widget);
    setSizeGripEnabled(false);
    TakeColours();
}

void PageView::UpdateValues()
{
    for (const Value& value : m_values) {
        value.Update();
    }
}

QWidget& PageView::AddValue(const ValueRef& ref, const PageRow& row)
{
    const auto id = static_cast<unsigned>(kFirstValueId + m_values.size());
    const ZRBasicString reference = ref.device + u"." + ref.name;
    Value value{ref, nullptr, nullptr, nullptr};
    if (row.kind == RowKind::Text) {
        value.text = new TextValueControl(this, id);
        value.text->SetupVariable(reference.CStr());
        value.text->Describe(TipOf(ref, row));
    } else {
        value.number = new ZRValueControl(this, id);
        value.number->SetDigital(row.kind == RowKind::Digital);
        value.number->SetupVariable(reference.CStr(), kVCentredRight);
        if (row.limits) {
            value.number->SetupChecks(row.CheckFlags(), row.limits->lowWarning, row.limits->lowAlarm,
                                      row.limits->highWarning, row.limits->highAlarm, row.limits->nominal);
        }
    }
    QWidget& window = value.Window();
    window.setAccessibleName(ToQt(ref.device + u" " + ref.description));
    window.setToolTip(PlainTip(TipOf(ref, row)));
    window.show();
    m_values.push_back(std::move(value));
    return window;
}

ZRBarValueControl& PageView::AddBar(const ValueRef& ref, const PageRow& row)
{
    const auto id = static_cast<unsigned>(kFirstValueId + m_values.size());
    auto* const bar = new ZRBarValueControl(this, id);
    bar->SetupBar(kBarHeight, kBarFontSize);
    bar->SetupVariable(controls::kPresentSlot, (ref.device + u"." + ref.name).CStr());
    bar->SetupVariable(controls::kHighMarkSlot, DeviceWatch::HighName(ref.device, ref.name).CStr());
    bar->SetupVariable(controls::kLowMarkSlot, DeviceWatch::LowName(ref.device, ref.name).CStr());
    bar->SetupChecks(row.CheckFlags(), row.limits->lowWarning, row.limits->lowAlarm, row.limits->highWarning,
                     row.limits->highAlarm, row.limits->nominal);
    bar->SetLabel(ref.name.CStr());
    bar->SetEnableSelection(true, false, false);
    bar->setAccessibleName(ToQt(ref.device + u" " + ref.description));
    bar->setToolTip(PlainTip(TipOf(ref, row)));
    bar->installEventFilter(this);
    bar->show();
    m_values.push_back({ref, nullptr, nullptr, bar});
    return *bar;
}

void PageView::ClearValues()
{
    for (const Value& value : m_values) {
        delete &value.Window();
    }
    m_values.clear();
    m_texts.clear();
    m_lines.clear();
    m_icons.clear();
}

void PageView::Select(const std::optional<ValueRef>& wanted)
{
    bool isThere = false;
    for (const Value& value : m_values) {
        const bool isIt = wanted && value.ref == *wanted;
        // The first of several windows on one variable; the numeric one is selected with its bar.
        value.Select(isIt);
        isThere = isThere || (isIt && value.Selected());
    }
    const std::optional<ValueRef> selection = isThere ? wanted : std::nullopt;
    if (selection != m_selection) {
        m_selection = selection;
        if (m_listener) {
            m_listener();
        }
    }
}

void PageView::SelectFirst()
{
    if (!m_values.empty()) {
        Select(m_values.front().ref);
    }
}

const PageView::Value* PageView::FindValue(const QWidget& window) const
{
    const auto found =
        std::find_if(m_values.begin(), m_values.end(), [&](const Value& value) { return &value.Window() == &window; });
    return found != m_values.end() ? &*found : nullptr;
}

void PageView::Chosen(const QWidget& window)
{
    if (const Value* const value = FindValue(window); value != nullptr) {
        Select(value->Selected() ? std::optional(value->ref) : std::nullopt);
    }
}

bool PageView::OnCommand(unsigned id, unsigned code, QWidget* from)
{
    if (from != nullptr && id >= kFirstValueId) {
        Chosen(*from);
        return true;
    }
    return ZRBaseViewDlg::OnCommand(id, code, from);
}

// A bar doesn't tell of a selection: it is asked once it has dealt with what may have changed it.
bool PageView::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::KeyPress) {
        auto* const window = static_cast<QWidget*>(watched);
        const Value* const value = FindValue(*window);
        const bool before = value != nullptr && value->Selected();
        QTimer::singleShot(0, window, [this, window, before] {
            const Value* const after = FindValue(*window);
            if (after != nullptr && after->Selected() != before) {
                Chosen(*window);
            }
        });
    }
    return ZRBaseViewDlg::eventFilter(watched, event);
}

void PageView::contextMenuEvent(QContextMenuEvent* event)
{
    const QWidget* const child = event->reason() == QContextMenuEvent::Mouse ? childAt(event->pos()) : focusWidget();
    const Value* const value = child != nullptr ? FindValue(*child) : nullptr;
    if (value != nullptr) {
        Select(value->ref);
    }
    if (m_selection && m_menuListener) {
        m_menuListener(event->globalPos());
    }
}

void PageView::resizeEvent(QResizeEvent* event)
{
    ZRBaseViewDlg::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) {
        PlaceAgain();
    }
}

void PageView::PlaceAgain()
{
    if (m_isPlacing) {
        return;
    }
    m_isPlacing = true;
    m_texts.clear();
    m_lines.clear();
    m_icons.clear();
    setMinimumHeight(Place(width()));
    m_isPlacing = false;
    update();
}

void PageView::changeEvent(QEvent* event)
{
    ZRBaseViewDlg::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        PlaceAgain();
    }
}

void PageView::AddText(const QRect& rect, const QString& text, TextRole role, Qt::Alignment alignment)
{
    m_texts.push_back({rect, text, role, alignment});
}

QFont PageView::FontOf(TextRole role) const
{
    QFont result = font();
    if (role == TextRole::Title) {
        if (result.pixelSize() > 0) {
            result.setPixelSize(result.pixelSize() * 3 / 2);
        } else {
            result.setPointSizeF(result.pointSizeF() * 1.5);
        }
        result.setBold(true);
    } else if (role == TextRole::Section || role == TextRole::Heading) {
        result.setBold(true);
    }
    return result;
}

int PageView::WidthOf(const QString& text, TextRole role) const
{
    // A pixel more than its characters take, so that it isn't shortened where it just fits.
    return text.isEmpty() ? 0 : QFontMetrics(FontOf(role)).horizontalAdvance(text) + 2;
}

int PageView::RowHeight() const
{
    return fontMetrics().height() + 7;
}

int PageView::SectionHeight() const
{
    return QFontMetrics(FontOf(TextRole::Section)).height() + 10;
}

void PageView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.fillRect(event->rect(), palette().color(QPalette::Window));
    for (const QRect& line : m_lines) {
        painter.fillRect(line, LineColour());
    }
    for (const PageIcon& icon : m_icons) {
        icon.icon.paint(&painter, icon.rect);
    }
    for (const PageText& text : m_texts) {
        if (!text.rect.intersects(event->rect())) {
            continue;
        }
        const bool isQuiet = text.role == TextRole::Unit || text.role == TextRole::Quiet;
        painter.setPen(isQuiet ? QuietTextColour() : palette().color(QPalette::WindowText));
        painter.setFont(FontOf(text.role));
        painter.drawText(text.rect, static_cast<int>(text.alignment | Qt::AlignVCenter) | Qt::TextSingleLine,
                         painter.fontMetrics().elidedText(text.text, Qt::ElideRight, text.rect.width()));
    }
}

QString PageView::TitleOf(Section section)
{
    switch (section) {
        case Section::Voltages:
            return LoadText(kTextSectionVoltages);
        case Section::Currents:
            return LoadText(kTextSectionCurrents);
        case Section::Powers:
            return LoadText(kTextSectionPowers);
        case Section::PowerFactors:
            return LoadText(kTextSectionPowerFactors);
        case Section::Energies:
            return LoadText(kTextSectionEnergies);
        case Section::Inputs:
            return LoadText(kTextSectionInputs);
        case Section::Outputs:
            return LoadText(kTextSectionOutputs);
        case Section::Counters:
            return LoadText(kTextSectionCounters);
        case Section::Harmonics:
            return LoadText(kTextSectionHarmonics);
        case Section::Other:
            break;
    }
    return LoadText(kTextSectionOther);
}

}  // namespace zr::desktop
