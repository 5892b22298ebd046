#include "siblings/driversupport/store/LoggerNodes.h"

#include "siblings/tools/Progress.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace zr {

namespace {

void Join(std::string& text, const std::string& more)
{
    if (!more.empty()) {
        text += text.empty() ? more : "; " + more;
    }
}

// The progress of one node out of several.
class NodeProgress final : public Progress {
public:
    NodeProgress(Progress& whole, std::size_t node, std::size_t nodes) : m_whole(whole), m_node(node), m_nodes(nodes) {}
    void SetText(const wchar* text) override { m_whole.SetText(text); }
    void SetPos(int percent) override
    {
        const int before = static_cast<int>(m_node) * 100;
        m_whole.SetPos((before + std::clamp(percent, 0, 100)) / static_cast<int>(m_nodes));
    }
    [[nodiscard]] bool IsCancelled() const override { return m_whole.IsCancelled(); }

private:
    Progress& m_whole;
    std::size_t m_node;
    std::size_t m_nodes;
};

class NodesReader final : public LoggerReader {
public:
    explicit NodesReader(const std::vector<std::unique_ptr<LoggerStore>>& nodes)
        : m_nodes(nodes), m_readers(nodes.size())
    {
    }

    bool ReadBlocks(const ZRBasicString& variable, std::int64_t from, std::int64_t to, LoggerNeed need,
                    LoggerBlockVisitor& visitor) override
    {
        return Ask(variable,
                   [&](LoggerReader& reader) { return reader.ReadBlocks(variable, from, to, need, visitor); });
    }
    bool LastBefore(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override
    {
        return Ask(variable, [&](LoggerReader& reader) { return reader.LastBefore(variable, time, sample); });
    }
    bool FirstFrom(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override
    {
        return Ask(variable, [&](LoggerReader& reader) { return reader.FirstFrom(variable, time, sample); });
    }
    std::int32_t InfoCode(const ZRBasicString& variable) override
    {
        std::int32_t infoCode = 0;
        Ask(variable, [&](LoggerReader& reader) {
            infoCode = reader.InfoCode(variable);
            return true;
        });
        return infoCode;
    }

    bool DataSets(std::vector<LoggerDataSet>& sets) override
    {
        m_error.clear();
        bool hasAnswer = false;
        std::map<ZRBasicString, LoggerDataSet> merged;
        for (std::size_t i = 0; i < m_nodes.size(); ++i) {
            std::vector<LoggerDataSet> some;
            LoggerReader* const reader = Reader(i);
            if (reader == nullptr || !reader->DataSets(some)) {
                Join(m_error, ErrorOf(i));
                continue;
            }
            hasAnswer = true;
            for (LoggerDataSet& set : some) {
                const auto [entry, isNew] = merged.try_emplace(set.name, set);
                if (!isNew) {
                    std::vector<ZRBasicString>& variables = entry->second.variables;
                    variables.insert(variables.end(), set.variables.begin(), set.variables.end());
                }
            }
        }
        sets.clear();
        for (auto& [name, set] : merged) {
            if (m_nodes.size() > 1) {
                std::sort(set.variables.begin(), set.variables.end());
            }
            sets.push_back(std::move(set));
        }
        return hasAnswer;
    }

    bool Check(LoggerCheck& check, Progress* progress) override
    {
        m_error.clear();
        check = {};
        for (std::size_t i = 0; i < m_nodes.size(); ++i) {
            if (!CheckNode(i, check, progress)) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] std::string Error() const override { return m_error; }

private:
    // Null when the node can't be read now.
    LoggerReader* Reader(std::size_t node)
    {
        if (m_readers[node] == nullptr) {
            m_readers[node] = m_nodes[node]->OpenReader();
        }
        return m_readers[node].get();
    }

    [[nodiscard]] std::string ErrorOf(std::size_t node) const
    {
        const std::string error = m_readers[node] != nullptr ? m_readers[node]->Error() : std::string();
        return !error.empty() ? error : "node " + std::to_string(node + 1) + " of the store can't be read";
    }

    template <typename Question>
    bool Ask(const ZRBasicString& variable, Question question)
    {
        const std::size_t node = NodeOfVariable(variable, m_nodes.size());
        LoggerReader* const reader = Reader(node);
        const bool isDone = reader != nullptr && question(*reader);
        m_error = reader != nullptr ? reader->Error() : ErrorOf(node);
        return isDone;
    }

    // False when it was cancelled.
    bool CheckNode(std::size_t node, LoggerCheck& check, Progress* progress)
    {
        LoggerReader* const reader = Reader(node);
        if (reader == nullptr) {
            check.findings.push_back(ErrorOf(node));
            return progress == nullptr || !progress->IsCancelled();
        }
        LoggerCheck found;
        bool isDone = false;
        if (progress != nullptr) {
            NodeProgress share(*progress, node, m_nodes.size());
            isDone = reader->Check(found, &share);
        } else {
            isDone = reader->Check(found, nullptr);
        }
        Join(m_error, reader->Error());
        check.series += found.series;
        check.blocks += found.blocks;
        check.packed += found.packed;
        check.unpacked += found.unpacked;
        check.findings.insert(check.findings.end(), found.findings.begin(), found.findings.end());
        return isDone;
    }

    const std::vector<std::unique_ptr<LoggerStore>>& m_nodes;
    std::vector<std::unique_ptr<LoggerReader>> m_readers;  // by node; null until it is asked
    std::string m_error;
};

}  // namespace

std::size_t NodeOfVariable(const ZRBasicString& variable, std::size_t nodes)
{
    // The FNV-1a of Fowler, Noll and Vo with its 64-bit offset basis and prime. Folded, since its lowest bits know the
    // lowest bits of the characters only: "Meter 1.E1" and "Meter 2.E2" would always meet on one of two nodes.
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const char byte : Utf16ToUtf8(variable)) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3u;
    }
    hash ^= hash >> 32;
    return nodes > 0 ? static_cast<std::size_t>(hash % nodes) : 0;
}

LoggerNodes::LoggerNodes(std::vector<std::unique_ptr<LoggerStore>> nodes)
    : m_nodes(std::move(nodes)), m_shares(m_nodes.size())
{
}

LoggerNodes::~LoggerNodes() = default;

void LoggerNodes::AddError(const LoggerStore& node)
{
    Join(m_error, node.Error());
}

int LoggerNodes::OpenSeries(const ZRBasicString& variable, std::int32_t infoCode)
{
    m_error.clear();
    const auto known = m_numbers.find(variable);
    if (known != m_numbers.end()) {
        return known->second;
    }
    const std::size_t node = NodeOfVariable(variable, m_nodes.size());
    const int series = m_nodes[node]->OpenSeries(variable, infoCode);
    if (series < 0) {
        AddError(*m_nodes[node]);
        return -1;
    }
    const int number = static_cast<int>(m_places.size());
    m_places.push_back({node, series});
    m_numbers.emplace(variable, number);
    return number;
}

bool LoggerNodes::Append(std::span<const LoggerAppend> batch)
{
    m_error.clear();
    for (std::vector<LoggerAppend>& share : m_shares) {
        share.clear();
    }
    for (const LoggerAppend& sample : batch) {
        if (sample.series < 0 || static_cast<std::size_t>(sample.series) >= m_places.size()) {
            m_error = "the store has no series of number " + std::to_string(sample.series);
            return false;
        }
        const Place& place = m_places[static_cast<std::size_t>(sample.series)];
        m_shares[place.node].push_back({place.series, sample.time, sample.value});
    }
    bool isDone = true;
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        if (!m_shares[i].empty() && !m_nodes[i]->Append(m_shares[i])) {
            AddError(*m_nodes[i]);
            isDone = false;
        }
    }
    return isDone;
}

