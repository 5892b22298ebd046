#include "PollDriver.h"

#include <string>

namespace zr::bench {

PollTransaction::PollTransaction()
{
    requestSize = kRequestSize;
}

ZRDeviceTransaction::Verdict PollTransaction::Examine(std::span<const std::uint8_t> received) const
{
    if (received.size() < kReplySize) {
        return {Verdict::Kind::NeedMore, 0};
    }
    return {received[0] == unit ? Verdict::Kind::Accept : Verdict::Kind::Drop, kReplySize};
}

PollDriver::PollDriver(const ZRBasicString& deviceName, std::uint8_t unit, std::chrono::milliseconds period,
                       std::shared_ptr<const VariableTable> table)
    : m_period(period)
{
    m_transaction.unit = unit;
    m_transaction.request[0] = unit;
    SetVariables(std::move(table));
    SetName(deviceName);
}

ZRDeviceTransaction* PollDriver::NextTransaction()
{
    if (m_asked) {
        return nullptr;
    }
    m_asked = true;
    return &m_transaction;
}

void PollDriver::TransactionDone(ZRDeviceTransaction& transaction)
{
    if (transaction.outcome != ZRDeviceTransaction::Outcome::Replied) {
        return;
    }
    for (std::size_t i = 0; i < 10 && i < Store()->Table().Size(); ++i) {
        Store()->At(i).WriteNumber(transaction.reply[3 + 2 * i]);
    }
    m_replies.store(Replies() + 1, std::memory_order_relaxed);
}

std::shared_ptr<const VariableTable> NumberTable(int variables)
{
    std::vector<VariableDescription> descriptions(static_cast<std::size_t>(variables));
    for (int i = 0; i < variables; ++i) {
        for (const char digit : "V" + std::to_string(i)) {
            descriptions[static_cast<std::size_t>(i)].name += static_cast<wchar>(digit);
        }
    }
    return std::make_shared<VariableTable>(std::move(descriptions));
}

}  // namespace zr::bench
