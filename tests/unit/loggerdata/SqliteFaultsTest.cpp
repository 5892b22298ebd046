// What a store in a file does when the file, the folder or the disk fails, and when they are back.
#include "siblings/driversupport/store/SqliteLoggerStore.h"

#include "platform/Clock.h"
#include "support/TempFolder.h"
#include "unit/loggerdata/TestVfs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace zr {
namespace {

using testing::HasSubstr;

constexpr std::int64_t kSecond = 1000000;
constexpr std::int64_t kHour = 3600 * kSecond;
constexpr std::int64_t kStart = 1040000000 * kSecond / kHour * kHour;
constexpr std::int64_t kEnd = std::numeric_limits<std::int64_t>::max();
constexpr std::size_t kPage = 4096;

// Takes what can be unpacked.
class Samples final : public LoggerBlockVisitor {
public:
    bool OnBlock(LoggerBlock& block) override
    {
        std::span<const std::int64_t> times;
        std::span<const double> values;
        if (!block.Samples(times, values)) {
            return true;
        }
        for (std::size_t i = 0; i < times.size(); ++i) {
            all[times[i]] = values[i];
        }
        return true;
    }

    std::map<std::int64_t, double> all;
};

std::map<std::int64_t, double> ReadAll(LoggerStore& store, const wchar* variable)
{
    Samples samples;
    const auto reader = store.OpenReader();
    EXPECT_TRUE(reader != nullptr && reader->ReadBlocks(variable, 0, kEnd, LoggerNeed::Samples, samples));
    return samples.all;
}

class SqliteFaultsTest : public testing::Test {
protected:
    // A sample an hour, the next each time.
    bool AppendNext(SqliteLoggerStore& store, int series)
    {
        const LoggerAppend sample = {series, m_time, static_cast<double>(m_time / kHour % 1000)};
        m_time += kHour;
        return store.Append({&sample, 1});
    }