bool LoggerNodes::SetDataSet(const LoggerDataSet& set)
{
    m_error.clear();
    bool isDone = true;
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        LoggerDataSet share{set.name, set.period, set.retention, {}};
        std::copy_if(set.variables.begin(), set.variables.end(), std::back_inserter(share.variables),
                     [&](const ZRBasicString& variable) { return NodeOfVariable(variable, m_nodes.size()) == i; });
        if (!m_nodes[i]->SetDataSet(share)) {
            AddError(*m_nodes[i]);
            isDone = false;
        }
    }
    return isDone;
}

LoggerStore::Upkeep LoggerNodes::Maintain(std::int64_t now)
{
    m_error.clear();
    const Upkeep upkeep = m_nodes[m_upkeepNode]->Maintain(now);
    if (upkeep == Upkeep::More) {
        return Upkeep::More;
    }
    if (upkeep == Upkeep::Failed) {
        Join(m_upkeepError, m_nodes[m_upkeepNode]->Error());
        m_hasUpkeepFailed = true;
    }
    if (++m_upkeepNode < m_nodes.size()) {
        return Upkeep::More;
    }
    m_error = std::exchange(m_upkeepError, {});
    m_upkeepNode = 0;
    return std::exchange(m_hasUpkeepFailed, false) ? Upkeep::Failed : Upkeep::Done;
}

std::vector<std::string> LoggerNodes::TakeFindings()
{
    std::vector<std::string> findings;
    for (const auto& node : m_nodes) {
        for (std::string& finding : node->TakeFindings()) {
            findings.push_back(std::move(finding));
        }
    }
    return findings;
}

std::unique_ptr<LoggerReader> LoggerNodes::OpenReader()
{
    return std::make_unique<NodesReader>(m_nodes);
}

}  // namespace zr
