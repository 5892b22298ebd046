// The variables and data sets of one node, by number.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace zr {

// Numbers are zero-based, in the order of entry, and hold for as long as this object. One thread at a time.
class RecordNames {
public:
    // The number of a variable (plain reference), entered if it is new. A class of 0 is one not known yet; the first
    // that is known stays.
    int Variable(const ZRBasicString& name, std::int32_t infoCode = 0);
    int DataSet(const ZRBasicString& name);
    // What is known better than by a file. 0 changes nothing.
    void SetInfoCode(int variable, std::int32_t infoCode);

    [[nodiscard]] std::size_t Variables() const { return m_variables.size(); }
    [[nodiscard]] std::size_t DataSets() const { return m_dataSets.size(); }
    // Of a number that was given; no range test.
    [[nodiscard]] const ZRBasicString& VariableName(int variable) const { return At(variable).name; }
    [[nodiscard]] std::int32_t InfoCode(int variable) const { return At(variable).infoCode; }
    [[nodiscard]] const ZRBasicString& DataSetName(int dataSet) const
    {
        return m_dataSets[static_cast<std::size_t>(dataSet)];
    }

private:
    struct Entry {
        ZRBasicString name;
        std::int32_t infoCode = 0;
    };
    [[nodiscard]] const Entry& At(int variable) const { return m_variables[static_cast<std::size_t>(variable)]; }

    std::vector<Entry> m_variables;
    std::vector<ZRBasicString> m_dataSets;
    std::unordered_map<ZRBasicString, int> m_variableNumbers;
    std::unordered_map<ZRBasicString, int> m_dataSetNumbers;
};

}  // namespace zr
