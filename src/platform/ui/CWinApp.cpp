#include "platform/ui/CWinApp.h"

#include "platform/Registry.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

CWinApp* g_application = nullptr;

// A key that is closed when it goes.
class Key {
public:
    enum class Use { Read, Write };
    Key(const std::u16string& path, Use use)
    {
        const std::int32_t result =
            use == Use::Read ? zr::RegOpenKeyExW(zr::HKEY_CURRENT_USER, path.c_str(), 0, zr::KEY_QUERY_VALUE, &m_key)
                             : zr::RegCreateKeyExW(zr::HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0,
                                                   zr::KEY_SET_VALUE, nullptr, &m_key, nullptr);
        if (result != zr::ERROR_SUCCESS) {
            m_key = nullptr;
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key()
    {
        if (m_key != nullptr) {
            zr::RegCloseKey(m_key);
        }
    }

    // Empty when there is no such value of that type.
    [[nodiscard]] std::vector<std::uint8_t> Read(std::u16string_view entry, std::uint32_t type) const
    {
        const std::u16string name(entry);
        std::uint32_t found = 0;
        std::uint32_t size = 0;
        if (m_key == nullptr ||
            zr::RegQueryValueExW(m_key, name.c_str(), nullptr, &found, nullptr, &size) != zr::ERROR_SUCCESS ||
            found != type) {
            return {};
        }
        std::vector<std::uint8_t> bytes(size);
        const bool isRead =
            zr::RegQueryValueExW(m_key, name.c_str(), nullptr, &found, bytes.data(), &size) == zr::ERROR_SUCCESS;
        bytes.resize(isRead && found == type ? size : 0);
        return bytes;
    }
    [[nodiscard]] bool Write(std::u16string_view entry, std::uint32_t type, const void* data, std::size_t size) const
    {
        const std::u16string name(entry);
        return m_key != nullptr &&
               zr::RegSetValueExW(m_key, name.c_str(), 0, type, static_cast<const std::uint8_t*>(data),
                                  static_cast<std::uint32_t>(size)) == zr::ERROR_SUCCESS;
    }

private:
    zr::HKEY m_key = nullptr;
};

}  // namespace

CWinApp::CWinApp(std::u16string_view registryKey) : m_registryKey(registryKey)
{
    g_application = this;
}

CWinApp::~CWinApp()
{
    if (g_application == this) {
        g_application = nullptr;
    }
}

CWinApp* AfxGetApp()
{
    return g_application;
}

std::u16string CWinApp::PathOf(std::u16string_view section) const
{
    return m_registryKey + u"\\" + std::u16string(section);
}

int CWinApp::GetProfileIntW(std::u16string_view section, std::u16string_view entry, int byDefault) const
{
    const std::vector<std::uint8_t> bytes = Key(PathOf(section), Key::Use::Read).Read(entry, zr::REG_DWORD);
    std::int32_t value = byDefault;
    if (bytes.size() == sizeof value) {
        std::memcpy(&value, bytes.data(), sizeof value);
    }
    return value;
}

bool CWinApp::WriteProfileInt(std::u16string_view section, std::u16string_view entry, int value)
{
    const std::int32_t number = value;
    return Key(PathOf(section), Key::Use::Write).Write(entry, zr::REG_DWORD, &number, sizeof number);
}
