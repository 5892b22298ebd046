#include "devices/simulation/RegisterEncoder.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace {

using zr::EncodeRegisters;
using zr::EncodeTextRegisters;
using zr::StoredText;
using zr::modbus::DataType;
using zr::modbus::VariableLayout;
using zr::modbus::WordOrder;
using Words = std::vector<std::uint16_t>;

VariableLayout Layout(DataType type, WordOrder order = WordOrder::Big, int registerExponent = 0)
{
    VariableLayout layout;
    layout.type = type;
    layout.count = zr::modbus::RegistersOf(type);
    layout.words = order;
    layout.registerExponent = registerExponent;
    return layout;
}

TEST(RegisterEncoder, PutsNumbersIntoRegistersInBothWordOrders)
{
    EXPECT_EQ(EncodeRegisters(Layout(DataType::U16), 0, 2304.0), (Words{0x0900}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::I16), 0, -2.0), (Words{0xFFFE}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::U32), 0, 0x12345678), (Words{0x1234, 0x5678}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::U32, WordOrder::Little), 0, 0x12345678), (Words{0x5678, 0x1234}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::I64), 0, -1.0), (Words{0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::U64, WordOrder::Little), 0, 1.0), (Words{1, 0, 0, 0}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::F32), 0, 1.0), (Words{0x3F80, 0x0000}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::F32, WordOrder::Little), 0, 1.0), (Words{0x0000, 0x3F80}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::F64), 0, -2.0), (Words{0xC000, 0, 0, 0}));
}

TEST(RegisterEncoder, AppliesTheExponentsOfRegisterAndVariable)
{
    EXPECT_EQ(EncodeRegisters(Layout(DataType::U16, WordOrder::Big, -1), 0, 230.14), (Words{2301}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::U16), -6, 0.0123), (Words{12300}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::U32, WordOrder::Big, 1), 3, 1'230'000.0), (Words{0, 123}));
}

TEST(RegisterEncoder, HoldsNumbersAtTheLimitsOfTheType)
{
    EXPECT_EQ(EncodeRegisters(Layout(DataType::U16), 0, 70'000.0), (Words{0xFFFF}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::U16), 0, -1.0), (Words{0}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::I16), 0, -40'000.0), (Words{0x8000}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::I64), 0, 1e300), (Words{0x7FFF, 0xFFFF, 0xFFFF, 0xFFFF}));
    EXPECT_EQ(EncodeRegisters(Layout(DataType::U16), 0, std::numeric_limits<double>::quiet_NaN()), (Words{0}));
}

TEST(RegisterEncoder, PutsABitAtItsPlace)
{
    VariableLayout layout = Layout(DataType::Bit);
    layout.bit = 11;
    EXPECT_EQ(EncodeRegisters(layout, 0, 1.0), (Words{0x0800}));
    EXPECT_EQ(EncodeRegisters(layout, 0, 0.0), (Words{0}));
    EXPECT_EQ(StoredText(layout, Words{0x0800}), "1");
    EXPECT_EQ(StoredText(layout, Words{0xF7FF}), "0");
}

TEST(RegisterEncoder, PadsAndCutsTexts)
{
    VariableLayout layout = Layout(DataType::Text);
    layout.count = 2;
    EXPECT_EQ(EncodeTextRegisters(layout, "ABC"), (Words{0x4142, 0x4300}));
    EXPECT_EQ(EncodeTextRegisters(layout, "ABCDEF"), (Words{0x4142, 0x4344}));
    EXPECT_EQ(StoredText(layout, Words{0x4142, 0x4300}), "ABC");
}

TEST(RegisterEncoder, TellsTheStoredValueThatTheRegistersMean)
{
    EXPECT_EQ(StoredText(Layout(DataType::U16, WordOrder::Big, -1), Words{2301}), "230.1");
    EXPECT_EQ(StoredText(Layout(DataType::I16, WordOrder::Big, -3), Words{0xFCE0}), "-0.8");
    EXPECT_EQ(StoredText(Layout(DataType::U32, WordOrder::Little), Words{0x5678, 0x1234}), "305419896");
    EXPECT_EQ(StoredText(Layout(DataType::F32), Words{0x3F80, 0x0000}), "1");
    EXPECT_EQ(StoredText(Layout(DataType::U16, WordOrder::Big, 2), Words{3}), "300");
}

// The driver's codec is written apart: what one side encodes, the other must read.
TEST(RegisterEncoder, AgreesWithTheCodecOfTheDriver)
{
    const std::vector<double> reals = {0.0, 1.0, 229.95, 4711.0, 65'535.0, 123'456.0};
    for (const DataType type : {DataType::U16, DataType::I16, DataType::U32, DataType::I32, DataType::U64,
                                DataType::I64, DataType::F32, DataType::F64}) {
        for (const WordOrder order : {WordOrder::Big, WordOrder::Little}) {
            for (const int exponent : {-2, 0, 1}) {
                for (const double real : reals) {
                    const VariableLayout layout = Layout(type, order, exponent);
                    const Words words = EncodeRegisters(layout, 0, real);
                    std::vector<std::uint8_t> data(words.size() * 2);
                    for (std::size_t i = 0; i < words.size(); ++i) {
                        zr::modbus::SetRegister(data, i, words[i]);
                    }
                    const auto stored = zr::modbus::DecodeNumber(layout, data, 0);
                    ASSERT_TRUE(stored);
                    EXPECT_EQ(*stored, std::stod(StoredText(layout, words)));
                }
            }
        }
    }
}

}  // namespace
