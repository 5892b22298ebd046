#include "siblings/driversupport/store/BlockCodec.h"

#include "siblings/driversupport/store/WholeNumbers.h"

#include <bit>
#include <limits>

namespace zr {

namespace {

constexpr std::uint8_t kBits = 0xFF;  // in place of the decimals: values as bits

// Differences wrap, so that any two numbers have one.
std::uint64_t Unsigned(std::int64_t value)
{
    return static_cast<std::uint64_t>(value);
}

std::uint64_t ZigZag(std::uint64_t difference)
{
    return (difference << 1) ^ (0 - (difference >> 63));
}

std::uint64_t FromZigZag(std::uint64_t code)
{
    return (code >> 1) ^ (0 - (code & 1));
}

class Writer {
public:
    void Byte(std::uint8_t byte) { m_bytes.push_back(byte); }
    void Number(std::uint64_t number)
    {
        for (; number >= 0x80; number >>= 7) {
            Byte(static_cast<std::uint8_t>(number | 0x80));
        }
        Byte(static_cast<std::uint8_t>(number));
    }
    // Zeros are counted and written as one; call EndZeros() behind the last.
    void Code(std::uint64_t code)
    {
        if (code == 0) {
            ++m_zeros;
            return;
        }
        EndZeros();
        Number(code);
    }
    void EndZeros()
    {
        if (m_zeros > 0) {
            Number(0);
            Number(m_zeros - 1);
            m_zeros = 0;
        }
    }
    std::vector<std::uint8_t> Take() { return std::move(m_bytes); }

private:
    std::vector<std::uint8_t> m_bytes;
    std::uint64_t m_zeros = 0;
};

class Reader {
public:
    explicit Reader(std::span<const std::uint8_t> bytes) : m_at(bytes.data()), m_end(bytes.data() + bytes.size()) {}

    [[nodiscard]] bool IsGood() const { return m_isGood; }
    [[nodiscard]] bool IsAtEnd() const { return m_at == m_end; }

