#include "siblings/driversupport/recorder/RecorderBooks.h"

#include <algorithm>
#include <utility>

namespace zr {

RecorderBooks::RecorderBooks(std::span<const LoggerDataSet> dataSets, std::size_t nodes)
    : m_dataSets(dataSets.size()), m_nodes(nodes)
{
    for (std::size_t i = 0; i < dataSets.size(); ++i) {
        m_dataSets[i].figures.name = dataSets[i].name;
        m_dataSets[i].figures.period = dataSets[i].period;
        m_dataSets[i].figures.variables = dataSets[i].variables.size();
    }
}

void RecorderBooks::Passed(int dataSet, const Pass& pass)
{
    const std::lock_guard lock(m_guard);
    Count(dataSet, UnrecordedReason::ClockSetBack, pass.clockSetBack);
    Count(dataSet, UnrecordedReason::Late, pass.late);
    Count(dataSet, UnrecordedReason::Invalid, pass.invalid);
    Count(dataSet, UnrecordedReason::Missing, pass.missing);
    Entry* const entry = Find(dataSet);
    if (entry == nullptr || !pass.isSampled) {
        return;
    }
    entry->isTold[static_cast<std::size_t>(UnrecordedReason::Late)] = pass.late > 0;
    entry->isTold[static_cast<std::size_t>(UnrecordedReason::Invalid)] = pass.invalid > 0;
    entry->isTold[static_cast<std::size_t>(UnrecordedReason::Missing)] = pass.missing > 0;
}

void RecorderBooks::Recorded(int dataSet, std::uint64_t samples, std::int64_t time)
{
    const std::lock_guard lock(m_guard);
    Acknowledge(dataSet, time);
    m_total.recorded += samples;
    if (Entry* const entry = Find(dataSet)) {
        entry->figures.counts.recorded += samples;
    }
}

void RecorderBooks::Spooled(int dataSet, std::int64_t time)
{
    const std::lock_guard lock(m_guard);
    Acknowledge(dataSet, time);
}

void RecorderBooks::NotRecorded(int dataSet, UnrecordedReason reason, std::uint64_t samples)
{
    const std::lock_guard lock(m_guard);
    Count(dataSet, reason, samples);
}

void RecorderBooks::Fine(int dataSet, UnrecordedReason reason)
{
    const std::lock_guard lock(m_guard);
    if (Entry* const entry = Find(dataSet)) {
        entry->isTold[static_cast<std::size_t>(reason)] = false;
    }
}

void RecorderBooks::SetNode(std::size_t node, const RecorderNodeFigures& figures,
                            std::vector<std::uint64_t> spooledOfSets)
{
    const std::lock_guard lock(m_guard);
    m_nodes[node] = {figures, std::move(spooledOfSets)};
}

void RecorderBooks::AddNotice(RecorderNotice notice)
{
    const std::lock_guard lock(m_guard);
    Enter(std::move(notice));
}

RecorderFigures RecorderBooks::Figures() const
{
    const std::lock_guard lock(m_guard);
    RecorderFigures figures;
    figures.total = m_total;
    for (const Entry& entry : m_dataSets) {
        figures.dataSets.push_back(entry.figures);
    }
    for (const Node& node : m_nodes) {
        figures.nodes.push_back(node.figures);
        figures.total.spooled += node.figures.spooled;
        for (std::size_t i = 0; i < node.spooledOfSets.size(); ++i) {
            figures.dataSets[i].counts.spooled += node.spooledOfSets[i];
        }
    }
    return figures;
}

std::vector<RecorderNotice> RecorderBooks::TakeNotices()
{
    const std::lock_guard lock(m_guard);
    return std::exchange(m_notices, {});
}

RecorderBooks::Entry* RecorderBooks::Find(int dataSet)
{
    const auto index = static_cast<std::size_t>(dataSet);
    return dataSet >= 0 && index < m_dataSets.size() ? &m_dataSets[index] : nullptr;
}

void RecorderBooks::Count(int dataSet, UnrecordedReason reason, std::uint64_t samples)
{
    if (samples == 0) {
        return;
    }
    const auto index = static_cast<std::size_t>(reason);
    m_total.unrecorded[index] += samples;
    Entry* const entry = Find(dataSet);
    if (entry == nullptr) {
        return;
    }
    entry->figures.counts.unrecorded[index] += samples;
    if (!std::exchange(entry->isTold[index], true)) {
        RecorderNotice notice;
        notice.kind = RecorderNotice::Kind::NotRecorded;
        notice.dataSet = entry->figures.name;
        notice.reason = reason;
        notice.count = entry->figures.counts.unrecorded[index];
        Enter(std::move(notice));
    }
}

void RecorderBooks::Acknowledge(int dataSet, std::int64_t time)
{
    if (Entry* const entry = Find(dataSet)) {
        entry->figures.lastTime = std::max(entry->figures.lastTime, time);
        entry->isTold[static_cast<std::size_t>(UnrecordedReason::NoRoom)] = false;
    }
}

void RecorderBooks::Enter(RecorderNotice notice)
{
    if (m_notices.size() < kMostNotices) {
        m_notices.push_back(std::move(notice));
    }
}

}  // namespace zr
