// Samples of one node that wait on disk while its store is away.
#pragma once

#include "platform/AppendFile.h"
#include "platform/ProcessLock.h"
#include "siblings/driversupport/recorder/RecordBatch.h"
#include "siblings/driversupport/recorder/RecordNames.h"
#include "siblings/driversupport/recorder/SpoolFormat.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zr {

// Of a file that begins with a sample of that number. Names sort as files age.
std::string SpoolFileName(std::uint64_t sequence, int attempt);

// A queue on disk: batches are appended at its end and read from its front, in files of some megabytes
// (docs/formats/spool.md) that go when all they hold is done with. What a process leaves there, however it died, the
// next one finds. One thread at a time; blocks on the disk.
class Spool {
public:
    // What is to be known of bytes that could not be read.
    struct Damage {
        std::uint64_t samples = 0;  // that were lost by it
        std::string text;           // which file, and what is wrong with it
    };

    // folder: made when it is taken. limit: of bytes on disk. names: Not owned; must outlive this.
    Spool(std::filesystem::path folder, std::uint64_t limit, RecordNames& names);
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;

    // Takes the folder for this process; done already is taken.
    ProcessLock::Result Take();
    // Reads what is there, once the folder is taken; done already is good. False when the folder can't be read.
    bool Open();
    [[nodiscard]] bool IsOpen() const { return m_isOpen; }

    // All of the batches are on disk when it is true, none of them otherwise.
    bool Append(std::span<const RecordBatch> batches);
    // The oldest batches, in order: at least so many samples, or all that are left of their file. What was given stays
    // until it is dropped. Those from before Open are marked as earlier. Empty when nothing waits.
    std::span<const RecordBatch> Front(std::size_t samples);
    // Drops what Front gave. A kill before a file is done with brings all of it back.
    void DropFront();
    // Counts what waits now among what is from before Open.
    void MarkEarlier() { m_firstOwn = m_next; }

    [[nodiscard]] bool IsEmpty() const { return m_samples == 0; }
    [[nodiscard]] std::uint64_t Samples() const { return m_samples; }  // that wait
    [[nodiscard]] std::uint64_t Bytes() const { return m_bytes; }      // on disk
    [[nodiscard]] std::uint64_t Limit() const { return m_limit; }
    // Of a data set of `names`, that wait.
    [[nodiscard]] std::uint64_t Samples(int dataSet) const;
    // Since the last call.
    std::vector<Damage> TakeDamage();
    // Why the last call failed; names the folder. Empty otherwise.
    [[nodiscard]] const std::string& Error() const { return m_error; }

private:
    struct File {
        std::filesystem::path path;
        std::uint64_t bytes = 0;
        std::uint64_t samples = 0;                 // of it that wait and can be read
        std::vector<std::uint64_t> samplesOfSets;  // likewise, by number of the data set
    };

    bool Fail(const std::string& reason);
    [[nodiscard]] std::string FullText() const;
    void Inspect(const std::filesystem::path& path);
    void ReportGap(const std::filesystem::path& path, std::uint64_t sequence, std::size_t skipped);
    bool BeginFile();
    void GiveUpEnd();
    bool LoadFrontFile();
    void EndFrontFile(const std::string& problem);
    void Enter(File& file, const RecordBatch& batch);
    void Leave(File& file, const RecordBatch& batch);

    const std::filesystem::path m_folder;
    const std::uint64_t m_limit;
    RecordNames& m_names;
    ProcessLock m_lock;
    bool m_isTaken = false;
    bool m_isOpen = false;
    std::string m_error;
    std::vector<Damage> m_damage;

    std::deque<File> m_files;             // oldest first
    AppendFile m_end;                     // the last of m_files while it is open
    std::optional<SpoolWriter> m_writer;  // of that file
    std::uint64_t m_next = 0;             // number of the next sample to be spooled
    std::uint64_t m_firstOwn = 0;         // the first that isn't marked as earlier
    std::uint64_t m_bytes = 0;
    std::uint64_t m_samples = 0;
    std::vector<std::uint64_t> m_samplesOfSets;

    // The first of m_files while it is being read.
    std::string m_frontBytes;
    std::optional<SpoolReader> m_reader;
    std::vector<RecordBatch> m_front;  // what Front gave
};

}  // namespace zr
