#include "Text.h"

#include <array>
#include <cstdio>
#include <utility>
#include <vector>

namespace conformance {

namespace {

template <std::size_t N>
std::string NameOf(UINT value, const std::array<std::pair<UINT, const char*>, N>& names)
{
    for (const auto& [number, name] : names) {
        if (number == value) {
            return name;
        }
    }
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%04X", value);
    return text.data();
}

}  // namespace

std::string Show(std::u16string_view text)
{
    std::string out;
    for (const char16_t unit : text) {
        if (unit >= 0x20 && unit < 0x7F) {
            out += static_cast<char>(unit);
            continue;
        }
        std::array<char, 8> escape{};
        std::snprintf(escape.data(), escape.size(), "\\u%04X", static_cast<unsigned>(unit));
        out += escape.data();
    }
    return out;
}

std::u16string Wide(std::string_view ascii)
{
    return {ascii.begin(), ascii.end()};
}

std::string Show(DWORD instance, HSZ string)
{
    if (string == nullptr) {
        return "-";
    }
    std::array<char16_t, 300> text{};
    const DWORD length = DdeQueryStringW(instance, string, text.data(), static_cast<DWORD>(text.size()), CP_WINUNICODE);
    if (length > 40) {
        return Show(std::u16string_view(text.data(), 8)) + "...(" + std::to_string(length) + ")";
    }
    return Show(std::u16string_view(text.data(), length));
}

std::string Show(HDDEDATA data)
{
    if (data == nullptr) {
        return "-";
    }
    const DWORD size = DdeGetData(data, nullptr, 0, 0);
    std::vector<BYTE> bytes(size);
    DdeGetData(data, bytes.data(), size, 0);
    std::string out = std::to_string(size) + ":";
    for (const BYTE byte : bytes) {
        std::array<char, 4> hex{};
        std::snprintf(hex.data(), hex.size(), " %02X", static_cast<unsigned>(byte));
        out += hex.data();
    }
    return out;
}

std::string TypeName(UINT type)
{
    static constexpr std::array<std::pair<UINT, const char*>, 13> kNames{{
        {XTYP_ADVDATA, "ADVDATA"},
        {XTYP_ADVREQ, "ADVREQ"},
        {XTYP_ADVSTART, "ADVSTART"},
        {XTYP_ADVSTOP, "ADVSTOP"},
        {XTYP_EXECUTE, "EXECUTE"},
        {XTYP_CONNECT, "CONNECT"},
        {XTYP_CONNECT_CONFIRM, "CONNECT_CONFIRM"},
        {XTYP_XACT_COMPLETE, "XACT_COMPLETE"},
        {XTYP_POKE, "POKE"},
        {XTYP_REGISTER, "REGISTER"},
        {XTYP_REQUEST, "REQUEST"},
        {XTYP_DISCONNECT, "DISCONNECT"},
        {XTYP_UNREGISTER, "UNREGISTER"},
    }};
    return NameOf(type, kNames);
}

std::string ErrorName(UINT error)
{
    static constexpr std::array<std::pair<UINT, const char*>, 19> kNames{{
        {DMLERR_NO_ERROR, "NO_ERROR"},
        {DMLERR_ADVACKTIMEOUT, "ADVACKTIMEOUT"},
        {DMLERR_BUSY, "BUSY"},
        {DMLERR_DATAACKTIMEOUT, "DATAACKTIMEOUT"},
        {DMLERR_DLL_NOT_INITIALIZED, "DLL_NOT_INITIALIZED"},
        {DMLERR_DLL_USAGE, "DLL_USAGE"},
        {DMLERR_EXECACKTIMEOUT, "EXECACKTIMEOUT"},
        {DMLERR_INVALIDPARAMETER, "INVALIDPARAMETER"},
        {DMLERR_LOW_MEMORY, "LOW_MEMORY"},
        {DMLERR_MEMORY_ERROR, "MEMORY_ERROR"},
        {DMLERR_NOTPROCESSED, "NOTPROCESSED"},
        {DMLERR_NO_CONV_ESTABLISHED, "NO_CONV_ESTABLISHED"},
        {DMLERR_POKEACKTIMEOUT, "POKEACKTIMEOUT"},
        {DMLERR_POSTMSG_FAILED, "POSTMSG_FAILED"},
        {DMLERR_REENTRANCY, "REENTRANCY"},
        {DMLERR_SERVER_DIED, "SERVER_DIED"},
        {DMLERR_SYS_ERROR, "SYS_ERROR"},
        {DMLERR_UNADVACKTIMEOUT, "UNADVACKTIMEOUT"},
        {DMLERR_UNFOUND_QUEUE_ID, "UNFOUND_QUEUE_ID"},
    }};
    return NameOf(error, kNames);
}

std::string FormatName(UINT format)
{
    // 16 bits; may arrive with its sign extended.
    format &= 0xFFFFU;
    if (format >= 0xC000) {
        std::array<char16_t, 64> name{};
        const int length = GetClipboardFormatNameW(format, name.data(), static_cast<int>(name.size()));
        return Show(std::u16string_view(name.data(), static_cast<std::size_t>(length)));
    }
    static constexpr std::array<std::pair<UINT, const char*>, 3> kNames{
        {{0, "none"}, {CF_TEXT, "CF_TEXT"}, {CF_UNICODETEXT, "CF_UNICODETEXT"}}};
    return NameOf(format, kNames);
}

std::string FlagsName(DWORD flags)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%04X", static_cast<unsigned>(flags));
    return text.data();
}

}  // namespace conformance
