// Dynamic data exchange: the DDEML operations under their own names, over 16-bit text.
//
// On Windows these are the system's; elsewhere src/platform/ddeml/posix keeps their semantics between the processes of
// one user. One source serves both: handles are opaque pointers that hold a number (32 bits elsewhere, ordered as
// unsigned), and null is "none". Texts are UTF-16, zero-terminated; lengths are in 16-bit units, data sizes in bytes,
// times in milliseconds.
//
// Threads: an instance belongs to the thread that initialised it. All its operations are called there, and its callback
// runs there, from Dispatch() or from an operation that waits. Another thread's instance counts as unknown.
#pragma once

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <cstddef>

// clang-format off
#include <windows.h>
#include <ddeml.h>
// clang-format on

// The system's 16-bit character is wchar_t; these take this library's. See the other branch for what they do.
inline HSZ DdeCreateStringHandleW(DWORD instance, const char16_t* text, int codePage)
{
    return DdeCreateStringHandleW(instance, reinterpret_cast<const wchar_t*>(text), codePage);
}
inline DWORD DdeQueryStringW(DWORD instance, HSZ string, char16_t* buffer, DWORD limit, int codePage)
{
    return DdeQueryStringW(instance, string, reinterpret_cast<wchar_t*>(buffer), limit, codePage);
}
// For the length alone, with a plain nullptr.
inline DWORD DdeQueryStringW(DWORD instance, HSZ string, std::nullptr_t, DWORD limit, int codePage)
{
    return DdeQueryStringW(instance, string, static_cast<wchar_t*>(nullptr), limit, codePage);
}
inline UINT RegisterClipboardFormatW(const char16_t* name)
{
    return RegisterClipboardFormatW(reinterpret_cast<const wchar_t*>(name));
}
inline int GetClipboardFormatNameW(UINT format, char16_t* buffer, int limit)
{
    return GetClipboardFormatNameW(format, reinterpret_cast<wchar_t*>(buffer), limit);
}

#else

#include <cstdint>

#define CALLBACK

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using UINT = std::uint32_t;
using DWORD = std::uint32_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;

// A text counted by an instance; a conversation; data with their format.
using HSZ = struct HSZ__*;
using HCONV = struct HCONV__*;
using HDDEDATA = struct HDDEDATA__*;

// The callback of an instance. What the arguments hold is told with each XTYP_ constant below; those not named are 0.
// Its result is read by the class of the type: BOOL (0 or 1), DATA (a handle or 0), FLAGS (DDE_F...), none.
using PFNCALLBACK = HDDEDATA(CALLBACK*)(UINT type, UINT format, HCONV conversation, HSZ hsz1, HSZ hsz2, HDDEDATA data,
                                        ULONG_PTR data1, ULONG_PTR data2);

inline constexpr int CP_WINUNICODE = 1200;

inline constexpr UINT CF_TEXT = 1;
inline constexpr UINT CF_UNICODETEXT = 13;

// What an acknowledgement says.
inline constexpr UINT DDE_FACK = 0x8000;
inline constexpr UINT DDE_FBUSY = 0x4000;
inline constexpr UINT DDE_FNOTPROCESSED = 0x0000;

// Flags of a transaction type: a warm link; each update waits for the client's acknowledgement.
inline constexpr UINT XTYPF_NOBLOCK = 0x0002;
inline constexpr UINT XTYPF_NODATA = 0x0004;
inline constexpr UINT XTYPF_ACKREQ = 0x0008;

inline constexpr UINT XCLASS_MASK = 0xFC00;
inline constexpr UINT XCLASS_BOOL = 0x1000;
inline constexpr UINT XCLASS_DATA = 0x2000;
inline constexpr UINT XCLASS_FLAGS = 0x4000;
inline constexpr UINT XCLASS_NOTIFICATION = 0x8000;

