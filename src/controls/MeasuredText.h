// Sizes of texts, measured once while they stay the same, and texts shortened to the room they have.
#pragma once

#include "controls/DrawList.h"
#include "siblings/tools/ZRBasicString.h"

#include <array>

namespace zr::controls {

// What a bar measures at every paint; each use keeps its last text and size. UI thread only.
class MeasuredTexts {
public:
    enum Use {
        Sample,
        Label,
        Present,
        HighMark,
        LowMark,
        LowAlarm,
        LowWarning,
        HighAlarm,
        HighWarning,
        HighAlarmNumber,
        HighWarningNumber,
        Units,
        Info,
        UseCount
    };

    // The size of a text in a font; the same font for a use always.
    Size Measure(Use use, const TextMeasure& measure, FontRole font, const ZRBasicString& text);
    // The text, or its longest beginning with an ellipsis that is no wider than the room; empty when not even the
    // ellipsis fits. Its size goes to size.
    const ZRBasicString& Fit(Use use, const TextMeasure& measure, FontRole font, const ZRBasicString& text, int room,
                             Size& size);
    void Forget();

private:
    struct Entry {
        bool isKnown = false;
        ZRBasicString text;
        Size size;
        int room = -1;  // for which fitted holds; -1: none
        ZRBasicString fitted;
        Size fittedSize;
    };
    std::array<Entry, UseCount> m_entries;
};

}  // namespace zr::controls
