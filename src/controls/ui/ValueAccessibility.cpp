#include "controls/ui/ValueAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>

namespace zr::controls {

namespace {

// Readers without a notion of a value text take it as the description.
class SpokenWidget : public QAccessibleWidget {
public:
    SpokenWidget(QWidget* widget, const SpokenValue& value)
        : QAccessibleWidget(widget, QAccessible::Indicator), m_value(value)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const bool isValue = kind == QAccessible::Value || kind == QAccessible::Description;
        return isValue ? m_value.SpokenText() : QAccessibleWidget::text(kind);
    }

private:
    const SpokenValue& m_value;  // the widget itself, which outlives this
};

QAccessibleInterface* MakeSpoken(const QString&, QObject* object)
{
    const auto* value = dynamic_cast<SpokenValue*>(object);
    return value != nullptr ? new SpokenWidget(static_cast<QWidget*>(object), *value) : nullptr;
}

}  // namespace

SpokenValue::SpokenValue()
{
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(MakeSpoken);
        return true;
    }();
}

void TellSpokenTextChanged(QWidget& control)
{
    if (QAccessible::isActive()) {
        QAccessibleEvent event(&control, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&event);
    }
}

}  // namespace zr::controls
