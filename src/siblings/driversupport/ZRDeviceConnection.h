// A way to devices: a serial port, or a UDP address.
#pragma once

#include "siblings/driversupport/ZRDeviceTransaction.h"
#include "siblings/tools/XmlDocument.h"
#include "siblings/tools/ZRBasicString.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace zr {
class IoContext;

// What a connection has done since it was made. Read on any thread.
struct ConnectionCounters {
    std::uint64_t transactions = 0;   // requests that were sent
    std::uint64_t timeouts = 0;       // of them, without an acceptable reply in time
    std::uint64_t droppedFrames = 0;  // late, short, foreign, doubled or damaged
};
}  // namespace zr

// Carries out one transaction at a time. Open is called by whoever starts the service, while nothing of it runs; the
// other operations on the thread of its I/O context only. None of them blocks.
class ZRDeviceConnection {
public:
    ZRDeviceConnection() = default;
    ZRDeviceConnection(const ZRDeviceConnection&) = delete;
    ZRDeviceConnection& operator=(const ZRDeviceConnection&) = delete;

    // Unique among the connections; its work group takes it.
    ZRBasicString name;

    // The virtual operations stand in the order of their slots.
    /* 0 */ virtual ~ZRDeviceConnection() = default;
    // Open, and no transaction under way.
    /* 1 */ virtual bool CanDoTransaction() const = 0;
    // Sends the request and returns; the transaction's outcome is set and OnDone called later, never before this
    // returns. A transaction already under way is a caller's error.
    /* 2 */ virtual void DoTransaction(ZRDeviceTransaction& transaction) = 0;
    // Begins to open and to open again at growing intervals when the line is lost. False if it can't even begin.
    /* 3 */ virtual bool Open() = 0;
    // Ends everything; a transaction under way ends as Cancelled, with its OnDone, before this returns.
    /* 4 */ virtual void Close() = 0;
    // Reads the `Connection` node; false if a value can't be used.
    /* 5 */ virtual bool LoadCfg(const XmlNode& node) = 0;
    // Whether the line itself has outputs.
    /* 6 */ virtual bool CanSetOutput() const = 0;
    /* 7 */ virtual void SetOutput(int first, int second, int third, int fourth) = 0;

    // Called on the I/O thread after each transaction. Set by the work group.
    std::function<void(ZRDeviceTransaction&)> OnDone;
    // Called on the I/O thread when CanDoTransaction may have become true. Set by the work group.
    std::function<void()> OnReady;
    // Called on the I/O thread when the line is gone, after the OnDone of a transaction that broke with it. Set by the
    // work group.
    std::function<void()> OnLost;
    // Where this connection runs; set by the work group before Open. Not owned.
    zr::IoContext* context = nullptr;

    // Until when that unit of the line is to be left alone, after an answer that may still come; in the past when it
    // may be asked. I/O thread only.
    [[nodiscard]] virtual std::chrono::steady_clock::time_point UnitFreeAt(std::uint8_t unit) const;
    // Any thread.
    [[nodiscard]] virtual zr::ConnectionCounters Counters() const { return {}; }
    // Why LoadCfg returned false, for the host to show; empty otherwise.
    [[nodiscard]] ZRBasicString LoadError() const { return m_loadError; }

    // Destroys a connection whose address stays in a list, and leaves a nameless, inert connection in its place, so
    // that whoever follows the stale entry reads something harmless; deleting that one frees the storage. Null is
    // harmless, and so is burying twice.
    static void Bury(ZRDeviceConnection* connection);
    // Frees without a size: what lies in the storage may be smaller than what it was made for, see Bury.
    static void operator delete(void* storage);
    static void* operator new(std::size_t size);

protected:
    ZRBasicString m_loadError;
};
