// A store whose reading a test holds up, or lets fail in the middle.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"

#include <functional>

namespace zr::logger {

// Everything is that of the store behind it, but each block that is read goes through the gate first.
class StoreWithGate final : public LoggerStore {
public:
    explicit StoreWithGate(LoggerStore& store) : m_store(store) {}

    // On the loader's thread, before a block is shown. False: the store fails.
    std::function<bool()> gate;
    // Why it fails then.
    std::string failure = "the store went away";
    // What it tells of a block that it left out; empty: none.
    std::string damage;

    int OpenSeries(const ZRBasicString& variable, std::int32_t infoCode) override
    {
        return m_store.OpenSeries(variable, infoCode);
    }
    bool Append(std::span<const LoggerAppend> batch) override { return m_store.Append(batch); }
    bool SetDataSet(const LoggerDataSet& set) override { return m_store.SetDataSet(set); }
    Upkeep Maintain(std::int64_t now) override { return m_store.Maintain(now); }
    std::vector<std::string> TakeFindings() override { return m_store.TakeFindings(); }
    std::unique_ptr<LoggerReader> OpenReader() override
    {
        std::unique_ptr<LoggerReader> reader = m_store.OpenReader();
        return reader != nullptr ? std::make_unique<Reader>(*this, std::move(reader)) : nullptr;
    }
    [[nodiscard]] std::string Error() const override { return m_store.Error(); }

private:
    class Reader final : public LoggerReader, private LoggerBlockVisitor {
    public:
        Reader(StoreWithGate& store, std::unique_ptr<LoggerReader> reader) : m_store(store), m_reader(std::move(reader))
        {
        }
        bool ReadBlocks(const ZRBasicString& variable, std::int64_t from, std::int64_t to, LoggerNeed need,
                        LoggerBlockVisitor& visitor) override
        {
            m_visitor = &visitor;
            m_isShut = false;
            return m_reader->ReadBlocks(variable, from, to, need, *this);
        }
        bool LastBefore(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override
        {
            return m_reader->LastBefore(variable, time, sample);
        }
        bool FirstFrom(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override
        {
            return m_reader->FirstFrom(variable, time, sample);
        }
        std::int32_t InfoCode(const ZRBasicString& variable) override { return m_reader->InfoCode(variable); }
        bool DataSets(std::vector<LoggerDataSet>& sets) override { return m_reader->DataSets(sets); }
        bool Check(LoggerCheck& check, Progress* progress) override { return m_reader->Check(check, progress); }
        [[nodiscard]] std::string Error() const override
        {
            const std::string error = m_reader->Error();
            return m_isShut ? m_store.failure : error.empty() ? m_store.damage : error;
        }

    private:
        bool OnBlock(LoggerBlock& block) override
        {
            m_isShut = m_store.gate && !m_store.gate();
            return !m_isShut && m_visitor->OnBlock(block);
        }

        StoreWithGate& m_store;
        std::unique_ptr<LoggerReader> m_reader;
        LoggerBlockVisitor* m_visitor = nullptr;
        bool m_isShut = false;
    };

    LoggerStore& m_store;
};

}  // namespace zr::logger
