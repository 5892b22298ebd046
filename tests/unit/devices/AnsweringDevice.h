// A device at the other end of a driver's transactions: real frames, no connection between.
#pragma once

#include "devices/modbus/ModbusDriver.h"
#include "devices/modbus/ModbusFrame.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace zr::modbus::test {

class AnsweringDevice {
public:
    explicit AnsweringDevice(Framing framing = Framing::Rtu) : m_framing(framing) {}

    std::map<std::uint16_t, std::uint16_t> registers;
    std::map<std::uint16_t, bool> bits;
    Exception refuse = Exception::None;                                            // of every request
    std::vector<Request> asked;                                                    // what came, without its data
    ZRDeviceTransaction::Outcome outcome = ZRDeviceTransaction::Outcome::Replied;  // anything else: no answer

    // Carries out one transaction of the driver. False if the driver has none.
    bool Serve(ModbusDriver& driver) { return Serve(driver, driver.NextTransaction()); }

    bool Serve(ModbusDriver& driver, ZRDeviceTransaction* transaction)
    {
        if (transaction == nullptr)
            return false;
        const ReceivedRequest received = ParseRequest(m_framing, transaction->Request());
        asked.push_back(received.request);
        asked.back().data = {};
        transaction->outcome = outcome;
        if (outcome == ZRDeviceTransaction::Outcome::Replied)
            Answer(*transaction, received);
        driver.TransactionDone(*transaction);
        return true;
    }

    // A whole cycle; gives the number of its requests.
    int Cycle(ModbusDriver& driver)
    {
        driver.BeginCycle();
        int requests = 0;
        while (Serve(driver))
            ++requests;
        return requests;
    }

private:
    void Answer(ZRDeviceTransaction& transaction, const ReceivedRequest& received)
    {
        std::array<std::uint8_t, 250> data{};
        const Request& request = received.request;
        if (refuse == Exception::None)
            Carry(request, data);
        const auto used =
            std::span(data).first(IsReadFunction(request.function) ? DataBytes(request.function, request.count) : 0);
        std::array<std::uint8_t, kMaxFrame> frame{};
        const std::size_t size = refuse == Exception::None ? EncodeReply(m_framing, request, used, frame)
                                                           : EncodeException(m_framing, request, refuse, frame);
        const Verdict verdict = transaction.Examine(std::span(frame).first(size));
        if (verdict.kind != Verdict::Kind::Accept) {
            transaction.outcome = ZRDeviceTransaction::Outcome::TimedOut;
            return;
        }
        std::copy_n(frame.begin(), size, transaction.reply.begin());
        transaction.replySize = size;
    }

    void Carry(const Request& request, std::span<std::uint8_t> data)
    {
        for (std::uint16_t at = 0; at < request.count; ++at) {
            const auto address = static_cast<std::uint16_t>(request.first + at);
            if (request.function == Function::WriteSingleCoil)
                bits[address] = request.value == kCoilOn;
            if (request.function == Function::WriteSingleRegister)
                registers[address] = request.value;
            if (request.function == Function::WriteMultipleCoils)
                bits[address] = BitAt(request.data, at);
            if (request.function == Function::WriteMultipleRegisters)
                registers[address] = RegisterAt(request.data, at);
            if (!IsReadFunction(request.function))
                continue;
            if (IsBitFunction(request.function)) {
                SetBit(data, at, bits[address]);
            } else {
                SetRegister(data, at, registers[address]);
            }
        }
    }

    Framing m_framing;
};

}  // namespace zr::modbus::test
