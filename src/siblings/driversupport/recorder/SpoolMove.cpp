#include "siblings/driversupport/recorder/SpoolMove.h"

#include "platform/FileReplace.h"
#include "siblings/driversupport/recorder/RecorderBooks.h"
#include "siblings/driversupport/recorder/RecordLane.h"
#include "siblings/driversupport/recorder/Spool.h"
#include "siblings/driversupport/store/LoggerNodes.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace zr {
namespace {

constexpr std::string_view kBetween = "-of-";
constexpr std::size_t kPortion = 65536;

// Whether it is the folder of a node of some list that isn't as long as this one.
bool IsForeign(const std::filesystem::path& path, std::size_t nodes)
{
    const std::string name = TextOfPath(path.filename());
    const char* const end = name.data() + name.size();
    std::size_t node = 0;
    std::size_t count = 0;
    const auto first = std::from_chars(name.data(), end, node);
    if (first.ec != std::errc() || !std::string_view(first.ptr, end).starts_with(kBetween)) {
        return false;
    }
    const auto second = std::from_chars(first.ptr + kBetween.size(), end, count);
    return second.ec == std::errc() && second.ptr == end && count != nodes;
}

// The part of the batches that belongs to a lane, in its numbers.
std::vector<RecordBatch> PartOf(std::span<const RecordBatch> batches, const RecordNames& names, std::size_t node,
                                std::size_t nodes, RecordNames& own)
{
    std::vector<RecordBatch> part;
    for (const RecordBatch& batch : batches) {
        RecordBatch moved{batch.time, own.DataSet(names.DataSetName(batch.dataSet)), true, {}};
        for (const RecordedValue& value : batch.values) {
            const ZRBasicString& name = names.VariableName(value.variable);
            if (NodeOfVariable(name, nodes) == node) {
                moved.values.push_back({own.Variable(name, names.InfoCode(value.variable)), value.value});
            }
        }
        if (!moved.values.empty()) {
            part.push_back(std::move(moved));
        }
    }
    return part;
}

// False when a spool doesn't take its part. What was moved before a kill is moved once more, which does no harm.
bool MoveAll(Spool& from, const RecordNames& names, const std::vector<RecordLane*>& lanes, std::string& error)
{
    for (auto front = from.Front(kPortion); !front.empty(); front = from.Front(kPortion)) {
        for (std::size_t i = 0; i < lanes.size(); ++i) {
            Spool& to = lanes[i]->OwnSpool();
            const std::vector<RecordBatch> part = PartOf(front, names, i, lanes.size(), lanes[i]->Names());
            if (!part.empty() && !to.Append(part)) {
                error = to.Error();
                return false;
            }
            to.MarkEarlier();
        }
        from.DropFront();
    }
    return true;
}

void Tell(RecorderBooks& books, std::uint64_t samples, std::string text)
{
    RecorderNotice notice;
    notice.kind = RecorderNotice::Kind::SpoolDamaged;
    notice.count = samples;
    notice.text = std::move(text);
    books.NotRecorded(-1, UnrecordedReason::Damaged, samples);
    books.AddNotice(std::move(notice));
}

void MoveFolder(const std::filesystem::path& folder, const std::vector<RecordLane*>& lanes, RecorderBooks& books)
{
    RecordNames names;
    Spool spool(folder, std::numeric_limits<std::uint64_t>::max(), names);
    std::string error;
    if (!spool.Open()) {
        Tell(books, 0, spool.Error());
    } else if (!MoveAll(spool, names, lanes, error)) {
        Tell(books, 0, TextOfPath(folder) + ": can't be moved to the nodes that there are now: " + error);
    }
    for (Spool::Damage& damage : spool.TakeDamage()) {
        Tell(books, damage.samples, std::move(damage.text));
    }
}

}  // namespace

std::string SpoolFolderName(std::size_t node, std::size_t nodes)
{
    return std::to_string(node + 1) + std::string(kBetween) + std::to_string(nodes);
}

void MoveForeignSpools(const std::filesystem::path& folder, const std::vector<RecordLane*>& lanes, RecorderBooks& books)
{
    std::vector<std::filesystem::path> foreign;
    std::error_code ignored;
    std::filesystem::directory_iterator entry(folder, ignored);
    for (; entry != std::filesystem::directory_iterator(); entry.increment(ignored)) {
        if (IsForeign(entry->path(), lanes.size())) {
            foreign.push_back(entry->path());
        }
    }
    for (const std::filesystem::path& path : foreign) {
        MoveFolder(path, lanes, books);
        // Whatever could not be read or moved keeps the folder.
        std::filesystem::remove(path / "lock", ignored);
        std::filesystem::remove(path, ignored);
    }
}

}  // namespace zr
