// One conversation of a DDE client, as the server sees it.
#pragma once

#include "platform/Ddeml.h"

// Answers the advise transactions of one conversation. Owned by the server from the confirmed connect to the
// disconnect, or to the server's stop. DDE thread only: the one that started the server.
class ZRDDEConversation {
public:
    explicit ZRDDEConversation(HCONV handle) : conversation(handle) {}
    ZRDDEConversation(const ZRDDEConversation&) = delete;
    ZRDDEConversation& operator=(const ZRDDEConversation&) = delete;

    // The virtual operations stand in the order of their slots.
    virtual ~ZRDDEConversation() = default;
    // A client wants a link; false refuses it.
    virtual bool AdviseStart(UINT format, HSZ topic, HSZ item) = 0;
    // A client ended a link.
    virtual void AdviseStop(HSZ topic, HSZ item) = 0;
    // The data of a link in that format, given over to the caller; null for none. May be called while DdePostAdvise
    // runs.
    virtual HDDEDATA AdviseRequest(UINT format, HSZ topic, HSZ item) = 0;

protected:
    HCONV conversation;
};
