// A trivial driver: one request of 8 bytes, one reply of 25, checked by length and unit only.
#pragma once

#include "siblings/driversupport/ZRDeviceDriver.h"

#include <atomic>

namespace zr::bench {

inline constexpr std::size_t kRequestSize = 8;
inline constexpr std::size_t kReplySize = 25;

struct PollTransaction final : ZRDeviceTransaction {
    PollTransaction();
    Verdict Examine(std::span<const std::uint8_t> received) const override;
};

class PollDriver final : public ZRDeviceDriver {
public:
    PollDriver(const ZRBasicString& deviceName, std::uint8_t unit, std::chrono::milliseconds period,
               std::shared_ptr<const VariableTable> table);

    std::chrono::milliseconds Period() const override { return m_period; }
    void BeginCycle() override { m_asked = false; }
    ZRDeviceTransaction* NextTransaction() override;
    void TransactionDone(ZRDeviceTransaction& transaction) override;
    std::uint8_t Unit() const override { return m_transaction.unit; }
    [[nodiscard]] std::uint64_t Replies() const { return m_replies.load(std::memory_order_relaxed); }

private:
    std::chrono::milliseconds m_period;
    PollTransaction m_transaction;
    bool m_asked = false;
    std::atomic<std::uint64_t> m_replies{0};
};

// A table of so many numbers V0, V1, ...
std::shared_ptr<const VariableTable> NumberTable(int variables);

}  // namespace zr::bench
