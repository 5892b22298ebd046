#include "hosts/zrdde/UpdateText.h"

#include "dde/ValueEncoding.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>
#include <cmath>

namespace zr::ddeclient {
namespace {

bool IsControl(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

// What comes from a server must not move the terminal's cursor.
std::string Shown(std::u16string_view text)
{
    std::string shown = Utf16ToUtf8(text);
    for (char& byte : shown) {
        if (IsControl(byte)) {
            byte = '?';
        }
    }
    return shown;
}

std::string JsonText(std::u16string_view text)
{
    std::string json = "\"";
    for (const char byte : Utf16ToUtf8(text)) {
        if (byte == '"' || byte == '\\') {
            json += '\\';
            json += byte;
        } else if (IsControl(byte)) {
            json += fmt::format("\\u{:04x}", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        } else {
            json += byte;
        }
    }
    return json + '"';
}

std::string PlainValue(const UpdateLine& update)
{
    if (update.format == Format::XlTable) {
        const auto number = dde::DecodeXlTable(update.bytes);
        return number ? fmt::format("{}", *number) : fmt::format("({} bytes that are no table)", update.bytes.size());
    }
    const dde::DecodedText decoded = dde::DecodeText(update.bytes);
    if (decoded.IsComplete()) {
        return Shown(decoded.text);
    }
    return fmt::format("{}... (the first {} of {} characters)", Shown(decoded.text), decoded.text.size(),
                       decoded.characters);
}

std::string JsonValue(const UpdateLine& update)
{
    if (update.format == Format::XlTable) {
        const auto number = dde::DecodeXlTable(update.bytes);
        const bool isShown = number && std::isfinite(*number);  // JSON has no other numbers
        return fmt::format("\"format\":\"xltable\",\"value\":{}", isShown ? fmt::format("{}", *number) : "null");
    }
    const dde::DecodedText decoded = dde::DecodeText(update.bytes);
    return fmt::format("\"format\":\"text\",\"text\":{},\"characters\":{},\"complete\":{}", JsonText(decoded.text),
                       decoded.characters, decoded.IsComplete());
}

}  // namespace

std::string UtcText(std::chrono::system_clock::time_point time)
{
    using namespace std::chrono;
    const auto ms = floor<milliseconds>(time);
    const auto day = floor<days>(ms);
    const year_month_day date(day);
    const hh_mm_ss clock(ms - day);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count(), clock.subseconds().count());
}

std::string PlainLine(const UpdateLine& update)
{
    return fmt::format("{}\t{}\t{}", UtcText(update.time), Shown(update.item), PlainValue(update));
}

std::string JsonLine(const UpdateLine& update)
{
    return fmt::format("{{\"time\":\"{}\",\"topic\":{},\"item\":{},{}}}", UtcText(update.time), JsonText(update.topic),
                       JsonText(update.item), JsonValue(update));
}

}  // namespace zr::ddeclient
