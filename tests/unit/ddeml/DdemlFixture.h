// A server and a client instance on one thread, in a runtime folder of their own.
#pragma once

#include "platform/Ddeml.h"

#include <gtest/gtest.h>
#include <unistd.h>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace zr::ddeml {

struct Event {
    UINT type;
    UINT format;
    HCONV conversation;
    std::u16string first;
    std::u16string second;
    std::string data;
    ULONG_PTR data1;
    ULONG_PTR data2;
};

// What one side was called with and how it answers.
struct Side {
    DWORD instance = 0;
    std::vector<Event> events;
    std::function<HDDEDATA(const Event&)> answer;

    [[nodiscard]] std::u16string Text(HSZ string) const
    {
        char16_t text[256] = {};
        return {text, DdeQueryStringW(instance, string, text, 256, CP_WINUNICODE)};
    }
    HDDEDATA On(UINT type, UINT format, HCONV conversation, HSZ hsz1, HSZ hsz2, HDDEDATA data, ULONG_PTR data1,
                ULONG_PTR data2)
    {
        std::string bytes(DdeGetData(data, nullptr, 0, 0), '\0');
        DdeGetData(data, reinterpret_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()), 0);
        events.push_back({type, format, conversation, Text(hsz1), Text(hsz2), bytes, data1, data2});
        return answer ? answer(Event(events.back())) : nullptr;
    }
    [[nodiscard]] std::size_t Count(UINT type) const
    {
        std::size_t count = 0;
        for (const Event& event : events) {
            count += event.type == type ? 1U : 0U;
        }
        return count;
    }
    [[nodiscard]] Event Last(UINT type) const
    {
        for (auto at = events.rbegin(); at != events.rend(); ++at) {
            if (at->type == type) {
                return *at;
            }
        }
        ADD_FAILURE() << "no event of type " << type;
        return {};
    }
};

inline Side g_server;
inline Side g_client;

class DdemlFixture : public testing::Test {
protected:
    void SetUp() override
    {
        std::string path = (std::filesystem::temp_directory_path() / "ddemlXXXXXX").string();
        ASSERT_NE(mkdtemp(path.data()), nullptr);
        m_folder = path;
        setenv("XDG_RUNTIME_DIR", path.c_str(), 1);
        Begin();
    }
    void TearDown() override
    {
        End();
        std::filesystem::remove_all(m_folder);
    }

    virtual void Begin()
    {
        g_server = Side();
        g_client = Side();
        g_server.answer = [this](const Event& event) { return Serve(event); };
        g_client.answer = [](const Event& event) { return Reply(event.type == XTYP_ADVDATA ? DDE_FACK : 0); };
        ASSERT_EQ(DdeInitializeW(&g_server.instance, OnServer, 0, 0), DMLERR_NO_ERROR);
        ASSERT_EQ(DdeInitializeW(&g_client.instance, OnClient, 0, 0), DMLERR_NO_ERROR);
        ASSERT_NE(DdeNameService(g_server.instance, ServerString(u"Plant"), nullptr, DNS_REGISTER), nullptr);
    }
    virtual void End()
    {
        DdeUninitialize(g_client.instance);
        DdeUninitialize(g_server.instance);
    }

    static HDDEDATA CALLBACK OnServer(UINT type, UINT format, HCONV c, HSZ a, HSZ b, HDDEDATA data, ULONG_PTR d1,
                                      ULONG_PTR d2)
    {
        return g_server.On(type, format, c, a, b, data, d1, d2);
    }
    static HDDEDATA CALLBACK OnClient(UINT type, UINT format, HCONV c, HSZ a, HSZ b, HDDEDATA data, ULONG_PTR d1,
                                      ULONG_PTR d2)
    {
        return g_client.On(type, format, c, a, b, data, d1, d2);
    }

    HDDEDATA Serve(const Event& event)
    {
        switch (event.type) {
            case XTYP_CONNECT:
            case XTYP_ADVSTART:
                return Reply(event.second == u"no" ? 0 : 1);
            case XTYP_ADVREQ:
            case XTYP_REQUEST:
                return event.second == u"no" ? nullptr : Data(g_server.instance, m_value, event.format);
            case XTYP_POKE:
            case XTYP_EXECUTE:
                return Reply(event.data == "busy" ? DDE_FBUSY : event.data == "no" ? 0 : DDE_FACK);
            default:
                return nullptr;
        }
    }

    static HDDEDATA Data(DWORD instance, std::string bytes, UINT format)
    {
        return DdeCreateDataHandle(instance, reinterpret_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()), 0,
                                   nullptr, format, 0);
    }
    static HSZ ServerString(const char16_t* text)
    {
        return DdeCreateStringHandleW(g_server.instance, text, CP_WINUNICODE);
    }
    static HSZ ClientString(const char16_t* text)
    {
        return DdeCreateStringHandleW(g_client.instance, text, CP_WINUNICODE);
    }
    static HCONV Connect(const char16_t* topic = u"Meter")
    {
        return DdeConnect(g_client.instance, ClientString(u"PLANT"), ClientString(topic), nullptr);
    }
    static HDDEDATA Transact(HCONV c, const char16_t* item, UINT type, DWORD timeout = 5000, std::string data = {},
                             DWORD* result = nullptr, UINT format = CF_TEXT)
    {
        return DdeClientTransaction(data.empty() ? nullptr : reinterpret_cast<BYTE*>(data.data()),
                                    static_cast<DWORD>(data.size()), c, item != nullptr ? ClientString(item) : nullptr,
                                    format, type, timeout, result);
    }
    static void Post(const char16_t* item, const char16_t* topic = u"meter")
    {
        DdePostAdvise(g_server.instance, ServerString(topic), ServerString(item));
    }
    static void Settle()
    {
        while (Dispatch(std::chrono::milliseconds(0))) {
        }
    }
    // Runs callbacks until the condition holds; false after 20 s.
    static bool Await(const std::function<bool()>& condition)
    {
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > until) {
                return false;
            }
            Dispatch(std::chrono::milliseconds(100));
        }
        return true;
    }

    std::string m_value = "12.5";
    std::filesystem::path m_folder;
};

}  // namespace zr::ddeml
