// A device whose values the test writes, a started server and a real client, all on the thread of the test.
#pragma once

#include "dde/ZRDDEServer.h"
#include "dde/ZRDDEValues.h"
#include "platform/Ddeml.h"
#include "siblings/driversupport/ZRDeviceDriver.h"

#ifndef _WIN32
#include "support/Environment.h"
#include "support/TempFolder.h"
#endif

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zr::test {

using Bytes = std::vector<std::uint8_t>;

class TestDevice : public ZRDeviceDriver {
public:
    TestDevice(const ZRBasicString& deviceName, const std::vector<ZRBasicString>& variables, int decimals = 2)
    {
        std::vector<VariableDescription> descriptions;
        for (const ZRBasicString& variable : variables) {
            VariableDescription description;
            description.name = variable;
            description.decimals = decimals;
            descriptions.push_back(description);
        }
        SetName(deviceName);
        SetVariables(std::make_shared<const VariableTable>(std::move(descriptions)));
    }

    LiveValue& operator[](std::size_t index) { return Store()->At(index); }
};

// Bytes of a handle, which is freed.
inline Bytes TakeBytes(HDDEDATA data)
{
    Bytes bytes(DdeGetData(data, nullptr, 0, 0));
    DdeGetData(data, bytes.data(), static_cast<DWORD>(bytes.size()), 0);
    DdeFreeDataHandle(data);
    return bytes;
}

// What one link of a client got.
struct Update {
    std::u16string item;
    UINT format = 0;
    std::optional<Bytes> data;  // none on a warm link
};

// A client with an instance of its own. Its operations wait up to kPatience.
class DdeClient {
public:
    static constexpr DWORD kPatience = 10000;  // ms

    DdeClient() { EXPECT_EQ(DdeInitializeW(&m_instance, &CallBack, APPCMD_CLIENTONLY, 0), UINT{DMLERR_NO_ERROR}); }
    DdeClient(const DdeClient&) = delete;
    DdeClient& operator=(const DdeClient&) = delete;
    ~DdeClient()
    {
        DdeUninitialize(m_instance);
        std::erase_if(Owners(), [this](const auto& entry) { return entry.second == this; });
    }

    HCONV Connect(const char16_t* service, const std::u16string& topic)
    {
        const HSZ serviceHandle = Text(service);
        const HSZ topicHandle = Text(topic);
        const HCONV conversation = DdeConnect(m_instance, serviceHandle, topicHandle, nullptr);
        DdeFreeStringHandle(m_instance, serviceHandle);
        DdeFreeStringHandle(m_instance, topicHandle);
        if (conversation != nullptr) {
            Owners()[conversation] = this;
        }
        return conversation;
    }
    bool Advise(HCONV conversation, const std::u16string& item, UINT format = CF_TEXT, UINT flags = 0)
    {
        return Transact(conversation, item, format, XTYP_ADVSTART | flags) != nullptr;
    }
    bool StopAdvise(HCONV conversation, const std::u16string& item, UINT format = CF_TEXT)
    {
        return Transact(conversation, item, format, XTYP_ADVSTOP) != nullptr;
    }
    HDDEDATA Transact(HCONV conversation, const std::u16string& item, UINT format, UINT type)
    {
        const HSZ itemHandle = Text(item);
        const HDDEDATA result =
            DdeClientTransaction(nullptr, 0, conversation, itemHandle, format, type, kPatience, nullptr);
        DdeFreeStringHandle(m_instance, itemHandle);
        return result;
    }
    UINT LastError() { return DdeGetLastError(m_instance); }

    // Whether that many updates came in all.
    bool WaitForUpdates(std::size_t count)
    {
        return WaitUntil([this, count] { return updates.size() >= count; });
    }
    template <typename Condition>
    static bool WaitUntil(Condition holds)
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPatience);
        while (!holds() && std::chrono::steady_clock::now() < deadline) {
            ddeml::Dispatch(std::chrono::milliseconds(20));
        }
        return holds();
    }

    std::vector<Update> updates;
    int disconnects = 0;

private:
    HSZ Text(const std::u16string& text) { return DdeCreateStringHandleW(m_instance, text.c_str(), CP_WINUNICODE); }

    // The callback isn't told the instance, so it goes by the conversation.
    static std::map<HCONV, DdeClient*>& Owners()
    {
        static std::map<HCONV, DdeClient*> owners;
        return owners;
    }

    static HDDEDATA CALLBACK CallBack(UINT type, UINT format, HCONV conversation, HSZ, HSZ hsz2, HDDEDATA data,
                                      ULONG_PTR, ULONG_PTR)
    {
        const auto owner = Owners().find(conversation);
        if (owner == Owners().end()) {
            return nullptr;
        }
        if (type == XTYP_DISCONNECT) {
            ++owner->second->disconnects;
            return nullptr;
        }
        if (type != XTYP_ADVDATA) {
            return nullptr;
        }
        owner->second->Take(format, hsz2, data);
        return ddeml::Reply(DDE_FACK);
    }

    void Take(UINT format, HSZ item, HDDEDATA data)
    {
        Update update;
        char16_t name[256] = {};
        update.item = std::u16string(name, DdeQueryStringW(m_instance, item, name, 256, CP_WINUNICODE));
        update.format = format;
        if (data != nullptr) {
            update.data = Bytes(DdeGetData(data, nullptr, 0, 0));
            DdeGetData(data, update.data->data(), static_cast<DWORD>(update.data->size()), 0);
        }
        updates.push_back(update);
    }

    DWORD m_instance = 0;
};

// Nothing of the user's own servers and settings is seen by the tests.
class DdeFixture : public ::testing::Test {
protected:
    static constexpr const char16_t* kService = u"ZRTEST";
    static constexpr const char16_t* kDevice = u"Meter 1";
    enum Variable : std::size_t { U1, I1, STATE, NOTE, PAIR };

    void SetUp() override
    {
        ASSERT_TRUE(server.Start());
        server.AddService(kService, &ZRDDEValues::CanConnect, &ZRDDEValues::Connect);
    }

    HSZ Handle(const std::u16string& text)
    {
        return DdeCreateStringHandleW(ZRDDEServer::DDEInstance(), text.c_str(), CP_WINUNICODE);
    }

    // Posts made while an operation runs.
    template <typename Operation>
    static std::uint64_t PostsOf(Operation operation)
    {
        const std::uint64_t before = ZRDDEValues::PostCount();
        operation();
        return ZRDDEValues::PostCount() - before;
    }
    static std::uint64_t PostsOfUpdate() { return PostsOf(&ZRDDEValues::UpdateValues); }

#ifndef _WIN32
    // One folder of servers for the program: DDE opens it once a thread.
    static bool UseOwnRuntimeFolder()
    {
        static const TempFolder folder;
        static const Environment runtime("XDG_RUNTIME_DIR", folder.Path().string());
        return true;
    }

    const bool m_isIsolated = UseOwnRuntimeFolder();
    TempFolder m_folder;
    Environment m_config{"XDG_CONFIG_HOME", m_folder.Path().string()};
#endif

    TestDevice meter{kDevice, {u"U1", u"I1", u"STATE", u"NOTE", u"PAIR"}};
    ZRDDEServer server;
};

}  // namespace zr::test