    std::uint8_t Byte()
    {
        if (m_at == m_end) {
            m_isGood = false;
            return 0;
        }
        return *m_at++;
    }
    std::uint64_t Number()
    {
        std::uint64_t number = 0;
        for (int shift = 0; shift < 64; shift += 7) {
            const std::uint8_t byte = Byte();
            number |= std::uint64_t{byte & 0x7Fu} << shift;
            if (byte < 0x80) {
                m_isGood = m_isGood && (shift < 63 || byte < 2);
                return number;
            }
        }
        m_isGood = false;
        return 0;
    }
    // A code of one or two bytes that is not 0, as most are. False, with nothing read, where there is none.
    bool ShortCode(std::uint64_t& code)
    {
        if (m_end - m_at < 2 || m_at[0] == 0 || (m_at[0] & m_at[1]) >= 0x80) {
            return false;
        }
        // Without a branch on the length, which nobody could foresee.
        const std::uint64_t isLong = m_at[0] >> 7;
        code = (m_at[0] & 0x7Fu) | ((std::uint64_t{m_at[1]} & (0 - isLong)) << 7);
        m_at += 1 + isLong;
        return true;
    }
    // Any code, and how often it stands in a row, at most `most` times.
    std::uint64_t Run(std::size_t most, std::size_t& length)
    {
        length = 1;
        const std::uint64_t code = Number();
        if (code == 0) {
            const std::uint64_t more = Number();
            m_isGood = m_isGood && more < most;
            length = m_isGood ? static_cast<std::size_t>(more) + 1 : 1;
        }
        return code;
    }

private:
    const std::uint8_t* m_at;
    const std::uint8_t* m_end;
    bool m_isGood = true;
};

void WriteTimes(Writer& writer, std::span<const std::int64_t> times)
{
    std::uint64_t time = 0;
    std::uint64_t step = 0;
    for (const std::int64_t next : times) {
        const std::uint64_t nextStep = Unsigned(next) - time;
        writer.Code(ZigZag(nextStep - step));
        time = Unsigned(next);
        step = nextStep;
    }
    writer.EndZeros();
}

void WriteDecimals(Writer& writer, std::span<const double> values, int decimals)
{
    std::uint64_t before = 0;
    for (const double value : values) {
        std::int64_t whole = 0;
        WholeOf(value, decimals, whole);
        writer.Code(ZigZag(Unsigned(whole) - before));
        before = Unsigned(whole);
    }
    writer.EndZeros();
}

// What differs from the bits before, without the zero bytes at its low end.
void WriteBits(Writer& writer, std::span<const double> values)
{
    std::uint64_t before = 0;
    for (const double value : values) {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        const std::uint64_t difference = bits ^ before;
        before = bits;
        const int low = difference == 0 ? 8 : std::countr_zero(difference) / 8;
        const int high = std::countl_zero(difference) / 8;
        const int length = difference == 0 ? 0 : 8 - low - high;
        writer.Byte(static_cast<std::uint8_t>(length * 16 + low));
        for (int i = 0; i < length; ++i) {
            writer.Byte(static_cast<std::uint8_t>(difference >> (8 * (low + i))));
        }
    }
}

bool ReadTimes(Reader& reader, std::span<std::int64_t> times, std::uint64_t start, std::uint64_t unit)
{
    std::uint64_t time = start;
    std::uint64_t step = 0;
    for (std::size_t i = 0; i < times.size();) {
        std::size_t length = 0;
        step += FromZigZag(reader.Run(times.size() - i, length)) * unit;
        if (!reader.IsGood()) {
            return false;
        }
        for (const std::size_t end = i + length; i < end; ++i) {
            time += step;
            times[i] = static_cast<std::int64_t>(time);
        }
    }
    return true;
}

bool ReadDecimals(Reader& reader, std::span<double> values, int decimals)
{
    const auto valueOf = [decimals](std::uint64_t whole) {
        return ValueOf(static_cast<std::int64_t>(whole), decimals);
    };
    std::uint64_t whole = 0;
    for (std::size_t i = 0; i < values.size();) {
        std::uint64_t code = 0;
        while (i < values.size() && reader.ShortCode(code)) {
            whole += FromZigZag(code);
            values[i++] = valueOf(whole);
        }
        if (i == values.size()) {
            break;
        }
        std::size_t length = 0;
        whole += FromZigZag(reader.Run(values.size() - i, length));
        if (!reader.IsGood()) {
            return false;
        }
        std::fill_n(values.begin() + static_cast<std::ptrdiff_t>(i), length, valueOf(whole));
        i += length;
    }
    return true;
}

bool ReadBits(Reader& reader, std::span<double> values)
{
    std::uint64_t bits = 0;
    for (double& value : values) {
        const std::uint8_t shape = reader.Byte();
        const int length = shape / 16;
        const int low = shape % 16;
        if (length + low > 8 || (length == 0 && low != 8)) {
            return false;
        }
        for (int i = 0; i < length; ++i) {
            bits ^= std::uint64_t{reader.Byte()} << (8 * (low + i));
        }
        value = std::bit_cast<double>(bits);
        if (!reader.IsGood()) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::vector<std::uint8_t> EncodeBlock(std::span<const std::int64_t> times, std::span<const double> values)
{
    Writer writer;
    writer.Byte(kBlockCodec);
    writer.Number(times.size());
    WriteTimes(writer, times);
    const int decimals = DecimalsOf(values);
    if (decimals >= 0) {
        writer.Byte(static_cast<std::uint8_t>(decimals));
        WriteDecimals(writer, values, decimals);
    } else {
        writer.Byte(kBits);
        WriteBits(writer, values);
    }
    return writer.Take();
}

bool DecodeBlock(std::span<const std::uint8_t> bytes, std::vector<std::int64_t>& times, std::vector<double>& values,
                 std::int64_t start, std::int64_t unit)
{
    Reader reader(bytes);
    const bool isOurs = reader.Byte() == kBlockCodec;
    const std::uint64_t count = reader.Number();
    if (!isOurs || !reader.IsGood() || count > kMaxBlockSamples) {
        return false;
    }
    times.resize(static_cast<std::size_t>(count));
    values.resize(static_cast<std::size_t>(count));
    if (!ReadTimes(reader, times, Unsigned(start), Unsigned(unit))) {
        return false;
    }
    const std::uint8_t decimals = reader.Byte();
    if (decimals != kBits && decimals > kMaxDecimalPlaces) {
        return false;
    }
    const bool isRead = decimals == kBits ? ReadBits(reader, values) : ReadDecimals(reader, values, decimals);
    return isRead && reader.IsGood() && reader.IsAtEnd();
}

}  // namespace zr
