// Who is told of services that come and go.
#include "platform/ddeml/posix/Hub.h"

#include <sys/inotify.h>
#include <unistd.h>
#include <algorithm>
#include <array>

namespace zr::ddeml {

void Hub::OnFolderChanged()
{
    alignas(inotify_event) std::array<char, 8192> buffer{};
    ssize_t size = 0;
    while ((size = read(m_notify.Get(), buffer.data(), buffer.size())) > 0) {
        for (ssize_t at = 0; at < size;) {
            inotify_event event{};
            std::copy_n(buffer.data() + at, sizeof event, reinterpret_cast<char*>(&event));
            const char* name = buffer.data() + at + static_cast<ssize_t>(sizeof event);
            const std::string file(event.len > 0 ? name : "");
            at += static_cast<ssize_t>(sizeof event + event.len);
            const auto known = m_names.find(file);
            if ((event.mask & IN_MOVED_TO) != 0 && known == m_names.end() && file.ends_with(".name")) {
                if (const auto text = folder.ReadName(file)) {
                    m_names.emplace(file, *text);
                    Announce(XTYP_REGISTER, *text, file);
                }
            } else if ((event.mask & IN_DELETE) != 0 && known != m_names.end()) {
                const std::u16string text = known->second;
                m_names.erase(known);
                Announce(XTYP_UNREGISTER, text, file);
            }
        }
    }
}

void Hub::Announce(UINT type, std::u16string_view name, const std::string& file)
{
    // The name of this one server of the service: the name and its token.
    const std::size_t dot = file.find('.');
    const std::string token = file.substr(dot + 1, file.size() - dot - 1 - 5);
    std::u16string own(name.substr(0, kMaxStringLength - 3 - std::min<std::size_t>(token.size(), 64)));
    own += u":(";
    own.append(token.begin(), token.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(token.size(), 64)));
    own += u')';
    const DWORD skip = type == XTYP_REGISTER ? CBF_SKIP_REGISTRATIONS : CBF_SKIP_UNREGISTRATIONS;
    std::vector<DWORD> ids;
    for (const auto& [id, instance] : m_instances) {
        ids.push_back(id);
    }
    const std::uint32_t hsz1 = strings.Hold(name, 0);
    const std::uint32_t hsz2 = strings.Hold(own, 0);
    for (const DWORD id : ids) {
        Instance* instance = Find(id);
        if (instance != nullptr && (instance->flags & skip) == 0) {
            Call(*instance, type, 0, 0, hsz1, hsz2, nullptr, 0, 0);
        }
    }
    strings.Release(hsz1, 0);
    strings.Release(hsz2, 0);
}

}  // namespace zr::ddeml
