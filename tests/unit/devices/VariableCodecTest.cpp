#include "devices/modbus/VariableCodec.h"

#include "WireBytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zr::modbus {
namespace {
using namespace test;

VariableLayout Layout(DataType type, WordOrder words = WordOrder::Big, int exponent = 0)
{
    VariableLayout layout;
    layout.type = type;
    layout.words = words;
    layout.count = RegistersOf(type);
    layout.registerExponent = exponent;
    return layout;
}

VariableLayout TextLayout(std::uint16_t registers)
{
    VariableLayout layout;
    layout.type = DataType::Text;
    layout.count = registers;
    return layout;
}

struct Row {
    VariableLayout layout;
    const char* wire;
    double stored;
};

const Row kRows[] = {
    {Layout(DataType::U16), "FF FE", 65534.0},
    {Layout(DataType::I16), "FF FE", -2.0},
    {Layout(DataType::I16), "80 00", -32768.0},
    {Layout(DataType::U16, WordOrder::Big, -1), "08 FD", 230.1},
    {Layout(DataType::I16, WordOrder::Big, -3), "FC 4B", -0.949},
    {Layout(DataType::U16, WordOrder::Big, 2), "00 0C", 1200.0},
    {Layout(DataType::U32), "00 01 86 A0", 100000.0},
    {Layout(DataType::U32, WordOrder::Little), "86 A0 00 01", 100000.0},
    {Layout(DataType::U32), "FF FF FF FF", 4294967295.0},
    {Layout(DataType::I32), "FF FF FF FF", -1.0},
    {Layout(DataType::I32, WordOrder::Little), "FF FE FF FF", -2.0},
    {Layout(DataType::U64), "00 00 00 01 00 00 00 00", 4294967296.0},
    {Layout(DataType::U64, WordOrder::Little), "00 00 00 00 00 01 00 00", 4294967296.0},
    {Layout(DataType::I64), "FF FF FF FF FF FF FF FE", -2.0},
    {Layout(DataType::I64), "80 00 00 00 00 00 00 00", -9223372036854775808.0},
    {Layout(DataType::F32), "43 66 00 00", 230.0},
    {Layout(DataType::F32, WordOrder::Little), "00 00 43 66", 230.0},
    {Layout(DataType::F32, WordOrder::Big, 3), "3F 80 00 00", 1000.0},
    {Layout(DataType::F64), "40 6C C0 00 00 00 00 00", 230.0},
    {Layout(DataType::F64, WordOrder::Little), "00 00 00 00 C0 00 40 6C", 230.0},
};

TEST(VariableCodecTest, EveryTypeAndWordOrderReadsItsWireBytes)
{
    for (const Row& row : kRows) {
        const auto value = DecodeNumber(row.layout, Bytes(row.wire), 0);
        ASSERT_TRUE(value.has_value()) << row.wire;
        EXPECT_EQ(*value, row.stored) << row.wire;
    }
}

TEST(VariableCodecTest, EveryTypeAndWordOrderWritesItsWireBytes)
{
    for (const Row& row : kRows) {
        std::vector<std::uint8_t> data(Bytes(row.wire).size());
        ASSERT_TRUE(EncodeNumber(row.layout, row.stored, data, 0)) << row.wire;
        EXPECT_EQ(Hex(data), row.wire);
    }
}

TEST(VariableCodecTest, AValueIsTakenFromItsOffset)
{
    const auto data = Bytes("00 00 00 01 86 A0 00 00");
    EXPECT_EQ(DecodeNumber(Layout(DataType::U32), data, 1), 100000.0);
}

TEST(VariableCodecTest, AFloatThatIsNoNumberGivesNoValue)
{
    EXPECT_FALSE(DecodeNumber(Layout(DataType::F32), Bytes("7F C0 00 00"), 0).has_value());
    EXPECT_FALSE(DecodeNumber(Layout(DataType::F32), Bytes("7F 80 00 00"), 0).has_value());
    EXPECT_FALSE(DecodeNumber(Layout(DataType::F64), Bytes("FF F0 00 00 00 00 00 00"), 0).has_value());
    EXPECT_FALSE(DecodeNumber(Layout(DataType::F64, WordOrder::Big, 12), Bytes("7F E0 00 00 00 00 00 00"), 0));
}

TEST(VariableCodecTest, WhatARegisterCannotHoldIsNotWritten)
{
    std::vector<std::uint8_t> data = Bytes("12 34 56 78 9A BC DE F0");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(EncodeNumber(Layout(DataType::U16), 65536.0, data, 0));
    EXPECT_FALSE(EncodeNumber(Layout(DataType::U16), -1.0, data, 0));
    EXPECT_FALSE(EncodeNumber(Layout(DataType::I16), 32768.0, data, 0));
    EXPECT_FALSE(EncodeNumber(Layout(DataType::U16, WordOrder::Big, -1), 6554.0, data, 0));
    EXPECT_FALSE(EncodeNumber(Layout(DataType::U64), 18446744073709551616.0, data, 0));
    EXPECT_FALSE(EncodeNumber(Layout(DataType::I64), 9223372036854775808.0, data, 0));
    EXPECT_FALSE(EncodeNumber(Layout(DataType::F32), 1e39, data, 0));
    EXPECT_FALSE(EncodeNumber(Layout(DataType::U16), nan, data, 0));
    EXPECT_FALSE(EncodeNumber(Layout(DataType::F32), nan, data, 0));
    EXPECT_FALSE(EncodeNumber(Layout(DataType::F64), nan, data, 0));
    EXPECT_FALSE(EncodeNumber(TextLayout(2), 1.0, data, 0));
    EXPECT_EQ(Hex(data), "12 34 56 78 9A BC DE F0");
}

TEST(VariableCodecTest, AWrittenValueIsRoundedToTheNearestRawNumber)
{
    std::vector<std::uint8_t> data(2);
    EXPECT_TRUE(EncodeNumber(Layout(DataType::U16, WordOrder::Big, -1), 0.26, data, 0));
    EXPECT_EQ(Hex(data), "00 03");
    EXPECT_TRUE(EncodeNumber(Layout(DataType::I16), -2.5, data, 0));
    EXPECT_EQ(Hex(data), "FF FD");
}

TEST(VariableCodecTest, ABitOfARegisterIsReadAndWrittenAlone)
{
    VariableLayout layout = Layout(DataType::Bit);
    layout.bit = 9;
    EXPECT_EQ(DecodeNumber(layout, Bytes("02 00"), 0), 1.0);
    EXPECT_EQ(DecodeNumber(layout, Bytes("FD FF"), 0), 0.0);
    std::vector<std::uint8_t> data = Bytes("F0 0F");
    EXPECT_TRUE(EncodeNumber(layout, 1.0, data, 0));
    EXPECT_EQ(Hex(data), "F2 0F");
    EXPECT_TRUE(EncodeNumber(layout, 0.0, data, 0));
    EXPECT_EQ(Hex(data), "F0 0F");
    EXPECT_FALSE(EncodeNumber(layout, 2.0, data, 0));
}

TEST(VariableCodecTest, ACoilIsReadAndWrittenByItsPlace)
{
    VariableLayout layout = Layout(DataType::Bit);
    layout.function = Function::ReadCoils;
    EXPECT_EQ(DecodeNumber(layout, Bytes("CD 6B"), 9), 1.0);
    EXPECT_EQ(DecodeNumber(layout, Bytes("CD 6B"), 10), 0.0);
    std::vector<std::uint8_t> data = Bytes("00 00");
    EXPECT_TRUE(EncodeNumber(layout, 1.0, data, 9));
    EXPECT_EQ(Hex(data), "00 02");
}

TEST(VariableCodecTest, ATextEndsAtItsNulAndLosesItsPadding)
{
    EXPECT_EQ(DecodeText(TextLayout(4), Bytes("4B 33 2D 31 00 41 42 43"), 0), ZRBasicString(u"K3-1"));
    EXPECT_EQ(DecodeText(TextLayout(3), Bytes("00 00 4B 33 20 20 20 20"), 1), ZRBasicString(u"K3"));
    EXPECT_EQ(DecodeText(TextLayout(2), Bytes("00 00 00 00"), 0), ZRBasicString());
    EXPECT_EQ(DecodeText(TextLayout(1), Bytes("41 07"), 0), ZRBasicString(u"A\uFFFD"));
}

TEST(VariableCodecTest, ATextIsWrittenCutAndPadded)
{
    std::vector<std::uint8_t> data = Bytes("FF FF FF FF FF FF");
    EncodeText(TextLayout(2), u"K3-1234", data, 0);
    EXPECT_EQ(Hex(data), "4B 33 2D 31 FF FF");
    EncodeText(TextLayout(2), u"\u00C4b", data, 1);
    EXPECT_EQ(Hex(data), "4B 33 3F 62 00 00");
}

}  // namespace
}  // namespace zr::modbus
