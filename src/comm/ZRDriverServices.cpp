#include "comm/ZRDriverServices.h"

#include "siblings/driversupport/ZRDeviceDriver.h"

#include <algorithm>
#include <array>

namespace {

// Stands before any code runs, so that a driver library may add its row from wherever it starts.
constinit std::array<ZRDriverServices, ZRDriverServices::kRows> table{};

}  // namespace

void ZRDriverServices::Setup(const CRuntimeClass* driverClass, OptionsDlg options, SelectDlg selectVar,
                             SelectDlg selectOutputVar)
{
    runtimeClass = driverClass;
    showOptionsDlg = options;
    selectVarDlg = selectVar;
    selectOutputVarDlg = selectOutputVar;
}

bool ZRDriverServices::Add(const CRuntimeClass* driverClass, OptionsDlg options, SelectDlg selectVar,
                           SelectDlg selectOutputVar)
{
    const auto row = std::find_if(table.begin(), table.end(),
                                  [](const ZRDriverServices& each) { return each.runtimeClass == nullptr; });
    if (row == table.end()) {
        return false;
    }
    row->Setup(driverClass, options, selectVar, selectOutputVar);
    return true;
}

const ZRDriverServices& ZRDriverServices::RowOf(const ZRDeviceDriver& driver)
{
    const CRuntimeClass* const driverClass = driver.GetRuntimeClass();
    const auto row = std::find_if(table.begin(), table.end(), [driverClass](const ZRDriverServices& each) {
        return each.runtimeClass == driverClass;
    });
    // It is meant that a miss is silent and gets the first row: a plant with one driver family needs no more.
    return row != table.end() ? *row : table.front();
}

bool ZRDriverServices::ShowOptionsDlg(CWnd* parent, ZRDeviceDriver* driver)
{
    return RowOf(*driver).showOptionsDlg(parent, driver);
}

bool ZRDriverServices::SelectVarDlg(CWnd* parent, ZRDeviceDriver* driver, std::list<ZRBasicString>& vars, int flags,
                                    int maximum)
{
    return RowOf(*driver).selectVarDlg(parent, driver, vars, flags, maximum);
}

bool ZRDriverServices::SelectOutputVarDlg(CWnd* parent, ZRDeviceDriver* driver, std::list<ZRBasicString>& vars,
                                          int flags, int maximum)
{
    return RowOf(*driver).selectOutputVarDlg(parent, driver, vars, flags, maximum);
}
