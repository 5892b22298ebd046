#include "hosts/zrdde/DdeSession.h"

#include "siblings/tools/Utf.h"

#include <fmt/format.h>
#include <algorithm>

namespace zr::ddeclient {
namespace {

constexpr DWORD kTransactionTimeout = 5000;  // ms

std::string ErrorText(UINT error)
{
    switch (error) {
        case DMLERR_ADVACKTIMEOUT:
            return fmt::format("the server did not answer within {} s", kTransactionTimeout / 1000);
        case DMLERR_BUSY:
            return "the server is busy";
        case DMLERR_SERVER_DIED:
            return "the server is gone";
        default:
            return fmt::format("DDE error 0x{:04X}", error);
    }
}

}  // namespace

DdeSession* DdeSession::current = nullptr;

DdeSession::DdeSession(Receiver receiver) : m_receiver(std::move(receiver))
{
    current = this;
    m_error = DdeInitializeW(&m_instance, &DdeSession::CallBack,
                             APPCMD_CLIENTONLY | CBF_SKIP_REGISTRATIONS | CBF_SKIP_UNREGISTRATIONS, 0);
}

DdeSession::~DdeSession()
{
    if (m_error == DMLERR_NO_ERROR) {
        DdeUninitialize(m_instance);
    }
    current = nullptr;
}

std::string DdeSession::Connect(const std::u16string& service, const std::u16string& topic)
{
    if (m_error != DMLERR_NO_ERROR) {
        return "DDE can't be begun: " + ErrorText(m_error);
    }
    m_topic = topic;
    const HSZ serviceHandle = Handle(service);
    const HSZ topicHandle = Handle(topic);
    m_conversation = DdeConnect(m_instance, serviceHandle, topicHandle, nullptr);
    DdeFreeStringHandle(m_instance, serviceHandle);
    DdeFreeStringHandle(m_instance, topicHandle);
    if (m_conversation != nullptr) {
        return {};
    }
    const std::string serviceText = Utf16ToUtf8(service);
    const std::string topicText = Utf16ToUtf8(topic);
#ifdef _WIN32
    return fmt::format("no service '{}' with the topic '{}'", serviceText, topicText);
#else
    return IsRegistered(service) ? fmt::format("the service '{}' has no topic '{}'", serviceText, topicText)
                                 : fmt::format("no service '{}' is registered", serviceText);
#endif
}

std::string DdeSession::Link(const std::vector<std::u16string>& items, UINT format)
{
    for (const std::u16string& item : items) {
        const HSZ handle = Handle(item);
        m_items.push_back(handle);
        if (DdeClientTransaction(nullptr, 0, m_conversation, handle, format, XTYP_ADVSTART, kTransactionTimeout,
                                 nullptr) != nullptr) {
            continue;
        }
        const UINT error = DdeGetLastError(m_instance);
        return error == DMLERR_NOTPROCESSED
                   ? fmt::format("the topic '{}' has no item '{}'", Utf16ToUtf8(m_topic), Utf16ToUtf8(item))
                   : fmt::format("item '{}': {}", Utf16ToUtf8(item), ErrorText(error));
    }
    return {};
}

void DdeSession::Wait(std::chrono::milliseconds timeout)
{
    ddeml::Dispatch(timeout);
}

HDDEDATA CALLBACK DdeSession::CallBack(UINT type, UINT, HCONV, HSZ, HSZ hsz2, HDDEDATA data, ULONG_PTR, ULONG_PTR)
{
    if (current == nullptr) {
        return nullptr;
    }
    if (type == XTYP_DISCONNECT) {
        current->m_isEnded = true;
        return nullptr;
    }
    if (type != XTYP_ADVDATA) {
        return nullptr;
    }
    if (data != nullptr) {
        current->Receive(hsz2, data);
    }
    return ddeml::Reply(DDE_FACK);
}

void DdeSession::Receive(HSZ item, HDDEDATA data)
{
    const auto found = std::find_if(m_items.begin(), m_items.end(),
                                    [item](const HSZ known) { return DdeCmpStringHandles(known, item) == 0; });
    if (found == m_items.end()) {
        return;
    }
    DWORD size = 0;
    const BYTE* const bytes = DdeAccessData(data, &size);
    if (bytes == nullptr) {
        return;
    }
    m_receiver(static_cast<std::size_t>(found - m_items.begin()), {bytes, size});
    DdeUnaccessData(data);
}

HSZ DdeSession::Handle(const std::u16string& text)
{
    return DdeCreateStringHandleW(m_instance, text.c_str(), CP_WINUNICODE);
}

bool DdeSession::IsRegistered(const std::u16string& service)
{
    const auto names = ddeml::RegisteredServices();
    return std::any_of(names.begin(), names.end(), [&service](const std::u16string& name) {
        return CompareNoCase(ZRBasicString(name), ZRBasicString(service)) == 0;
    });
}

}  // namespace zr::ddeclient
