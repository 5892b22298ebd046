// What the tests of a recorder in a process of its own share: the process, its store and spool, and what it told.
#pragma once

#include "siblings/driversupport/recorder/Spool.h"
#include "siblings/driversupport/store/SqliteLoggerStore.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <fcntl.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace zr::test {

class RecordingFixture : public testing::Test {
protected:
    static constexpr int kVariables = 20;
    static constexpr int kFactor = 200;
    static constexpr std::int64_t kSecond = 1000000;

    // Time in seconds -> value.
    using Samples = std::map<std::int64_t, double>;

    RecordingFixture()
    {
        // The program isn't an administrator, see there.
        if (::geteuid() == 0) {
            EXPECT_EQ(::chown(m_folder.Path().c_str(), 65534, 65534), 0);
        }
    }

    // Each start has values of its own.
    void Start()
    {
        ++m_starts;
        m_program = std::make_unique<Process>(
            std::vector<std::string>{ZR_RECORDING_PROGRAM, StoreFile().string(), SpoolFolder().string(),
                                     std::to_string(kVariables), std::to_string(kFactor), std::to_string(m_starts)});
        ASSERT_TRUE(m_program->Started());
    }

    // Reads what is told until so many lines with the word have come.
    bool WaitFor(const std::string& word, int lines)
    {
        for (int i = 0; i < lines; ++i) {
            const auto line = m_program->ReadLine([&](const std::string& text) {
                Note(text);
                return text.starts_with(word);
            });
            if (!line) {
                return false;
            }
        }
        return true;
    }
    bool WaitForAny(int lines) { return WaitFor("s", lines); }
    // Until something new is stored at once: what waited in the spool is in the store then.
    bool WaitUntilResent()
    {
        return m_program
            ->ReadLine([&](const std::string& text) {
                const bool wasWaiting = m_waiting.contains(TimeOf(text));
                Note(text);
                return text.starts_with("stored") && !wasWaiting && m_waiting.empty();
            })
            .has_value();
    }

    void Kill()
    {
        m_program->Send(SIGKILL);
        EXPECT_EQ(m_program->WaitForExit(), 128 + SIGKILL) << m_program->Errors();
        NoteRest();
    }
    void End()
    {
        m_program->CloseInput();
        EXPECT_EQ(m_program->WaitForExit(), 0) << m_program->Errors();
        NoteRest();
    }

    // No file of the program may grow beyond so many bytes from here on: a disk without room.
    void LimitFiles(int bytes) const { EXPECT_TRUE(m_program->Write(std::to_string(bytes) + "\n")); }
    void LimitFilesNoMore() const { EXPECT_TRUE(m_program->Write("\n")); }

    // A folder takes the place of the store's file, in one step: a store that finds nothing there begins a new one.
    void PutStoreAway() const
    {
        std::filesystem::create_directory(Away());
        if (!std::filesystem::exists(StoreFile())) {
            std::filesystem::create_directory(StoreFile());
            std::filesystem::remove(Away());
            return;
        }
        Exchange();
    }
    void PutStoreBack() const
    {
        if (std::filesystem::exists(Away())) {
            Exchange();
            std::filesystem::remove(Away());
        } else {
            std::filesystem::remove(StoreFile());
        }
    }

    [[nodiscard]] std::filesystem::path StoreFile() const { return m_folder / "plant.zrlog"; }
    [[nodiscard]] std::filesystem::path SpoolFolder() const { return m_folder / "spool"; }

    // What the store has of a variable. Fails for a time that is there twice.
    [[nodiscard]] Samples Stored(int variable) const
    {
        class Collector final : public LoggerBlockVisitor {
        public:
            bool OnBlock(LoggerBlock& block) override
            {
                std::span<const std::int64_t> times;
                std::span<const double> values;
                EXPECT_TRUE(block.Samples(times, values));
                for (std::size_t i = 0; i < times.size(); ++i) {
                    EXPECT_EQ(times[i] % kSecond, 0);
                    EXPECT_TRUE(samples.emplace(times[i] / kSecond, values[i]).second) << times[i] << " is doubled";
                }
                return true;
            }
            Samples samples;
        };
        Collector collector;
        SqliteLoggerStore store(StoreFile());
        const auto reader = store.OpenReader();
        EXPECT_TRUE(reader != nullptr &&
                    reader->ReadBlocks(NameOf(variable), 0, std::numeric_limits<std::int64_t>::max(),
                                       LoggerNeed::Samples, collector));
        return collector.samples;
    }

