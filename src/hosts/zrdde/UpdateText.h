// The line that shows one value of a link.
#pragma once

#include "hosts/zrdde/Options.h"

#include <chrono>
#include <cstdint>
#include <span>
#include <string>

namespace zr::ddeclient {

struct UpdateLine {
    std::chrono::system_clock::time_point time;  // when it arrived
    std::u16string topic;
    std::u16string item;
    Format format = Format::XlTable;
    std::span<const std::uint8_t> bytes;
};

// Without a line end, control characters of texts replaced or escaped. Plain: UTC time, item and value with tabs
// between; a text that was cut says how much of it there is. JSON: an object of "time", "topic", "item", "format", and
// of "value" (a number, or null) for the table form, of "text", "characters" and "complete" for the text form. Bytes
// that are neither form are told as such, with "value" or "text" null.
std::string PlainLine(const UpdateLine& update);
std::string JsonLine(const UpdateLine& update);

// As PlainLine and JsonLine show it: "2026-03-29T01:00:00.000Z".
std::string UtcText(std::chrono::system_clock::time_point time);

}  // namespace zr::ddeclient
