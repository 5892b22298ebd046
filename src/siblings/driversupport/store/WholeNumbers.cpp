#include "siblings/driversupport/store/WholeNumbers.h"

namespace zr {

int DecimalsOf(std::span<const double> values)
{
    int decimals = 0;
    std::int64_t whole = 0;
    std::size_t tested = 0;  // in a row, at these decimals
    for (std::size_t i = 0; tested < values.size(); i = (i + 1) % values.size()) {
        if (WholeOf(values[i], decimals, whole)) {
            ++tested;
            continue;
        }
        do {
            if (++decimals > kMaxDecimalPlaces) {
                return -1;
            }
        } while (!WholeOf(values[i], decimals, whole));
        tested = 1;
    }
    return decimals;
}

}  // namespace zr
