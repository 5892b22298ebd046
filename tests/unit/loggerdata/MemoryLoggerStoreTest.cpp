// What a store in memory does besides what every store does.
#include "siblings/driversupport/store/MemoryLoggerStore.h"

#include "unit/loggerdata/StoreKinds.h"

#include <gtest/gtest.h>
#include <vector>

namespace zr {
namespace {

TEST(MemoryLoggerStore, IsAwayWhileItIsSetSo)
{
    MemoryLoggerStore store;
    const int series = store.OpenSeries(u"M.U", 1);
    const auto reader = store.OpenReader();
    store.SetAvailable(false);
    test::BlockCollector collector;
    EXPECT_FALSE(reader->ReadBlocks(u"M.U", 0, 1, LoggerNeed::Samples, collector));
    EXPECT_EQ(store.OpenReader(), nullptr);
    EXPECT_EQ(store.OpenSeries(u"M.I", 1), -1);
    const std::vector<LoggerAppend> batch = {{series, 0, 1.0}};
    EXPECT_FALSE(store.Append(batch));
    EXPECT_FALSE(store.Error().empty());
    store.SetAvailable(true);
    EXPECT_TRUE(store.Append(batch));
}

}  // namespace
}  // namespace zr
