// The widest of very many texts that differ in little but their digits.
#pragma once

#include "logger/TablePrint.h"

#include <string>
#include <string_view>
#include <vector>

namespace zr::logger {

// Tells, of a font, whether all digits are of one width wherever they stand among each other and beside other
// characters, as they are in fonts made for tables.
class DigitWidths {
public:
    explicit DigitWidths(PrintMeasure& measure) : m_measure(measure) {}

    // Whether every text of that shape, whatever its digits, is as wide.
    bool IsUniform(std::u16string_view shape);
    [[nodiscard]] int Width(std::u16string_view text) const { return m_measure.Extent(text).width; }

private:
    bool AreDigitsUniform();
    bool IsNeighbourUniform(wchar character);

    PrintMeasure& m_measure;
    int m_digits = -1;              // -1: not measured yet
    std::u16string m_uniform;       // characters beside which digits keep their width
    std::u16string m_proportional;  // and beside which they don't
};

// The widest text of one column. Texts of one shape, which is what they are but for their digits, are measured once
// where the font allows it, so that millions of cells cost a few measurements.
class WidestText {
public:
    explicit WidestText(DigitWidths& digits, int width = 0) : m_digits(digits), m_width(width) {}

    void Add(std::u16string_view text);
    [[nodiscard]] int Width() const { return m_width; }

private:
    [[nodiscard]] bool IsKnown(std::u16string_view text);
    void AddNew(std::u16string_view text);

    DigitWidths& m_digits;
    int m_width;
    std::vector<std::u16string> m_shapes;  // measured; a digit stands as 0
    std::size_t m_last = 0;                // of the shapes, the one that fitted last
};

}  // namespace zr::logger
