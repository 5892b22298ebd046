#include "siblings/driversupport/recorder/SpoolFormat.h"

#include "siblings/tools/Utf.h"

#include <algorithm>
#include <array>
#include <bit>
#include <type_traits>

namespace zr {
namespace {

constexpr std::string_view kHeadOfAnyVersion = "ZRSPOOL";
constexpr std::string_view kMark = "ZRrc";
constexpr std::size_t kRecordHead = 12;   // mark, length, check sum
constexpr std::size_t kSamplesHead = 25;  // type, sequence, time, data set, count
constexpr std::size_t kMaxName = 65535;   // bytes of UTF-8
// A record of names is closed when it has grown beyond this, so that it stays below kMaxSpoolContent.
constexpr std::size_t kNamesFull = 1u << 16;

enum Type : char { kVariableNames = 1, kDataSetNames = 2, kSamples = 3 };

// CRC-32 of IEEE 802.3, bits in reflected order.
constexpr std::array<std::uint32_t, 256> kCrcTable = [] {
    std::array<std::uint32_t, 256> table = {};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
        std::uint32_t crc = byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320u : 0);
        }
        table[byte] = crc;
    }
    return table;
}();

std::uint32_t Crc32(std::string_view first, std::string_view second)
{
    std::uint32_t crc = 0xFFFFFFFFu;
    for (const std::string_view part : {first, second}) {
        for (const char byte : part) {
            crc = (crc >> 8) ^ kCrcTable[(crc ^ static_cast<unsigned char>(byte)) & 0xFF];
        }
    }
    return ~crc;
}

// Little-endian, whatever the machine is.
template <typename Number>
void Put(std::string& out, Number number)
{
    auto bits = static_cast<std::make_unsigned_t<Number>>(number);
    for (std::size_t i = 0; i < sizeof bits; ++i) {
        out.push_back(static_cast<char>(bits & 0xFF));
        bits = static_cast<decltype(bits)>(bits >> 8);
    }
}

// Takes the number from the front; false when there are too few bytes.
template <typename Number>
bool Take(std::string_view& bytes, Number& number)
{
    if (bytes.size() < sizeof number) {
        return false;
    }
    std::make_unsigned_t<Number> bits = 0;
    for (std::size_t i = 0; i < sizeof bits; ++i) {
        bits = static_cast<decltype(bits)>(bits | static_cast<decltype(bits)>(static_cast<unsigned char>(bytes[i]))
                                                      << (8 * i));
    }
    number = static_cast<Number>(bits);
    bytes.remove_prefix(sizeof number);
    return true;
}

void PutRecord(std::string& out, std::string_view content)
{
    std::string length;
    Put(length, static_cast<std::uint32_t>(content.size()));
    out += kMark;
    out += length;
    Put(out, Crc32(length, content));
    out += content;
}

// Any other byte than a digit there is damage.
bool IsOfLaterFormat(std::string_view bytes)
{
    return bytes.size() >= kSpoolHead.size() && bytes.starts_with(kHeadOfAnyVersion) && bytes[7] >= '2' &&
           bytes[7] <= '9';
}

// True the first time.
bool Enter(std::vector<bool>& known, int number)
{
    const auto index = static_cast<std::size_t>(number);
    if (index >= known.size()) {
        known.resize(index + 1);
    }
    const bool isNew = !known[index];
    known[index] = true;
    return isNew;
}

}  // namespace

bool SpoolWriter::Encode(std::span<const RecordBatch> batches, std::uint64_t sequence, std::string& out)
{
    out = m_hasHead ? "" : kSpoolHead;
    m_hasHead = true;
    EncodeNames(batches, out);
    if (m_isTooLong) {
        out.clear();
        return false;
    }
    for (const RecordBatch& batch : batches) {
        std::span<const RecordedValue> values = batch.values;
        while (!values.empty()) {
            const auto part = values.first(std::min(values.size(), kMaxSpoolSamples));
            EncodeSamples(batch, part, sequence, out);
            sequence += part.size();
            values = values.subspan(part.size());
        }
    }
    return true;
}

void SpoolWriter::EncodeNames(std::span<const RecordBatch> batches, std::string& out)
{
    const std::string variablesHead(1, kVariableNames);
    std::string variables = variablesHead;
    std::string dataSets(1, kDataSetNames);
    for (const RecordBatch& batch : batches) {
        if (Enter(m_hasDataSet, batch.dataSet)) {
            Put(dataSets, static_cast<std::uint32_t>(batch.dataSet));
            AddName(m_names.DataSetName(batch.dataSet), dataSets);
        }
        for (const RecordedValue& value : batch.values) {
            if (!Enter(m_hasVariable, value.variable)) {
                continue;
            }
            Put(variables, static_cast<std::uint32_t>(value.variable));
            Put(variables, m_names.InfoCode(value.variable));
            AddName(m_names.VariableName(value.variable), variables);
            if (variables.size() > kNamesFull) {
                PutRecord(out, variables);
                variables = variablesHead;
            }
        }
        if (dataSets.size() > 1) {
            PutRecord(out, dataSets);
            dataSets.resize(1);
        }
    }
    if (variables.size() > 1) {
        PutRecord(out, variables);
    }
}

