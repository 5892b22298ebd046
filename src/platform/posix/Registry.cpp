#include "platform/Registry.h"

#include "platform/FileReplace.h"
#include "platform/Paths.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/RegistryFile.h"
#include "platform/Unicode.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace zr {

// An open key.
struct RegistryHandle {
    std::size_t hive = 0;
    std::u16string path;  // empty for the root
    std::uint32_t access = 0;
};

namespace {

constexpr std::size_t kMaxFileBytes = 16 * 1024 * 1024;
constexpr std::uint32_t kMaxValueBytes = 1024 * 1024;
constexpr std::size_t kMaxNameUnits = 16383;
constexpr std::size_t kMaxStepUnits = 255;
constexpr std::array kHiveFiles = {"registry-current-user.txt", "registry-local-machine.txt"};

// Keeps other processes off a hive while one reads, changes and replaces it. The lock file stays.
class HiveLock {
public:
    explicit HiveLock(const std::filesystem::path& file)
        : m_descriptor(::open((file.string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600))
    {
        m_isHeld = m_descriptor.IsOpen() && ::flock(m_descriptor.Get(), LOCK_EX) == 0;
    }
    [[nodiscard]] bool IsHeld() const { return m_isHeld; }

private:
    FileDescriptor m_descriptor;
    bool m_isHeld = false;
};

// One root and its file, which is read anew whenever another process may have replaced it.
class Hive {
public:
    explicit Hive(const char* name) : m_name(name) {}

    // False when there is a file that can't be read; it must then not be replaced either.
    bool Refresh()
    {
        const std::filesystem::path file = File();
        struct stat status = {};
        const bool isThere = ::stat(file.c_str(), &status) == 0;
        if (isThere && file == m_readFrom && SameFile(status)) {
            return true;
        }
        m_readFrom.clear();
        m_content.Parse("");
        if (!isThere) {
            m_reason.clear();
            return true;
        }
        std::string text;
        if (!ReadWholeFile(file, kMaxFileBytes, text, m_reason)) {
            return false;
        }
        m_content.Parse(text);
        m_readFrom = file;
        m_status = status;
        return true;
    }

    // Applies the change to what the file holds now, and replaces it.
    template <typename Change>
    std::int32_t Modify(const Change& change)
    {
        const std::filesystem::path file = File();
        if (!MakePrivateFolder(file.parent_path(), m_reason)) {
            return ERROR_WRITE_FAULT;
        }
        const HiveLock lock(file);
        if (!lock.IsHeld() || !Refresh()) {
            return ERROR_ACCESS_DENIED;
        }
        change(m_content);
        m_readFrom.clear();  // Its status isn't known until it is read again.
        return WriteFileReplacing(file, m_content.Text(), m_reason) ? ERROR_SUCCESS : ERROR_WRITE_FAULT;
    }

    [[nodiscard]] const RegistryFile& Content() const { return m_content; }
    [[nodiscard]] const std::string& Reason() const { return m_reason; }
    [[nodiscard]] std::filesystem::path File() const { return ConfigFolder() / m_name; }

private:
    // Every replacement is a new file, and a hand that edits one changes its time.
    [[nodiscard]] bool SameFile(const struct stat& status) const
    {
        return status.st_ino == m_status.st_ino && status.st_size == m_status.st_size &&
               status.st_mtim.tv_sec == m_status.st_mtim.tv_sec && status.st_mtim.tv_nsec == m_status.st_mtim.tv_nsec;
    }

