#include "siblings/driversupport/recorder/Spool.h"

#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>
#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace {

using zr::RecordBatch;
using zr::RecordNames;
using Result = zr::ProcessLock::Result;

constexpr std::uint64_t kRoomy = 1u << 30;
constexpr std::int64_t kStart = 1700000000000000;

// What is in a spool, told without numbers.
struct Told {
    std::int64_t time = 0;
    ZRBasicString dataSet;
    std::vector<std::pair<ZRBasicString, double>> values;
    bool isEarlier = false;

    friend bool operator==(const Told&, const Told&) = default;
};

class Spool : public testing::Test {
protected:
    Spool() { Reopen(); }

    // As another process would find it; the first one has ended without a word.
    void Reopen(std::uint64_t limit = kRoomy)
    {
        m_spool.reset();
        m_names = RecordNames();
        m_spool = std::make_unique<zr::Spool>(Folder(), limit, m_names);
        EXPECT_TRUE(m_spool->Open()) << m_spool->Error();
    }

    [[nodiscard]] std::filesystem::path Folder() const { return m_folder / "spool"; }

    // Three values, which are the time and what follows it.
    RecordBatch Batch(std::int64_t time)
    {
        RecordBatch batch{kStart + time, m_names.DataSet(u"mains"), false, {}};
        for (const wchar* name : {u"M.A", u"M.B", u"M.C"}) {
            batch.values.push_back({m_names.Variable(name, 8), static_cast<double>(time) + 0.25});
        }
        return batch;
    }

    void Append(std::int64_t time)
    {
        const RecordBatch batch = Batch(time);
        EXPECT_TRUE(m_spool->Append(std::span(&batch, 1))) << m_spool->Error();
    }

    // Takes all out of it.
    std::vector<Told> Drain(std::size_t portion = 100)
    {
        std::vector<Told> told;
        for (auto front = m_spool->Front(portion); !front.empty(); front = m_spool->Front(portion)) {
            for (const RecordBatch& batch : front) {
                Told& entry = told.emplace_back();
                entry.time = batch.time - kStart;
                entry.dataSet = m_names.DataSetName(batch.dataSet);
                entry.isEarlier = batch.isEarlier;
                for (const zr::RecordedValue& value : batch.values) {
                    entry.values.emplace_back(m_names.VariableName(value.variable), value.value);
                }
            }
            m_spool->DropFront();
        }
        return told;
    }

    std::vector<std::int64_t> DrainTimes()
    {
        std::vector<std::int64_t> times;
        for (const Told& told : Drain()) {
            times.push_back(told.time);
            EXPECT_EQ(told.values.size(), 3u);
            EXPECT_EQ(told.values[2], std::make_pair(ZRBasicString(u"M.C"), static_cast<double>(told.time) + 0.25));
        }
        return times;
    }

    // The names of its files, oldest first.
    [[nodiscard]] std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
            if (entry.path().extension() == ".spool") {
                names.push_back(entry.path().filename().string());
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    [[nodiscard]] std::string Bytes(const std::string& file) const { return m_folder.Read("spool/" + file); }
    void WriteBytes(const std::string& file, std::string_view bytes) const { m_folder.Write("spool/" + file, bytes); }

    zr::test::TempFolder m_folder;
    RecordNames m_names;
    std::unique_ptr<zr::Spool> m_spool;
};

TEST_F(Spool, GivesBackWhatWasAppendedInOrder)
{
    Append(1);
    Append(2);
    EXPECT_EQ(m_spool->Samples(), 6u);
    EXPECT_GT(m_spool->Bytes(), 0u);
    const std::vector<Told> told = Drain();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told[0], (Told{1, u"mains", {{u"M.A", 1.25}, {u"M.B", 1.25}, {u"M.C", 1.25}}, false}));
    EXPECT_EQ(told[1].time, 2);
    EXPECT_TRUE(m_spool->IsEmpty());
    EXPECT_EQ(m_spool->Bytes(), 0u);
    EXPECT_TRUE(Files().empty());
}

TEST_F(Spool, OutlivesItsProcessWithNamesAndClasses)
{
    Append(1);
    Reopen();
    EXPECT_EQ(m_spool->Samples(), 3u);
    EXPECT_EQ(m_spool->Samples(m_names.DataSet(u"mains")), 3u);
    EXPECT_EQ(m_names.InfoCode(m_names.Variable(u"M.B")), 8);
    Append(2);
    const std::vector<Told> told = Drain();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_TRUE(told[0].isEarlier);
    EXPECT_FALSE(told[1].isEarlier);
    EXPECT_TRUE(m_spool->TakeDamage().empty());
}

TEST_F(Spool, NumbersOfAnotherProcessAreItsOwn)
{
    Append(1);
    m_spool.reset();
    m_names = RecordNames();
    m_names.Variable(u"M.C");
    m_names.Variable(u"M.X");
    m_names.DataSet(u"other");
    m_spool = std::make_unique<zr::Spool>(Folder(), kRoomy, m_names);
    ASSERT_TRUE(m_spool->Open());
    EXPECT_THAT(DrainTimes(), testing::ElementsAre(1));
}

