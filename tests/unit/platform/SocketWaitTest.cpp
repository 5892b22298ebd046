// Waiting for a socket: for what came, for room, for no longer than was said.
#include "platform/SocketWait.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>
#include <array>

namespace zr {
namespace {

using std::chrono::milliseconds;

class SocketWaitTest : public testing::Test {
protected:
    SocketWaitTest() { EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends.data()), 0); }
    ~SocketWaitTest() override
    {
        ::close(ends[0]);
        ::close(ends[1]);
    }

    std::array<int, 2> ends{};
};

TEST_F(SocketWaitTest, GivesUpWhenNothingComes)
{
    EXPECT_FALSE(WaitForSocket(ends[0], false, milliseconds(0)));
    EXPECT_FALSE(WaitForSocket(ends[0], false, milliseconds(2)));
    EXPECT_FALSE(WaitForSocket(ends[0], false, milliseconds(-5)));
}

TEST_F(SocketWaitTest, EndsWhenSomethingIsThere)
{
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    EXPECT_TRUE(WaitForSocket(ends[0], false, milliseconds(20000)));
}

TEST_F(SocketWaitTest, EndsWhenTheOtherSideHangsUp)
{
    ::shutdown(ends[1], SHUT_RDWR);
    EXPECT_TRUE(WaitForSocket(ends[0], false, milliseconds(20000)));
}

TEST_F(SocketWaitTest, EndsWhenThereIsRoomToWrite)
{
    EXPECT_TRUE(WaitForSocket(ends[0], true, milliseconds(20000)));
    std::array<char, 4096> bytes{};
    while (::write(ends[0], bytes.data(), bytes.size()) > 0) {
    }
    EXPECT_FALSE(WaitForSocket(ends[0], true, milliseconds(2)));
}

}  // namespace
}  // namespace zr
