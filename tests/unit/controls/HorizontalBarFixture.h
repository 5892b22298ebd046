// A horizontal bar in a client where places are easy to work out by hand.
#pragma once

#include "BarFixture.h"
#include "controls/HorizontalBar.h"

namespace zr::controls {

// The bar lies from 42 to 444 and from 13 to 47. With both limits, four pixels are a unit from 170 at 42 to 220 at 242,
// and eight from 240 at 244 to 265 at 444.
class HorizontalBarTest : public BarTest<HorizontalBar> {
protected:
    HorizontalBarTest()
    {
        bar.SetupBar(34, 90);
        bar.FontsChanged(measure);
        paint.client = {486, 60};
    }
    void CheckBoth() { bar.SetupChecks(kBothLimits, 200.0, 180.0, 250.0, 260.0, 230.0); }
    // Marker of the present value after it was first read as one value and then as another.
    int PlaceAfter(double first, double then)
    {
        PlaceAt(first);
        return PlaceAt(then);
    }
};

}  // namespace zr::controls
