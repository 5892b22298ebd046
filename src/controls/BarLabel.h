// The label of a bar, which turns yellow or red with the present value.
#pragma once

#include "controls/BarSlots.h"
#include "controls/BarZones.h"
#include "controls/DrawList.h"
#include "controls/LimitChecks.h"

namespace zr::controls {

struct LabelColours {
    Rgb brush = 0;
    Rgb text = 0;
    friend bool operator==(const LabelColours&, const LabelColours&) = default;
};

// By the present value alone, whatever the marks are: the low limits come last and win over the high ones.
[[nodiscard]] LabelColours LabelColoursOf(const LimitChecks& limits, const BarSlotState& present,
                                          const BarColours& colours, Rgb face);
// Of a power factor: compared on the folded scale, and the low limits only where the high ones hold.
[[nodiscard]] LabelColours PowerFactorLabelColoursOf(const LimitChecks& limits, const BarSlotState& present,
                                                     const BarColours& colours, Rgb face);

}  // namespace zr::controls
