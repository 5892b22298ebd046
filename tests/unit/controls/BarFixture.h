// A bar under test with readings, a client and texts that are easy to measure by hand.
#pragma once

#include "controls/BarScale.h"
#include "controls/TextOn.h"
#include "controls/ValueBar.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <limits>
#include <string>
#include <variant>
#include <vector>

namespace zr::controls {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kBothLimits = kCheckLowLimits | kCheckHighLimits;
constexpr BarColours kBarColours;
constexpr BarReading kUnlocked = {};
constexpr BarReading kInvalid = {true, false, 0.0};

// A character of the value font is 6 by 10 pixels, one of the label font 7 by 12.
class BarMeasure final : public TextMeasure {
public:
    [[nodiscard]] Size Measure(FontRole font, const ZRBasicString& text) const override
    {
        ++count;
        const int length = static_cast<int>(text.Length());
        return font == FontRole::Value ? Size{length * 6, 10} : Size{length * 7, 12};
    }
    mutable int count = 0;
};

inline std::string ReadableText(const ZRBasicString& text)
{
    return {text.Text().begin(), text.Text().end()};
}

inline void PrintTo(const Rect& rect, std::ostream* out)
{
    *out << "{" << rect.left << ", " << rect.top << ", " << rect.right << ", " << rect.bottom << "}";
}

// What a test asks of a draw list.
template <typename Item>
std::vector<Item> ItemsOf(const DrawList& list)
{
    std::vector<Item> items;
    for (const DrawItem& item : list) {
        if (const Item* const found = std::get_if<Item>(&item)) {
            items.push_back(*found);
        }
    }
    return items;
}

inline std::vector<std::string> TextsOf(const DrawList& list)
{
    std::vector<std::string> texts;
    for (const Text& text : ItemsOf<Text>(list)) {
        texts.push_back(ReadableText(text.text));
    }
    return texts;
}

// The text item that reads like this; a test fails without one.
inline Text TextLike(const DrawList& list, const ZRBasicString& wanted)
{
    for (const Text& text : ItemsOf<Text>(list)) {
        if (text.text == wanted) {
            return text;
        }
    }
    ADD_FAILURE() << "no text " << ReadableText(wanted);
    return {};
}

inline bool HasFill(const DrawList& list, const Rect& rect, Rgb colour)
{
    const auto fills = ItemsOf<Fill>(list);
    return std::any_of(fills.begin(), fills.end(),
                       [&](const Fill& fill) { return fill.rect == rect && fill.colour == colour; });
}

// Whether a fill of that colour covers a pixel.
inline bool IsFilled(const DrawList& list, Point point, Rgb colour)
{
    const auto fills = ItemsOf<Fill>(list);
    return std::any_of(fills.begin(), fills.end(),
                       [&](const Fill& fill) { return fill.colour == colour && fill.rect.Contains(point); });
}

// The bar is a HorizontalBar or a VerticalBar.
template <typename Bar>
class BarTest : public ::testing::Test {
protected:
    static BarReading Valid(double number) { return {true, true, number}; }

    bool Read(BarReading present, BarReading high = kUnlocked, BarReading low = kUnlocked)
    {
        return bar.Update({present, high, low});
    }
    bool ReadAll(double present, double high, double low) { return Read(Valid(present), Valid(high), Valid(low)); }
    void ShowDecimals(int decimals)
    {
        for (auto& info : paint.info) {
            info.unitsDecimals = decimals;
        }
    }
    const DrawList& Compose() { return bar.Compose(paint, measure); }
    // Where the present value stands after a reading of it.
    int PlaceAt(double value)
    {
        Read(Valid(value));
        Compose();
        return bar.MarkerOf(kPresentSlot);
    }
    BarPlaces Markers()
    {
        Compose();
        return {bar.MarkerOf(0), bar.MarkerOf(1), bar.MarkerOf(2)};
    }
    [[nodiscard]] Rect TextRect(int slot) const { return bar.Slots()[slot].textRect; }
    // Along the middle of the bar's picture.
    [[nodiscard]] std::uint32_t PixelAt(int x, int y) const
    {
        const Bitmap& bitmap = bar.PicturePixels();
        return bitmap.pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap.width) +
                                static_cast<std::size_t>(x));
    }

    Bar bar;
    BarPaint paint;
    BarMeasure measure;
};

}  // namespace zr::controls
