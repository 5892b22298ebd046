// The path syntax by which nodes are found.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <string_view>

// One step of a path: `tag` or `tag?name=value?`. Views into the path.
struct XmlPathStep {
    std::u16string_view tag;
    std::u16string_view name;   // of the condition
    std::u16string_view value;  // likewise
    bool hasCondition = false;
};

// Takes the first step off the path, with the "/" behind it. A value runs to the closing question mark, whatever it
// holds. False for a step without a tag, for a condition without "=" or closing question mark, and for anything but "/"
// behind it; such a path reaches nothing.
bool TakePathStep(std::u16string_view& path, XmlPathStep& step);
