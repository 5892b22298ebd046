// The way from the bytes of a document to UTF-8 text.
#pragma once

#include <cstddef>
#include <string>

namespace xml {

enum class Encoding { Utf8, Utf16 };

// Makes UTF-8 text without byte order mark of the bytes, in place, and tells in `found` what they were: UTF-16 when
// they begin with its byte order mark, UTF-8 otherwise (which is not tested here). False for broken UTF-16, with line
// and reason.
bool ConvertToUtf8(std::string& bytes, Encoding& found, std::size_t& line, std::string& reason);

}  // namespace xml
