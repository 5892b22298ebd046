#include "siblings/driversupport/recorder/Spool.h"

#include "platform/FileReplace.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <system_error>
#include <utility>

namespace zr {
namespace {

constexpr const char* kExtension = ".spool";
constexpr std::uint64_t kFileBytes = 8u << 20;
// A file ends after the portion with which it exceeds kFileBytes; a portion is far below this.
constexpr std::size_t kLargestFile = 256u << 20;
// As many names of one sequence number are tried: a file that was begun and holds nothing keeps its name.
constexpr int kTries = 1000;

// The number in a file's name; false for a name that isn't ours.
bool SequenceOf(const std::filesystem::path& path, std::uint64_t& sequence)
{
    const std::string name = TextOfPath(path.filename());
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), sequence);
    return error == std::errc() && end != name.data() + name.size() && *end == '-';
}

}  // namespace

std::string SpoolFileName(std::uint64_t sequence, int attempt)
{
    char name[64];
    std::snprintf(name, sizeof name, "%020llu-%03d%s", static_cast<unsigned long long>(sequence), attempt, kExtension);
    return name;
}

Spool::Spool(std::filesystem::path folder, std::uint64_t limit, RecordNames& names)
    : m_folder(std::move(folder)), m_limit(limit), m_names(names)
{
}

bool Spool::Fail(const std::string& reason)
{
    m_error = TextOfPath(m_folder) + ": " + reason;
    return false;
}

ProcessLock::Result Spool::Take()
{
    if (m_isTaken) {
        return ProcessLock::Result::Taken;
    }
    std::string reason;
    if (!MakePrivateFolder(m_folder, reason)) {
        Fail(reason);
        return ProcessLock::Result::Failed;
    }
    const ProcessLock::Result result = m_lock.TakeAt(m_folder / "lock", "recorder");
    m_isTaken = result == ProcessLock::Result::Taken;
    if (result == ProcessLock::Result::HeldByOther) {
        Fail("in use by process " + std::to_string(m_lock.OtherProcess()));
    } else if (result == ProcessLock::Result::Failed) {
        Fail(m_lock.Reason());
    }
    return result;
}

bool Spool::Open()
{
    if (m_isOpen) {
        return true;
    }
    if (Take() != ProcessLock::Result::Taken) {
        return false;
    }
    std::vector<std::filesystem::path> paths;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(m_folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().extension() == kExtension) {
            paths.push_back(entry->path());
        }
    }
    if (error) {
        return Fail("can't be read: " + error.message());
    }
    std::sort(paths.begin(), paths.end());
    for (const std::filesystem::path& path : paths) {
        Inspect(path);
    }
    m_firstOwn = m_next;
    m_isOpen = true;
    m_error.clear();
    return true;
}

// Counts what a file holds, and what is missing between it and the one before.
void Spool::Inspect(const std::filesystem::path& path)
{
    std::string bytes;
    std::string reason;
    if (!ReadWholeFile(path, kLargestFile, bytes, reason)) {
        m_damage.push_back({0, TextOfPath(path) + ": " + reason});
        return;
    }
    SpoolReader reader(bytes, m_names);
    if (!reader.IsOfThisFormat()) {
        m_damage.push_back({0, TextOfPath(path) + ": made by a later program; left alone"});
        return;
    }
    if (m_files.empty()) {
        SequenceOf(path, m_next);
    }
    File file{path, bytes.size(), 0, {}};
    RecordBatch batch;
    std::uint64_t sequence = 0;
    while (reader.Next(batch, sequence)) {
        if (sequence > m_next) {
            ReportGap(path, sequence, reader.Skipped());
        }
        m_next = sequence + batch.values.size();
        Enter(file, batch);
    }
    if (reader.End() > m_next) {
        ReportGap(path, reader.End(), reader.Skipped());
        m_next = reader.End();
    }
    if (file.samples == 0) {
        // Its first portion was under way when the process ended, and nobody was told that it is safe.
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        return;
    }
    m_bytes += file.bytes;
    m_files.push_back(std::move(file));
}

void Spool::ReportGap(const std::filesystem::path& path, std::uint64_t sequence, std::size_t skipped)
{
    std::uint64_t first = 0;
    const bool isBeforeFile = SequenceOf(path, first) && first == sequence;
    const std::string text = !isBeforeFile ? TextOfPath(path) + ": " + std::to_string(skipped) + " bytes are damaged"
                             : m_files.empty() ? TextOfPath(path) + ": the file before it is missing"
                                               : TextOfPath(m_files.back().path) + ": its end is damaged";
    m_damage.push_back({sequence - m_next, text});
}

void Spool::Enter(File& file, const RecordBatch& batch)
{
    const std::uint64_t count = batch.values.size();
    const auto dataSet = static_cast<std::size_t>(batch.dataSet);
    for (std::vector<std::uint64_t>* sets : {&file.samplesOfSets, &m_samplesOfSets}) {
        sets->resize(std::max(sets->size(), dataSet + 1));
        (*sets)[dataSet] += count;
    }
    file.samples += count;
    m_samples += count;
}

