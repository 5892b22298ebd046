// The one DDE server of the program: names of services, and the conversations of their clients.
#pragma once

#include "dde/DdeHandleOrder.h"
#include "platform/Ddeml.h"
#include "siblings/tools/ZRBasicString.h"

#include <list>
#include <map>
#include <memory>
#include <vector>

class ZRDDEConversation;

// Answers the transactions that open and close a conversation, and hands the three advise transactions on to the
// conversation. It knows nothing of values: what a service accepts and what its conversations do is given to
// AddService. Values go out on advise links only; a request, a poke, a command and a connect to any topic get no
// answer, and that is meant.
//
// Order of use: construct, Start, AddService, then ZRDDEValues::UpdateValues now and then, Stop, destruct.
// All of it on one thread, the DDE thread: that of Start, on which DDE calls back from zr::ddeml::Dispatch (on Windows
// from any message loop). There is no lock. Every failure is silent.
class ZRDDEServer {
public:
    // Whether a conversation about that topic may be opened.
    using CanConnectFunction = bool (*)(DWORD instance, HSZ topic);
    // The conversation that was opened, to be owned by the server; null for none.
    using ConnectFunction = ZRDDEConversation* (*)(DWORD instance, HCONV conversation, HSZ topic);

    // Get() is null afterwards, also when another server was started: that one answers 0 to everything from then on.
    ZRDDEServer();
    ZRDDEServer(const ZRDDEServer&) = delete;
    ZRDDEServer& operator=(const ZRDDEServer&) = delete;
    // Stops.
    virtual ~ZRDDEServer();

    // Reads the setting of the number format and begins the DDE instance. False when DDE can't be begun; Get() is then
    // null.
    bool Start();
    // Destroys the conversations and ends the instance: clients are told. Harmless when Get() is null.
    void Stop();
    // Registers a service name of at most 255 units. A name may be registered twice: the first one decides who may
    // connect, and the last one to give a conversation has it. Only after Start.
    void AddService(const wchar* name, CanConnectFunction canConnect, ConnectFunction connect);

    // Valid between Start and Stop only: no test for null.
    static ZRDDEServer* Get() { return server; }
    static DWORD DDEInstance() { return server->instance; }
    static UINT XlTableFormat() { return server->xlTableFormat; }
    static bool UseLocalNumberFormat() { return server->useLocalNumberFormat; }

    // Conversations open now.
    [[nodiscard]] std::size_t ConversationCount() const;

    // What DDE calls; data and the words after it are not used. 0 for everything while Get() is null.
    static HDDEDATA CALLBACK CallBack(UINT type, UINT format, HCONV conversation, HSZ hsz1, HSZ hsz2, HDDEDATA data,
                                      ULONG_PTR data1, ULONG_PTR data2);

protected:
    bool CanConnect(HSZ service, HSZ topic);
    void Connect(HSZ service, HCONV conversation, HSZ topic);
    void Disconnect(HCONV conversation);
    bool AdviseStart(UINT format, HCONV conversation, HSZ topic, HSZ item);
    void AdviseStop(HCONV conversation, HSZ topic, HSZ item);
    HDDEDATA AdviseRequest(UINT format, HCONV conversation, HSZ topic, HSZ item);

private:
    struct ZRDDEService {
        HSZ name;  // null once the server was stopped
        CanConnectFunction canConnect;
        ConnectFunction connect;
    };

    // Null for an unknown handle, and for an entry that a stop left behind.
    [[nodiscard]] ZRDDEConversation* Find(HCONV conversation) const;

    static ZRDDEServer* server;  // the started one

    DWORD instance = 0;
    UINT xlTableFormat = 0;
    std::list<ZRDDEService> services;                                               // in order of registration
    std::map<HCONV, ZRDDEConversation*, zr::dde::ConversationOrder> conversations;  // Owned.
    bool useLocalNumberFormat = true;
    // Those whose entry another one took: they live on without being reached, until the server goes.
    std::vector<std::unique_ptr<ZRDDEConversation>> overwritten;
};
