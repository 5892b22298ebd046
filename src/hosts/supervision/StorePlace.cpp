#include "hosts/supervision/StorePlace.h"

#include "siblings/driversupport/store/LoggerNodes.h"

#include <utility>
#include <vector>

namespace zr::supervision {

LoggerStoreAddress StoreAddressOf(const RecordingFile& recording, const std::filesystem::path& document,
                                  const std::filesystem::path& dataFolder)
{
    LoggerStoreAddress address;
    address.nodes = recording.nodes;
    if (address.nodes.empty()) {
        std::filesystem::path file = document.stem();
        file += ".zrlog";
        address.file = dataFolder / (recording.store.empty() ? file : recording.store);
    }
    return address;
}

std::unique_ptr<LoggerStore> OpenLoggerStore(const LoggerStoreAddress& address, std::string& error)
{
    std::vector<std::unique_ptr<LoggerStore>> nodes = OpenLoggerNodes(address, error);
    if (nodes.size() > 1) {
        return std::make_unique<LoggerNodes>(std::move(nodes));
    }
    return nodes.empty() ? nullptr : std::move(nodes.front());
}

}  // namespace zr::supervision
