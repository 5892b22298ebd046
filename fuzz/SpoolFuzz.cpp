// Files of a damaged spool: every record that is read is whole, and what was read can be written and read again.
#include "siblings/driversupport/recorder/SpoolFormat.h"

#include <cstdlib>
#include <cstring>

namespace {

std::vector<zr::RecordBatch> ReadAll(std::string_view bytes, zr::RecordNames& names)
{
    std::vector<zr::RecordBatch> batches;
    zr::SpoolReader reader(bytes, names);
    zr::RecordBatch batch;
    std::uint64_t sequence = 0;
    while (reader.Next(batch, sequence)) {
        if (batch.values.size() > bytes.size() / zr::kSpoolSampleBytes || reader.Skipped() > bytes.size()) {
            std::abort();
        }
        for (const zr::RecordedValue& value : batch.values) {
            names.VariableName(value.variable);
        }
        names.DataSetName(batch.dataSet);
        batches.push_back(batch);
    }
    return batches;
}

bool AreSame(const std::vector<zr::RecordBatch>& left, const std::vector<zr::RecordBatch>& right)
{
    if (left.size() != right.size()) {
        return false;
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        const auto& a = left[i].values;
        const auto& b = right[i].values;
        if (left[i].time != right[i].time || a.size() != b.size()) {
            return false;
        }
        for (std::size_t j = 0; j < a.size(); ++j) {
            if (std::memcmp(&a[j].value, &b[j].value, sizeof(double)) != 0) {
                return false;
            }
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    zr::RecordNames names;
    std::vector<zr::RecordBatch> batches = ReadAll({reinterpret_cast<const char*>(data), size}, names);
    // A record without samples says nothing and isn't written; one with too many would take two.
    std::erase_if(batches, [](const zr::RecordBatch& batch) {
        return batch.values.empty() || batch.values.size() > zr::kMaxSpoolSamples;
    });
    zr::SpoolWriter writer(names);
    std::string bytes;
    zr::RecordNames namesBack;
    if (writer.Encode(batches, 0, bytes) && !AreSame(ReadAll(bytes, namesBack), batches)) {
        std::abort();
    }
    return 0;
}
