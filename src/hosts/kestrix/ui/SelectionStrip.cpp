#include "hosts/kestrix/ui/SelectionStrip.h"

#include "controls/ShownText.h"
#include "hosts/kestrix/ui/Commands.h"
#include "hosts/kestrix/ui/Theme.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "hosts/supervision/ValueText.h"
#include "platform/ui/Images.h"

#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QToolButton>

namespace zr::desktop {
namespace {

// A mark in the displayed unit.
QString MarkText(double value, const ZRDeviceDriver::tagSVariableInfo& info)
{
    ZRBasicString unit;
    ZRDeviceDriver::MeasureUnitsText(unit, info.measureUnits, info.unitsExponent);
    const QString number = ToQt(controls::ShownText(value, info));
    return unit.IsEmpty() ? number : number + QLatin1Char(' ') + ToQt(unit);
}

}  // namespace

SelectionStrip::SelectionStrip(QWidget* parent, QWidget* target)
    : QFrame(parent),
      m_target(target),
      m_name(new QLabel(this)),
      m_number(new QLabel(this)),
      m_mark(new QLabel(this)),
      m_copy(new QToolButton(this))
{
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(16, 6, 16, 6);
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(2);
    grid->addWidget(m_name, 0, 0);
    grid->addWidget(m_number, 0, 1);
    grid->addWidget(m_mark, 1, 0, 1, 3);
    grid->addWidget(m_copy, 0, 3, 2, 1);
    grid->setColumnStretch(2, 1);
    m_mark->setObjectName(QString::number(kSelectionText));
    m_copy->setObjectName(QString::number(kSelectionCopy));
    m_copy->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_copy->setPopupMode(QToolButton::MenuButtonPopup);
    m_copy->setFocusPolicy(Qt::StrongFocus);
    QFont bold = font();
    bold.setBold(true);
    m_number->setFont(bold);
    for (QLabel* const label : {m_name, m_number, m_mark}) {
        label->setTextFormat(Qt::PlainText);
        label->setMinimumWidth(1);
        label->setMinimumHeight(fontMetrics().height() + 2);
    }
    connect(m_copy, &QToolButton::clicked, this, [this] { ui::SendCommand(m_target, kCmdLinkReference, 0, nullptr); });
    Translate();
}

void SelectionStrip::Translate()
{
    QString copy = LoadText(kTextMenuCopyLink);
    m_copy->setText(copy.remove(QLatin1Char('&')));
    m_copy->setIcon(ui::NamedImage(QStringLiteral("copy")));
    Show(m_value, m_watch);
}

void SelectionStrip::Show(const std::optional<ValueRef>& value, const DeviceWatch* watch)
{
    m_value = value;
    m_watch = value ? watch : nullptr;
    delete m_copy->menu();
    const bool isThere = m_watch != nullptr;
    m_copy->setVisible(isThere);
    m_name->setVisible(isThere);
    m_number->setVisible(isThere);
    m_variable.Unlock();
    if (!isThere) {
        m_mark->setText(LoadText(kTextSelectValue));
        return;
    }
    m_variable.Setup(value->device + u"." + value->name);
    m_variable.Lock();
    m_copy->setMenu(MakeLinkMenu(m_target, *m_watch));
    m_name->setText(ToQt(value->device + u"." + value->name + u"  ") + ToQt(value->description));
    UpdateValue();
}

void SelectionStrip::UpdateValue()
{
    if (m_watch == nullptr) {
        return;
    }
    m_number->setText(ValueText());
    const HistoryMark& mark = m_watch->Mark(m_value->variable);
    ZRDeviceDriver::tagSVariableInfo info;
    const bool isNumber = mark.any && m_variable.Info(info);
    if (!isNumber) {
        m_mark->setText({});
        return;
    }
    const QString low = MarkText(mark.low, info);
    const QString high = MarkText(mark.high, info);
    m_mark->setText(FilledText(kTextHistoryMark, {FromQt(low), FromQt(high)}));
}

QString SelectionStrip::ValueText()
{
    return m_variable.IsLocked() ? QString::fromStdString(supervision::ValueText(m_variable)) : QString();
}

void SelectionStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.fillRect(QRect(0, 0, width(), 1), LineColour());
}

}  // namespace zr::desktop
