// The variables that a table of logged data shows, and how wide the column of each is.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <list>

// The twin of ZRGraphProfile, with no common base: an ordered list of records, one a variable. Owns the records.
// Nothing is checked. UI thread only.
//
// To edit, make a copy by default construction and assignment, and assign it back.
class ZRTableProfile {
public:
    class CVariableProfile {
    public:
        CVariableProfile() = default;
        CVariableProfile(const ZRBasicString& name, const ZRBasicString& title, int index, int measureUnits,
                         int valueExponent, int decimals, int width, int unitsExponent);

        ZRBasicString Title;    // as shown in lists; by it records are matched to each other and to list rows
        ZRBasicString Name;     // full name of the variable
        int Index = -1;         // position of the column
        int MeasureUnits = 0;   // unit code; 7 is the power factor
        int ValueExponent = 0;  // decimal exponent of the stored sample
        int Decimals = 0;       // to show
        int Width = 0;          // of the column
        int UnitsExponent = 0;  // decimal exponent of the displayed unit
    };

    ZRTableProfile() = default;
    // Meant: the new profile holds the same records as the source, so that both would free them.
    ZRTableProfile(const ZRTableProfile&) = default;
    virtual ~ZRTableProfile();
    // Deep, in order. Meant: the target is emptied first, so that a profile assigned to itself ends up empty.
    ZRTableProfile& operator=(ZRTableProfile& source);

    // Appends a copy.
    void AddVariable(const CVariableProfile& variable);
    void AddVariable(const ZRBasicString& Name, const ZRBasicString& Title, int Index, int MeasureUnits,
                     int ValueExponent, int Decimals, int Width, int UnitsExponent);
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
