// The devices of a document, for what they tell of their variables.
#pragma once

#include "comm/ZRCommSystem.h"
#include "comm/ZRMainCfg.h"
#include "siblings/support/ZRKestrixSetup.h"

#include <filesystem>
#include <string>

namespace zr::service {

// They are never asked for a value, and the document isn't taken: another process may supervise it. One object a
// program.
class DocumentDevices {
public:
    DocumentDevices() = default;
    ~DocumentDevices();
    DocumentDevices(const DocumentDevices&) = delete;
    DocumentDevices& operator=(const DocumentDevices&) = delete;

    // Where the filter files are; empty: where the user's are.
    void SetDataFolder(const std::filesystem::path& folder);
    // False with an error that names file and line.
    bool Load(const std::filesystem::path& document, std::string& error);

private:
    ZRKestrixSetup m_setup;
    ZRMainCfg m_document;
    ZRCommSystem m_system;
};

}  // namespace zr::service
