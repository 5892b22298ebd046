#include "profiles/ZRGraphProfile.h"

#include "profiles/ProfileRecords.h"

ZRGraphProfile::CVariableProfile::CVariableProfile(const ZRBasicString& name, const ZRBasicString& title, int zone,
                                                   int lineType, unsigned long color, int measureUnits,
                                                   int valueExponent, int decimals, int infoCode, int index,
                                                   double minimum, double maximum, int unitsExponent)
    : Title(title),
      Name(name),
      Zone(zone),
      LineType(lineType),
      MeasureUnits(measureUnits),
      ValueExponent(valueExponent),
      Decimals(decimals),
      InfoCode(infoCode),
      Index(index),
      UnitsExponent(unitsExponent),
      Minimum(minimum),
      Maximum(maximum),
      Color(color)
{
}

ZRGraphProfile::~ZRGraphProfile()
{
    DeleteAll();
}

ZRGraphProfile& ZRGraphProfile::operator=(ZRGraphProfile& source)
{
    DeleteAll();
    for (unsigned int i = 0; i < source.NVars(); ++i) {
        AddVariable(source[i]);
    }
    return *this;
}

void ZRGraphProfile::AddVariable(const CVariableProfile& variable)
{
    m_variables.push_back(new CVariableProfile(variable));
}

void ZRGraphProfile::AddVariable(const ZRBasicString& Name, const ZRBasicString& Title, int Zone, int LineType,
                                 unsigned long Color, int MeasureUnits, int ValueExponent, int Decimals, int InfoCode,
                                 int Index, double Minimum, double Maximum, int UnitsExponent)
{
    AddVariable(CVariableProfile(Name, Title, Zone, LineType, Color, MeasureUnits, ValueExponent, Decimals, InfoCode,
                                 Index, Minimum, Maximum, UnitsExponent));
}

bool ZRGraphProfile::DeleteVariable(int index)
{
    return zr::profiles::DeleteAt(m_variables, index);
}

void ZRGraphProfile::DeleteAll()
{
    zr::profiles::DeleteAll(m_variables);
}

ZRGraphProfile::CVariableProfile& ZRGraphProfile::operator[](unsigned int index)
{
    return zr::profiles::At(m_variables, index);
}

bool ZRGraphProfile::Swap(int first, int second)
{
    return zr::profiles::Swap(m_variables, first, second);
}

unsigned int ZRGraphProfile::NVars() const
{
    return static_cast<unsigned int>(m_variables.size());
}