// Whoever changes a file after it was inspected doesn't upset the counts.
void Spool::Leave(File& file, const RecordBatch& batch)
{
    const auto dataSet = static_cast<std::size_t>(batch.dataSet);
    if (dataSet >= file.samplesOfSets.size()) {
        return;
    }
    const std::uint64_t count = std::min<std::uint64_t>(batch.values.size(), file.samplesOfSets[dataSet]);
    file.samplesOfSets[dataSet] -= count;
    m_samplesOfSets[dataSet] -= count;
    file.samples -= count;
    m_samples -= count;
}

std::uint64_t Spool::Samples(int dataSet) const
{
    const auto index = static_cast<std::size_t>(dataSet);
    return index < m_samplesOfSets.size() ? m_samplesOfSets[index] : 0;
}

bool Spool::Append(std::span<const RecordBatch> batches)
{
    if (!Open()) {
        return false;
    }
    std::uint64_t atLeast = 0;
    for (const RecordBatch& batch : batches) {
        atLeast += batch.values.size() * kSpoolSampleBytes;
    }
    if (m_bytes + atLeast > m_limit) {
        return Fail(FullText());
    }
    if ((!m_end.IsOpen() || m_end.Size() >= kFileBytes) && !BeginFile()) {
        return false;
    }
    std::string portion;
    std::string reason;
    if (!m_writer->Encode(batches, m_next, portion)) {
        reason = "a name is too long";
    } else if (m_bytes + portion.size() > m_limit) {
        reason = FullText();
    } else if (!m_end.Append(portion, reason)) {
        reason = TextOfPath(m_files.back().path.filename()) + " " + reason;
    }
    if (!reason.empty()) {
        GiveUpEnd();
        return Fail(reason);
    }
    for (const RecordBatch& batch : batches) {
        Enter(m_files.back(), batch);
        m_next += batch.values.size();
    }
    m_files.back().bytes += portion.size();
    m_bytes += portion.size();
    m_error.clear();
    return true;
}

std::string Spool::FullText() const
{
    return "full: it holds " + std::to_string(m_bytes) + " of " + std::to_string(m_limit) + " bytes";
}

bool Spool::BeginFile()
{
    std::string reason;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        const std::filesystem::path path = m_folder / SpoolFileName(m_next, attempt);
        std::error_code ignored;
        if (std::filesystem::exists(path, ignored)) {
            continue;
        }
        if (!m_end.Create(path, reason)) {
            return Fail(TextOfPath(path.filename()) + " " + reason);
        }
        m_writer.emplace(m_names);
        m_files.push_back({path, 0, 0, {}});
        return true;
    }
    return Fail("too many files that begin with sample " + std::to_string(m_next));
}

// What was tried last isn't in the file, or nobody knows how much of it is: the next portion begins another one.
void Spool::GiveUpEnd()
{
    m_end.Close();
    m_writer.reset();
    if (m_files.back().samples == 0 && m_files.back().bytes == 0) {
        std::error_code ignored;
        std::filesystem::remove(m_files.back().path, ignored);
        m_files.pop_back();
    }
}

std::span<const RecordBatch> Spool::Front(std::size_t samples)
{
    std::size_t given = 0;
    while (m_front.empty() && !m_files.empty()) {
        if (!m_reader && !LoadFrontFile()) {
            continue;
        }
        RecordBatch batch;
        std::uint64_t sequence = 0;
        while (given < samples && m_reader->Next(batch, sequence)) {
            batch.isEarlier = sequence < m_firstOwn;
            given += batch.values.size();
            m_front.push_back(std::move(batch));
        }
        if (m_front.empty()) {
            EndFrontFile("can't be read to its end any more");
        }
    }
    return m_front;
}

void Spool::DropFront()
{
    if (m_front.empty()) {
        return;
    }
    for (const RecordBatch& batch : m_front) {
        Leave(m_files.front(), batch);
    }
    m_front.clear();
    if (m_files.front().samples == 0) {
        EndFrontFile("");
    }
}

bool Spool::LoadFrontFile()
{
    if (m_files.size() == 1) {
        // What comes now goes to another file, so that this one holds still.
        m_end.Close();
    }
    std::string reason;
    if (!ReadWholeFile(m_files.front().path, kLargestFile, m_frontBytes, reason)) {
        EndFrontFile(reason);
        return false;
    }
    m_reader.emplace(m_frontBytes, m_names);
    return true;
}

// The problem counts only if there are samples left that were counted as readable.
void Spool::EndFrontFile(const std::string& problem)
{
    File& file = m_files.front();
    m_reader.reset();
    m_frontBytes.clear();
    if (m_files.size() == 1) {
        m_end.Close();
    }
    if (file.samples > 0) {
        m_damage.push_back({file.samples, TextOfPath(file.path) + ": " + problem});
        m_samples -= file.samples;
        for (std::size_t i = 0; i < file.samplesOfSets.size(); ++i) {
            m_samplesOfSets[i] -= file.samplesOfSets[i];
        }
    } else {
        std::error_code ignored;
        std::filesystem::remove(file.path, ignored);
    }
    m_bytes -= file.bytes;
    m_files.pop_front();
}

std::vector<Spool::Damage> Spool::TakeDamage()
{
    return std::exchange(m_damage, {});
}

}  // namespace zr
