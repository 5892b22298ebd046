#include "controls/MeasuredText.h"

#include <algorithm>

namespace zr::controls {

namespace {

constexpr wchar kEllipsis = u'\u2026';

bool IsHighSurrogate(wchar character)
{
    return character >= 0xd800 && character <= 0xdbff;
}

ZRBasicString Shortened(const ZRBasicString& text, std::size_t length)
{
    if (length > 0 && IsHighSurrogate(text[length - 1])) {
        --length;
    }
    return ZRBasicString(text.Text().substr(0, length)) + kEllipsis;
}

}  // namespace

Size MeasuredTexts::Measure(Use use, const TextMeasure& measure, FontRole font, const ZRBasicString& text)
{
    Entry& entry = m_entries[use];
    if (!entry.isKnown || entry.text != text) {
        entry.text = text;
        entry.size = measure.Measure(font, text);
        entry.isKnown = true;
        entry.room = -1;
    }
    return entry.size;
}

const ZRBasicString& MeasuredTexts::Fit(Use use, const TextMeasure& measure, FontRole font, const ZRBasicString& text,
                                        int room, Size& size)
{
    room = std::max(room, 0);
    size = Measure(use, measure, font, text);
    Entry& entry = m_entries[use];
    if (size.cx <= room) {
        return entry.text;
    }
    if (entry.room != room) {
        entry.room = room;
        std::size_t fits = 0;
        std::size_t tooLong = text.Length();
        while (tooLong - fits > 1) {
            const std::size_t length = (fits + tooLong) / 2;
            (measure.Measure(font, Shortened(text, length)).cx <= room ? fits : tooLong) = length;
        }
        entry.fitted = Shortened(text, fits);
        entry.fittedSize = measure.Measure(font, entry.fitted);
        if (entry.fittedSize.cx > room) {
            entry.fitted.Clear();
            entry.fittedSize.cx = 0;
        }
    }
    size = entry.fittedSize;
    return entry.fitted;
}

void MeasuredTexts::Forget()
{
    for (Entry& entry : m_entries) {
        entry.isKnown = false;
        entry.room = -1;
    }
}

}  // namespace zr::controls
