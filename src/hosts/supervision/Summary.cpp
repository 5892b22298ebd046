#include "hosts/supervision/Summary.h"

#include "comm/ZRCommSystem.h"
#include "diagnostics/ZRDebugInfo.h"

#include <fmt/format.h>
#include <algorithm>
#include <array>

namespace zr::supervision {
namespace {

void CountDevice(Summary& summary, const ZRDeviceDriver& driver)
{
    ++summary.devices;
    summary.online += driver.Online() ? 1u : 0u;
    const std::shared_ptr<VariableStore> store = driver.Store();
    if (store == nullptr) {
        return;
    }
    summary.variables += store->Table().Size();
    for (std::size_t i = 0; i < store->Table().Size(); ++i) {
        summary.valid += store->At(i).IsValid() ? 1u : 0u;
    }
}

// In the order of UnrecordedReason.
constexpr std::array<const char*, kUnrecordedReasons> kReasonKeys = {"invalid",        "missing", "late",
                                                                     "clock_set_back", "no_room", "damaged"};

std::string UnrecordedJson(const RecorderCounts& counts)
{
    std::string json;
    for (std::size_t i = 0; i < kReasonKeys.size(); ++i) {
        json += fmt::format(R"({}"{}":{})", i == 0 ? "" : ",", kReasonKeys[i], counts.unrecorded[i]);
    }
    return '{' + json + '}';
}

}  // namespace

std::string Summary::Json() const
{
    return fmt::format(
        R"({{"devices":{},"online":{},"variables":{},"valid":{},"ticks":{},"transactions":{},)"
        R"("timeouts":{},"dropped_frames":{},"warnings":{},"dde_conversations":{},"dde_links":{},"dde_posts":{},)"
        R"("dde_merged":{},"recorded":{},"spooled":{},"unrecorded":{}}})",
        devices, online, variables, valid, ticks, transactions, timeouts, droppedFrames, warnings, ddeConversations,
        ddeLinks, ddePosts, ddeMerged, recording.recorded, recording.spooled, UnrecordedJson(recording));
}

Summary Summarise()
{
    Summary summary;
    ZRCommSystem& system = ZRCommSystem::Get();
    for (auto driver = system.DriversBegin(); driver != system.DriversEnd(); ++driver) {
        CountDevice(summary, **driver);
    }
    for (auto connection = system.ConnectionsBegin(); connection != system.ConnectionsEnd(); ++connection) {
        const ConnectionCounters counters = (*connection)->Counters();
        summary.transactions += counters.transactions;
        summary.timeouts += counters.timeouts;
        summary.droppedFrames += counters.droppedFrames;
    }
    for (auto group = system.GroupsBegin(); group != system.GroupsEnd(); ++group) {
        summary.ticks = std::max(summary.ticks, (*group)->Ticks());
    }
    ZRDebugInfo& warnings = ZRDebugInfo::Get();
    for (int i = 0; i < warnings.Size(); ++i) {
        summary.warnings += warnings.IsEvent(i) ? 0u : 1u;
    }
    return summary;
}

}  // namespace zr::supervision
