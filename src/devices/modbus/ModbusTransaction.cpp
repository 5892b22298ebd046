#include "devices/modbus/ModbusTransaction.h"

#include <atomic>

namespace zr::modbus {
namespace {

// One series of identifiers for all drivers: those that share a connection must not repeat each other's.
std::uint16_t NextIdentifier()
{
    static std::atomic<std::uint16_t> next{0};
    return next.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

bool ModbusTransaction::Prepare(const modbus::Request& asked)
{
    m_asked = asked;
    if (m_framing == Framing::Tcp)
        m_asked.transaction = NextIdentifier();
    requestSize = EncodeRequest(m_framing, m_asked, request);
    m_asked.data = {};
    unit = asked.unit;
    mayBeRepeated = IsReadFunction(asked.function);
    replySize = 0;
    outcome = Outcome::Pending;
    droppedFrames = 0;
    return requestSize != 0;
}

Verdict ModbusTransaction::Examine(std::span<const std::uint8_t> received) const
{
    return ExamineReply(m_framing, m_asked, received);
}

}  // namespace zr::modbus