// Client: new data of a link. format, conversation, hsz1 topic, hsz2 item, data (0 on a warm link; ends with the
// callback). Flags: DDE_FACK, DDE_FBUSY or DDE_FNOTPROCESSED.
inline constexpr UINT XTYP_ADVDATA = 0x4010;
// Server: the data of a link are wanted. format, conversation, hsz1 topic, hsz2 item, low word of data1: how many more
// such calls follow for the same topic, item and format within this post, or CADV_LATEACK.
inline constexpr UINT XTYP_ADVREQ = 0x2022;
// Server: a client wants a link. format, conversation, hsz1 topic, hsz2 item. Both handles live as long as the link.
inline constexpr UINT XTYP_ADVSTART = 0x1030;
// Server: a client ended a link. format, conversation, hsz1 topic, hsz2 item.
inline constexpr UINT XTYP_ADVSTOP = 0x8040;
// Server: a command. conversation, hsz1 topic, data. Flags.
inline constexpr UINT XTYP_EXECUTE = 0x4050;
// Server: a client wants a conversation. hsz1 topic, hsz2 service, data2 1 when the client is this instance itself.
inline constexpr UINT XTYP_CONNECT = 0x1062;
// Server: the conversation stands. conversation, hsz1 topic, hsz2 service, data2 as above. The handles live as long as
// the conversation.
inline constexpr UINT XTYP_CONNECT_CONFIRM = 0x8072;
// Client: a transaction begun with TIMEOUT_ASYNC has ended. format, conversation, hsz1 topic, hsz2 item, data (of a
// request, otherwise 1 for success; 0 for failure; ends with the callback), data1 the transaction, data2 its DDE_F....
inline constexpr UINT XTYP_XACT_COMPLETE = 0x8080;
// Server: data for an item. format, conversation, hsz1 topic, hsz2 item, data. Flags.
inline constexpr UINT XTYP_POKE = 0x4090;
// All instances of the user, the registering one too: a service was registered. hsz1 name, hsz2 the name of this one
// server of it.
inline constexpr UINT XTYP_REGISTER = 0x80A2;
// Server: data of an item once. format, conversation, hsz1 topic, hsz2 item.
inline constexpr UINT XTYP_REQUEST = 0x20B0;
// Both: the partner ended the conversation or died. conversation, data2 1 when the partner is this instance itself.
// The conversation's handle is invalid after the callback.
inline constexpr UINT XTYP_DISCONNECT = 0x80C2;
// As XTYP_REGISTER, when the name is gone.
inline constexpr UINT XTYP_UNREGISTER = 0x80D2;

inline constexpr DWORD CADV_LATEACK = 0xFFFF;
inline constexpr DWORD TIMEOUT_ASYNC = 0xFFFFFFFF;

// Flags of DdeInitializeW.
inline constexpr DWORD APPCMD_CLIENTONLY = 0x00000010;
inline constexpr DWORD CBF_FAIL_SELFCONNECTIONS = 0x00001000;
inline constexpr DWORD CBF_FAIL_CONNECTIONS = 0x00002000;
inline constexpr DWORD CBF_FAIL_ADVISES = 0x00004000;
inline constexpr DWORD CBF_FAIL_EXECUTES = 0x00008000;
inline constexpr DWORD CBF_FAIL_POKES = 0x00010000;
inline constexpr DWORD CBF_FAIL_REQUESTS = 0x00020000;
inline constexpr DWORD CBF_FAIL_ALLSVRXACTIONS = 0x0003F000;
inline constexpr DWORD CBF_SKIP_CONNECT_CONFIRMS = 0x00040000;
inline constexpr DWORD CBF_SKIP_REGISTRATIONS = 0x00080000;
inline constexpr DWORD CBF_SKIP_UNREGISTRATIONS = 0x00100000;
inline constexpr DWORD CBF_SKIP_DISCONNECTS = 0x00200000;
inline constexpr DWORD CBF_SKIP_ALLNOTIFICATIONS = 0x003C0000;

inline constexpr UINT DNS_REGISTER = 0x0001;
inline constexpr UINT DNS_UNREGISTER = 0x0002;

inline constexpr UINT EC_ENABLEALL = 0;
inline constexpr UINT EC_QUERYWAITING = 2;
inline constexpr UINT EC_DISABLE = 0x0008;
inline constexpr UINT EC_ENABLEONE = 0x0080;

// The data stay the application's: a reply or a transaction does not free them.
inline constexpr UINT HDATA_APPOWNED = 0x0001;

