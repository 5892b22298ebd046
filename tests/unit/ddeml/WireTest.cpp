#include "platform/ddeml/posix/Wire.h"

#include <gtest/gtest.h>

namespace zr::ddeml {

namespace {

std::vector<std::uint8_t> Encode(const Frame& frame)
{
    std::vector<std::uint8_t> bytes;
    EncodeFrame(frame, bytes);
    return bytes;
}

Frame Start()
{
    Frame frame;
    frame.kind = FrameKind::AdviseStart;
    frame.format = 1;
    frame.id = 7;
    frame.extra = 3;
    frame.first = u"U1";
    return frame;
}

DecodeState Decode(const std::vector<std::uint8_t>& bytes, std::size_t limit = kMaxFrameSize)
{
    Frame frame;
    std::size_t used = 0;
    return DecodeFrame(bytes, limit, frame, used);
}

}  // namespace

TEST(Wire, WritesTheBytesOfTheWorkedExample)
{
    EXPECT_EQ(Encode(Start()), (std::vector<std::uint8_t>{24, 0, 0,    0, 3,    0, 1, 0, 7, 0, 0, 0, 3, 0, 0, 0,  //
                                                          2,  0, 0x55, 0, 0x31, 0, 0, 0}));
}

TEST(Wire, ReadsWhatItWrote)
{
    Frame poke;
    poke.kind = FrameKind::Poke;
    poke.first = u"item";
    poke.second = u"XlTable";
    poke.id = 0xFFFFFFFF;
    const std::vector<std::uint8_t> data{1, 2, 3};
    poke.data = data;
    const auto bytes = Encode(poke);
    Frame read;
    std::size_t used = 0;
    ASSERT_EQ(DecodeFrame(bytes, kMaxFrameSize, read, used), DecodeState::Complete);
    EXPECT_EQ(used, bytes.size());
    EXPECT_EQ(read.first, u"item");
    EXPECT_EQ(read.second, u"XlTable");
    EXPECT_EQ(read.id, 0xFFFFFFFFU);
    EXPECT_EQ(std::vector<std::uint8_t>(read.data.begin(), read.data.end()), data);
}

TEST(Wire, WaitsForTheRestOfAFrameAtEveryByte)
{
    auto bytes = Encode(Start());
    while (!bytes.empty()) {
        bytes.pop_back();
        EXPECT_EQ(Decode(bytes), DecodeState::Partial);
    }
}

TEST(Wire, RefusesFramesThatDoNotKeepToTheFormat)
{
    const auto with = [](std::size_t at, std::uint8_t value) {
        auto bytes = Encode(Start());
        bytes[at] = value;
        return Decode(bytes);
    };
    EXPECT_EQ(with(0, 15), DecodeState::Bad) << "shorter than its header";
    EXPECT_EQ(with(3, 0x7F), DecodeState::Bad) << "longer than any frame";
    EXPECT_EQ(with(4, 0), DecodeState::Bad) << "unknown kind";
    EXPECT_EQ(with(4, 11), DecodeState::Bad) << "unknown kind";
    EXPECT_EQ(with(5, 0x80), DecodeState::Bad) << "unknown flag";
    EXPECT_EQ(with(16, 200), DecodeState::Bad) << "text beyond the frame";
    EXPECT_EQ(with(17, 1), DecodeState::Bad) << "text of more than 255 units";
    EXPECT_EQ(with(18, 0), DecodeState::Bad) << "zero within a text";
    EXPECT_EQ(with(4, 8), DecodeState::Complete) << "a reply with data behind its text";
    EXPECT_EQ(with(4, 10), DecodeState::Bad) << "data where there are none";
    EXPECT_EQ(Decode(Encode(Start()), 20), DecodeState::Bad) << "more than a stranger may send";
}

}  // namespace zr::ddeml