    test::TempFolder folder;
    std::filesystem::path file = folder / "data.zrlog";

private:
    std::int64_t m_time = kStart;
};

// The name of a file goes at once where it is removed; where a system refuses that while it is open, there is no fault.
#ifndef _WIN32

// What a reader says of a store that it can't read.
std::string WhyUnreadable(LoggerStore& store)
{
    std::vector<LoggerDataSet> sets;
    const auto reader = store.OpenReader();
    EXPECT_FALSE(reader->DataSets(sets));
    return reader->Error();
}

TEST_F(SqliteFaultsTest, GoesOnInANewFileWhenTheOldOneIsRemoved)
{
    for (const std::vector<std::string>& removed :
         {std::vector<std::string>{""}, {"", "-wal"}, {"", "-wal", "-shm"}, {"", "-shm"}}) {
        SqliteLoggerStore store(file);
        ASSERT_EQ(store.OpenSeries(u"M.I", 1), 0);
        const int series = store.OpenSeries(u"M.U", 8);
        ASSERT_TRUE(AppendNext(store, series));
        const auto reader = store.OpenReader();
        Samples before;
        ASSERT_TRUE(reader->ReadBlocks(u"M.U", 0, kEnd, LoggerNeed::Samples, before));
        EXPECT_EQ(before.all.size(), 1u);
        for (const std::string& suffix : removed) {
            std::filesystem::remove(file.string() + suffix);
        }
        // The number of the series holds, though nobody has entered it in the new file.
        EXPECT_TRUE(AppendNext(store, series)) << store.Error();
        EXPECT_TRUE(AppendNext(store, series)) << store.Error();
        Samples after;
        ASSERT_TRUE(reader->ReadBlocks(u"M.U", 0, kEnd, LoggerNeed::Samples, after)) << reader->Error();
        EXPECT_EQ(after.all.size(), 2u);
        EXPECT_EQ(reader->InfoCode(u"M.U"), 8);
        SqliteLoggerStore other(file);
        EXPECT_EQ(ReadAll(other, u"M.U").size(), 2u);
        LoggerCheck check;
        ASSERT_TRUE(other.OpenReader()->Check(check, nullptr));
        EXPECT_EQ(check.findings, std::vector<std::string>());
        std::filesystem::remove(file);
        std::filesystem::remove(file.string() + "-wal");
        std::filesystem::remove(file.string() + "-shm");
    }
}

TEST_F(SqliteFaultsTest, GoesOnInAFileThatTookThePlaceOfTheOldOne)
{
    SqliteLoggerStore store(file);
    const int series = store.OpenSeries(u"M.U", 1);
    ASSERT_TRUE(AppendNext(store, series));
    {
        SqliteLoggerStore other(folder / "other.zrlog");
        ASSERT_EQ(other.OpenSeries(u"M.X", 1), 0);
        const LoggerAppend sample = {0, kStart + 5, 77.0};
        ASSERT_TRUE(other.Append({&sample, 1}));
    }
    std::filesystem::rename(folder / "other.zrlog", file);
    EXPECT_TRUE(AppendNext(store, series)) << store.Error();
    EXPECT_EQ(ReadAll(store, u"M.X"), (std::map<std::int64_t, double>{{kStart + 5, 77.0}}));
    EXPECT_EQ(ReadAll(store, u"M.U").size(), 1u);
}

TEST_F(SqliteFaultsTest, LosesNothingWhenTheLogBesideTheFileIsRemoved)
{
    SqliteLoggerStore store(file);
    const int series = store.OpenSeries(u"M.U", 1);
    ASSERT_TRUE(AppendNext(store, series));
    std::filesystem::remove(file.string() + "-wal");
    EXPECT_TRUE(AppendNext(store, series)) << store.Error();
    EXPECT_EQ(ReadAll(store, u"M.U").size(), 2u);
    SqliteLoggerStore other(file);
    EXPECT_EQ(ReadAll(other, u"M.U").size(), 2u);
}

TEST_F(SqliteFaultsTest, GoesOnWhenTheFolderIsBack)
{
    const std::filesystem::path inner = folder / "inner";
    SqliteLoggerStore store(inner / "data.zrlog");
    const int series = store.OpenSeries(u"M.U", 1);
    ASSERT_TRUE(AppendNext(store, series));
    std::filesystem::rename(inner, folder / "away");
    folder.Write("inner", "in the way");
    EXPECT_FALSE(AppendNext(store, series));
    EXPECT_THAT(store.Error(), HasSubstr("data.zrlog"));
    EXPECT_THAT(WhyUnreadable(store), HasSubstr("data.zrlog: "));
    std::filesystem::remove(inner);
    std::filesystem::rename(folder / "away", inner);
    EXPECT_TRUE(AppendNext(store, series)) << store.Error();
    EXPECT_EQ(ReadAll(store, u"M.U").size(), 2u);
}

// Files that only others may write are nothing to an administrator: as such the test takes another user's place.
class AsNobody {
public:
    AsNobody()
    {
        if (m_isAdministrator) {
            EXPECT_EQ(::seteuid(65534), 0);
        }
    }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;
    ~AsNobody()
    {
        if (m_isAdministrator) {
            EXPECT_EQ(::seteuid(0), 0);
        }
    }

private:
    const bool m_isAdministrator = ::geteuid() == 0;
};

TEST_F(SqliteFaultsTest, ReadsAFileAndAFolderThatCannotBeWritten)
{
    using std::filesystem::perms;
    {
        SqliteLoggerStore store(file);
        const int series = store.OpenSeries(u"M.U", 1);
        ASSERT_TRUE(AppendNext(store, series));
    }
    const perms readable = perms::owner_read | perms::group_read | perms::others_read;
    const perms searchable = perms::owner_exec | perms::group_exec | perms::others_exec;
    std::filesystem::permissions(file, readable);
    std::filesystem::permissions(folder.Path(), readable | searchable);
    {
        const AsNobody nobody;
        SqliteLoggerStore store(file);
        EXPECT_EQ(ReadAll(store, u"M.U").size(), 1u);
        EXPECT_EQ(store.OpenSeries(u"M.U", 1), -1);
        EXPECT_THAT(store.Error(), HasSubstr("data.zrlog"));
        EXPECT_EQ(store.Maintain(kStart), LoggerStore::Upkeep::Failed);
    }
    std::filesystem::permissions(folder.Path(), perms::owner_all | readable | searchable);
    std::filesystem::permissions(file, perms::owner_read | perms::owner_write);
    SqliteLoggerStore store(file);
    EXPECT_TRUE(AppendNext(store, store.OpenSeries(u"M.U", 1))) << store.Error();
}

TEST_F(SqliteFaultsTest, AFileThatNobodyMayReadIsNamed)
{
    folder.Write("data.zrlog", "");
    std::filesystem::permissions(file, std::filesystem::perms::none);
    const AsNobody nobody;
    SqliteLoggerStore store(file);
    EXPECT_THAT(WhyUnreadable(store), HasSubstr("data.zrlog: can't be opened"));
    EXPECT_EQ(store.OpenSeries(u"M.U", 1), -1);
    EXPECT_THAT(store.Error(), HasSubstr("data.zrlog: can't be opened"));
}

#endif

// A disk without room: a layer that refuses growth, or, where ZR_SMALL_DISK names a folder on a small one, that.
class SmallDisk {
public:
    [[nodiscard]] std::filesystem::path File() const { return m_folder / "data.zrlog"; }
    [[nodiscard]] SqliteStoreOptions Options() const
    {
        return {SqliteStoreOptions::Synchronous::Full, IsReal() ? "" : m_layer.Name()};
    }
    void Fill()
    {
        m_layer.SetFull(true);
        if (IsReal()) {
            std::ofstream filler(m_folder / "filler", std::ios::binary);
            const std::string bytes(1024, 'x');
            while (filler.write(bytes.data(), 1024).flush()) {
            }
        }
    }
    void Clear()
    {
        m_layer.SetFull(false);
        std::filesystem::remove(m_folder / "filler");
    }

private:
    [[nodiscard]] static bool IsReal() { return std::getenv("ZR_SMALL_DISK") != nullptr; }

