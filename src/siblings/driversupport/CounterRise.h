// What a counter counted between two readings.
#pragma once

namespace zr {

// after - before while the counter rises. A reading below the one before is a roll-over when the counter was within a
// hundredth of the end of a common range and has counted no more than that since: a power of ten, or 2^16, 2^31 or
// 2^32 times a power of ten. Otherwise the meter was exchanged, and what was counted in between can't be known: 0.
// Never negative. Both finite.
double CounterRise(double before, double after);

}  // namespace zr
