// Peers that die, lie or stop reading.
#include "DdemlFixture.h"

#include "platform/ddeml/posix/Wire.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <csignal>
#include <fstream>

namespace zr::ddeml {

namespace {

std::size_t OpenDescriptors()
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

}  // namespace

class DdemlFault : public DdemlFixture {
protected:
    std::filesystem::path SocketPath() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(m_folder / "kestrix-dde")) {
            if (entry.path().extension() == ".sock") {
                return entry.path();
            }
        }
        return {};
    }
    // A connection that speaks for itself, not through this library.
    int RawConnect() const
    {
        const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        SocketPath().string().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        return fd;
    }
    static void SendRaw(int fd, const Frame& frame)
    {
        std::vector<std::uint8_t> bytes;
        EncodeFrame(frame, bytes);
        EXPECT_EQ(send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }
    static Frame ConnectFrame()
    {
        Frame frame;
        frame.kind = FrameKind::Connect;
        frame.format = kProtocol;
        frame.first = u"plant";
        frame.second = u"meter";
        return frame;
    }
    static Frame StartFrame(std::uint32_t link, const std::u16string& item)
    {
        Frame frame;
        frame.kind = FrameKind::AdviseStart;
        frame.format = CF_TEXT;
        frame.id = link;
        frame.extra = link;
        frame.first = item;
        return frame;
    }
};

TEST_F(DdemlFault, IsBackAtTheStartAfterAThousandDyingClients)
{
    const HCONV other = Connect(u"other");
    ASSERT_NE(Transact(other, u"U1", XTYP_ADVSTART), nullptr);
    Settle();
    const Statistics before = GetStatistics(g_server.instance);
    const std::size_t descriptors = OpenDescriptors();
    for (int i = 0; i < 1000; ++i) {
        const int fd = RawConnect();
        std::vector<std::uint8_t> bytes;
        EncodeFrame(ConnectFrame(), bytes);
        EncodeFrame(StartFrame(1, u"dying" + std::u16string(1, static_cast<char16_t>(0x4E00 + i))), bytes);
        EncodeFrame(StartFrame(2, u"second"), bytes);
        // Dies at another byte each time; the last ones after all is said.
        const std::size_t said = std::min(bytes.size(), static_cast<std::size_t>(i) % (bytes.size() + 20));
        EXPECT_EQ(send(fd, bytes.data(), said, MSG_NOSIGNAL), static_cast<ssize_t>(said));
        if (i % 3 == 0) {
            Settle();
            Post(u"second");
        }
        close(fd);
        Settle();
    }
    ASSERT_TRUE(Await([&] { return GetStatistics(g_server.instance).conversations == before.conversations; }));
    const Statistics after = GetStatistics(g_server.instance);
    EXPECT_EQ(after.links, before.links);
    EXPECT_EQ(after.data, before.data);
    EXPECT_LE(after.strings, before.strings + 2) << "those that the test itself made: meter and second";
    EXPECT_EQ(OpenDescriptors(), descriptors);
    Post(u"u1", u"other");
    EXPECT_TRUE(Await([] { return g_client.Count(XTYP_ADVDATA) == 1; }));
}

TEST_F(DdemlFault, NoticesAKilledClientProcess)
{
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const int socketOfChild = RawConnect();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        SendRaw(socketOfChild, ConnectFrame());
        SendRaw(socketOfChild, StartFrame(1, u"U1"));
        [[maybe_unused]] const ssize_t put = write(ready[1], "x", 1);
        for (;;) {
            pause();
        }
    }
    close(socketOfChild);
    ASSERT_TRUE(Await([] { return GetStatistics(g_server.instance).links == 1; }));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(Await([] { return g_server.Count(XTYP_DISCONNECT) == 1; }));
    EXPECT_EQ(GetStatistics(g_server.instance).links, 0U);
    close(ready[0]);
    close(ready[1]);
}

TEST_F(DdemlFault, ClosesAConnectionThatSendsAWrongLength)
{
    const HCONV good = Connect();
    const int fd = RawConnect();
    SendRaw(fd, ConnectFrame());
    const std::uint8_t bad[kHeaderSize] = {0xFF, 0xFF, 0xFF, 0x7F, 4};
    EXPECT_EQ(send(fd, bad, sizeof bad, MSG_NOSIGNAL), static_cast<ssize_t>(sizeof bad));
    ASSERT_TRUE(Await([] { return g_server.Count(XTYP_DISCONNECT) == 1; }));
    close(fd);
    EXPECT_NE(Transact(good, u"U1", XTYP_ADVSTART), nullptr);
}

TEST_F(DdemlFault, ClosesAConnectionThatUsesOneNumberForTwoLinks)
{
    const int fd = RawConnect();
    SendRaw(fd, ConnectFrame());
    SendRaw(fd, StartFrame(1, u"U1"));
    SendRaw(fd, StartFrame(1, u"U2"));
    ASSERT_TRUE(Await([] { return g_server.Count(XTYP_DISCONNECT) == 1; }));
    EXPECT_EQ(GetStatistics(g_server.instance).links, 0U);
    close(fd);
}

TEST_F(DdemlFault, BoundsTheConnectionsThatSayNothing)
{
    const std::size_t before = OpenDescriptors();
    std::vector<int> silent;
    for (int i = 0; i < 200; ++i) {
        silent.push_back(RawConnect());
        Settle();
    }
    EXPECT_LE(OpenDescriptors(), before + 200 + 64);
    EXPECT_NE(Connect(), nullptr);
    for (const int fd : silent) {
        close(fd);
    }
}

