// Reads any bytes as a recording file: it is taken with every limit kept, or refused with one line and nothing changed.
#include "siblings/driversupport/recorder/RecordingFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool IsSound(const zr::RecordingFile::DataSet& set)
{
    return !set.name.IsEmpty() && set.name.Length() <= 64 && set.period >= 1 &&
           set.period <= zr::RecordingFile::kLongestPeriod && set.retention >= 0 &&
           set.retention <= zr::RecordingFile::kLongestRetention && !set.entries.empty() &&
           std::none_of(set.entries.begin(), set.entries.end(),
                        [](const auto& entry) { return entry.device.IsEmpty(); });
}

bool IsSound(const zr::RecordingFile& recording)
{
    return (recording.store.empty() || recording.nodes.empty()) && recording.spoolLimit >= 1 &&
           recording.spoolLimit <= zr::RecordingFile::kLargestSpool &&
           recording.nodes.size() <= zr::RecordingFile::kMostNodes &&
           recording.dataSets.size() <= zr::RecordingFile::kMostDataSets &&
           std::all_of(recording.dataSets.begin(), recording.dataSets.end(),
                       [](const auto& set) { return IsSound(set); });
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const void* const bytes = data;
    zr::RecordingFile recording;
    recording.store = "before";
    const zr::RecordingFile before = recording;
    std::string error;
    if (recording.LoadText(std::string_view(static_cast<const char*>(bytes), size), "f.xml", error)) {
        if (!IsSound(recording)) {
            std::abort();
        }
    } else if (!(recording == before) || !error.starts_with("f.xml:") || error.find('\n') != std::string::npos) {
        std::abort();
    }
    return 0;
}
