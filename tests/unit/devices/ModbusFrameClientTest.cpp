// The client side of ModbusFrame: bytes of requests, and what is believed of the bytes that come back.
#include "WireBytes.h"

#include <gtest/gtest.h>

namespace zr::modbus {
namespace {
using namespace test;

const auto kThreeRegisters = ReadHoldingRegisters(0x11, 0x006B, 3);
const char* const kThreeRegistersReply = "11 03 06 AE 41 56 52 43 40 49 AD";

Request Numbered(Request request, std::uint16_t transaction)
{
    request.transaction = transaction;
    return request;
}

TEST(ModbusFrameClientTest, TheChecksumIsThatOfTheSerialLineStandard)
{
    // MODBUS over Serial Line V1.02, appendix B.
    EXPECT_EQ(Crc16(Bytes("02 07")), 0x1241);
    EXPECT_EQ(Crc16({}), 0xFFFF);
}

TEST(ModbusFrameClientTest, EveryRequestHasTheBytesOfTheStandard)
{
    const auto coils = Bytes("CD 01");
    const auto registers = Bytes("00 0A 01 02");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, ReadCoils(0x11, 0x13, 0x25)), "11 01 00 13 00 25 0E 84");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, ReadDiscreteInputs(0x11, 0xC4, 0x16)), "11 02 00 C4 00 16 BA A9");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, kThreeRegisters), "11 03 00 6B 00 03 76 87");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, ReadInputRegisters(0x11, 8, 1)), "11 04 00 08 00 01 B2 98");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, WriteSingleCoil(0x11, 0xAC, true)), "11 05 00 AC FF 00 4E 8B");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, WriteSingleCoil(0x11, 0xAC, false)), "11 05 00 AC 00 00 0F 7B");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, WriteSingleRegister(0x11, 1, 3)), "11 06 00 01 00 03 9A 9B");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, WriteMultipleCoils(0x11, 0x13, 10, coils)),
              "11 0F 00 13 00 0A 02 CD 01 BF 0B");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, WriteMultipleRegisters(0x11, 1, registers)),
              "11 10 00 01 00 02 04 00 0A 01 02 C6 F0");
}

TEST(ModbusFrameClientTest, ARequestOverTcpHasTheHeaderOfTheMessagingGuide)
{
    EXPECT_EQ(EncodedRequest(Framing::Tcp, Numbered(ReadHoldingRegisters(0xFF, 4, 1), 0x1501)),
              "15 01 00 00 00 06 FF 03 00 04 00 01");
    const auto registers = Bytes("00 0A 01 02");
    EXPECT_EQ(EncodedRequest(Framing::Tcp, Numbered(WriteMultipleRegisters(1, 1, registers), 2)),
              "00 02 00 00 00 0B 01 10 00 01 00 02 04 00 0A 01 02");
}

TEST(ModbusFrameClientTest, ARequestOutsideTheLimitsIsNotEncoded)
{
    const std::vector<std::uint8_t> bits(247);
    const std::vector<std::uint8_t> registers(248);
    EXPECT_EQ(EncodedRequest(Framing::Rtu, ReadCoils(1, 0, 0)), "");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, ReadCoils(1, 0, 2001)), "");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, ReadHoldingRegisters(1, 0, 126)), "");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, ReadHoldingRegisters(1, 0xFFFF, 2)), "");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, WriteMultipleCoils(1, 0, 1969, bits)), "");
    EXPECT_EQ(EncodedRequest(Framing::Rtu, WriteMultipleRegisters(1, 0, registers)), "");
    EXPECT_NE(EncodedRequest(Framing::Rtu, ReadHoldingRegisters(1, 0xFFFF, 1)), "");
    EXPECT_NE(EncodedRequest(Framing::Rtu, ReadCoils(1, 0, 2000)), "");
}