TEST_F(DdemlFault, KeepsOneNewestValueALinkForAClientThatDoesNotRead)
{
    const HCONV reader = Connect();
    ASSERT_NE(Transact(reader, u"U1", XTYP_ADVSTART), nullptr);
    const int stuck = RawConnect();
    SendRaw(stuck, ConnectFrame());
    SendRaw(stuck, StartFrame(1, u"U1"));
    ASSERT_TRUE(Await([] { return GetStatistics(g_server.instance).links == 2; }));
    constexpr int kPosts = 60000;
    for (int i = 1; i <= kPosts; ++i) {
        m_value = std::to_string(i);
        Post(u"u1");
        Settle();
    }
    EXPECT_EQ(g_client.Count(XTYP_ADVDATA), static_cast<std::size_t>(kPosts)) << "the other client misses nothing";
    EXPECT_EQ(PendingUpdates(g_server.instance), 1U);
    const Statistics statistics = GetStatistics(g_server.instance);
    EXPECT_GT(statistics.merged, 10000U);
    // It reads again: all that was sent, and the newest value last.
    std::string all;
    std::vector<char> chunk(1U << 16U);
    const std::string newest = std::to_string(kPosts);
    while (!all.ends_with(newest)) {
        Dispatch(std::chrono::milliseconds(0));
        const ssize_t got = recv(stuck, chunk.data(), chunk.size(), MSG_DONTWAIT);
        if (got > 0) {
            all.append(chunk.data(), static_cast<std::size_t>(got));
        } else if (PendingUpdates(g_server.instance) == 0 && !Dispatch(std::chrono::milliseconds(100))) {
            break;
        }
    }
    EXPECT_TRUE(all.ends_with(newest));
    EXPECT_EQ(PendingUpdates(g_server.instance), 0U);
    close(stuck);
}

TEST_F(DdemlFault, DoesNotHearAClientThatAsksWithoutReading)
{
    m_value = std::string(100000, 'x');
    const int fd = RawConnect();
    SendRaw(fd, ConnectFrame());
    Frame request;
    request.kind = FrameKind::Request;
    request.format = CF_TEXT;
    request.first = u"U1";
    for (std::uint32_t i = 1; i <= 100; ++i) {
        request.id = i;
        SendRaw(fd, request);
    }
    Settle();
    EXPECT_LT(g_server.Count(XTYP_REQUEST), 20U);
    // It reads: all replies come.
    std::size_t received = 0;
    std::vector<char> chunk(1U << 16U);
    while (received < 100U * 100000U) {
        Dispatch(std::chrono::milliseconds(0));
        const ssize_t got = recv(fd, chunk.data(), chunk.size(), MSG_DONTWAIT);
        received += got > 0 ? static_cast<std::size_t>(got) : 0;
        ASSERT_NE(got, 0);
    }
    EXPECT_EQ(g_server.Count(XTYP_REQUEST), 100U);
    close(fd);
}

TEST_F(DdemlFault, RemovesTheFilesOfADeadServer)
{
    const auto folder = m_folder / "kestrix-dde";
    // A server that died: its name is copied to a token of which the socket is gone, and to one whose socket is dead.
    std::filesystem::path name;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".name") {
            name = entry.path();
        }
    }
    const std::string label = name.filename().string().substr(0, name.filename().string().find('.'));
    for (const char* token : {"1-00000001", "1-00000002"}) {
        std::filesystem::copy_file(name, folder / (label + "." + token + ".name"));
    }
    const int dead = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (folder / "1-00000002.sock").string().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(dead, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(dead);
    std::filesystem::last_write_time(folder / (label + ".1-00000001.name"),
                                     std::filesystem::last_write_time(name) - std::chrono::hours(1));
    std::filesystem::last_write_time(folder / (label + ".1-00000002.name"),
                                     std::filesystem::last_write_time(name) - std::chrono::hours(2));
    EXPECT_NE(Connect(), nullptr);
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) {
        ++files;
    }
    EXPECT_EQ(files, 2U) << "the socket and the name of the living server";
}

TEST_F(DdemlFault, AsksTheOldestOfTwoServersOfOneName)
{
    Side second;
    static Side* target = nullptr;
    target = &second;
    second.answer = [](const Event&) { return Reply(1); };
    DWORD instance = 0;
    ASSERT_EQ(DdeInitializeW(
                  &instance,
                  [](UINT type, UINT format, HCONV c, HSZ a, HSZ b, HDDEDATA data, ULONG_PTR d1, ULONG_PTR d2) {
                      return target->On(type, format, c, a, b, data, d1, d2);
                  },
                  0, 0),
              DMLERR_NO_ERROR);
    second.instance = instance;
    const HSZ name = DdeCreateStringHandleW(instance, u"PLANT", CP_WINUNICODE);
    ASSERT_NE(DdeNameService(instance, name, nullptr, DNS_REGISTER), nullptr);
    ASSERT_NE(Connect(), nullptr);
    EXPECT_EQ(g_server.Count(XTYP_CONNECT), 1U);
    EXPECT_EQ(second.Count(XTYP_CONNECT), 0U);
    // What the first refuses, the next is asked for.
    g_server.answer = nullptr;
    EXPECT_NE(Connect(), nullptr);
    EXPECT_EQ(second.Count(XTYP_CONNECT), 1U);
    DdeUninitialize(instance);
}

TEST_F(DdemlFault, MakesFilesThatOnlyTheUserMayRead)
{
    struct stat info {};
    ASSERT_EQ(stat((m_folder / "kestrix-dde").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0700U);
    for (const auto& entry : std::filesystem::directory_iterator(m_folder / "kestrix-dde")) {
        ASSERT_EQ(stat(entry.path().c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777U, 0600U) << entry.path();
    }
}

}  // namespace zr::ddeml
