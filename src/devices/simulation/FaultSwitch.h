// Faults that a simulated device shows on the wire.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

enum class FaultKind {
    Mute,     // the device doesn't hear the request
    Late,     // the reply comes after a delay
    Doubled,  // the reply comes twice
    Corrupt,  // one to three bits of the reply are turned over, its checksum included
    Cut,      // the reply ends early
};
inline constexpr std::size_t kFaultKinds = 5;

struct Fault {
    FaultKind kind = FaultKind::Mute;
    double probability = 1.0;            // of each reply, above 0 to 1
    std::chrono::milliseconds delay{0};  // of Late, 1 to kMaxDelay
};
inline constexpr std::chrono::milliseconds kDefaultDelay{1500};
inline constexpr std::chrono::milliseconds kMaxDelay{600'000};

// What was asked for by a person or a file.
struct FaultOrder {
    std::string target;          // name of a device, or "all"
    std::optional<Fault> fault;  // empty: "none", every fault goes
};

// Reads "TARGET mute|doubled|corrupt|cut [PROBABILITY]", "TARGET late [MILLISECONDS [PROBABILITY]]" or
// "TARGET none". False with a reason in error, one line; order is then unchanged.
bool ParseFaultOrder(std::string_view text, FaultOrder& order, std::string& error);
// "mute", "late" and so on.
std::string_view FaultName(FaultKind kind);

// A frame on its way to the wire.
struct Delivery {
    std::chrono::milliseconds delay{0};
    std::vector<std::uint8_t> bytes;
};

// The faults that are on at one device, each drawn for by itself. The same seed and the same frames give the same
// faults. Not thread-safe.
class FaultSwitch {
public:
    explicit FaultSwitch(std::uint64_t seed) : m_random(seed) {}

    // Switches one on, in the place of an earlier one of its kind.
    void Set(const Fault& fault) { m_faults[static_cast<std::size_t>(fault.kind)] = fault; }
    void Clear() { m_faults = {}; }
    [[nodiscard]] bool IsOn(FaultKind kind) const { return m_faults[static_cast<std::size_t>(kind)].has_value(); }

    // Draws whether the device misses this request.
    [[nodiscard]] bool MissesRequest() { return Strikes(FaultKind::Mute); }
    // What leaves the device instead of a whole frame of at least two bytes: one or two deliveries. Sets fate to the
    // names of the faults that struck, joined by "+", or to "sent" if none did.
    std::vector<Delivery> Apply(std::span<const std::uint8_t> frame, std::string& fate);

private:
    [[nodiscard]] bool Strikes(FaultKind kind);
    [[nodiscard]] std::size_t Below(std::size_t bound);
    void TurnBits(std::vector<std::uint8_t>& bytes);

    std::array<std::optional<Fault>, kFaultKinds> m_faults;
    std::mt19937_64 m_random;
};

}  // namespace zr
