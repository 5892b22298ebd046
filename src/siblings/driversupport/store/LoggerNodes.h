// Logged samples over several stores, the nodes: each variable lives on one of them.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"

#include <unordered_map>
#include <vector>

namespace zr {

// The node that keeps a variable (plain reference), zero-based: the 64-bit FNV-1a hash of its UTF-8 bytes, its upper
// half folded into its lower one by exclusive-or, modulo the number of nodes. 0 for no nodes. Never to be changed: what
// is stored is found by it. Any thread.
std::size_t NodeOfVariable(const ZRBasicString& variable, std::size_t nodes);

// A node that fails costs its own variables only: a call fails when a node that it needs does, the others have done
// their share all the same, and Error() tells which node it was. Threads as LoggerStore tells. A recorder rather gives
// each node a thread of its own, by Node().
class LoggerNodes final : public LoggerStore {
public:
    // Owned; their order is that of the configuration and may never change. At least one, none of them null.
    explicit LoggerNodes(std::vector<std::unique_ptr<LoggerStore>> nodes);
    ~LoggerNodes() override;

    [[nodiscard]] std::size_t Size() const { return m_nodes.size(); }
    // Zero-based. Its series have numbers of their own.
    LoggerStore& Node(std::size_t index) { return *m_nodes[index]; }

    int OpenSeries(const ZRBasicString& variable, std::int32_t infoCode) override;
    // Each node enters its share whole or not at all; true when all have. Send the batch again after a failure: what is
    // entered already makes no doubles.
    bool Append(std::span<const LoggerAppend> batch) override;
    // Every node keeps the set, with its own variables.
    bool SetDataSet(const LoggerDataSet& set) override;
    // A slice of one node. Failed at the end of a round over all nodes in which one has failed.
    Upkeep Maintain(std::int64_t now) override;
    std::vector<std::string> TakeFindings() override;
    // Never null: a node that is away fails the reader's calls for its variables. Data sets are those of the nodes that
    // answer, each with its variables in order of their names; a check has a finding for each node that doesn't.
    std::unique_ptr<LoggerReader> OpenReader() override;
    [[nodiscard]] std::string Error() const override { return m_error; }

private:
    // Where a series is kept.
    struct Place {
        std::size_t node = 0;
        int series = 0;  // the node's own number
    };

    void AddError(const LoggerStore& node);

    std::vector<std::unique_ptr<LoggerStore>> m_nodes;
    std::unordered_map<ZRBasicString, int> m_numbers;
    std::vector<Place> m_places;
    std::vector<std::vector<LoggerAppend>> m_shares;  // of a batch, by node; kept for their memory
    std::size_t m_upkeepNode = 0;
    bool m_hasUpkeepFailed = false;  // in this round
    std::string m_upkeepError;
    std::string m_error;
};

}  // namespace zr
