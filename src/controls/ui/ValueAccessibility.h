// Tells a screen reader what a value control shows.
#pragma once

#include <QString>

class QWidget;

namespace zr::controls {

// A control that has a value text for screen readers. Its accessible name is the widget's own.
class SpokenValue {
public:
    [[nodiscard]] virtual QString SpokenText() const = 0;

protected:
    SpokenValue();  // makes screen readers find the text
    ~SpokenValue() = default;
};

// To be called when the text has changed. Costs nothing while no screen reader listens.
void TellSpokenTextChanged(QWidget& control);

}  // namespace zr::controls