    test::TempFolder m_temporary;
    std::filesystem::path m_folder = IsReal() ? std::getenv("ZR_SMALL_DISK") : m_temporary.Path();
    test::TestVfs m_layer{"small-disk"};
};

TEST_F(SqliteFaultsTest, SaysThatTheDiskIsFullAndGoesOnWhenThereIsRoom)
{
    SmallDisk disk;
    SqliteLoggerStore store(disk.File(), disk.Options());
    const int series = store.OpenSeries(u"M.U", 1);
    ASSERT_GE(series, 0) << store.Error();
    std::map<std::int64_t, double> acknowledged;
    std::int64_t time = kStart;
    const auto appendMany = [&] {
        std::vector<LoggerAppend> batch;
        for (int i = 0; i < 300; ++i, time += 7 * kSecond) {
            batch.push_back({series, time, static_cast<double>(i)});
        }
        if (!store.Append(batch)) {
            return false;
        }
        for (const LoggerAppend& sample : batch) {
            acknowledged[sample.time] = sample.value;
        }
        return true;
    };
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 10; ++i) {
            ASSERT_TRUE(appendMany()) << store.Error();
        }
        disk.Fill();
        for (int i = 0; i < 1000 && appendMany(); ++i) {
        }
        EXPECT_FALSE(appendMany());
        EXPECT_THAT(store.Error(), HasSubstr("data.zrlog: the disk is full"));
        EXPECT_EQ(ReadAll(store, u"M.U"), acknowledged);
        store.Maintain(time + kHour);
        disk.Clear();
        EXPECT_TRUE(appendMany()) << store.Error();
        EXPECT_EQ(ReadAll(store, u"M.U"), acknowledged);
    }
    LoggerCheck check;
    ASSERT_TRUE(store.OpenReader()->Check(check, nullptr));
    EXPECT_EQ(check.findings, std::vector<std::string>());
}

// Its steady time passes at every look, so that a slice of the upkeep is over at once.
class HastyClock final : public Clock {
public:
    HastyClock() { SetClock(this); }
    HastyClock(const HastyClock&) = delete;
    HastyClock& operator=(const HastyClock&) = delete;
    ~HastyClock() override { SetClock(nullptr); }
    [[nodiscard]] std::chrono::steady_clock::time_point Steady() const override
    {
        return m_now += std::chrono::seconds(1);
    }
    [[nodiscard]] std::chrono::system_clock::time_point Utc() const override { return {}; }
    void Sleep(std::chrono::milliseconds) override {}

private:
    mutable std::chrono::steady_clock::time_point m_now;
};