void SpoolWriter::AddName(const ZRBasicString& name, std::string& content)
{
    const std::string text = Utf16ToUtf8(name);
    m_isTooLong = m_isTooLong || text.size() > kMaxName;
    Put(content, static_cast<std::uint16_t>(text.size()));
    content += text;
}

void SpoolWriter::EncodeSamples(const RecordBatch& batch, std::span<const RecordedValue> values, std::uint64_t sequence,
                                std::string& out)
{
    std::string content(1, kSamples);
    content.reserve(kSamplesHead + values.size() * kSpoolSampleBytes);
    Put(content, sequence);
    Put(content, batch.time);
    Put(content, static_cast<std::uint32_t>(batch.dataSet));
    Put(content, static_cast<std::uint32_t>(values.size()));
    for (const RecordedValue& value : values) {
        Put(content, static_cast<std::uint32_t>(value.variable));
        Put(content, std::bit_cast<std::uint64_t>(value.value));
    }
    PutRecord(out, content);
}

SpoolReader::SpoolReader(std::string_view bytes, RecordNames& names)
    : m_bytes(bytes),
      m_names(names),
      m_isOfThisFormat(!IsOfLaterFormat(bytes)),
      m_patience(16 * bytes.size() + kMaxSpoolContent)
{
    if (!m_isOfThisFormat) {
        m_position = bytes.size();
    } else if (bytes.starts_with(kSpoolHead)) {
        m_position = kSpoolHead.size();
    }
    m_goodEnd = m_position;
}

bool SpoolReader::Next(RecordBatch& batch, std::uint64_t& sequence)
{
    while ((m_position = m_bytes.find(kMark, m_position)) != std::string_view::npos) {
        const std::string_view content = ContentAt(m_position);
        const bool isSamples = !content.empty() && content.front() == kSamples;
        if (isSamples ? !ReadSamples(content, batch, sequence) : !ReadNames(content)) {
            ++m_position;
            continue;
        }
        m_skipped += m_position - m_goodEnd;
        m_position += kRecordHead + content.size();
        m_goodEnd = m_position;
        if (isSamples) {
            return true;
        }
    }
    m_position = m_bytes.size();
    return false;
}

std::string_view SpoolReader::ContentAt(std::size_t position)
{
    std::string_view rest = m_bytes.substr(position + kMark.size());
    const std::string_view lengthBytes = rest.substr(0, sizeof(std::uint32_t));
    std::uint32_t length = 0;
    std::uint32_t crc = 0;
    if (!Take(rest, length) || !Take(rest, crc) || length > kMaxSpoolContent || length > rest.size() ||
        length > m_patience) {
        return {};
    }
    const std::string_view content = rest.substr(0, length);
    if (Crc32(lengthBytes, content) != crc) {
        // So that bytes full of marks don't take the square of their length.
        m_patience -= length;
        return {};
    }
    return content;
}

bool SpoolReader::ReadNames(std::string_view content)
{
    if (content.empty() || (content.front() != kVariableNames && content.front() != kDataSetNames)) {
        return false;
    }
    const bool isVariables = content.front() == kVariableNames;
    content.remove_prefix(1);
    while (!content.empty()) {
        std::uint32_t number = 0;
        std::int32_t infoCode = 0;
        std::uint16_t length = 0;
        if (!Take(content, number) || (isVariables && !Take(content, infoCode)) || !Take(content, length) ||
            length > content.size()) {
            return false;
        }
        const ZRBasicString name = Utf8ToUtf16(content.substr(0, length));
        content.remove_prefix(length);
        if (isVariables) {
            m_variables[number] = m_names.Variable(name, infoCode);
        } else {
            m_dataSets[number] = m_names.DataSet(name);
        }
    }
    return true;
}

bool SpoolReader::ReadSamples(std::string_view content, RecordBatch& batch, std::uint64_t& sequence)
{
    std::uint32_t dataSet = 0;
    std::uint32_t count = 0;
    content.remove_prefix(1);
    if (!Take(content, sequence) || !Take(content, batch.time) || !Take(content, dataSet) || !Take(content, count) ||
        content.size() != count * kSpoolSampleBytes) {
        return false;
    }
    m_end = sequence + count;
    if (!m_dataSets.contains(dataSet)) {
        return false;
    }
    batch.dataSet = m_dataSets.at(dataSet);
    batch.values.clear();
    batch.values.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t number = 0;
        std::uint64_t bits = 0;
        Take(content, number);
        Take(content, bits);
        const auto variable = m_variables.find(number);
        if (variable == m_variables.end()) {
            return false;
        }
        batch.values.push_back({variable->second, std::bit_cast<double>(bits)});
    }
    return true;
}

}  // namespace zr
