#include "siblings/driversupport/recorder/StoreWriter.h"

#include "siblings/driversupport/VariableStore.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace zr {

StoreWriter::StoreWriter(LoggerStore& store, RecordNames& names, std::vector<LoggerDataSet> dataSets)
    : m_store(store), m_names(names), m_dataSets(std::move(dataSets))
{
}

bool StoreWriter::Fail()
{
    m_error = m_store.Error();
    if (m_error.empty()) {
        m_error = "the store can't be read";
    }
    return false;
}

bool StoreWriter::Append(std::span<const RecordBatch> batches, std::vector<std::size_t>& entered)
{
    m_error.clear();
    if (!EnterAll(batches) || !KnowTaken(batches)) {
        return false;
    }
    m_append.clear();
    entered.clear();
    for (const RecordBatch& batch : batches) {
        const std::size_t before = m_append.size();
        for (const RecordedValue& value : batch.values) {
            if (batch.isEarlier || !m_taken.IsTaken(value.variable, batch.time)) {
                m_append.push_back({m_series[static_cast<std::size_t>(value.variable)], batch.time, value.value});
            }
        }
        entered.push_back(m_append.size() - before);
    }
    return m_append.empty() || m_store.Append(m_append) || Fail();
}

bool StoreWriter::EnterSeries(int variable, std::int32_t infoCode)
{
    const auto index = static_cast<std::size_t>(variable);
    if (index >= m_series.size()) {
        m_series.resize(m_names.Variables(), -1);
    }
    if (m_series[index] < 0) {
        m_series[index] = m_store.OpenSeries(m_names.VariableName(variable), infoCode);
        m_areSetsDue = true;
    }
    return m_series[index] >= 0;
}

bool StoreWriter::EnterAll(std::span<const RecordBatch> batches)
{
    constexpr auto kOfUnknownClass = static_cast<std::int32_t>(VariableClass::Instantaneous);
    for (const RecordBatch& batch : batches) {
        for (const RecordedValue& value : batch.values) {
            const std::int32_t infoCode = m_names.InfoCode(value.variable);
            if (!EnterSeries(value.variable, infoCode != 0 ? infoCode : kOfUnknownClass)) {
                return Fail();
            }
        }
    }
    return true;
}

bool StoreWriter::KnowTaken(std::span<const RecordBatch> batches)
{
    std::unique_ptr<LoggerReader> reader;
    for (const RecordBatch& batch : batches) {
        if (batch.isEarlier || !m_taken.IsUnknown(batch.time)) {
            continue;
        }
        if (reader == nullptr && (reader = m_store.OpenReader()) == nullptr) {
            return Fail();
        }
        if (!m_taken.LookFrom(batch.time, m_names, *reader)) {
            m_error = reader->Error();
            return false;
        }
    }
    return true;
}

bool StoreWriter::SetDataSets()
{
    m_error.clear();
    if (!m_areSetsDue) {
        return true;
    }
    EnterThoseOfTheStore();
    for (LoggerDataSet set : m_dataSets) {
        std::erase_if(set.variables, [this](const ZRBasicString& name) {
            const auto index = static_cast<std::size_t>(m_names.Variable(name));
            return index >= m_series.size() || m_series[index] < 0;
        });
        if (!m_store.SetDataSet(set)) {
            return Fail();
        }
    }
    m_areSetsDue = false;
    return true;
}

// Variables without a device at present, of which the store has samples from before: their data set goes on to tell how
// long those are kept.
void StoreWriter::EnterThoseOfTheStore()
{
    const std::unique_ptr<LoggerReader> reader = m_store.OpenReader();
    m_series.resize(m_names.Variables(), -1);
    // A store that fails would make each of them wait.
    for (std::size_t i = 0; reader != nullptr && reader->Error().empty() && i < m_series.size(); ++i) {
        const int variable = static_cast<int>(i);
        const std::int32_t infoCode = m_series[i] < 0 ? reader->InfoCode(m_names.VariableName(variable)) : 0;
        if (infoCode != 0) {
            EnterSeries(variable, infoCode);
        }
    }
}

}  // namespace zr