TEST(ModbusFrameClientTest, ARequestThatDoesNotFitTheRoomIsNotEncoded)
{
    std::array<std::uint8_t, 12> room{};
    EXPECT_EQ(EncodeRequest(Framing::Rtu, kThreeRegisters, std::span(room).first(7)), 0u);
    EXPECT_EQ(EncodeRequest(Framing::Rtu, kThreeRegisters, std::span(room).first(8)), 8u);
    EXPECT_EQ(EncodeRequest(Framing::Tcp, kThreeRegisters, std::span(room).first(11)), 0u);
    EXPECT_EQ(EncodeRequest(Framing::Tcp, kThreeRegisters, room), 12u);
}

TEST(ModbusFrameClientTest, ARegisterReplyIsAcceptedAndReadHighByteFirst)
{
    const auto frame = Bytes(kThreeRegistersReply);
    ASSERT_EQ(Examined(Framing::Rtu, kThreeRegisters, frame), "accept 11");
    const Reply reply = ReadReply(Framing::Rtu, frame);
    EXPECT_EQ(reply.exception, Exception::None);
    ASSERT_EQ(reply.data.size(), 6u);
    EXPECT_EQ(RegisterAt(reply.data, 0), 0xAE41);
    EXPECT_EQ(RegisterAt(reply.data, 2), 0x4340);
}

TEST(ModbusFrameClientTest, ACoilReplyIsReadLowestBitFirst)
{
    const auto frame = Bytes("11 01 05 CD 6B B2 0E 1B 45 E6");
    ASSERT_EQ(Examined(Framing::Rtu, ReadCoils(0x11, 0x13, 0x25), frame), "accept 10");
    const Reply reply = ReadReply(Framing::Rtu, frame);
    EXPECT_TRUE(BitAt(reply.data, 0));
    EXPECT_FALSE(BitAt(reply.data, 1));
    EXPECT_TRUE(BitAt(reply.data, 2));
    EXPECT_TRUE(BitAt(reply.data, 36));
}

TEST(ModbusFrameClientTest, RepliesToWritesAreAcceptedByTheirEcho)
{
    const auto coils = Bytes("CD 01");
    const auto registers = Bytes("00 0A 01 02");
    EXPECT_EQ(Examined(Framing::Rtu, WriteSingleCoil(0x11, 0xAC, true), Bytes("11 05 00 AC FF 00 4E 8B")), "accept 8");
    EXPECT_EQ(Examined(Framing::Rtu, WriteSingleRegister(0x11, 1, 3), Bytes("11 06 00 01 00 03 9A 9B")), "accept 8");
    EXPECT_EQ(Examined(Framing::Rtu, WriteMultipleCoils(0x11, 0x13, 10, coils), Bytes("11 0F 00 13 00 0A 26 99")),
              "accept 8");
    EXPECT_EQ(Examined(Framing::Rtu, WriteMultipleRegisters(0x11, 1, registers), Bytes("11 10 00 01 00 02 12 98")),
              "accept 8");
    EXPECT_EQ(Examined(Framing::Rtu, WriteSingleCoil(0x11, 0xAC, false), Bytes("11 05 00 AC FF 00 4E 8B")), "drop 8");
    EXPECT_EQ(Examined(Framing::Rtu, WriteSingleRegister(0x11, 2, 3), Bytes("11 06 00 01 00 03 9A 9B")), "drop 8");
}

TEST(ModbusFrameClientTest, AnExceptionReplyIsAccepted)
{
    const auto frame = Bytes("0A 81 02 B0 53");
    ASSERT_EQ(Examined(Framing::Rtu, ReadCoils(0x0A, 0x04A1, 1), frame), "accept 5");
    EXPECT_EQ(ReadReply(Framing::Rtu, frame).exception, Exception::IllegalDataAddress);
}

TEST(ModbusFrameClientTest, AnExceptionReplyToAnotherFunctionIsDropped)
{
    EXPECT_EQ(Examined(Framing::Rtu, ReadHoldingRegisters(0x0A, 0x04A1, 1), Bytes("0A 81 02 B0 53")), "drop 5");
}

