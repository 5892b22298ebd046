// One conversation of this program as a DDE client.
#pragma once

#include "platform/Ddeml.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace zr::ddeclient {

// One object a program, used by one thread. Every operation that fails returns what went wrong as one line.
class DdeSession {
public:
    // Position of the item among those that were linked; the bytes live as long as the call.
    using Receiver = std::function<void(std::size_t item, std::span<const std::uint8_t> bytes)>;

    explicit DdeSession(Receiver receiver);
    DdeSession(const DdeSession&) = delete;
    DdeSession& operator=(const DdeSession&) = delete;
    ~DdeSession();

    // Blocks up to some seconds.
    std::string Connect(const std::u16string& service, const std::u16string& topic);
    // Hot links, in that order. Calls the receiver before it returns if values come that early.
    std::string Link(const std::vector<std::u16string>& items, UINT format);
    // Waits that long for something to happen, and calls the receiver with what came.
    void Wait(std::chrono::milliseconds timeout);
    // Whether the server ended the conversation.
    [[nodiscard]] bool IsEnded() const { return m_isEnded; }

private:
    static HDDEDATA CALLBACK CallBack(UINT type, UINT format, HCONV conversation, HSZ hsz1, HSZ hsz2, HDDEDATA data,
                                      ULONG_PTR data1, ULONG_PTR data2);
    void Receive(HSZ item, HDDEDATA data);
    HSZ Handle(const std::u16string& text);
    [[nodiscard]] static bool IsRegistered(const std::u16string& service);

    static DdeSession* current;

    Receiver m_receiver;
    DWORD m_instance = 0;
    UINT m_error = DMLERR_NO_ERROR;  // of the beginning
    HCONV m_conversation = nullptr;
    std::u16string m_topic;
    std::vector<HSZ> m_items;  // kept until the end
    bool m_isEnded = false;
};

}  // namespace zr::ddeclient
