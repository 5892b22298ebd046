#include "siblings/driversupport/VariableReference.h"

namespace {

constexpr wchar kVariableMark = u'.';
constexpr wchar kHourMark = u'@';
constexpr wchar kFilterMark = u'#';

using View = ZRBasicString::View;

// What stands before the mark goes to head and what stands behind it to tail; without one, all to tail.
void SplitAt(wchar mark, View in, View& head, View& tail)
{
    const std::size_t position = in.find(mark);
    head = position == View::npos ? View() : in.substr(0, position);
    tail = position == View::npos ? in : in.substr(position + 1);
}

}  // namespace

void SplitDriverVariable(const ZRBasicString& in, ZRBasicString& driver, ZRBasicString& variable)
{
    const ZRBasicString text = in;  // the outputs may be the input
    View head;
    View tail;
    SplitAt(kVariableMark, text, head, tail);
    driver = ZRBasicString(head);
    variable = ZRBasicString(tail);
}

void SplitFilterDriverVariable(const ZRBasicString& in, ZRBasicString& filter, ZRBasicString& discriminator,
                               ZRBasicString& driver, ZRBasicString& variable)
{
    const ZRBasicString text = in;
    View filterPart;
    View plain;
    SplitAt(kFilterMark, text, filterPart, plain);
    const std::size_t hour = filterPart.find(kHourMark);
    View driverPart;
    View variablePart;
    SplitAt(kVariableMark, plain, driverPart, variablePart);

    filter = ZRBasicString(filterPart.substr(0, hour));
    discriminator = ZRBasicString(hour == View::npos ? View() : filterPart.substr(hour + 1));
    driver = ZRBasicString(driverPart);
    variable = ZRBasicString(variablePart);
}

ZRBasicString DriverOf(const ZRBasicString& reference)
{
    ZRBasicString filter;
    ZRBasicString hour;
    ZRBasicString driver;
    ZRBasicString variable;
    SplitFilterDriverVariable(reference, filter, hour, driver, variable);
    return driver;
}

void JoinFilterDriverVariable(const ZRBasicString& filter, const ZRBasicString& discriminator,
                              const ZRBasicString& driver, const ZRBasicString& variable, ZRBasicString& out)
{
    ZRBasicString text = filter;
    if (!discriminator.IsEmpty()) {
        text += kHourMark;
        text += discriminator;
    }
    if (!text.IsEmpty()) {
        text += kFilterMark;
    }
    text += driver;
    if (!driver.IsEmpty() && !variable.IsEmpty()) {
        text += kVariableMark;
    }
    text += variable;
    out = text;
}

ZRBasicString& GetTitleVariable(ZRVariable& variable, ZRBasicString& out, int mode)
{
    ZRDeviceDriver::tagSVariableInfo info;
    const bool wasLocked = variable.IsLocked();
    const bool known = (wasLocked || variable.Lock()) && variable.Info(info);
    if (!known) {
        out = ZRBasicString(variable.fullName);
        if (!wasLocked) {
            variable.Unlock();
        }
        return out;
    }
    ZRBasicString filter;
    ZRBasicString hour;
    ZRBasicString driver;
    ZRBasicString name;
    SplitFilterDriverVariable(variable.fullName, filter, hour, driver, name);
    const ZRBasicString description = info.description;

    ZRBasicString title;
    if (mode != zr::kTitleInDevice && !driver.IsEmpty()) {
        title += driver;
        title += u' ';
    }
    title += description.IsEmpty() ? name : description;
    if (!hour.IsEmpty()) {
        title += u" (";
        title += hour;
        title += u')';
    }
    if (!wasLocked) {
        variable.Unlock();
    }
    out = title;
    return out;
}
