#include "controls/LimitChecks.h"

namespace zr::controls {

void LimitChecks::Setup(int newFlags, double newLowWarning, double newLowAlarm, double newHighWarning,
                        double newHighAlarm, double newNominal)
{
    flags = newFlags;
    lowWarning = newLowWarning;
    lowAlarm = newLowAlarm;
    highWarning = newHighWarning;
    highAlarm = newHighAlarm;
    nominal = newNominal;
    enabled = newNominal > 0.0;
    if (!Has(kPercentLimits)) {
        return;
    }
    lowWarning = (100.0 - newLowWarning) * newNominal * 0.01;
    lowAlarm = (100.0 - newLowAlarm) * newNominal * 0.01;
    highWarning = (newHighWarning + 100.0) * newNominal * 0.01;
    highAlarm = (newHighAlarm + 100.0) * newNominal * 0.01;
}

}  // namespace zr::controls
