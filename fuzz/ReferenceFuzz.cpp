// Splits any text as a variable reference; a well-formed one is joined again to what it was.
#include "siblings/driversupport/VariableReference.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool HasMark(const ZRBasicString& text, ZRBasicString::View marks)
{
    return text.Text().find_first_of(marks) != ZRBasicString::View::npos;
}

// Each part without the marks that would end it, and no mark without its part.
bool IsWellFormed(const ZRBasicString& filter, const ZRBasicString& hour, const ZRBasicString& driver,
                  const ZRBasicString& variable, const ZRBasicString& text)
{
    const bool clean =
        !HasMark(filter, u"@#") && !HasMark(hour, u"@#") && !HasMark(driver, u".@#") && !HasMark(variable, u".@#");
    const std::size_t marks = (hour.IsEmpty() ? 0u : 1u) + (filter.IsEmpty() && hour.IsEmpty() ? 0u : 1u) +
                              (driver.IsEmpty() || variable.IsEmpty() ? 0u : 1u);
    const std::size_t parts = filter.Length() + hour.Length() + driver.Length() + variable.Length();
    return clean && parts + marks == text.Length();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::u16string units(size / 2, u'\0');
    if (!units.empty()) {
        std::memcpy(units.data(), data, units.size() * 2);
    }
    const ZRBasicString text(units);
    ZRBasicString filter;
    ZRBasicString hour;
    ZRBasicString driver;
    ZRBasicString variable;
    SplitFilterDriverVariable(text, filter, hour, driver, variable);
    ZRBasicString joined;
    JoinFilterDriverVariable(filter, hour, driver, variable, joined);
    const bool endsWithDriver = !driver.IsEmpty() && variable.IsEmpty();  // `D.` has no variable
    if (!endsWithDriver && IsWellFormed(filter, hour, driver, variable, text) && joined != text) {
        std::abort();
    }
    ZRBasicString plain = text;
    SplitDriverVariable(plain, driver, plain);
    return 0;
}
