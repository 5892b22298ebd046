// Which store belongs to a document.
#pragma once

#include "siblings/driversupport/recorder/RecordingFile.h"
#include "siblings/driversupport/store/LoggerStoreAddress.h"

#include <filesystem>
#include <memory>
#include <string>

namespace zr::supervision {

// The servers that the recording file names, else the file it names, else one with the document's title; files in the
// data folder unless their path is whole.
LoggerStoreAddress StoreAddressOf(const RecordingFile& recording, const std::filesystem::path& document,
                                  const std::filesystem::path& dataFolder);

// One store in front of all nodes. Null, with an error, for an address that names none; what is away shows at the first
// call.
std::unique_ptr<LoggerStore> OpenLoggerStore(const LoggerStoreAddress& address, std::string& error);

}  // namespace zr::supervision
