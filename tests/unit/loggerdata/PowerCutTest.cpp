// What a power cut leaves of a store: the writes of a run are replayed up to a cut, what wasn't flushed by then is lost
// or torn at random, and the store is opened on the rest.
#include "siblings/driversupport/store/SqliteLoggerStore.h"

#include "support/SampleMap.h"
#include "support/TempFolder.h"
#include "unit/loggerdata/TestVfs.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <fstream>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace zr {
namespace {

using Operation = test::TestVfs::Operation;
using Synchronous = SqliteStoreOptions::Synchronous;

constexpr std::int64_t kSecond = 1000000;
constexpr std::int64_t kHour = 3600 * kSecond;
constexpr std::int64_t kStart = 1040000000 * kSecond / kHour * kHour;
constexpr std::size_t kSector = 512;
constexpr int kVariables = 3;

ZRBasicString NameOf(int variable)
{
    const wchar name[] = {u'M', u'.', static_cast<wchar>(u'A' + variable), 0};
    return name;
}

// No two samples have the same, so that one tells where it belongs.
double ValueAt(int variable, std::int64_t time)
{
    return static_cast<double>((time - kStart) / kSecond) * 10.0 + variable;
}

// A run of a recorder: small batches, now and then a large one, a pack, a checkpoint, a start anew.
class Run {
public:
    explicit Run(Synchronous synchronous) : m_layer("power-cut"), m_options{synchronous, m_layer.Name()}
    {
        Start();
        for (int batch = 0; batch < 160; ++batch) {
            Append(batch % 23 == 22 ? 300 : 1 + batch % 4);
            if (batch % 29 == 28) {
                while (m_store->Maintain(m_time + 2 * kHour) == LoggerStore::Upkeep::More) {
                }
                m_time += kHour;
            }
            if (batch % 17 == 16) {
                Checkpoint();
            }
            if (batch % 47 == 46) {
                Start();
            }
        }
        m_store.reset();
    }

    struct Sample {
        int variable = 0;
        std::int64_t time = 0;
        std::size_t acknowledged = 0;  // so many operations had been done
    };

    [[nodiscard]] const std::vector<Operation>& Operations() const { return m_layer.Operations(); }
    [[nodiscard]] const std::vector<Sample>& Samples() const { return m_samples; }

private:
    void Start()
    {
        m_store.reset();
        m_store = std::make_unique<SqliteLoggerStore>(m_folder / "data.zrlog", m_options);
        for (int variable = 0; variable < kVariables; ++variable) {
            EXPECT_EQ(m_store->OpenSeries(NameOf(variable), 1), variable) << m_store->Error();
        }
    }

    void Append(int times)
    {
        std::vector<LoggerAppend> batch;
        for (int i = 0; i < times; ++i, m_time += 10 * kSecond) {
            for (int variable = 0; variable < kVariables; ++variable) {
                batch.push_back({variable, m_time, ValueAt(variable, m_time)});
            }
        }
        ASSERT_TRUE(m_store->Append(batch)) << m_store->Error();
        for (const LoggerAppend& sample : batch) {
            m_samples.push_back({sample.series, sample.time, m_layer.Operations().size()});
        }
    }