TEST_F(Spool, WhatWasNotDroppedComesAgain)
{
    Append(1);
    Append(2);
    EXPECT_EQ(m_spool->Front(1).size(), 1u);
    EXPECT_EQ(m_spool->Front(1).size(), 1u);
    Reopen();
    EXPECT_THAT(DrainTimes(), testing::ElementsAre(1, 2));
}

TEST_F(Spool, AFileIsWrittenNoMoreOnceItIsRead)
{
    Append(1);
    EXPECT_EQ(m_spool->Front(100).size(), 1u);
    Append(2);
    m_spool->DropFront();
    EXPECT_EQ(Files().size(), 1u);
    EXPECT_EQ(m_spool->Samples(), 3u);
    EXPECT_THAT(DrainTimes(), testing::ElementsAre(2));
}

TEST_F(Spool, GoesOnInAnotherFileWhenOneIsLarge)
{
    RecordBatch batch{0, m_names.DataSet(u"mains"), false, {}};
    for (int i = 0; i < 100000; ++i) {
        batch.values.push_back({m_names.Variable(u"M.V"), static_cast<double>(i)});
    }
    for (int i = 0; i < 15; ++i) {
        batch.time = i;
        ASSERT_TRUE(m_spool->Append(std::span(&batch, 1))) << m_spool->Error();
    }
    EXPECT_EQ(Files().size(), 3u);
    EXPECT_EQ(m_spool->Samples(), 1500000u);
    Reopen();
    EXPECT_EQ(m_spool->Samples(), 1500000u);
    EXPECT_TRUE(m_spool->TakeDamage().empty());
    std::size_t samples = 0;
    std::int64_t last = -1;
    for (auto front = m_spool->Front(1000); !front.empty(); front = m_spool->Front(1000)) {
        for (const RecordBatch& part : front) {
            EXPECT_GE(part.time, last);
            EXPECT_LE(part.values.size(), zr::kMaxSpoolSamples);
            last = part.time;
            samples += part.values.size();
        }
        m_spool->DropFront();
    }
    EXPECT_EQ(samples, 1500000u);
    EXPECT_TRUE(Files().empty());
}

TEST_F(Spool, TakesNothingMoreBeyondItsLimit)
{
    Reopen(1000);
    std::int64_t time = 0;
    RecordBatch batch = Batch(time);
    while (m_spool->Append(std::span(&batch, 1))) {
        batch = Batch(++time);
        ASSERT_LT(time, 100);
    }
    EXPECT_THAT(m_spool->Error(), testing::HasSubstr("full: it holds"));
    EXPECT_LE(m_spool->Bytes(), 1000u);
    EXPECT_GT(time, 5);
    // Once there is room again, it goes on.
    EXPECT_EQ(DrainTimes().size(), static_cast<std::size_t>(time));
    Append(200);
    EXPECT_TRUE(m_spool->Error().empty());
    EXPECT_THAT(DrainTimes(), testing::ElementsAre(200));
}

TEST_F(Spool, ALimitBelowOneBatchLeavesNoFile)
{
    for (const std::uint64_t limit : {20u, 60u}) {
        Reopen(limit);
        const RecordBatch batch = Batch(1);
        EXPECT_FALSE(m_spool->Append(std::span(&batch, 1)));
        EXPECT_TRUE(Files().empty());
        EXPECT_EQ(m_spool->Bytes(), 0u);
    }
}

TEST_F(Spool, IsOneProcessesOnly)
{
    RecordNames names;
    zr::Spool second(Folder(), kRoomy, names);
    EXPECT_EQ(second.Take(), Result::HeldByOther);
    EXPECT_THAT(second.Error(), testing::HasSubstr("in use by process"));
    EXPECT_FALSE(second.Open());
    m_spool.reset();
    EXPECT_EQ(second.Take(), Result::Taken) << second.Error();
}

TEST_F(Spool, CutShortAtEveryByteLosesNothingThatWasWhole)
{
    Append(1);
    Append(2);
    const std::uint64_t twoBatches = m_spool->Bytes();
    Append(3);
    const std::string file = Files().at(0);
    const std::string bytes = Bytes(file);
    m_spool.reset();  // while a file is open, not every system lets another write it
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        WriteBytes(file, bytes.substr(0, length));
        Reopen();
        const std::vector<std::int64_t> times = DrainTimes();
        const std::size_t whole = length == bytes.size() ? 3u : length >= twoBatches ? 2u : times.size();
        ASSERT_EQ(times.size(), whole) << length;
        ASSERT_LE(times.size(), 3u);
        for (std::size_t i = 0; i < times.size(); ++i) {
            ASSERT_EQ(times[i], static_cast<std::int64_t>(i) + 1) << length;
        }
        EXPECT_TRUE(m_spool->TakeDamage().empty()) << length;
        Append(9);
        ASSERT_THAT(DrainTimes(), testing::ElementsAre(9)) << length;
        EXPECT_TRUE(Files().empty()) << length;
    }
}

