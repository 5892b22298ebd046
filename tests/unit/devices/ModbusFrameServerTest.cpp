// The server side of ModbusFrame: requests out of bytes, and the bytes of replies.
#include "WireBytes.h"

#include <gtest/gtest.h>

namespace zr::modbus {
namespace {
using namespace test;

std::string EncodedReply(Framing framing, const Request& request, const std::vector<std::uint8_t>& data)
{
    std::array<std::uint8_t, kMaxFrame> frame{};
    return Hex(std::span(frame).first(EncodeReply(framing, request, data, frame)));
}

std::string EncodedException(Framing framing, const Request& request, Exception exception)
{
    std::array<std::uint8_t, kMaxFrame> frame{};
    return Hex(std::span(frame).first(EncodeException(framing, request, exception, frame)));
}

TEST(ModbusFrameServerTest, EveryReplyHasTheBytesOfTheStandard)
{
    const auto coils = Bytes("CD 01");
    const auto registers = Bytes("00 0A 01 02");
    EXPECT_EQ(EncodedReply(Framing::Rtu, ReadCoils(0x11, 0x13, 0x25), Bytes("CD 6B B2 0E 1B")),
              "11 01 05 CD 6B B2 0E 1B 45 E6");
    EXPECT_EQ(EncodedReply(Framing::Rtu, ReadDiscreteInputs(0x11, 0xC4, 0x16), Bytes("AC DB 35")),
              "11 02 03 AC DB 35 20 18");
    EXPECT_EQ(EncodedReply(Framing::Rtu, ReadHoldingRegisters(0x11, 0x6B, 3), Bytes("AE 41 56 52 43 40")),
              "11 03 06 AE 41 56 52 43 40 49 AD");
    EXPECT_EQ(EncodedReply(Framing::Rtu, ReadInputRegisters(0x11, 8, 1), Bytes("00 0A")), "11 04 02 00 0A F8 F4");
    EXPECT_EQ(EncodedReply(Framing::Rtu, WriteSingleCoil(0x11, 0xAC, true), {}), "11 05 00 AC FF 00 4E 8B");
    EXPECT_EQ(EncodedReply(Framing::Rtu, WriteSingleRegister(0x11, 1, 3), {}), "11 06 00 01 00 03 9A 9B");
    EXPECT_EQ(EncodedReply(Framing::Rtu, WriteMultipleCoils(0x11, 0x13, 10, coils), {}), "11 0F 00 13 00 0A 26 99");
    EXPECT_EQ(EncodedReply(Framing::Rtu, WriteMultipleRegisters(0x11, 1, registers), {}), "11 10 00 01 00 02 12 98");
    EXPECT_EQ(EncodedException(Framing::Rtu, ReadCoils(0x0A, 0x04A1, 1), Exception::IllegalDataAddress),
              "0A 81 02 B0 53");
}

TEST(ModbusFrameServerTest, AReplyOverTcpRepeatsTransactionAndUnit)
{
    Request request = ReadHoldingRegisters(0xFF, 4, 1);
    request.transaction = 0x1501;
    EXPECT_EQ(EncodedReply(Framing::Tcp, request, Bytes("00 05")), "15 01 00 00 00 05 FF 03 02 00 05");
    EXPECT_EQ(EncodedException(Framing::Tcp, request, Exception::ServerDeviceBusy), "15 01 00 00 00 03 FF 83 06");
}

TEST(ModbusFrameServerTest, AReplyWithDataOfAnotherSizeIsNotEncoded)
{
    EXPECT_EQ(EncodedReply(Framing::Rtu, ReadHoldingRegisters(1, 0, 2), Bytes("00 05")), "");
    EXPECT_EQ(EncodedReply(Framing::Rtu, ReadCoils(1, 0, 9), Bytes("05")), "");
}

TEST(ModbusFrameServerTest, EveryEncodedRequestIsParsedToItself)
{
    const auto coils = Bytes("CD 01");
    const auto registers = Bytes("00 0A 01 02");
    const Request requests[] = {ReadCoils(3, 0x13, 0x25),
                                ReadDiscreteInputs(3, 0xC4, 0x16),
                                ReadHoldingRegisters(3, 0x6B, 125),
                                ReadInputRegisters(3, 0xFFFF, 1),
                                WriteSingleCoil(3, 0xAC, true),
                                WriteSingleRegister(3, 1, 0xABCD),
                                WriteMultipleCoils(3, 0x13, 10, coils),
                                WriteMultipleRegisters(3, 1, registers)};
    for (const Framing framing : {Framing::Rtu, Framing::Tcp}) {
        for (Request request : requests) {
            request.transaction = framing == Framing::Tcp ? 0x4711 : 0;
            std::array<std::uint8_t, kMaxFrame> frame{};
            const std::size_t size = EncodeRequest(framing, request, frame);
            const ReceivedRequest received = ParseRequest(framing, std::span(frame).first(size));
            ASSERT_EQ(Told(received.verdict), "accept " + std::to_string(size));
            EXPECT_EQ(received.exception, Exception::None);
            EXPECT_EQ(received.request.transaction, request.transaction);
            EXPECT_EQ(received.request.unit, 3);
            EXPECT_EQ(received.request.function, request.function);
            EXPECT_EQ(received.request.first, request.first);
            EXPECT_EQ(received.request.count, request.count);
            EXPECT_EQ(received.request.value, request.value);
            EXPECT_EQ(Hex(received.request.data), Hex(request.data));
            for (std::size_t part = 0; part < size; ++part) {
                EXPECT_EQ(Told(ParseRequest(framing, std::span(frame).first(part)).verdict), "more") << part;
            }
        }
    }
}

TEST(ModbusFrameServerTest, AFaultyRequestIsAcceptedWithItsException)
{
    const struct {
        const char* what;
        const char* frame;
        Exception exception;
    } rows[] = {
        {"no register", "01 03 00 00 00 00", Exception::IllegalDataValue},
        {"too many registers", "01 03 00 00 00 7E", Exception::IllegalDataValue},
        {"too many bits", "01 01 00 00 07 D1", Exception::IllegalDataValue},
        {"above the last address", "01 04 FF FF 00 02", Exception::IllegalDataAddress},
        {"a coil neither on nor off", "01 05 00 00 00 01", Exception::IllegalDataValue},
        {"data of another size than the count", "01 10 00 00 00 02 02 00 01", Exception::IllegalDataValue},
        {"a function that isn't known", "01 2B 0E 01 00", Exception::IllegalFunction},
    };
    for (const auto& row : rows) {
        const auto frame = WithCrc(row.frame);
        const ReceivedRequest received = ParseRequest(Framing::Rtu, frame);
        EXPECT_EQ(Told(received.verdict), "accept " + std::to_string(frame.size())) << row.what;
        EXPECT_EQ(received.exception, row.exception) << row.what;
    }
}

TEST(ModbusFrameServerTest, ARequestOverTcpOfAnotherLengthIsAnIllegalValue)
{
    const ReceivedRequest received = ParseRequest(Framing::Tcp, Bytes("00 01 00 00 00 05 01 03 00 00 00"));
    EXPECT_EQ(Told(received.verdict), "accept 11");
    EXPECT_EQ(received.exception, Exception::IllegalDataValue);
}

TEST(ModbusFrameServerTest, ADamagedRequestIsNeverAccepted)
{
    const auto frame = Bytes("11 10 00 01 00 02 04 00 0A 01 02 C6 F0");
    for (std::size_t bit = 0; bit < frame.size() * 8; ++bit) {
        auto damaged = frame;
        damaged[bit / 8] = static_cast<std::uint8_t>(damaged[bit / 8] ^ 1u << (bit % 8));
        EXPECT_NE(ParseRequest(Framing::Rtu, damaged).verdict.kind, Verdict::Kind::Accept) << bit;
    }
}

TEST(ModbusFrameServerTest, TheReplyOfANeighbourOnTheLineIsDroppedWhole)
{
    EXPECT_EQ(Told(ParseRequest(Framing::Rtu, Bytes("11 03 06 AE 41 56 52 43 40 49 AD")).verdict), "drop 11");
    EXPECT_EQ(Told(ParseRequest(Framing::Rtu, Bytes("0A 81 02 B0 53")).verdict), "drop 5");
}

TEST(ModbusFrameServerTest, ARequestAfterNoiseIsFound)
{
    const auto request = Bytes("11 03 00 6B 00 03 76 87");
    for (const char* noise : {"00", "FF FF", "11 03", "11 03 00 6B 00"}) {
        const auto stream = Bytes(noise) + request;
        std::size_t dropped = 0;
        ReceivedRequest received = ParseRequest(Framing::Rtu, stream);
        while (received.verdict.kind == Verdict::Kind::Drop) {
            dropped += received.verdict.size;
            received = ParseRequest(Framing::Rtu, std::span(stream).subspan(dropped));
        }
        EXPECT_EQ(dropped, Bytes(noise).size()) << noise;
        EXPECT_EQ(Told(received.verdict), "accept 8") << noise;
    }
}

TEST(ModbusFrameServerTest, TwoRequestsInOneStreamAreTakenOneAfterTheOther)
{
    const auto stream = Bytes("11 03 00 6B 00 03 76 87") + Bytes("11 05 00 AC FF 00 4E 8B");
    EXPECT_EQ(Told(ParseRequest(Framing::Rtu, stream).verdict), "accept 8");
    EXPECT_EQ(ParseRequest(Framing::Rtu, std::span(stream).subspan(8)).request.function, Function::WriteSingleCoil);
}

TEST(ModbusFrameServerTest, BitsAndRegistersComeBackAsTheyWereSet)
{
    std::array<std::uint8_t, 4> data{};
    SetBit(data, 0, true);
    SetBit(data, 10, true);
    SetBit(data, 10, false);
    SetBit(data, 11, true);
    EXPECT_EQ(Hex(data), "01 08 00 00");
    SetRegister(data, 1, 0xBEEF);
    EXPECT_EQ(Hex(data), "01 08 BE EF");
    EXPECT_EQ(RegisterAt(data, 1), 0xBEEF);
}

}  // namespace
}  // namespace zr::modbus