    void Checkpoint()
    {
        sqlite3* handle = nullptr;
        ASSERT_EQ(sqlite3_open_v2((m_folder / "data.zrlog").string().c_str(), &handle, SQLITE_OPEN_READWRITE,
                                  m_layer.Name().c_str()),
                  SQLITE_OK);
        EXPECT_EQ(sqlite3_wal_checkpoint_v2(handle, nullptr, SQLITE_CHECKPOINT_RESTART, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(handle);
    }

    test::TempFolder m_folder;
    test::TestVfs m_layer;
    SqliteStoreOptions m_options;
    std::unique_ptr<SqliteLoggerStore> m_store;
    std::int64_t m_time = kStart;
    std::vector<Sample> m_samples;
};

// A file on a disk that loses power.
class CutFile {
public:
    void Apply(const Operation& operation)
    {
        switch (operation.kind) {
            case Operation::Kind::Sync:
                for (const Operation& flushed : m_pending) {
                    Do(flushed, 0, flushed.bytes.size());
                }
                m_pending.clear();
                break;
            case Operation::Kind::Remove:
                m_isRemoved = true;
                break;
            default:
                if (m_isRemoved) {
                    m_bytes.clear();
                    m_pending.clear();
                }
                m_isRemoved = false;
                m_exists = true;
                m_pending.push_back(operation);
                break;
        }
    }

    // A flush of any file brings removals to the disk too: file systems keep the order of such changes in a journal.
    void SettleRemoval()
    {
        if (m_isRemoved) {
            *this = CutFile();
        }
    }

    // A removal that wasn't flushed may have been lost.
    [[nodiscard]] bool Exists(std::mt19937& random) const { return m_exists && !(m_isRemoved && random() % 2 == 0); }

    // Each write that wasn't flushed is there, or not, or some sectors of it are.
    std::vector<std::uint8_t> Settled(std::mt19937& random)
    {
        for (const Operation& operation : m_pending) {
            const auto fate = random() % 3;
            if (fate == 0) {
                Do(operation, 0, operation.bytes.size());
            } else if (fate == 1 && operation.kind == Operation::Kind::Write) {
                for (std::size_t at = 0; at < operation.bytes.size(); at += kSector) {
                    if (random() % 2 == 0) {
                        Do(operation, at, std::min(at + kSector, operation.bytes.size()));
                    }
                }
            }
        }
        m_pending.clear();
        return m_bytes;
    }

private:
    void Do(const Operation& operation, std::size_t first, std::size_t last)
    {
        if (operation.kind == Operation::Kind::Truncate) {
            m_bytes.resize(static_cast<std::size_t>(operation.offset));
            return;
        }
        const auto offset = static_cast<std::size_t>(operation.offset);
        m_bytes.resize(std::max(m_bytes.size(), offset + last));
        std::copy(operation.bytes.begin() + static_cast<std::ptrdiff_t>(first),
                  operation.bytes.begin() + static_cast<std::ptrdiff_t>(last),
                  m_bytes.begin() + static_cast<std::ptrdiff_t>(offset + first));
    }

    std::vector<std::uint8_t> m_bytes;  // what is on the disk for sure
    std::vector<Operation> m_pending;
    bool m_isRemoved = false;
    bool m_exists = false;
};

struct Outcome {
    std::size_t lost = 0;
    std::vector<std::string> corrupt;
};

// What the store on a folder has of the samples that were acknowledged by then.
void Look(const std::filesystem::path& file, const Run& run, std::size_t cut, Outcome& outcome)
{
    // Doesn't wait for the disk of this machine.
    const test::TestVfs layer("after-the-cut");
    SqliteLoggerStore store(file, {Synchronous::Full, layer.Name()});
    const auto reader = store.OpenReader();
    LoggerCheck check;
    if (reader == nullptr || !reader->Check(check, nullptr)) {
        outcome.corrupt.push_back("the store can't be opened");
        return;
    }
    outcome.corrupt.insert(outcome.corrupt.end(), check.findings.begin(), check.findings.end());
    std::vector<test::SampleMap> read(kVariables);
    for (int variable = 0; variable < kVariables; ++variable) {
        test::SampleMap& visitor = read[static_cast<std::size_t>(variable)];
        if (!reader->ReadBlocks(NameOf(variable), 0, std::numeric_limits<std::int64_t>::max(), LoggerNeed::Samples,
                                visitor)) {
            outcome.corrupt.push_back(reader->Error());
        }
        for (const auto& [time, value] : visitor.samples) {
            if (value != ValueAt(variable, time)) {
                outcome.corrupt.push_back("a sample has another value");
            }
        }
    }
    for (const Run::Sample& sample : run.Samples()) {
        const auto& samples = read[static_cast<std::size_t>(sample.variable)].samples;
        outcome.lost += sample.acknowledged <= cut && !samples.contains(sample.time) ? 1u : 0u;
    }
}

Outcome CutMany(Synchronous synchronous, int cuts)
{
    const Run run(synchronous);
    Outcome outcome;
    std::mt19937 random(11);
    for (int i = 0; i < cuts && !testing::Test::HasFatalFailure(); ++i) {
        const std::size_t cut = random() % (run.Operations().size() + 1);
        std::map<std::string, CutFile> files;
        for (std::size_t o = 0; o < cut; ++o) {
            const Operation& operation = run.Operations()[o];
            files[operation.file].Apply(operation);
            if (operation.kind == Operation::Kind::Sync) {
                std::for_each(files.begin(), files.end(), [](auto& entry) { entry.second.SettleRemoval(); });
            }
        }
        const test::TempFolder folder;
        for (auto& [name, file] : files) {
            if (file.Exists(random)) {
                const std::vector<std::uint8_t> bytes = file.Settled(random);
                folder.Write(name, std::string(bytes.begin(), bytes.end()));
            }
        }
        Look(folder / "data.zrlog", run, cut, outcome);
    }
    return outcome;
}

TEST(PowerCut, LosesNothingThatWasAcknowledgedAndCorruptsNothing)
{
    const Outcome outcome = CutMany(Synchronous::Full, 1000);
    EXPECT_EQ(outcome.lost, 0u);
    EXPECT_EQ(outcome.corrupt, std::vector<std::string>());
}

// So that the test above is known to see a loss.
TEST(PowerCut, LosesAcknowledgedSamplesWhenBatchesAreNotFlushed)
{
    const Outcome outcome = CutMany(Synchronous::Normal, 200);
    EXPECT_GT(outcome.lost, 0u);
    EXPECT_EQ(outcome.corrupt, std::vector<std::string>());
}

}  // namespace
}  // namespace zr