    // What waits in the spool, by the name of the variable; it is left as it is.
    [[nodiscard]] std::map<ZRBasicString, Samples> Spooled() const
    {
        std::map<ZRBasicString, Samples> samples;
        const std::filesystem::path folder = SpoolFolder() / "1-of-1";
        if (!std::filesystem::exists(folder)) {
            return samples;
        }
        const TempFolder copy;
        std::filesystem::copy(folder, copy / "spool");
        std::filesystem::permissions(copy / "spool", std::filesystem::perms::owner_all);
        RecordNames names;
        Spool spool(copy / "spool", std::numeric_limits<std::uint64_t>::max(), names);
        EXPECT_TRUE(spool.Open()) << spool.Error();
        for (auto front = spool.Front(10000); !front.empty(); front = spool.Front(10000)) {
            for (const RecordBatch& batch : front) {
                for (const RecordedValue& value : batch.values) {
                    samples[names.VariableName(value.variable)][batch.time / kSecond] = value.value;
                }
            }
            spool.DropFront();
        }
        EXPECT_TRUE(spool.TakeDamage().empty());
        return samples;
    }

    // Each sample that was acknowledged is in the store or the spool.
    void ExpectAllKept() const
    {
        const std::map<ZRBasicString, Samples> spooled = Spooled();
        for (int variable = 0; variable < kVariables; ++variable) {
            Samples kept = std::filesystem::is_regular_file(StoreFile()) ? Stored(variable) : Samples();
            if (const auto waiting = spooled.find(NameOf(variable)); waiting != spooled.end()) {
                kept.insert(waiting->second.begin(), waiting->second.end());
            }
            ExpectAcknowledgedIn(kept, variable);
        }
    }
    // Each is in the store, and the spool is empty.
    void ExpectAllStored() const
    {
        EXPECT_TRUE(Spooled().empty());
        for (int variable = 0; variable < kVariables; ++variable) {
            ExpectAcknowledgedIn(Stored(variable), variable);
        }
    }

    TempFolder m_folder;
    std::unique_ptr<Process> m_program;
    int m_starts = 0;
    Samples m_acknowledged;            // the number of the start, by time
    std::set<std::int64_t> m_waiting;  // times that were spooled, and not stored since
    int m_lines = 0;

private:
    [[nodiscard]] std::filesystem::path Away() const { return m_folder / "away"; }
    void Exchange() const
    {
        EXPECT_EQ(::renameat2(AT_FDCWD, StoreFile().c_str(), AT_FDCWD, Away().c_str(), RENAME_EXCHANGE), 0);
    }
    [[nodiscard]] static ZRBasicString NameOf(int variable)
    {
        const std::string digits = std::to_string(variable);
        return u"M.V" + ZRBasicString(std::u16string(digits.begin(), digits.end()));
    }
    [[nodiscard]] static std::int64_t TimeOf(const std::string& line)
    {
        const std::size_t space = line.find(' ');
        return space != std::string::npos ? std::stoll(line.substr(space)) : 0;
    }

    // A time counts for the start that acknowledged it first.
    void Note(const std::string& line)
    {
        if (!line.starts_with("s")) {
            return;
        }
        const std::int64_t time = TimeOf(line);
        EXPECT_TRUE(line.ends_with(" " + std::to_string(kVariables))) << line;
        ++m_lines;
        m_acknowledged.try_emplace(time, m_starts);
        if (line.starts_with("spooled")) {
            m_waiting.insert(time);
        } else {
            m_waiting.erase(time);
        }
    }
    // Of a process that has ended; a line that was cut tells nothing.
    void NoteRest()
    {
        while (m_program->ReadLine([this](const std::string& line) {
            Note(line);
            return true;
        })) {
        }
    }

    void ExpectAcknowledgedIn(const Samples& kept, int variable) const
    {
        for (const auto& [time, start] : m_acknowledged) {
            const auto sample = kept.find(time);
            ASSERT_NE(sample, kept.end()) << "variable " << variable << " has lost " << time << " of start " << start;
            // What a start had made safe when it was killed before it could say so, a later one acknowledges.
            const double sampledBy = sample->second - variable / 1024.0;
            ASSERT_TRUE(sampledBy == std::floor(sampledBy) && sampledBy >= 1 && sampledBy <= start)
                << "variable " << variable << " at " << time << " is " << sample->second << ", not of start " << start;
        }
    }
};

}  // namespace zr::test
