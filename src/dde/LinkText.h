// The text that links a cell of a spreadsheet to a variable.
#pragma once

#include <string>
#include <string_view>

namespace zr::dde {

// =SERVICE|'TOPIC'!ITEM. The service and the item are put into apostrophes where they hold more than letters, digits,
// "_" and "."; an apostrophe within is doubled.
std::u16string LinkReference(std::u16string_view service, std::u16string_view topic, std::u16string_view item);
// =DDE("SERVICE";"TOPIC";"ITEM"); a quotation mark within is doubled.
std::u16string LinkFunction(std::u16string_view service, std::u16string_view topic, std::u16string_view item);

}  // namespace zr::dde
