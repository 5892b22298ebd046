#include "siblings/driversupport/recorder/RecordNames.h"

namespace zr {

int RecordNames::Variable(const ZRBasicString& name, std::int32_t infoCode)
{
    const auto [entry, isNew] = m_variableNumbers.try_emplace(name, static_cast<int>(m_variables.size()));
    if (isNew) {
        m_variables.push_back({name, infoCode});
    }
    Entry& variable = m_variables[static_cast<std::size_t>(entry->second)];
    if (variable.infoCode == 0) {
        variable.infoCode = infoCode;
    }
    return entry->second;
}

void RecordNames::SetInfoCode(int variable, std::int32_t infoCode)
{
    if (infoCode != 0) {
        m_variables[static_cast<std::size_t>(variable)].infoCode = infoCode;
    }
}

int RecordNames::DataSet(const ZRBasicString& name)
{
    const auto [entry, isNew] = m_dataSetNumbers.try_emplace(name, static_cast<int>(m_dataSets.size()));
    if (isNew) {
        m_dataSets.push_back(name);
    }
    return entry->second;
}

}  // namespace zr
