// The variables that a graph of logged data shows, and how each is drawn.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <limits>
#include <list>

// An ordered list of records, one a variable; order is that of addition until somebody changes it. Owns the records.
// Nothing is checked: `Title` and `Name` are unique and `Zone` is 0 to 5 because callers see to it. UI thread only.
//
// To edit, make a copy by default construction and assignment, and assign it back.
class ZRGraphProfile {
public:
    class CVariableProfile {
    public:
        CVariableProfile() = default;
        CVariableProfile(const ZRBasicString& name, const ZRBasicString& title, int zone, int lineType,
                         unsigned long color, int measureUnits, int valueExponent, int decimals, int infoCode,
                         int index, double minimum, double maximum, int unitsExponent);

        // Sentinels for limits that aren't set, compared exactly.
        static constexpr double kNoMinimum = std::numeric_limits<double>::min();
        static constexpr double kNoMaximum = std::numeric_limits<double>::max();

        ZRBasicString Title;    // as shown in lists; by it records are matched to each other and to list rows
        ZRBasicString Name;     // full name of the variable
        int Zone = -1;          // the axis, 0 to 5
        int LineType = 0;       // bits 0 to 7: pen style 0 to 4; bits 8 to 15: width in pixels, 1 to 9
        int MeasureUnits = 0;   // unit code; 7 is the power factor
        int ValueExponent = 0;  // decimal exponent of the stored sample
        int Decimals = 0;       // to show
        int InfoCode = 0;       // class of the variable; carried along, read by nobody
        int Index = 0;          // position in the ZRLoggerInfo that the viewer uses
        int UnitsExponent = 0;  // decimal exponent of the displayed unit
        // Limits of the axis. For a power factor in folded form: x + 2.0 for a negative x.
        double Minimum = kNoMinimum;
        double Maximum = kNoMaximum;
        unsigned long Color = 0;  // 0x00BBGGRR
    };

    ZRGraphProfile() = default;
    // Meant: the new profile holds the same records as the source, so that both would free them.
    ZRGraphProfile(const ZRGraphProfile&) = default;
    virtual ~ZRGraphProfile();
    // Deep, in order. Meant: the target is emptied first, so that a profile assigned to itself ends up empty.
    ZRGraphProfile& operator=(ZRGraphProfile& source);

    // Appends a copy.
    void AddVariable(const CVariableProfile& variable);
    void AddVariable(const ZRBasicString& Name, const ZRBasicString& Title, int Zone, int LineType, unsigned long Color,
                     int MeasureUnits, int ValueExponent, int Decimals, int InfoCode, int Index, double Minimum,
                     double Maximum, int UnitsExponent);
    // Zero-based. False, with nothing changed, for an index that names no record.
    bool DeleteVariable(int index);
    void DeleteAll();
    // Zero-based; walks the list. Meant: beyond the end a new default record that is in no list and that nobody frees.
    CVariableProfile& operator[](unsigned int index);
    // Exchanges what two records hold, `Index` included; a pointer to a record stays good and then points to the other
    // variable's data. False, with nothing changed, unless both indices name records.
    bool Swap(int first, int second);
    [[nodiscard]] unsigned int NVars() const;

    using Records = std::list<CVariableProfile*>;
    Records::iterator VarsBegin() { return m_variables.begin(); }
    Records::iterator VarsEnd() { return m_variables.end(); }
    [[nodiscard]] Records::const_iterator VarsBegin() const { return m_variables.begin(); }
    [[nodiscard]] Records::const_iterator VarsEnd() const { return m_variables.end(); }

private:
    Records m_variables;  // Owned.
};
