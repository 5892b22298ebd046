// What serial and network connections have in common: one request at a time, its deadline, and doubt about all that
// is received.
#pragma once

#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/driversupport/IoContext.h"
#include "siblings/driversupport/IoTimer.h"
#include "siblings/driversupport/LongSilence.h"
#include "siblings/driversupport/QuietLine.h"
#include "siblings/driversupport/Wire.h"
#include "siblings/driversupport/ZRDeviceConnection.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace zr {

// Opens its wire, opens it again at growing intervals when it is lost, and carries out transactions over it.
//
// Nothing is taken for a reply that the transaction doesn't accept. Where replies don't name their request:
//  - a request without an answer is followed by a rest of the line and a longer one of the unit, see QuietLine;
//  - what was received before a request is thrown away before it is sent;
//  - a frame equal to the last reply that comes for another request, or sooner than a reply can, is held back: when
//    another one follows, it was that reply doubled; when none does, the request is sent once more, and its answer
//    counts. Where frames were seen twice, requests are kept apart for a while.
class LineConnection : public ZRDeviceConnection, private Wire::Listener {
public:
    LineConnection();
    ~LineConnection() override;

    bool CanDoTransaction() const override { return m_open && !m_quiet && m_current == nullptr; }
    void DoTransaction(ZRDeviceTransaction& transaction) override;
    bool Open() override;
    void Close() override;
    bool CanSetOutput() const override { return false; }
    void SetOutput(int first, int second, int third, int fourth) override;
    [[nodiscard]] std::chrono::steady_clock::time_point UnitFreeAt(std::uint8_t unit) const override;
    [[nodiscard]] ConnectionCounters Counters() const override;

    [[nodiscard]] std::chrono::milliseconds TimeOut() const { return m_timeOut; }

protected:
    using Clock = std::chrono::steady_clock;
    enum class Framing { Datagram, Stream };

    // Null if it can't be made. I/O thread only.
    virtual std::unique_ptr<Wire> MakeWire(IoContext& wireContext, Wire::Listener& listener) = 0;
    // Reads `Name` and `TimeOut`; false, with LoadError, if a value can't be used.
    bool LoadCommon(const XmlNode& node);
    // A whole number in decimal digits within limits, both inclusive; false, with LoadError, otherwise.
    bool LoadNumber(const XmlNode& node, const wchar* value, const wchar* fallback, int least, int most, int& number);

    Framing m_framing = Framing::Datagram;
    // How long one byte takes, and the pause that devices need between frames; both 0 on a network.
    Clock::duration m_byteTime{};
    Clock::duration m_pause{};

private:
    void WireOpened() override;
    void WireFailed(Wire::Failure failure, const std::string& reason) override;
    void WireReceived(std::span<const std::uint8_t> bytes) override;
    void WireForeign() override;

    void BeginOpen();
    void SendRequest();
    void AskAgain();
    void OnTime();
    void Stray(std::span<const std::uint8_t> bytes);
    void Judge(std::span<const std::uint8_t> bytes);
    void AwaitRest(std::span<const std::uint8_t> beginning);
    void Accept(std::span<const std::uint8_t> frame, bool moreFollows);
    void Deliver(std::span<const std::uint8_t> frame, Clock::time_point receivedAt);
    void Complete(ZRDeviceTransaction::Outcome outcome, Clock::time_point now);
    void CountDropped(std::size_t frames);
    [[nodiscard]] bool IsLastFrame(std::span<const std::uint8_t> frame) const;
    // Whether the request under way is the one that the last reply answered.
    [[nodiscard]] bool IsLastRequest() const;
    void PostLater(void (LineConnection::*operation)());
    void FailWithoutLine();

    struct AtomicCounters {
        std::atomic<std::uint64_t> transactions{0};
        std::atomic<std::uint64_t> timeouts{0};
        std::atomic<std::uint64_t> droppedFrames{0};
    };
    AtomicCounters m_counters;  // written on the I/O thread

    std::chrono::milliseconds m_timeOut{1000};

    // Below: I/O thread only, while open.
    ServiceTimes m_times;
    std::unique_ptr<Wire> m_wire;
    std::optional<IoTimer> m_timer;
    std::optional<QuietLine> m_line;
    std::optional<LongSilence> m_silence;  // while open
    std::shared_ptr<bool> m_life;          // what was posted and finds it gone does nothing
    bool m_open = false;
    bool m_quiet = false;
    bool m_lossTold = false;
    bool m_foreignTold = false;
    Clock::duration m_reopenAfter{};

    ZRDeviceTransaction* m_current = nullptr;
    Clock::time_point m_sentAt;
    Clock::time_point m_deadline;
    std::vector<std::uint8_t> m_beginning;  // of a frame that isn't whole yet
    bool m_held = false;                    // m_last came again and may be the reply
    Clock::time_point m_heldAt;
    std::optional<Clock::time_point> m_askedFirstAt;  // the request under way is the second asking
    std::array<std::uint8_t, ZRDeviceTransaction::kMaxFrame> m_last{};
    std::size_t m_lastSize = 0;
    std::array<std::uint8_t, ZRDeviceTransaction::kMaxFrame> m_lastRequest{};
    std::size_t m_lastRequestSize = 0;
    Clock::duration m_usual{};     // mean time from request to reply
    Clock::duration m_quickest{};  // the shortest one of late: an outlier among the slow ones doesn't touch it
    Clock::time_point m_waryUntil = Clock::time_point::min();
};

}  // namespace zr
