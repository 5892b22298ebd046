// The text by which the whole system refers to a variable:
//   plain  `driver.variable`
//   full   `file.MVDF@hour#driver.variable`
//   device `device` or `file.MVDF#device`
#pragma once

#include "siblings/driversupport/ZRDriverVariable.h"
#include "siblings/tools/ZRBasicString.h"

// Splits a plain reference at its first ".". Without one, all of it lands in variable and driver is empty.
void SplitDriverVariable(const ZRBasicString& in, ZRBasicString& driver, ZRBasicString& variable);

// Splits a full reference; missing parts come back empty. A text without the "." of the plain reference has all that
// follows the "#", or the whole of it if there is no "#", land in variable, and leaves driver empty. The outputs may be
// the input.
void SplitFilterDriverVariable(const ZRBasicString& in, ZRBasicString& filter, ZRBasicString& discriminator,
                               ZRBasicString& driver, ZRBasicString& variable);

// The driver part of a full or a plain reference; empty where there is none.
ZRBasicString DriverOf(const ZRBasicString& reference);

// The inverse. Parts that are empty are left out with their separator.
void JoinFilterDriverVariable(const ZRBasicString& filter, const ZRBasicString& discriminator,
                              const ZRBasicString& driver, const ZRBasicString& variable, ZRBasicString& out);

namespace zr {

// Modes of GetTitleVariable: for variables of one device, and to tell those of several devices apart.
inline constexpr int kTitleInDevice = 5;
inline constexpr int kTitleAmongDevices = 7;

}  // namespace zr

// The text shown for a variable: mode 5 within one device ("description"), 7 among several ("device description"), each
// with the hour type in brackets for a full reference. Any other mode gives as 7. The full name where the variable
// isn't to be had. Returns out.
ZRBasicString& GetTitleVariable(ZRVariable& variable, ZRBasicString& out, int mode);