TEST(ModbusFrameClientTest, EveryBeginningOfAReplyAsksForMore)
{
    const auto frame = Bytes(kThreeRegistersReply);
    for (std::size_t size = 0; size < frame.size(); ++size) {
        const std::vector<std::uint8_t> begun(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(Examined(Framing::Rtu, kThreeRegisters, begun), "more") << size;
    }
}

TEST(ModbusFrameClientTest, ADamagedReplyIsNeverAccepted)
{
    const auto frame = Bytes(kThreeRegistersReply);
    for (std::size_t bit = 0; bit < frame.size() * 8; ++bit) {
        auto damaged = frame;
        damaged[bit / 8] = static_cast<std::uint8_t>(damaged[bit / 8] ^ 1u << (bit % 8));
        EXPECT_NE(ExamineReply(Framing::Rtu, kThreeRegisters, damaged).kind, Verdict::Kind::Accept) << bit;
    }
}

TEST(ModbusFrameClientTest, AReplyOfAnotherUnitIsDroppedWhole)
{
    EXPECT_EQ(Examined(Framing::Rtu, kThreeRegisters, WithCrc("12 03 06 AE 41 56 52 43 40")), "drop 11");
}

TEST(ModbusFrameClientTest, AReplyOfAnotherFunctionIsDroppedWhole)
{
    EXPECT_EQ(Examined(Framing::Rtu, kThreeRegisters, WithCrc("11 04 06 AE 41 56 52 43 40")), "drop 11");
}

TEST(ModbusFrameClientTest, AReplyOfAnotherByteCountIsDroppedWhole)
{
    EXPECT_EQ(Examined(Framing::Rtu, kThreeRegisters, WithCrc("11 03 04 AE 41 56 52")), "drop 9");
}

TEST(ModbusFrameClientTest, TheEchoOfTheOwnRequestIsDroppedWhole)
{
    EXPECT_EQ(Examined(Framing::Rtu, kThreeRegisters, Bytes("11 03 00 6B 00 03 76 87")), "drop 8");
}

TEST(ModbusFrameClientTest, ADroppedFrameIsFollowedByTheReplyItself)
{
    const auto stream = WithCrc("12 03 06 AE 41 56 52 43 40") + Bytes(kThreeRegistersReply);
    const Verdict first = ExamineReply(Framing::Rtu, kThreeRegisters, stream);
    ASSERT_EQ(Told(first), "drop 11");
    EXPECT_EQ(Told(ExamineReply(Framing::Rtu, kThreeRegisters, std::span(stream).subspan(first.size))), "accept 11");
}

TEST(ModbusFrameClientTest, AReplyHeldByAForeignFrameIsNotTakenOutOfIt)
{
    const auto foreign = WithCrc("12 03 0B " + std::string(kThreeRegistersReply));
    EXPECT_EQ(Examined(Framing::Rtu, kThreeRegisters, foreign), "drop 16");
}

TEST(ModbusFrameClientTest, NoiseBeforeAReplyIsDropped)
{
    for (const char* noise : {"00", "FF", "11", "11 11", "01 03", "00 FF 00 FF", "12 03 FA", "11 03 06 AE 41"}) {
        auto stream = Bytes(noise) + Bytes(kThreeRegistersReply);
        std::size_t dropped = 0;
        Verdict verdict = ExamineReply(Framing::Rtu, kThreeRegisters, stream);
        while (verdict.kind == Verdict::Kind::Drop) {
            dropped += verdict.size;
            verdict = ExamineReply(Framing::Rtu, kThreeRegisters, std::span(stream).subspan(dropped));
        }
        EXPECT_EQ(dropped, Bytes(noise).size()) << noise;
        EXPECT_EQ(Told(verdict), "accept 11") << noise;
    }
}

TEST(ModbusFrameClientTest, NoiseWithNoBeginningOfAReplyIsDroppedWhole)
{
    EXPECT_EQ(Examined(Framing::Rtu, kThreeRegisters, Bytes("00 00 00 00 00 00 00 00 00 00")), "drop 10");
    EXPECT_EQ(Examined(Framing::Rtu, kThreeRegisters, Bytes("00 00 00 00 00 00 00 00 11 03")), "drop 8");
}

TEST(ModbusFrameClientTest, NoStreamMakesTheExaminationWaitForMoreThanAFrame)
{
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned function = 0; function < 256; ++function) {
            std::vector<std::uint8_t> stream(kMaxFrame, 0xFF);
            stream[0] = static_cast<std::uint8_t>(first);
            stream[1] = static_cast<std::uint8_t>(function);
            EXPECT_NE(ExamineReply(Framing::Rtu, kThreeRegisters, stream).kind, Verdict::Kind::NeedMore);
            EXPECT_NE(ParseRequest(Framing::Rtu, stream).verdict.kind, Verdict::Kind::NeedMore);
        }
    }
}

