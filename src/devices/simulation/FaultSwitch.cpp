#include "devices/simulation/FaultSwitch.h"

#include <charconv>

namespace zr {
namespace {

constexpr std::array<std::string_view, kFaultKinds> kNames = {"mute", "late", "doubled", "corrupt", "cut"};

std::vector<std::string_view> Words(std::string_view text)
{
    std::vector<std::string_view> words;
    constexpr std::string_view kBlank = " \t\r";
    for (;;) {
        const std::size_t begin = text.find_first_not_of(kBlank);
        if (begin == std::string_view::npos) {
            return words;
        }
        text.remove_prefix(begin);
        const std::size_t end = std::min(text.find_first_of(kBlank), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

template <typename Number>
bool ParseWhole(std::string_view text, Number& number)
{
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
    return code == std::errc() && end == text.data() + text.size();
}

std::optional<FaultKind> KindNamed(std::string_view name)
{
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        if (kNames[i] == name) {
            return static_cast<FaultKind>(i);
        }
    }
    return std::nullopt;
}

}  // namespace

std::string_view FaultName(FaultKind kind)
{
    return kNames[static_cast<std::size_t>(kind)];
}

bool ParseFaultOrder(std::string_view text, FaultOrder& order, std::string& error)
{
    const std::vector<std::string_view> words = Words(text);
    if (words.size() < 2) {
        error = "a fault needs a device (or \"all\") and a kind";
        return false;
    }
    if (words[1] == "none") {
        if (words.size() > 2) {
            error = "\"none\" takes nothing behind it";
            return false;
        }
        order = {std::string(words[0]), std::nullopt};
        return true;
    }
    const auto kind = KindNamed(words[1]);
    if (!kind) {
        error = "unknown fault \"" + std::string(words[1]) + "\": mute, late, doubled, corrupt, cut and none are known";
        return false;
    }
    Fault fault;
    fault.kind = *kind;
    std::size_t next = 2;
    if (*kind == FaultKind::Late) {
        fault.delay = kDefaultDelay;
        if (next < words.size()) {
            long milliseconds = 0;
            if (!ParseWhole(words[next], milliseconds) || milliseconds < 1 || milliseconds > kMaxDelay.count()) {
                error = "a delay is 1 to " + std::to_string(kMaxDelay.count()) + " milliseconds";
                return false;
            }
            fault.delay = std::chrono::milliseconds(milliseconds);
            ++next;
        }
    }
    if (next < words.size()) {
        const bool read = ParseWhole(words[next], fault.probability);
        if (!read || !(fault.probability > 0.0 && fault.probability <= 1.0)) {
            error = "a probability is above 0 and at most 1";
            return false;
        }
        ++next;
    }
    if (next < words.size()) {
        error = "\"" + std::string(words[next]) + "\" is too much";
        return false;
    }
    order = {std::string(words[0]), fault};
    return true;
}

bool FaultSwitch::Strikes(FaultKind kind)
{
    const auto& fault = m_faults[static_cast<std::size_t>(kind)];
    if (!fault) {
        return false;
    }
    // The upper 53 bits as a number below 1: the distributions of the standard library differ between systems.
    const double draw = static_cast<double>(m_random() >> 11u) * 0x1.0p-53;
    return draw < fault->probability;
}

std::size_t FaultSwitch::Below(std::size_t bound)
{
    return static_cast<std::size_t>(m_random() % bound);
}

void FaultSwitch::TurnBits(std::vector<std::uint8_t>& bytes)
{
    // The checksum finds any one, two or three wrong bits in a frame of this length, so that none of these frames
    // can be taken for a good one (Koopman and Chakravarty, "Cyclic Redundancy Code (CRC) Polynomial Selection For
    // Embedded Networks", DSN 2004: Hamming distance 4).
    const std::size_t wanted = 1 + Below(3);
    std::array<std::size_t, 3> turned = {};
    for (std::size_t count = 0; count < wanted;) {
        const std::size_t bit = Below(bytes.size() * 8);
        bool isNew = true;
        for (std::size_t i = 0; i < count; ++i) {
            isNew = isNew && turned[i] != bit;
        }
        if (isNew) {
            turned[count++] = bit;
            bytes[bit / 8] = static_cast<std::uint8_t>(bytes[bit / 8] ^ (1u << (bit % 8)));
        }
    }
}

std::vector<Delivery> FaultSwitch::Apply(std::span<const std::uint8_t> frame, std::string& fate)
{
    fate.clear();
    std::array<bool, kFaultKinds> strikes = {};
    for (std::size_t i = static_cast<std::size_t>(FaultKind::Late); i < kFaultKinds; ++i) {
        strikes[i] = Strikes(static_cast<FaultKind>(i));
        if (strikes[i]) {
            fate += (fate.empty() ? "" : "+") + std::string(kNames[i]);
        }
    }
    if (fate.empty()) {
        fate = "sent";
    }
    const auto struck = [&strikes](FaultKind kind) { return strikes[static_cast<std::size_t>(kind)]; };
    Delivery delivery{{}, {frame.begin(), frame.end()}};
    if (struck(FaultKind::Corrupt)) {
        TurnBits(delivery.bytes);
    }
    if (struck(FaultKind::Cut)) {
        delivery.bytes.resize(1 + Below(delivery.bytes.size() - 1));
    }
    if (struck(FaultKind::Late)) {
        delivery.delay = m_faults[static_cast<std::size_t>(FaultKind::Late)]->delay;
    }
    std::vector<Delivery> deliveries = {delivery};
    if (struck(FaultKind::Doubled)) {
        deliveries.push_back(delivery);
    }
    return deliveries;
}

}  // namespace zr