TEST_F(Spool, DamagedAtAnyByteGivesTheRestAndCountsWhatIsLost)
{
    for (std::int64_t time = 1; time <= 3; ++time) {
        Append(time);
    }
    const std::uint64_t lastBegin = m_spool->Bytes();
    Append(4);
    const std::string file = Files().at(0);
    const std::string bytes = Bytes(file);
    m_spool.reset();
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        std::string damaged = bytes;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
        WriteBytes(file, damaged);
        Reopen();
        std::uint64_t lost = 0;
        for (const zr::Spool::Damage& damage : m_spool->TakeDamage()) {
            EXPECT_THAT(damage.text, testing::HasSubstr(file));
            lost += damage.samples;
        }
        const std::vector<std::int64_t> times = DrainTimes();
        ASSERT_TRUE(std::is_sorted(times.begin(), times.end())) << at;
        // The last one may have been under way when the process ended: nobody can tell.
        const std::uint64_t accounted = lost + times.size() * 3;
        ASSERT_TRUE(accounted == 12 || (accounted == 9 && at >= lastBegin)) << at;
    }
}

TEST_F(Spool, AMissingFileIsCounted)
{
    Append(1);
    EXPECT_EQ(m_spool->Front(1).size(), 1u);  // closes the file
    Append(2);
    Reopen();
    Append(3);
    ASSERT_EQ(Files().size(), 3u);
    std::filesystem::remove(Folder() / Files().at(1));
    Reopen();
    const auto damage = m_spool->TakeDamage();
    ASSERT_EQ(damage.size(), 1u);
    EXPECT_EQ(damage[0].samples, 3u);
    EXPECT_THAT(DrainTimes(), testing::ElementsAre(1, 3));
}

TEST_F(Spool, AFileThatGoesWhileItIsOpenIsCounted)
{
    Append(1);
    std::filesystem::remove(Folder() / Files().at(0));
    EXPECT_TRUE(m_spool->Front(1).empty());
    EXPECT_TRUE(m_spool->IsEmpty());
    const auto damage = m_spool->TakeDamage();
    ASSERT_EQ(damage.size(), 1u);
    EXPECT_EQ(damage[0].samples, 3u);
    Append(2);
    EXPECT_THAT(DrainTimes(), testing::ElementsAre(2));
}

TEST_F(Spool, AFileOfALaterProgramIsLeftAlone)
{
    WriteBytes("00000000000000000000-000.spool", "ZRSPOOL2 and what only it knows");
    Reopen();
    const auto damage = m_spool->TakeDamage();
    ASSERT_EQ(damage.size(), 1u);
    EXPECT_THAT(damage[0].text, testing::HasSubstr("made by a later program"));
    Append(1);
    EXPECT_THAT(DrainTimes(), testing::ElementsAre(1));
    EXPECT_EQ(Files().size(), 1u);
}

TEST_F(Spool, ANameThatIsTooLongIsRefusedAndHarmsNothing)
{
    RecordBatch batch = Batch(1);
    batch.values.push_back({m_names.Variable(ZRBasicString(std::u16string(70000, u'x')), 1), 1.0});
    EXPECT_FALSE(m_spool->Append(std::span(&batch, 1)));
    EXPECT_THAT(m_spool->Error(), testing::HasSubstr("too long"));
    Append(2);
    Reopen();
    EXPECT_THAT(DrainTimes(), testing::ElementsAre(2));
}

TEST_F(Spool, KeepsEveryDoubleBitForBit)
{
    const std::vector<double> values = {-0.0, std::numeric_limits<double>::denorm_min(),
                                        std::numeric_limits<double>::infinity(), 1e308, 0.1};
    RecordBatch batch{-5, m_names.DataSet(u"ü"), false, {}};
    for (const double value : values) {
        batch.values.push_back({m_names.Variable(u"M.Ω"), value});
    }
    ASSERT_TRUE(m_spool->Append(std::span(&batch, 1)));
    Reopen();
    const std::vector<Told> told = Drain();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].dataSet, ZRBasicString(u"ü"));
    EXPECT_EQ(told[0].time + kStart, -5);
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(std::memcmp(&told[0].values[i].second, &values[i], sizeof(double)), 0);
    }
}

TEST_F(Spool, ItsFolderCantBeMadeBelowAFile)
{
    m_folder.Write("file", "");
    RecordNames names;
    zr::Spool spool(m_folder / "file" / "spool", kRoomy, names);
    EXPECT_EQ(spool.Take(), Result::Failed);
    EXPECT_THAT(spool.Error(), testing::HasSubstr("file"));
    const RecordBatch batch = Batch(1);
    EXPECT_FALSE(spool.Append(std::span(&batch, 1)));
    // Tried again at the next need.
    std::filesystem::remove(m_folder / "file");
    EXPECT_TRUE(spool.Open()) << spool.Error();
}

#ifndef _WIN32  // It has no modes.
TEST_F(Spool, IsPrivate)
{
    Append(1);
    struct stat status = {};
    ASSERT_EQ(::stat(Folder().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
        ASSERT_EQ(::stat(entry.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600u) << entry.path();
    }
}
#endif

}  // namespace
