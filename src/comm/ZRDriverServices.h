// The dialogs of the driver classes, found by the class of a driver.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <list>

class CWnd;
class ZRDeviceDriver;
struct CRuntimeClass;

// A row of the one table of the module, which maps a driver class to its dialogs. A driver library adds its row once,
// at its start, before any dialog; rows are never freed. UI thread only.
class ZRDriverServices {
public:
    // True if the user confirmed.
    using OptionsDlg = bool (*)(CWnd* parent, ZRDeviceDriver* driver);
    // vars: the selected variable references, in and out. maximum: how many may be chosen, 0 for no limit. True if the
    // user confirmed.
    using SelectDlg = bool (*)(CWnd* parent, ZRDeviceDriver* driver, std::list<ZRBasicString>& vars, int flags,
                               int maximum);

    static constexpr int kRows = 32;

    // A free row.
    constexpr ZRDriverServices() = default;

    void Setup(const CRuntimeClass* driverClass, OptionsDlg options, SelectDlg selectVar, SelectDlg selectOutputVar);
    // Null for a free row.
    [[nodiscard]] const CRuntimeClass* RuntimeClass() const { return runtimeClass; }

    // Fills the first free row; false, and nothing changed, if there is none. A class that has a row gets a second one,
    // which no lookup reaches. Adding each class with all three dialogs is a precondition of the operations below: they
    // test no pointer.
    static bool Add(const CRuntimeClass* driverClass, OptionsDlg options, SelectDlg selectVar,
                    SelectDlg selectOutputVar);

    // Run the dialog of the first row of exactly the driver's class, and that of the first row of all if there is none.
    // A class derived from one that has a row doesn't match it.
    static bool ShowOptionsDlg(CWnd* parent, ZRDeviceDriver* driver);
    static bool SelectVarDlg(CWnd* parent, ZRDeviceDriver* driver, std::list<ZRBasicString>& vars, int flags,
                             int maximum);
    static bool SelectOutputVarDlg(CWnd* parent, ZRDeviceDriver* driver, std::list<ZRBasicString>& vars, int flags,
                                   int maximum);

private:
    static const ZRDriverServices& RowOf(const ZRDeviceDriver& driver);

    const CRuntimeClass* runtimeClass = nullptr;
    OptionsDlg showOptionsDlg = nullptr;
    SelectDlg selectVarDlg = nullptr;
    SelectDlg selectOutputVarDlg = nullptr;
};
