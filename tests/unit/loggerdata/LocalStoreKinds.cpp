// The stores that need nothing but this machine.
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "unit/loggerdata/StoreKinds.h"

namespace zr::test {

std::vector<StoreKind> StoreKinds()
{
    return {{"memory", [] { return std::make_unique<MemoryLoggerStore>(); }}};
}

}  // namespace zr::test
