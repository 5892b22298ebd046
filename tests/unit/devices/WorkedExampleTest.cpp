// The example of docs/formats/device-profile.md.
#include "ProfileText.h"
#include "WireBytes.h"

#include <gtest/gtest.h>

namespace zr::modbus {
namespace {
using namespace test;

TEST(WorkedExampleTest, TheBytesOfTheDocumentGiveTheValueOfTheDocument)
{
    std::string error;
    const auto profile = Profile(ProfileText(Variable(R"(function="4" register="42" type="u32" words="little"
        registerExponent="1" unit="Wh" unitsExponent="3" unitsDecimals="2" class="counter" splittable="yes")")),
                                 error);
    ASSERT_NE(profile, nullptr) << error;
    const PlannedRead& read = profile->Plan()[0];
    const Request request = ReadInputRegisters(17, read.first, read.count);
    EXPECT_EQ(EncodedRequest(Framing::Rtu, request), Hex(WithCrc("11 04 00 2A 00 02")));
    const auto reply = WithCrc("11 04 04 86 A0 00 01");
    ASSERT_EQ(Examined(Framing::Rtu, request, reply), "accept 9");
    EXPECT_EQ(DecodeNumber(profile->Layout(0), ReadReply(Framing::Rtu, reply).data, 0), 1000000.0);
}

}  // namespace
}  // namespace zr::modbus
