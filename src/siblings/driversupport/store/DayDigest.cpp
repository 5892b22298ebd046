#include "siblings/driversupport/store/DayDigest.h"

#include <algorithm>
#include <bit>

namespace zr {

namespace {

constexpr std::size_t kCheckBytes = 4;
constexpr std::int64_t kCheckKind = 0x44;  // apart from the codecs of blocks
constexpr std::int64_t kIsRising = 1;
constexpr std::int64_t kIsFinite = 2;
constexpr std::int64_t kInSeconds = 4;
constexpr std::int64_t kFormStep = 8;  // above it the decimals plus one; 0: doubles
constexpr std::int64_t kSecondMicros = 1000000;

std::uint64_t Plain(std::int64_t value)
{
    return static_cast<std::uint64_t>(value);
}

// What is coded of a block before it says what is expected of the next.
struct Before {
    std::int64_t form = 0;
    std::int64_t count = 0;
    std::int64_t firstTime = 0;
    std::int64_t lastTime = 0;
    std::int64_t last = 0;
};

// Codes as in the payload of a block: a difference, that of 0 counted in runs.
class CodeWriter {
public:
    explicit CodeWriter(std::vector<std::uint8_t>& bytes) : m_bytes(bytes) {}
    void Code(std::uint64_t difference)
    {
        if (difference == 0) {
            ++m_zeros;
            return;
        }
        EndZeros();
        Number((difference << 1) ^ (0 - (difference >> 63)));
    }
    void EndZeros()
    {
        if (m_zeros > 0) {
            Number(0);
            Number(m_zeros - 1);
            m_zeros = 0;
        }
    }

private:
    void Number(std::uint64_t number)
    {
        for (; number >= 0x80; number >>= 7) {
            m_bytes.push_back(static_cast<std::uint8_t>(number | 0x80));
        }
        m_bytes.push_back(static_cast<std::uint8_t>(number));
    }

    std::vector<std::uint8_t>& m_bytes;
    std::uint64_t m_zeros = 0;
};

class CodeReader {
public:
    explicit CodeReader(std::span<const std::uint8_t> bytes) : m_at(bytes.data()), m_end(m_at + bytes.size()) {}
    std::uint64_t Code()
    {
        if (m_zeros > 0) {
            --m_zeros;
            return 0;
        }
        const std::uint64_t code = Number();
        if (code == 0) {
            m_zeros = Number();
        }
        return (code >> 1) ^ (0 - (code & 1));
    }
    // The value that differs by the next code.
    std::int64_t After(std::int64_t before) { return static_cast<std::int64_t>(Plain(before) + Code()); }
    [[nodiscard]] bool IsGood() const { return m_isGood; }
    [[nodiscard]] bool IsAtEnd() const { return m_at == m_end && m_zeros == 0; }

private:
    std::uint64_t Number()
    {
        std::uint64_t number = 0;
        for (int shift = 0; shift < 64 && m_at != m_end; shift += 7) {
            const std::uint8_t byte = *m_at++;
            number |= std::uint64_t{byte & 0x7Fu} << shift;
            if (byte < 0x80) {
                return number;
            }
        }
        m_isGood = false;
        return 0;
    }

