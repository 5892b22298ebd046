// A window that draws a measurement on a horizontal coloured scale.
#pragma once

#include "controls/HorizontalBar.h"
#include "controls/ui/BarWindow.h"

// The present value stands above the bar, a high and a low mark below it. What is decided about them lives in
// zr::controls::HorizontalBar. Order of use: SetupBar, SetupVariable for each slot, SetupChecks, SetLabel, then Update
// periodically. The parent isn't told of a selection: it reads Selected. UI thread only.
class ZRBarValueControl : public zr::controls::BarWindow {
public:
    explicit ZRBarValueControl(QWidget* parent = nullptr, unsigned id = 0);

    // barHeight in pixels, at least 10; fontSize in tenths of a point, at least 90.
    void SetupBar(int barHeight, int fontSize);
    // Whether the present value's variable is locked.
    [[nodiscard]] bool IsValid() const { return Variable(zr::controls::kPresentSlot).IsLocked(); }

    [[nodiscard]] QSize sizeHint() const override { return {300, IdealHeight()}; }

protected:
    [[nodiscard]] zr::controls::HorizontalBar& Bar() override { return m_bar; }
    [[nodiscard]] const zr::controls::HorizontalBar& Bar() const override { return m_bar; }
    bool TakeReadings(const zr::controls::BarReadings& readings) override { return m_bar.Update(readings); }
    const zr::controls::DrawList& Compose(const zr::controls::BarPaint& paint,
                                          const zr::controls::TextMeasure& measure) override
    {
        return m_bar.Compose(paint, measure);
    }

private:
    zr::controls::HorizontalBar m_bar;
};
