// Peers that die, lie or stop reading.
#include "DdemlFixture.h"

#include "platform/ddeml/posix/RuntimeFolder.h"
#include "platform/ddeml/posix/Wire.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>

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

std::size_t ResidentBytes()
{
    std::ifstream statm("/proc/self/statm");
    std::size_t size = 0;
    std::size_t resident = 0;
    statm >> size >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// What the sanitizers keep of the memory that was freed.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kSanitizerBytes = 1U << 29U;
#else
constexpr std::size_t kSanitizerBytes = 0;
#endif

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
    static sockaddr_un AddressOf(const std::filesystem::path& path)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.string().copy(address.sun_path, sizeof address.sun_path - 1);
        return address;
    }
    static constexpr int kNotAnother = 99;
    sockaddr_un SocketAddress() const { return AddressOf(SocketPath()); }
    // -1, with errno, when it is refused.
    static int TryConnect(const sockaddr_un& address)
    {
        const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        return connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? fd : -1;
    }
    // A connection that speaks for itself, not through this library.
    static int RawConnect(const sockaddr_un& address)
    {
        const int fd = TryConnect(address);
        EXPECT_GE(fd, 0) << std::strerror(errno);
        return fd;
    }
    int RawConnect() const { return RawConnect(SocketAddress()); }
    void OpenToEverybody() const
    {
        using std::filesystem::perms;
        for (const auto& path : {m_folder, m_folder / "kestrix-dde", SocketPath()}) {
            std::filesystem::permissions(path, perms(0777));
        }
    }
    // Runs that in a child that has become the user "nobody" while this process goes on to serve, and returns its
    // status. The child stands in the test's folder: no wall further out, such as a private root of a container, can
    // keep it from the ones that are tested.
    int AsAnotherUser(const std::function<int()>& run) const
    {
        constexpr uid_t kNobody = 65534;
        const pid_t child = fork();
        if (child == 0) {
            const bool stands = chdir(m_folder.c_str()) == 0;
            _exit(stands && setgid(kNobody) == 0 && setuid(kNobody) == 0 ? run() : kNotAnother);
        }
        int status = -1;
        EXPECT_TRUE(Await([&] { return waitpid(child, &status, WNOHANG) == child; }));
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    // Root may, where its machine has such a user.
    bool CanBecomeAnotherUser() const
    {
        const uid_t user = geteuid();
        return AsAnotherUser([user] { return geteuid() != user ? 0 : kNotAnother; }) == 0;
    }
    // As seen from the test's folder.
    sockaddr_un RelativeAddress() const { return AddressOf(SocketPath().lexically_relative(m_folder)); }
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

TEST_F(DdemlFault, IsBackAtTheStartAfterManyConnections)
{
    // scripts/check --all asks for a million of them.
    const char* const wanted = std::getenv("ZR_DDE_CONNECTIONS");
    const int count = wanted != nullptr ? std::atoi(wanted) : 20000;
    ASSERT_GT(count, 0);
    const HCONV other = Connect(u"other");
    ASSERT_NE(Transact(other, u"U1", XTYP_ADVSTART), nullptr);
    std::vector<std::uint8_t> whole;
    EncodeFrame(ConnectFrame(), whole);
    const auto address = SocketAddress();
    const auto connectOnce = [&](int i) {
        const int fd = RawConnect(address);
        // Nothing, half a word, garbage, or a conversation.
        const std::size_t said = i % 4 == 0 ? 0 : i % 4 == 1 ? whole.size() / 2 : whole.size();
        std::vector<std::uint8_t> bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(said));
        if (i % 4 == 2) {
            bytes[4] = 0xFF;
        }
        ASSERT_EQ(send(fd, bytes.data(), said, MSG_NOSIGNAL), static_cast<ssize_t>(said));
        if (i % 2 == 0) {
            Settle();
        }
        close(fd);
        Settle();
        g_server.events.clear();
    };
    for (int i = 0; i < 1000; ++i) {
        connectOnce(i);
    }
    const Statistics before = GetStatistics(g_server.instance);
    const std::size_t descriptors = OpenDescriptors();
    const std::size_t memory = ResidentBytes();
    for (int i = 0; i < count && !HasFatalFailure(); ++i) {
        connectOnce(i);
    }
    const Statistics after = GetStatistics(g_server.instance);
    EXPECT_EQ(after.conversations, before.conversations);
    EXPECT_EQ(after.links, before.links);
    EXPECT_EQ(after.strings, before.strings);
    EXPECT_EQ(after.data, before.data);
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_LT(ResidentBytes(), memory + (1U << 20U) + kSanitizerBytes) << "1 MB, whatever the number of connections";
    Post(u"u1", u"other");
    EXPECT_TRUE(Await([] { return g_client.Count(XTYP_ADVDATA) == 1; })) << "the other client is not disturbed";
}

TEST_F(DdemlFault, TellsWhoseProcessIsAtTheOtherEnd)
{
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    EXPECT_TRUE(IsPeerOfThisUser(ends[0]));
    EXPECT_TRUE(IsPeerOfUser(ends[0], geteuid()));
    EXPECT_FALSE(IsPeerOfUser(ends[0], geteuid() + 1));
    close(ends[0]);
    close(ends[1]);
    EXPECT_FALSE(IsPeerOfThisUser(ends[0])) << "not even a socket";
}

// Who can't become another user has the test above, which is all there is then.
TEST_F(DdemlFault, RefusesAProcessOfAnotherUser)
{
    if (!CanBecomeAnotherUser()) {
        EXPECT_NE(Connect(), nullptr) << "one's own is taken";
        return;
    }
    const auto address = RelativeAddress();
    EXPECT_EQ(AsAnotherUser([&] { return TryConnect(address) < 0 && errno == EACCES ? 0 : 1; }), 0)
        << "the folder lets nobody else in";
    // Though folder and socket stood open, the server would close the connection.
    OpenToEverybody();
    const auto speak = [&] {
        const int fd = TryConnect(address);
        if (fd < 0) {
            return 1;
        }
        std::vector<std::uint8_t> bytes;
        EncodeFrame(ConnectFrame(), bytes);
        send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);  // fails where it was closed already
        char byte = 0;
        const ssize_t got = recv(fd, &byte, 1, 0);  // nothing but the end
        return got == 0 || (got < 0 && errno == ECONNRESET) ? 0 : 2;
    };
    EXPECT_EQ(AsAnotherUser(speak), 0);
    EXPECT_EQ(g_server.Count(XTYP_CONNECT), 0U);
    EXPECT_EQ(GetStatistics(g_server.instance).conversations, 0U);
    EXPECT_NE(Connect(), nullptr) << "one's own is taken";
}

TEST_F(DdemlFault, DoesNotBelieveAServerOfAnotherUser)
{
    if (!CanBecomeAnotherUser()) {
        EXPECT_NE(Connect(), nullptr) << "one's own is believed";
        return;
    }
    OpenToEverybody();
    const auto own = SocketPath();
    const auto address = RelativeAddress();
    ASSERT_EQ(rename(own.c_str(), (own.string() + ".kept").c_str()), 0);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const auto listenThere = [&] {
        // The socket is this process's; who listens is who its client sees.
        return bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                       listen(listener, 8) == 0
                   ? 0
                   : 1;
    };
    ASSERT_EQ(AsAnotherUser(listenThere), 0);
    EXPECT_EQ(Connect(), nullptr);
    close(listener);
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