// A pass goes on in slices; one that fails is rolled back, and what it had packed waits on.
TEST_F(SqliteFaultsTest, APassThatFailsInItsMiddleLosesNothing)
{
    constexpr int kSeries = 12;
    const HastyClock clock;
    for (int good = 0; good < kSeries; ++good) {
        SmallDisk disk;
        SqliteLoggerStore store(disk.File(), disk.Options());
        std::vector<LoggerAppend> batch;
        for (int i = 0; i < kSeries; ++i) {
            const wchar name[] = {u'M', u'.', static_cast<wchar>(u'A' + i), 0};
            const int series = store.OpenSeries(name, 1);
            for (int k = 0; k < 5; ++k) {
                batch.push_back({series, kStart + k * 60 * kSecond, i + k * 0.1});
            }
        }
        ASSERT_TRUE(store.Append(batch));
        const std::int64_t now = kStart + 2 * kHour;
        for (int slice = 0; slice < good; ++slice) {
            ASSERT_EQ(store.Maintain(now), LoggerStore::Upkeep::More);
        }
        disk.Fill();
        EXPECT_EQ(store.Maintain(now), LoggerStore::Upkeep::Failed) << good;
        disk.Clear();
        LoggerStore::Upkeep upkeep = LoggerStore::Upkeep::More;
        while (upkeep == LoggerStore::Upkeep::More) {
            upkeep = store.Maintain(now);
        }
        EXPECT_EQ(upkeep, LoggerStore::Upkeep::Done) << store.Error();
        LoggerCheck check;
        ASSERT_TRUE(store.OpenReader()->Check(check, nullptr));
        EXPECT_EQ(check.findings, std::vector<std::string>());
        EXPECT_EQ(check.packed, batch.size()) << good;
    }
}

// Damages a copy of a small store in one way after the other.
class SqliteDamageTest : public SqliteFaultsTest {
protected:
    static constexpr const wchar* kNames[] = {u"Meter 1.U1", u"Meter 1.E", u"Meter 2.U1"};

    SqliteDamageTest()
    {
        SqliteLoggerStore store(folder / "whole.zrlog", options);
        std::vector<LoggerAppend> batch;
        std::mt19937 random(3);
        for (const wchar* const name : kNames) {
            const int series = store.OpenSeries(name, 1);
            for (int i = 0; i < 3000; ++i) {
                const double value = 230.0 + static_cast<double>(random() % 2000) / 100.0;
                batch.push_back({series, kStart + i * 60 * kSecond, value});
                expected[static_cast<std::size_t>(series)][batch.back().time] = value;
            }
        }
        EXPECT_TRUE(store.Append(batch));
        EXPECT_TRUE(store.SetDataSet({u"mains", 60, 700, {kNames[0], kNames[1]}}));
        EXPECT_EQ(store.Maintain(kStart + 100 * kHour), LoggerStore::Upkeep::Done);
    }

    // Whatever a program does with a store: none of it may crash, and no sample may come out that wasn't entered.
    void Use(const std::string& bytes, const std::string& what)
    {
        folder.Write("data.zrlog", bytes);
        for (const char* const suffix : {"-wal", "-shm"}) {
            std::filesystem::remove(file.string() + suffix);
        }
        SqliteLoggerStore store(file, options);
        if (const auto reader = store.OpenReader(); reader != nullptr) {
            for (std::size_t v = 0; v < std::size(kNames); ++v) {
                Read(*reader, v, what);
            }
            std::vector<LoggerDataSet> sets;
            EXPECT_TRUE(reader->DataSets(sets) || !reader->Error().empty()) << what;
            LoggerCheck check;
            EXPECT_TRUE(reader->Check(check, nullptr)) << what;
            told += check.findings.empty() ? 0 : 1;
        } else {
            ++told;
        }
        const int series = store.OpenSeries(kNames[1], 8);
        EXPECT_TRUE(series >= 0 || IsNamed(store.Error())) << what << store.Error();
        const LoggerAppend sample = {series, kStart + 5, 1.0};
        EXPECT_TRUE(series < 0 || store.Append({&sample, 1}) || IsNamed(store.Error())) << what << store.Error();
        EXPECT_TRUE(store.Maintain(kStart + 200 * kHour) != LoggerStore::Upkeep::Failed || IsNamed(store.Error()))
            << what << store.Error();
        store.TakeFindings();
    }

