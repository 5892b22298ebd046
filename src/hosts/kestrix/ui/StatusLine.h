// A line of text at the bottom of a window.
#pragma once

#include "hosts/kestrix/ui/ElidedLabel.h"

namespace zr::desktop {

// The tip has all of it. What asks for attention stands on the ground of a notice,
// in the colours in force. UI thread only.
class StatusLine : public ElidedLabel {
public:
    explicit StatusLine(QWidget* parent);

    // The tip is that text too unless another is given.
    void Show(const QString& text, const QString& tip = {}, bool asksForAttention = false);
    [[nodiscard]] bool AsksForAttention() const { return m_asksForAttention; }

protected:
    void changeEvent(QEvent* event) override;

private:
    void TakeColours();

    bool m_asksForAttention = false;
};

}  // namespace zr::desktop