inline constexpr UINT DMLERR_NO_ERROR = 0;
inline constexpr UINT DMLERR_ADVACKTIMEOUT = 0x4000;
inline constexpr UINT DMLERR_BUSY = 0x4001;
inline constexpr UINT DMLERR_DATAACKTIMEOUT = 0x4002;
inline constexpr UINT DMLERR_DLL_NOT_INITIALIZED = 0x4003;
inline constexpr UINT DMLERR_DLL_USAGE = 0x4004;
inline constexpr UINT DMLERR_EXECACKTIMEOUT = 0x4005;
inline constexpr UINT DMLERR_INVALIDPARAMETER = 0x4006;
inline constexpr UINT DMLERR_LOW_MEMORY = 0x4007;
inline constexpr UINT DMLERR_MEMORY_ERROR = 0x4008;
inline constexpr UINT DMLERR_NOTPROCESSED = 0x4009;
inline constexpr UINT DMLERR_NO_CONV_ESTABLISHED = 0x400A;
inline constexpr UINT DMLERR_POKEACKTIMEOUT = 0x400B;
inline constexpr UINT DMLERR_POSTMSG_FAILED = 0x400C;
inline constexpr UINT DMLERR_REENTRANCY = 0x400D;
inline constexpr UINT DMLERR_SERVER_DIED = 0x400E;
inline constexpr UINT DMLERR_SYS_ERROR = 0x400F;
inline constexpr UINT DMLERR_UNADVACKTIMEOUT = 0x4010;
inline constexpr UINT DMLERR_UNFOUND_QUEUE_ID = 0x4011;

// Opaque here: there is no context to give. Pass null.
struct CONVCONTEXT;

// Begins an instance on the calling thread; *instance must be 0 (or an instance, to change its flags). flags: 0, or
// APPCMD_ and CBF_ flags; reserved is 0. Returns DMLERR_NO_ERROR, DMLERR_INVALIDPARAMETER or DMLERR_SYS_ERROR.
UINT DdeInitializeW(DWORD* instance, PFNCALLBACK callback, DWORD flags, DWORD reserved);
// Ends the conversations, unregisters the names and frees all handles of the instance. The partners are told; this
// instance's callback is not called. 0 for an unknown instance.
BOOL DdeUninitialize(DWORD instance);
// The error of the last operation of the instance that failed, and clears it.
// DMLERR_INVALIDPARAMETER for an unknown instance.
UINT DdeGetLastError(DWORD instance);

// The handle of a text of 1 to 255 units; texts that differ in case alone share one, which keeps the first spelling.
// Counted: each call is to be paired with a DdeFreeStringHandle. Null on failure (DMLERR_INVALIDPARAMETER).
// The code page is CP_WINUNICODE.
HSZ DdeCreateStringHandleW(DWORD instance, const char16_t* text, int codePage);
// Takes one count back; the last one frees the handle. 0 when the instance does not hold it.
BOOL DdeFreeStringHandle(DWORD instance, HSZ string);
// Adds one count, so that a handle received in a callback outlives it. 0 when the handle is unknown.
BOOL DdeKeepStringHandle(DWORD instance, HSZ string);
// Negative, 0 or positive by the numbers of the handles; 0 means the same text without regard to case.
int DdeCmpStringHandles(HSZ left, HSZ right);
// Copies at most limit - 1 units and a zero; returns the units copied. With a null buffer the length of the text.
// 0 for an unknown handle.
DWORD DdeQueryStringW(DWORD instance, HSZ string, char16_t* buffer, DWORD limit, int codePage);

// Registers (DNS_REGISTER) or unregisters (DNS_UNREGISTER; null: all) a service name; reserved is null. Other
// instances of the user are told by XTYP_REGISTER and XTYP_UNREGISTER. Not null on success; null with
// DMLERR_INVALIDPARAMETER, DMLERR_DLL_USAGE (a client only) or DMLERR_SYS_ERROR.
HDDEDATA DdeNameService(DWORD instance, HSZ name, HSZ reserved, UINT command);

// Opens a conversation with the first server of that name that accepts the topic. Blocks up to 5 s a server and may
// call back before returning. Null with DMLERR_NO_CONV_ESTABLISHED or DMLERR_INVALIDPARAMETER.
HCONV DdeConnect(DWORD instance, HSZ service, HSZ topic, CONVCONTEXT* context);
// Ends a conversation from either side; the partner gets XTYP_DISCONNECT, the caller does not. 0 for an unknown handle.
BOOL DdeDisconnect(HCONV conversation);

// One transaction of a client: XTYP_ADVSTART (with XTYPF_NODATA, XTYPF_ACKREQ), XTYP_ADVSTOP, XTYP_REQUEST, XTYP_POKE,
// XTYP_EXECUTE. data and size serve the last two; with size 0xFFFFFFFF data is an HDDEDATA.
// timeout in ms: waits for the reply that long, calling back meanwhile; TIMEOUT_ASYNC returns at once with the
// transaction's number in *result, and XTYP_XACT_COMPLETE follows.
// Not null on success: for XTYP_REQUEST data that the caller frees. *result (may be null) holds the DDE_F... flags.
// Null with DMLERR_NOTPROCESSED or DMLERR_BUSY (refused), DMLERR_ADVACKTIMEOUT and its kind (time is over; a late
// reply is dropped), DMLERR_SERVER_DIED, DMLERR_REENTRANCY (one is under way on this instance), DMLERR_MEMORY_ERROR
// (data of more than 1 MiB), DMLERR_INVALIDPARAMETER.
HDDEDATA DdeClientTransaction(BYTE* data, DWORD size, HCONV conversation, HSZ item, UINT format, UINT type,
                              DWORD timeout, DWORD* result);
