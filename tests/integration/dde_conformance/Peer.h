// The server that the checks talk to, and the client instance that they talk through.
#pragma once

#include "platform/Ddeml.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace conformance {

// The service "CONFORM" on the calling thread. The topic "refused" is refused, any other taken; the item "no" is
// refused, "busy" is busy, "value" has data.
class Server {
public:
    // False when the instance or the name could not be had.
    static bool Start();
    static void Stop();
    // "value" sets the data, "mark" their format ("text": always CF_TEXT), "post" posts "topic item"; "register" and
    // "unregister" a name.
    static void Run(const std::string& command, const std::string& text);
    // What was noted since the last call.
    static std::vector<std::string> TakeNotes();
};

// A client that notes what it is called with. Two of them may stand at once (number 0 and 1).
class Client {
public:
    explicit Client(std::size_t number);
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    [[nodiscard]] DWORD Instance() const { return m_instance; }
    HSZ String(std::u16string_view text);
    HCONV Connect(std::string_view service, std::u16string_view topic);
    // The transaction's outcome as text: accepted or refused, with what is asked for.
    HDDEDATA Transact(HCONV conversation, const char* item, UINT format, UINT type, std::string_view data = {},
                      DWORD* flags = nullptr);
    [[nodiscard]] UINT LastError() const { return DdeGetLastError(m_instance); }

    // What was noted since the last call.
    std::vector<std::string> TakeNotes();
    // Runs callbacks until so many notes stand, at most 5 s.
    void AwaitNotes(std::size_t count) const;
    // Runs callbacks until a note holds that text. False when the time is over.
    [[nodiscard]] bool AwaitNoteWith(std::string_view part, std::chrono::milliseconds limit) const;

private:
    DWORD m_instance = 0;
    std::size_t m_number;
    std::vector<HSZ> m_strings;
};

}  // namespace conformance