    void Read(LoggerReader& reader, std::size_t variable, const std::string& what)
    {
        for (const LoggerNeed need : {LoggerNeed::Samples, LoggerNeed::Summaries}) {
            Samples samples;
            const bool isRead = reader.ReadBlocks(kNames[variable], 0, kEnd, need, samples);
            EXPECT_TRUE(isRead || IsNamed(reader.Error())) << what;
            for (const auto& [time, value] : samples.all) {
                const auto entered = expected[variable].find(time);
                ASSERT_TRUE(entered != expected[variable].end() && entered->second == value) << what;
            }
            shown += samples.all.size();
        }
        LoggerSample sample;
        reader.LastBefore(kNames[variable], kStart + 20 * kHour, sample);
        reader.FirstFrom(kNames[variable], kStart + 20 * kHour, sample);
    }

    [[nodiscard]] static bool IsNamed(const std::string& error) { return error.find("data.zrlog: ") != error.npos; }

    test::TestVfs layer{"damaged"};
    SqliteStoreOptions options{SqliteStoreOptions::Synchronous::Full, layer.Name()};
    std::vector<std::map<std::int64_t, double>> expected{std::size(kNames)};
    int told = 0;
    std::size_t shown = 0;
};

TEST_F(SqliteDamageTest, AnyDamagedPageIsToldAndNothingWrongIsShown)
{
    const std::string whole = folder.Read("whole.zrlog");
    std::mt19937 random(9);
    const std::size_t pages = whole.size() / kPage;
    ASSERT_GE(pages, 10u);
    const auto randomByte = [&] { return static_cast<char>(random()); };
    int damaged = 0;
    for (std::size_t page = 0; page < pages && !HasFatalFailure(); ++page) {
        const auto first = static_cast<std::ptrdiff_t>(page * kPage);
        const auto last = first + static_cast<std::ptrdiff_t>(kPage);
        std::string noise = whole;
        std::generate(noise.begin() + first, noise.begin() + last, randomByte);
        Use(noise, "noise in page " + std::to_string(page + 1));
        std::string zeros = whole;
        std::fill(zeros.begin() + first, zeros.begin() + last, '\0');
        Use(zeros, "zeros in page " + std::to_string(page + 1));
        std::string swapped = whole;
        const auto other = static_cast<std::ptrdiff_t>((page + 1) % pages * kPage);
        std::swap_ranges(swapped.begin() + first, swapped.begin() + last, swapped.begin() + other);
        Use(swapped, "page " + std::to_string(page + 1) + " in place of the next");
        damaged += 3;
    }
    EXPECT_GE(told, damaged * 2 / 3);
    // Of three variables of 3000 samples, twice each time, most are shown all the same; but for the pages without which
    // there is no store.
    EXPECT_GT(shown, static_cast<std::size_t>(damaged) * 9000);
}

TEST_F(SqliteDamageTest, AnyDamagedByteOfABlockIsToldAndNothingWrongIsShown)
{
    const std::string whole = folder.Read("whole.zrlog");
    std::mt19937 random(9);
    for (std::size_t i = 0; i < 300 && !HasFatalFailure(); ++i) {
        std::string flipped = whole;
        const std::size_t at = random() % whole.size();
        flipped[at] = static_cast<char>(flipped[at] ^ (1 << random() % 8));
        Use(flipped, "byte " + std::to_string(at));
    }
    EXPECT_GT(told, 0);
}

TEST_F(SqliteDamageTest, AFileCutShortIsToldAndNothingWrongIsShown)
{
    const std::string whole = folder.Read("whole.zrlog");
    for (std::size_t size = 1; size < whole.size(); size += 1777) {
        Use(whole.substr(0, size), "cut at " + std::to_string(size));
    }
    EXPECT_GT(told, 0);
}

}  // namespace
}  // namespace zr
