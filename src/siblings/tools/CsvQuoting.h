// Where in a cell of a CSV file a byte stands.
#pragma once

namespace zr {

enum class CsvQuoting {
    CellStart,
    Plain,      // a quote means itself
    Quoted,     // all but a quote means itself
    QuoteSeen,  // in a quoted cell: the end of it, or the first of two
};

// After one byte more. A line end outside Quoted ends the record before this is asked.
constexpr CsvQuoting NextCsvQuoting(CsvQuoting state, char byte, char separator)
{
    switch (state) {
        case CsvQuoting::Quoted:
            return byte == '"' ? CsvQuoting::QuoteSeen : CsvQuoting::Quoted;
        case CsvQuoting::QuoteSeen:
            if (byte == '"') {
                return CsvQuoting::Quoted;
            }
            break;
        case CsvQuoting::CellStart:
            if (byte == '"') {
                return CsvQuoting::Quoted;
            }
            break;
        case CsvQuoting::Plain:
            break;
    }
    return byte == separator ? CsvQuoting::CellStart : CsvQuoting::Plain;
}

}  // namespace zr
