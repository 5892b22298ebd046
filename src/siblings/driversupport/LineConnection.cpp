#include "siblings/driversupport/LineConnection.h"

#include "siblings/driversupport/ServiceTimes.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <utility>

namespace zr {

using Outcome = ZRDeviceTransaction::Outcome;
using Kind = ZRDeviceTransaction::Verdict::Kind;

namespace {

// After a frame was seen twice, requests are kept that far apart for so long.
constexpr std::chrono::milliseconds kWaryPause{20};
constexpr std::chrono::seconds kWary{60};
// How much of the slowest reply seen a frame is held back for the one that may follow it.
constexpr std::chrono::milliseconds kPatience{50};
// A frame that has begun may stand still for so long, and 30 bytes more.
constexpr std::chrono::milliseconds kGap{20};
constexpr int kGapBytes = 30;

void Increase(std::atomic<std::uint64_t>& counter, std::uint64_t by)
{
    // There is one writer, so that this needs no exchange.
    counter.store(counter.load(std::memory_order_relaxed) + by, std::memory_order_relaxed);
}

}  // namespace

LineConnection::LineConnection() = default;

LineConnection::~LineConnection() = default;

// Opening and losing the line ---------------------------------------------------------------------------------------

bool LineConnection::Open()
{
    if (context == nullptr || m_life != nullptr) {
        return false;
    }
    m_times = CurrentServiceTimes();
    m_line.emplace(m_timeOut, m_times.leastQuiet);
    m_reopenAfter = m_times.firstReopen;
    m_lossTold = false;
    m_quiet = false;
    m_lastSize = 0;
    m_life = std::make_shared<bool>(true);
    m_timer.emplace(*context, [this] { OnTime(); });
    PostLater(&LineConnection::BeginOpen);
    return true;
}

void LineConnection::Close()
{
    m_life.reset();
    m_wire.reset();
    m_timer.reset();
    m_open = false;
    if (m_current != nullptr) {
        Complete(Outcome::Cancelled, Clock::now());
    }
}

void LineConnection::PostLater(void (LineConnection::*operation)())
{
    context->Post([this, operation, life = std::weak_ptr<bool>(m_life)] {
        if (!life.expired()) {
            (this->*operation)();
        }
    });
}

void LineConnection::BeginOpen()
{
    m_foreignTold = false;
    m_wire = MakeWire(*context, *this);
    m_wire->Open();
}

void LineConnection::WireOpened()
{
    m_open = true;
    m_silence.emplace(m_times.longSilence, Clock::now());
    m_quiet = m_line->LineFreeAt() > Clock::now();  // the line may have been lost while it rested
    if (m_quiet) {
        m_timer->Set(m_line->LineFreeAt());
    }
    if (std::exchange(m_lossTold, false)) {
        PostNotice(DeviceWarning::ConnectionOpened, name);
    }
    if (OnReady) {
        OnReady();
    }
}

void LineConnection::WireFailed(Wire::Failure failure, const std::string& reason)
{
    m_open = false;
    m_wire.reset();
    if (!std::exchange(m_lossTold, true)) {
        PostNotice(
            failure == Wire::Failure::AddressUnknown ? DeviceWarning::AddressUnknown : DeviceWarning::ConnectionLost,
            name, Utf8ToUtf16(reason));
    }
    m_timer->Set(Clock::now() + m_reopenAfter);
    m_reopenAfter = std::min<Clock::duration>(2 * m_reopenAfter, m_times.longestReopen);
    if (m_current != nullptr) {
        Complete(Outcome::NoLine, Clock::now());
    }
    if (OnLost) {
        OnLost();
    }
}

// Requests ----------------------------------------------------------------------------------------------------------

void LineConnection::DoTransaction(ZRDeviceTransaction& transaction)
{
    transaction.outcome = Outcome::Pending;
    transaction.replySize = 0;
    transaction.droppedFrames = 0;
    transaction.took = {};
    m_current = &transaction;
    if (!m_open) {
        PostLater(&LineConnection::FailWithoutLine);
        return;
    }
    if (!transaction.repliesAreNumbered) {
        if (const std::size_t stale = m_wire->Discard(); stale > 0) {
            CountDropped(stale);
            m_waryUntil = Clock::now() + kWary;
        }
    }
    SendRequest();
}

void LineConnection::SendRequest()
{
    m_sentAt = Clock::now();
    m_deadline = m_sentAt + m_timeOut + m_byteTime * static_cast<int>(m_current->requestSize);
    m_timer->Set(m_deadline);
    Increase(m_counters.transactions, 1);
    m_wire->Send(m_current->Request());
}

// What is held back is either the reply, which says by chance what the last one said, or the last one's double while
// the reply is lost or late. What the device answers to the same request once more tells which.
void LineConnection::AskAgain()
{
    m_held = false;
    if (!m_current->mayBeRepeated) {
        Deliver({m_last.data(), m_lastSize}, m_heldAt);
        return;
    }
    m_askedFirstAt = m_sentAt;
    SendRequest();
}

void LineConnection::FailWithoutLine()
{
    if (m_current != nullptr && !m_open) {
        Complete(Outcome::NoLine, Clock::now());
    }
}

void LineConnection::OnTime()
{
    const auto now = Clock::now();
    if (m_wire == nullptr) {
        BeginOpen();
        return;
    }
    if (m_current != nullptr && m_open) {
        if (now < m_deadline) {
            m_timer->Set(m_deadline);
        } else if (m_held) {
            AskAgain();
        } else {
            Complete(Outcome::TimedOut, now);
        }
        return;
    }
    if (!m_quiet) {
        return;
    }
    if (now < m_line->LineFreeAt()) {
        m_timer->Set(m_line->LineFreeAt());
        return;
    }
    m_quiet = false;
    if (OnReady) {
        OnReady();
    }
}

void LineConnection::Complete(Outcome outcome, Clock::time_point now)
{
    ZRDeviceTransaction& transaction = *std::exchange(m_current, nullptr);
    transaction.outcome = outcome;
    if (!m_beginning.empty()) {
        m_beginning.clear();
        ++transaction.droppedFrames;
        CountDropped(1);
    }
    m_held = false;
    m_askedFirstAt.reset();
    if (outcome == Outcome::TimedOut) {
        Increase(m_counters.timeouts, 1);
        transaction.took = now - m_sentAt;
        if (!transaction.repliesAreNumbered) {
            m_line->TimedOut(transaction.unit, m_sentAt, now);
        }
        if (m_silence->TimedOut(now)) {
            m_wire->LookAgain();
        }
    }
    if (m_open) {
        m_line->Pause(now < m_waryUntil ? std::max<Clock::duration>(m_pause, kWaryPause) : m_pause, now);
        m_quiet = m_line->LineFreeAt() > now;
        if (m_quiet) {
            m_timer->Set(m_line->LineFreeAt());
        }
    }
    if (OnDone) {
        OnDone(transaction);
    }
}

// Replies -----------------------------------------------------------------------------------------------------------

void LineConnection::WireReceived(std::span<const std::uint8_t> bytes)
{
    if (m_current == nullptr) {
        Stray(bytes);
        return;
    }
    if (m_framing == Framing::Datagram) {
        Judge(bytes);
        return;
    }
    m_beginning.insert(m_beginning.end(), bytes.begin(), bytes.end());
    const std::vector<std::uint8_t> received = std::exchange(m_beginning, {});
    Judge(received);
}

void LineConnection::Judge(std::span<const std::uint8_t> bytes)
{
    bool isResynchronising = false;
    while (!bytes.empty()) {
        const ZRDeviceTransaction::Verdict verdict = m_current->Examine(bytes);
        const std::size_t size = std::clamp<std::size_t>(verdict.size, 1, bytes.size());
        if (verdict.kind == Kind::NeedMore && m_framing == Framing::Stream &&
            bytes.size() < ZRDeviceTransaction::kMaxFrame) {
            AwaitRest(bytes);
            return;
        }
        if (verdict.kind == Kind::Accept && size <= ZRDeviceTransaction::kMaxFrame) {
            Accept(bytes.first(size), bytes.size() > size);
            return;
        }
        // Bytes that are skipped one by one in search of a frame count as one frame.
        if (size > 1 || !std::exchange(isResynchronising, true)) {
            ++m_current->droppedFrames;
            CountDropped(1);
        }
        bytes = bytes.subspan(verdict.kind == Kind::NeedMore ? bytes.size() : size);
    }
}

void LineConnection::AwaitRest(std::span<const std::uint8_t> beginning)
{
    m_beginning.assign(beginning.begin(), beginning.end());
    const int most = static_cast<int>(m_current->requestSize + ZRDeviceTransaction::kMaxFrame);
    const auto latest = m_sentAt + m_timeOut + m_byteTime * most;
    m_deadline = std::max(m_deadline, std::min(latest, Clock::now() + kGap + kGapBytes * m_byteTime));
}

void LineConnection::Accept(std::span<const std::uint8_t> frame, bool moreFollows)
{
    const auto now = Clock::now();
    if (moreFollows) {
        CountDropped(1);  // a frame and its double, or something behind it
    }
    if (m_current->repliesAreNumbered) {
        Deliver(frame, now);
        return;
    }
    if (m_askedFirstAt) {
        if (!IsLastFrame(frame)) {
            // It was a double, and the answer to the first asking may still come.
            CountDropped(1);
            m_waryUntil = now + kWary;
            m_line->TimedOut(m_current->unit, *m_askedFirstAt, now);
        }
    } else if (m_held) {
        CountDropped(1);
        m_waryUntil = now + kWary;
    } else if (IsLastFrame(frame) && (!IsLastRequest() || now - m_sentAt < m_quickest / 2)) {
        m_held = true;
        m_heldAt = now;
        const Clock::duration patience = std::max<Clock::duration>(
            {4 * m_usual, std::min<Clock::duration>(m_line->SlowestReply(), kPatience), std::chrono::milliseconds(2)});
        m_deadline = std::min(m_deadline, now + patience);
        m_timer->Set(m_deadline);
        return;
    }
    Deliver(frame, now);
}

void LineConnection::Deliver(std::span<const std::uint8_t> frame, Clock::time_point receivedAt)
{
    ZRDeviceTransaction& transaction = *m_current;
    m_silence->Replied(receivedAt);
    transaction.took = receivedAt - m_sentAt;
    transaction.replySize = frame.size();
    std::copy(frame.begin(), frame.end(), transaction.reply.begin());
    std::copy(frame.begin(), frame.end(), m_last.begin());
    m_lastSize = frame.size();
    m_lastRequest = transaction.request;
    m_lastRequestSize = transaction.requestSize;
    const bool isFirst = m_usual == Clock::duration::zero();
    m_usual = isFirst ? transaction.took : (7 * m_usual + transaction.took) / 8;
    m_quickest = isFirst ? transaction.took : std::min(transaction.took, m_quickest + m_quickest / 64);
    m_line->Replied(transaction.took);
    m_reopenAfter = m_times.firstReopen;
    m_beginning.clear();
    Complete(Outcome::Replied, receivedAt);
}

void LineConnection::Stray(std::span<const std::uint8_t> bytes)
{
    const auto now = Clock::now();
    CountDropped(1);
    if (IsLastFrame(bytes)) {
        m_waryUntil = now + kWary;
    }
    m_line->Strayed(now);
}

void LineConnection::WireForeign()
{
    CountDropped(1);
    if (!std::exchange(m_foreignTold, true)) {
        PostNotice(DeviceWarning::ForeignFrames, name);
    }
}

bool LineConnection::IsLastFrame(std::span<const std::uint8_t> frame) const
{
    return m_lastSize > 0 && std::equal(frame.begin(), frame.end(), m_last.begin(),
                                        m_last.begin() + static_cast<std::ptrdiff_t>(m_lastSize));
}

bool LineConnection::IsLastRequest() const
{
    return std::ranges::equal(m_current->Request(), std::span(m_lastRequest).first(m_lastRequestSize));
}

void LineConnection::CountDropped(std::size_t frames)
{
    Increase(m_counters.droppedFrames, frames);
}

// What others ask ---------------------------------------------------------------------------------------------------

void LineConnection::SetOutput(int, int, int, int) {}

std::chrono::steady_clock::time_point LineConnection::UnitFreeAt(std::uint8_t unit) const
{
    return m_line ? m_line->UnitFreeAt(unit) : Clock::time_point::min();
}

ConnectionCounters LineConnection::Counters() const
{
    return {m_counters.transactions.load(std::memory_order_relaxed),
            m_counters.timeouts.load(std::memory_order_relaxed),
            m_counters.droppedFrames.load(std::memory_order_relaxed)};
}

bool LineConnection::LoadNumber(const XmlNode& node, const wchar* value, const wchar* fallback, int least, int most,
                                int& number)
{
    const ZRBasicString text = node.Value(value, fallback);
    const bool isDigits = !text.IsEmpty() && text.Length() <= 9 &&
                          std::all_of(text.Text().begin(), text.Text().end(),
                                      [](wchar character) { return character >= u'0' && character <= u'9'; });
    int parsed = 0;
    for (std::size_t i = 0; isDigits && i < text.Length(); ++i) {
        parsed = 10 * parsed + (text[i] - u'0');
    }
    if (!isDigits || parsed < least || parsed > most) {
        m_loadError = ZRBasicString(value) + u" \"" + text + u"\" is not a whole number from " +
                      Utf8ToUtf16(std::to_string(least)) + u" to " + Utf8ToUtf16(std::to_string(most));
        return false;
    }
    number = parsed;
    return true;
}

bool LineConnection::LoadCommon(const XmlNode& node)
{
    constexpr int kDefaultTimeOut = 1000;
    constexpr int kLongestTimeOut = 60000;
    m_loadError.Clear();
    name = node.Value(u"Name", u"");
    int milliseconds = 0;
    if (!LoadNumber(node, u"TimeOut", u"0", 0, kLongestTimeOut, milliseconds)) {
        return false;
    }
    m_timeOut = std::chrono::milliseconds(milliseconds == 0 ? kDefaultTimeOut : milliseconds);
    return true;
}

}  // namespace zr