// Forgets an asynchronous transaction (0: all of the conversation): no XTYP_XACT_COMPLETE. 0 when it is unknown.
BOOL DdeAbandonTransaction(DWORD instance, HCONV conversation, DWORD transaction);

// Calls back XTYP_ADVREQ at once for each hot link on topic and item (null: any) and sends what it returns; a warm link
// is told without data. Never waits for a client: a link whose client does not read keeps the newest value alone.
// 0 for an unknown instance.
BOOL DdePostAdvise(DWORD instance, HSZ topic, HSZ item);

// EC_DISABLE holds back the callbacks that may wait (not those with XTYPF_NOBLOCK) of a conversation (null: of all);
// EC_ENABLEALL lets them run, EC_ENABLEONE the next one alone. They run from Dispatch(). EC_QUERYWAITING: whether one
// waits. 0 on failure (DMLERR_INVALIDPARAMETER, DMLERR_REENTRANCY within a callback).
BOOL DdeEnableCallback(DWORD instance, HCONV conversation, UINT command);

// Copies size bytes that begin at offset in source (null: zeros). flags 0: given over with a reply or a transaction;
// HDATA_APPOWNED: freed by the caller alone. Null on failure (DMLERR_MEMORY_ERROR above 1 MiB).
HDDEDATA DdeCreateDataHandle(DWORD instance, BYTE* source, DWORD size, DWORD offset, HSZ item, UINT format, UINT flags);
// The bytes, valid until DdeUnaccessData or the end of the handle. Null when the handle is unknown. size may be null.
BYTE* DdeAccessData(HDDEDATA data, DWORD* size);
BOOL DdeUnaccessData(HDDEDATA data);
// Copies at most limit bytes from offset; returns the bytes copied. With a null target the size of the data.
DWORD DdeGetData(HDDEDATA data, BYTE* target, DWORD limit, DWORD offset);
// 0 when the handle is unknown.
BOOL DdeFreeDataHandle(HDDEDATA data);

// The number of a clipboard format by its name, without regard to case; 0xC000 to 0xFFFF. 0 for a null, empty or too
// long name (255 units). Any thread.
UINT RegisterClipboardFormatW(const char16_t* name);
// The name of a registered format, cut to limit - 1 units and a zero; returns the units copied, 0 when the number is
// not a registered one. Any thread.
int GetClipboardFormatNameW(UINT format, char16_t* buffer, int limit);

#endif

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace zr::ddeml {

// Waits up to timeout for something to handle on the calling thread and runs the callbacks that are due. Returns true
// when anything was handled. On Windows pumps the thread's messages. Do not call it within a callback.
bool Dispatch(std::chrono::milliseconds timeout);

// Readable whenever Dispatch(0) of the calling thread has something to do: for an event loop of another library. Owned
// here; ends with the thread's last instance. -1 on Windows, where any message loop serves, and when no instance was
// begun.
int PollDescriptor();

// What an instance has done since it began, as a server. All 0 on Windows, where the system does not tell, and for an
// unknown instance.
struct Statistics {
    std::uint64_t conversations = 0;  // open now, of both sides
    std::uint64_t links = 0;          // open now, of this server
    std::uint64_t posts = 0;          // calls of DdePostAdvise
    std::uint64_t updates = 0;        // updates of links that were made by them
    std::uint64_t merged = 0;         // updates that a newer one replaced before the client took them
    std::uint64_t strings = 0;        // string handles held now
    std::uint64_t data = 0;           // data handles held now
};
Statistics GetStatistics(DWORD instance);

// How many links hold an update that their client has not made room for; 0 on Windows. A server that posts only while
// this is 0 loses no update.
std::size_t PendingUpdates(DWORD instance);

// The names that servers of this user have registered now, each once, sorted. Empty on Windows, where the system tells
// of a service only when it is registered.
std::vector<std::u16string> RegisteredServices();

// How a callback answers a transaction of class BOOL or FLAGS.
inline HDDEDATA Reply(std::uintptr_t value)
{
    return reinterpret_cast<HDDEDATA>(value);
}

}  // namespace zr::ddeml
