// Both sides of the Modbus frame parser. The first byte chooses framing and request, the rest is what was received.
#include "devices/modbus/ModbusFrame.h"

#include <array>
#include <cstdint>
#include <cstdlib>

namespace {
using namespace zr::modbus;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

Request Asked(unsigned choice)
{
    static constexpr std::array<std::uint8_t, 4> kData{0, 10, 1, 2};
    switch (choice % 8) {
        case 0:
            return ReadCoils(17, 19, 37);
        case 1:
            return ReadDiscreteInputs(17, 196, 22);
        case 2:
            return ReadHoldingRegisters(17, 107, 3);
        case 3:
            return ReadInputRegisters(17, 8, 125);
        case 4:
            return WriteSingleCoil(17, 172, true);
        case 5:
            return WriteSingleRegister(17, 1, 3);
        case 6:
            return WriteMultipleCoils(17, 19, 10, std::span(kData).first(2));
        default:
            return WriteMultipleRegisters(17, 1, kData);
    }
}

void RequireSound(const Verdict& verdict, std::size_t received)
{
    switch (verdict.kind) {
        case Verdict::Kind::NeedMore:
            Require(received < kMaxFrame);
            break;
        case Verdict::Kind::Accept:
        case Verdict::Kind::Drop:
            Require(verdict.size >= 1 && verdict.size <= received);
            break;
    }
}

// The client takes the stream apart to its end; an accepted reply has the data that were asked for.
void FuzzClient(Framing framing, const Request& asked, std::span<const std::uint8_t> stream)
{
    while (true) {
        const Verdict verdict = ExamineReply(framing, asked, stream);
        RequireSound(verdict, stream.size());
        if (verdict.kind == Verdict::Kind::NeedMore)
            return;
        if (verdict.kind == Verdict::Kind::Accept) {
            const Reply reply = ReadReply(framing, stream.first(verdict.size));
            const bool carries =
                IsReadFunction(asked.function) && (stream[framing == Framing::Rtu ? 1 : 7] & 0x80) == 0;
            Require(reply.data.size() == (carries ? DataBytes(asked.function, asked.count) : 0));
        }
        stream = stream.subspan(verdict.size);
    }
}

// The server likewise; a sound request is encoded to the very bytes it came from.
void FuzzServer(Framing framing, std::span<const std::uint8_t> stream)
{
    while (true) {
        const ReceivedRequest received = ParseRequest(framing, stream);
        RequireSound(received.verdict, stream.size());
        if (received.verdict.kind == Verdict::Kind::NeedMore)
            return;
        if (received.verdict.kind == Verdict::Kind::Accept && received.exception == Exception::None) {
            std::array<std::uint8_t, kMaxFrame> frame{};
            const std::size_t size = EncodeRequest(framing, received.request, frame);
            Require(size == received.verdict.size);
            for (std::size_t at = 0; at < size; ++at)
                Require(frame[at] == stream[at]);
        }
        stream = stream.subspan(received.verdict.size);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const Framing framing = (data[0] & 8u) == 0 ? Framing::Rtu : Framing::Tcp;
    FuzzClient(framing, Asked(data[0]), {data + 1, size - 1});
    FuzzServer(framing, {data + 1, size - 1});
    return 0;
}
