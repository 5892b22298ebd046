// An upright bar in a client where places are easy to work out by hand.
#pragma once

#include "BarFixture.h"
#include "controls/VerticalBar.h"

namespace zr::controls {

// The bar lies from 70 to 90 and from 10 to 412, its frame from 68 to 92. With both limits, four pixels are a unit
// upwards from 170 at 412 to 220 at 212, and eight from 240 at 210 to 265 at 10.
class VerticalBarTest : public BarTest<VerticalBar> {
protected:
    VerticalBarTest()
    {
        SetupBar(0);
        paint.client = {200, 417};
    }
    void SetupBar(int displayFlags)
    {
        bar.SetupBar(displayFlags, 34, 90);
        bar.FontsChanged(measure);
    }
    void CheckBoth() { bar.SetupChecks(kBothLimits, 200.0, 180.0, 250.0, 260.0, 230.0); }
    // Limit texts without decimals.
    void SetupLimits(const ZRBasicString& units) { bar.SetupLimits(units, 200.0, 180.0, 250.0, 260.0, 0, 0, 0, 0); }
};

}  // namespace zr::controls