    const std::uint8_t* m_at;
    const std::uint8_t* m_end;
    std::uint64_t m_zeros = 0;
    bool m_isGood = true;
};

void WriteWholes(CodeWriter& writer, const StoredSummary& stored, std::int64_t& last)
{
    const LoggerSummary& summary = stored.summary;
    std::int64_t first = 0;
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;
    std::int64_t sum = 0;
    WholeOf(summary.first, stored.decimals, first);
    WholeOf(summary.minimum, stored.decimals, minimum);
    WholeOf(summary.maximum, stored.decimals, maximum);
    WholeOf(summary.sum, stored.decimals, sum);
    writer.Code(Plain(first) - Plain(last));
    WholeOf(summary.last, stored.decimals, last);
    writer.Code(Plain(first) - Plain(minimum));
    writer.Code(Plain(maximum) - Plain(first));
    writer.Code(Plain(last) - Plain(first));
    writer.Code(Plain(sum) - Plain(first) * summary.count);
}

void ReadWholes(CodeReader& reader, StoredSummary& stored, std::int64_t& last)
{
    LoggerSummary& summary = stored.summary;
    const std::int64_t first = reader.After(last);
    const auto minimum = static_cast<std::int64_t>(Plain(first) - reader.Code());
    const std::int64_t maximum = reader.After(first);
    last = reader.After(first);
    const std::int64_t sum = reader.After(static_cast<std::int64_t>(Plain(first) * summary.count));
    summary.first = ValueOf(first, stored.decimals);
    summary.minimum = ValueOf(minimum, stored.decimals);
    summary.maximum = ValueOf(maximum, stored.decimals);
    summary.last = ValueOf(last, stored.decimals);
    summary.sum = ValueOf(sum, stored.decimals);
}

// A double's bits as a code: rare, so that its length is of no weight.
void WriteDoubles(CodeWriter& writer, const LoggerSummary& summary)
{
    for (const double value : {summary.first, summary.minimum, summary.maximum, summary.last, summary.sum}) {
        writer.Code(std::bit_cast<std::uint64_t>(value));
    }
}

void ReadDoubles(CodeReader& reader, LoggerSummary& summary)
{
    for (double* const value : {&summary.first, &summary.minimum, &summary.maximum, &summary.last, &summary.sum}) {
        *value = std::bit_cast<double>(reader.Code());
    }
}

void WriteSummary(CodeWriter& writer, std::int64_t hour, const StoredSummary& stored, Before& before)
{
    const LoggerSummary& summary = stored.summary;
    auto firstTime = static_cast<std::int64_t>(Plain(summary.firstTime) - Plain(StartOfHour(hour)));
    std::int64_t lastTime = summary.lastTime - summary.firstTime;
    std::int64_t form = kFormStep * (stored.decimals + 1);
    form += summary.isRising ? kIsRising : 0;
    form += summary.isFinite ? kIsFinite : 0;
    if (firstTime % kSecondMicros == 0 && lastTime % kSecondMicros == 0) {
        form += kInSeconds;
        firstTime /= kSecondMicros;
        lastTime /= kSecondMicros;
    }
    const auto count = static_cast<std::int64_t>(summary.count);
    writer.Code(Plain(form) - Plain(before.form));
    writer.Code(Plain(count) - Plain(before.count));
    writer.Code(Plain(firstTime) - Plain(before.firstTime));
    writer.Code(Plain(lastTime) - Plain(before.lastTime));
    before = {form, count, firstTime, lastTime, before.last};
    if (stored.decimals >= 0) {
        WriteWholes(writer, stored, before.last);
    } else if (summary.isFinite) {
        WriteDoubles(writer, summary);
    }
}

bool ReadSummary(CodeReader& reader, std::int64_t hour, StoredSummary& stored, Before& before)
{
    LoggerSummary& summary = stored.summary;
    before.form = reader.After(before.form);
    before.count = reader.After(before.count);
    before.firstTime = reader.After(before.firstTime);
    before.lastTime = reader.After(before.lastTime);
    if (before.form < 0 || before.form >= kFormStep * 17 || before.count < 1 || before.firstTime < 0 ||
        before.firstTime >= kHourMicros || before.lastTime < 0 || before.lastTime >= kHourMicros) {
        return false;
    }
    const std::int64_t unit = (before.form & kInSeconds) != 0 ? kSecondMicros : 1;
    stored.decimals = static_cast<int>(before.form / kFormStep) - 1;
    summary = {};
    summary.isRising = (before.form & kIsRising) != 0;
    summary.isFinite = (before.form & kIsFinite) != 0;
    summary.count = static_cast<std::size_t>(before.count);
    const std::uint64_t firstTime = Plain(StartOfHour(hour)) + Plain(before.firstTime * unit);
    summary.firstTime = static_cast<std::int64_t>(firstTime);
    summary.lastTime = static_cast<std::int64_t>(firstTime + Plain(before.lastTime * unit));
    if (stored.decimals >= 0) {
        ReadWholes(reader, stored, before.last);
    } else if (summary.isFinite) {
        ReadDoubles(reader, summary);
    }
    return reader.IsGood();
}

}  // namespace

std::int64_t DayOf(std::int64_t hour)
{
    return hour / kHoursOfDay - (hour % kHoursOfDay < 0 ? 1 : 0);
}

std::int64_t FirstHourOf(std::int64_t day)
{
    constexpr std::int64_t kFarAway = 200000000;
    return std::clamp(day, -kFarAway, kFarAway) * kHoursOfDay;
}

bool DayDigest::Decode(std::span<const std::uint8_t> bytes)
{
    m_hours = 0;
    if (bytes.size() < kCheckBytes + 3) {
        return false;
    }
    std::uint32_t check = 0;
    for (std::size_t i = 0; i < kCheckBytes; ++i) {
        check |= std::uint32_t{bytes[i]} << (8 * i);
    }
    bytes = bytes.subspan(kCheckBytes);
    if (CheckOf(m_series, m_day, kCheckKind, bytes) != static_cast<std::int32_t>(check)) {
        return false;
    }
    const std::uint32_t hours = std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16;
    CodeReader reader(bytes.subspan(3));
    Before before;
    for (std::uint32_t left = hours; left != 0; left &= left - 1) {
        const int hour = std::countr_zero(left);
        if (!ReadSummary(reader, FirstHour() + hour, m_summaries[static_cast<std::size_t>(hour)], before)) {
            return false;
        }
    }
    m_hours = reader.IsAtEnd() ? hours : 0;
    return reader.IsAtEnd();
}

std::vector<std::uint8_t> DayDigest::Encode() const
{
    std::vector<std::uint8_t> bytes = {static_cast<std::uint8_t>(m_hours), static_cast<std::uint8_t>(m_hours >> 8),
                                       static_cast<std::uint8_t>(m_hours >> 16)};
    CodeWriter writer(bytes);
    Before before;
    for (std::uint32_t left = m_hours; left != 0; left &= left - 1) {
        const int hour = std::countr_zero(left);
        WriteSummary(writer, FirstHour() + hour, m_summaries[static_cast<std::size_t>(hour)], before);
    }
    writer.EndZeros();
    const auto check = static_cast<std::uint32_t>(CheckOf(m_series, m_day, kCheckKind, bytes));
    std::array<std::uint8_t, kCheckBytes> head = {};
    for (std::size_t i = 0; i < kCheckBytes; ++i) {
        head[i] = static_cast<std::uint8_t>(check >> (8 * i));
    }
    bytes.insert(bytes.begin(), head.begin(), head.end());
    return bytes;
}

void DayDigest::Put(std::int64_t hour, const StoredSummary& summary)
{
    m_hours |= 1u << IndexOf(hour);
    m_summaries[IndexOf(hour)] = summary;
}

void DayDigest::Remove(std::int64_t hour)
{
    m_hours &= ~(1u << IndexOf(hour));
}

const StoredSummary* DayDigest::Find(std::int64_t hour) const
{
    const bool isOfDay = hour >= FirstHour() && hour < FirstHour() + kHoursOfDay;
    return isOfDay && (m_hours >> IndexOf(hour) & 1) != 0 ? &m_summaries[IndexOf(hour)] : nullptr;
}

}  // namespace zr