    std::string m_name;
    std::filesystem::path m_readFrom;
    struct stat m_status = {};
    RegistryFile m_content;
    std::string m_reason;
};

struct RegistryState {
    std::mutex mutex;
    std::array<Hive, 2> hives = {Hive(kHiveFiles[0]), Hive(kHiveFiles[1])};
    std::map<const RegistryHandle*, std::unique_ptr<RegistryHandle>> handles;
};

RegistryState& State()
{
    static RegistryState state;
    return state;
}

// Fills `key` with what the handle stands for.
bool Resolve(RegistryState& state, HKEY handle, RegistryHandle& key)
{
    if (handle == HKEY_CURRENT_USER || handle == HKEY_LOCAL_MACHINE) {
        key = {handle == HKEY_CURRENT_USER ? 0U : 1U, {}, KEY_ALL_ACCESS};
        return true;
    }
    const auto found = state.handles.find(handle);
    if (found == state.handles.end()) {
        return false;
    }
    key = *found->second;
    return true;
}

bool IsStep(std::u16string_view step)
{
    if (step.empty() || step.size() > kMaxStepUnits) {
        return false;
    }
    // Control characters and halves of surrogate pairs have no form in the file.
    const char16_t* const end = step.data() + step.size();
    for (const char16_t* at = step.data(); at != end;) {
        const UnicodeStep next = NextUtf16(at, end);
        if (!next.wellFormed || next.scalar < 0x20) {
            return false;
        }
        at += next.length;
    }
    return true;
}

// Appends the steps of a sub-key to the path. A "\" at its end is ignored.
bool AppendSubKey(const char16_t* subKey, std::u16string& path)
{
    std::u16string_view rest = subKey != nullptr ? subKey : u"";
    while (!rest.empty()) {
        const std::u16string_view step = rest.substr(0, rest.find(u'\\'));
        if (!IsStep(step)) {
            return false;
        }
        path.append(path.empty() ? u"" : u"\\").append(step);
        rest.remove_prefix(std::min(step.size() + 1, rest.size()));
    }
    return true;
}

// Fills `found` with what the handle and the sub-key stand for, whether that key is there or not, and brings its hive
// up to date.
std::int32_t Locate(RegistryState& state, HKEY handle, const char16_t* subKey, RegistryHandle& found)
{
    if (!Resolve(state, handle, found)) {
        return ERROR_INVALID_HANDLE;
    }
    if (!AppendSubKey(subKey, found.path)) {
        return ERROR_BAD_PATHNAME;
    }
    return state.hives[found.hive].Refresh() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

bool IsThere(const RegistryState& state, const RegistryHandle& key)
{
    return key.path.empty() || state.hives[key.hive].Content().HasKey(key.path);
}

HKEY NewHandle(RegistryState& state, RegistryHandle key)
{
    auto handle = std::make_unique<RegistryHandle>(std::move(key));
    RegistryHandle* const address = handle.get();
    state.handles.emplace(address, std::move(handle));
    return address;
}

std::u16string_view NameOf(const char16_t* name)
{
    return name != nullptr ? std::u16string_view(name) : std::u16string_view();
}

}  // namespace

std::int32_t RegOpenKeyExW(HKEY key, const char16_t* subKey, std::uint32_t options, std::uint32_t access, HKEY* result)
{
    if (result == nullptr || options != 0) {
        return ERROR_INVALID_PARAMETER;
    }
    RegistryState& state = State();
    const std::lock_guard lock(state.mutex);
    RegistryHandle opened;
    if (const std::int32_t error = Locate(state, key, subKey, opened); error != ERROR_SUCCESS) {
        return error;
    }
    if (!IsThere(state, opened)) {
        return ERROR_FILE_NOT_FOUND;
    }
    opened.access = access;
    *result = NewHandle(state, std::move(opened));
    return ERROR_SUCCESS;
}

std::int32_t RegCreateKeyExW(HKEY key, const char16_t* subKey, std::uint32_t reserved, const char16_t* /*className*/,
                             std::uint32_t /*options*/, std::uint32_t access, const void* /*security*/, HKEY* result,
                             std::uint32_t* disposition)
{
    if (result == nullptr || reserved != 0) {
        return ERROR_INVALID_PARAMETER;
    }
    RegistryState& state = State();
    const std::lock_guard lock(state.mutex);
    RegistryHandle opened;
    if (const std::int32_t error = Locate(state, key, subKey, opened); error != ERROR_SUCCESS) {
        return error;
    }
    const bool isThere = IsThere(state, opened);
    if (!isThere) {
        const std::int32_t error =
            state.hives[opened.hive].Modify([&opened](RegistryFile& content) { content.AddKey(opened.path); });
        if (error != ERROR_SUCCESS) {
            return error;
        }
    }
    if (disposition != nullptr) {
        *disposition = isThere ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    }
    opened.access = access;
    *result = NewHandle(state, std::move(opened));
    return ERROR_SUCCESS;
}

std::int32_t RegQueryValueExW(HKEY key, const char16_t* name, std::uint32_t* reserved, std::uint32_t* type,
                              std::uint8_t* data, std::uint32_t* size)
{
    if (reserved != nullptr || (data != nullptr && size == nullptr)) {
        return ERROR_INVALID_PARAMETER;
    }
    RegistryState& state = State();
    const std::lock_guard lock(state.mutex);
    RegistryHandle opened;
    if (!Resolve(state, key, opened)) {
        return ERROR_INVALID_HANDLE;
    }
    Hive& hive = state.hives[opened.hive];
    if ((opened.access & KEY_QUERY_VALUE) == 0 || !hive.Refresh()) {
        return ERROR_ACCESS_DENIED;
    }
    const std::optional<RegistryValue> value = hive.Content().Value(opened.path, NameOf(name));
    if (!value) {
        return ERROR_FILE_NOT_FOUND;
    }
    if (type != nullptr) {
        *type = value->type;
    }
    if (size == nullptr) {
        return ERROR_SUCCESS;
    }
    const std::uint32_t room = std::exchange(*size, static_cast<std::uint32_t>(value->bytes.size()));
    if (data == nullptr) {
        return ERROR_SUCCESS;
    }
    if (room < value->bytes.size()) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(data, value->bytes.data(), value->bytes.size());
    return ERROR_SUCCESS;
}

std::int32_t RegSetValueExW(HKEY key, const char16_t* name, std::uint32_t reserved, std::uint32_t type,
                            const std::uint8_t* data, std::uint32_t size)
{
    if (reserved != 0 || (data == nullptr && size != 0) || size > kMaxValueBytes ||
        NameOf(name).size() > kMaxNameUnits) {
        return ERROR_INVALID_PARAMETER;
    }
    RegistryState& state = State();
    const std::lock_guard lock(state.mutex);
    RegistryHandle opened;
    if (!Resolve(state, key, opened)) {
        return ERROR_INVALID_HANDLE;
    }
    if ((opened.access & KEY_SET_VALUE) == 0) {
        return ERROR_ACCESS_DENIED;
    }
    if (opened.path.empty()) {
        return ERROR_INVALID_PARAMETER;  // The file has no place for values of the root itself.
    }
    RegistryValue value;
    value.type = type;
    value.bytes.assign(data, data + size);
    Hive& hive = state.hives[opened.hive];
    if (hive.Refresh() && hive.Content().Value(opened.path, NameOf(name)) == value) {
        return ERROR_SUCCESS;  // It stands there, and each replacement waits for the disk.
    }
    return hive.Modify([&](RegistryFile& content) { content.SetValue(opened.path, NameOf(name), value); });
}

std::int32_t RegCloseKey(HKEY key)
{
    RegistryState& state = State();
    const std::lock_guard lock(state.mutex);
    if (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) {
        return ERROR_SUCCESS;
    }
    return state.handles.erase(key) != 0 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

std::vector<RegistryFault> RegistryFaults()
{
    RegistryState& state = State();
    const std::lock_guard lock(state.mutex);
    std::vector<RegistryFault> faults;
    for (Hive& hive : state.hives) {
        const std::string file = TextOfPath(hive.File());
        if (!hive.Refresh()) {
            faults.push_back({file, 0, hive.Reason()});
        }
        for (const RegistryFile::Fault& fault : hive.Content().Faults()) {
            faults.push_back({file, fault.line, fault.reason});
        }
    }
    return faults;
}

}  // namespace zr
