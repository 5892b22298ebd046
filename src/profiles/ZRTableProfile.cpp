#include "profiles/ZRTableProfile.h"

#include "profiles/ProfileRecords.h"

ZRTableProfile::CVariableProfile::CVariableProfile(const ZRBasicString& name, const ZRBasicString& title, int index,
                                                   int measureUnits, int valueExponent, int decimals, int width,
                                                   int unitsExponent)
    : Title(title),
      Name(name),
      Index(index),
      MeasureUnits(measureUnits),
      ValueExponent(valueExponent),
      Decimals(decimals),
      Width(width),
      UnitsExponent(unitsExponent)
{
}

ZRTableProfile::~ZRTableProfile()
{
    DeleteAll();
}

ZRTableProfile& ZRTableProfile::operator=(ZRTableProfile& source)
{
    DeleteAll();
    for (unsigned int i = 0; i < source.NVars(); ++i) {
        AddVariable(source[i]);
    }
    return *this;
}

void ZRTableProfile::AddVariable(const CVariableProfile& variable)
{
    m_variables.push_back(new CVariableProfile(variable));
}

void ZRTableProfile::AddVariable(const ZRBasicString& Name, const ZRBasicString& Title, int Index, int MeasureUnits,
                                 int ValueExponent, int Decimals, int Width, int UnitsExponent)
{
    AddVariable(CVariableProfile(Name, Title, Index, MeasureUnits, ValueExponent, Decimals, Width, UnitsExponent));
}

bool ZRTableProfile::DeleteVariable(int index)
{
    return zr::profiles::DeleteAt(m_variables, index);
}

void ZRTableProfile::DeleteAll()
{
    zr::profiles::DeleteAll(m_variables);
}

ZRTableProfile::CVariableProfile& ZRTableProfile::operator[](unsigned int index)
{
    return zr::profiles::At(m_variables, index);
}

bool ZRTableProfile::Swap(int first, int second)
{
    return zr::profiles::Swap(m_variables, first, second);
}

unsigned int ZRTableProfile::NVars() const
{
    return static_cast<unsigned int>(m_variables.size());
}