TEST(ModbusFrameClientTest, AReplyOverTcpIsAcceptedByItsTransaction)
{
    const Request request = Numbered(ReadHoldingRegisters(0xFF, 4, 1), 0x1501);
    const auto frame = Bytes("15 01 00 00 00 05 FF 03 02 00 05");
    ASSERT_EQ(Examined(Framing::Tcp, request, frame), "accept 11");
    EXPECT_EQ(RegisterAt(ReadReply(Framing::Tcp, frame).data, 0), 5);
    EXPECT_EQ(Examined(Framing::Tcp, request, Bytes("15 01 00 00 00 03 FF 83 02")), "accept 9");
}

TEST(ModbusFrameClientTest, AReplyOverTcpThatDoesNotAgreeIsDroppedWhole)
{
    const Request request = Numbered(ReadHoldingRegisters(0xFF, 4, 1), 0x1501);
    const struct {
        const char* what;
        const char* frame;
    } rows[] = {
        {"late: another transaction", "15 00 00 00 00 05 FF 03 02 00 05"},
        {"another unit", "15 01 00 00 00 05 01 03 02 00 05"},
        {"another function", "15 01 00 00 00 05 FF 04 02 00 05"},
        {"another byte count", "15 01 00 00 00 07 FF 03 04 00 05 00 06"},
        {"a byte count that isn't that of the frame", "15 01 00 00 00 05 FF 03 04 00 05"},
        {"a length that isn't that of the data", "15 01 00 00 00 06 FF 03 02 00 05 00"},
        {"an exception with more than its code", "15 01 00 00 00 04 FF 83 02 00"},
        {"an exception to another function", "15 01 00 00 00 03 FF 84 02"},
        {"no data at all", "15 01 00 00 00 02 FF 03"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Examined(Framing::Tcp, request, Bytes(row.frame)), "drop " + std::to_string(Bytes(row.frame).size()))
            << row.what;
    }
}

TEST(ModbusFrameClientTest, BytesThatAreNoHeaderAreDroppedUpToTheReply)
{
    const Request request = Numbered(ReadHoldingRegisters(0xFF, 4, 1), 0x1501);
    const auto reply = Bytes("15 01 00 00 00 05 FF 03 02 00 05");
    EXPECT_EQ(Examined(Framing::Tcp, request, Bytes("15 01 00 01 00 05") + reply), "drop 6");
    EXPECT_EQ(Examined(Framing::Tcp, request, Bytes("15 01 00 00 01 00") + reply), "drop 6");
    EXPECT_EQ(Examined(Framing::Tcp, request, Bytes("15 01 00 00 00 01") + reply), "drop 6");
    EXPECT_EQ(Examined(Framing::Tcp, request, Bytes("FF") + reply), "drop 1");
    EXPECT_EQ(Examined(Framing::Tcp, request, Bytes("15 02 00 00 00 FE") + reply), "drop 6");
}

TEST(ModbusFrameClientTest, EveryBeginningOfAReplyOverTcpAsksForMore)
{
    const Request request = Numbered(ReadHoldingRegisters(0xFF, 4, 1), 0x1501);
    const auto frame = Bytes("15 01 00 00 00 05 FF 03 02 00 05");
    for (std::size_t size = 0; size < frame.size(); ++size) {
        const std::vector<std::uint8_t> begun(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(Examined(Framing::Tcp, request, begun), "more") << size;
    }
}

}  // namespace
}  // namespace zr::modbus
