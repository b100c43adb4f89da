#include "helpers/common/TestFolder.h"
#include "helpers/nettop/NettopRun.h"
#include "helpers/nettop/TcpEnds.h"
#include "platform/TestNetwork.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

namespace pulsebar::nettop {
namespace {

/// A child process that does one thing after the other, each when it is told to.
class Actor
{
public:
    using Step = std::function<void()>;

    explicit Actor(const std::vector<Step> &steps)
    {
        std::array<int, 2> pair{};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()), 0);
        m_pid = ::fork();
        if (m_pid == 0) {
            ::close(pair[0]);
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            play(steps, pair[1]);
        }
        ::close(pair[1]);
        m_control = pair[0];
    }
    ~Actor()
    {
        ::close(m_control);
        end();
    }
    Actor(const Actor &) = delete;
    Actor &operator=(const Actor &) = delete;

    pid_t pid() const { return m_pid; }
    /// Has the next step done.
    void act() const
    {
        char done = 0;
        ASSERT_EQ(::write(m_control, "x", 1), 1);
        ASSERT_EQ(::read(m_control, &done, 1), 1);
    }
    void end()
    {
        if (m_pid > 0) {
            ::kill(m_pid, SIGKILL);
            ::waitpid(m_pid, nullptr, 0);
        }
        m_pid = 0;
    }

private:
    [[noreturn]] static void play(const std::vector<Step> &steps, int control)
    {
        char told = 0;
        for (const auto &step : steps) {
            if (::read(control, &told, 1) != 1)
                break;
            step();
            if (::write(control, "x", 1) != 1)
                break;
        }
        // Until the other side is gone.
        while (::read(control, &told, 1) > 0) {
        }
        ::_exit(0);
    }

    pid_t m_pid = 0;
    int m_control = -1;
};

class HandoverTest : public testing::Test
{
protected:
    /// The line of a process, or of what has that name.
    ReportedOwner line(const std::string &name)
    {
        const auto owners = reportOf(m_setting);
        const auto found = owners.find(name);
        EXPECT_NE(found, owners.end()) << name;
        return found == owners.end() ? ReportedOwner() : found->second;
    }
    bool hasLine(const std::string &name) { return reportOf(m_setting).contains(name); }
    static std::string nameOf(const char *name, const Actor &actor)
    {
        return std::string(name) + '.' + std::to_string(actor.pid());
    }
    static bool holds(const ReportedOwner &owner, const std::string &localName)
    {
        for (const auto &connection : owner.connections) {
            if (connection.address.starts_with(localName + "<->"))
                return true;
        }
        return false;
    }

    TestFolder m_runtime;
    NettopSetting m_setting{{"-L1", "-m", "tcp", "-c"}, m_runtime.path(), {}, 0};
    TestNetwork m_network;
    TestNetwork::Visit m_visit{m_network};
};

TEST_F(HandoverTest, ASharedSocketIsCountedOnceAndInherited)
{
    const auto listener = listenAt("127.0.0.1");
    const auto port = listener.port();
    Socket client;
    pid_t child = 0;
    std::array<int, 2> told{};
    ASSERT_EQ(::pipe2(told.data(), O_CLOEXEC), 0);
    // The parent connects and forks; both hold the socket from then on.
    Actor parent({[&] {
        ::prctl(PR_SET_NAME, "parent");
        client = connectTo("127.0.0.1", port);
        const auto number = client.port();
        ASSERT_EQ(::write(told[1], &number, sizeof number), ssize_t{sizeof number});
        ::usleep(20'000);
        child = ::fork();
        if (child == 0) {
            ::prctl(PR_SET_NAME, "heir");
            const auto own = ::getpid();
            if (::write(told[1], &own, sizeof own) != ssize_t{sizeof own})
                ::_exit(1);
            for (;;)
                ::pause();
        }
    }});
    parent.act();
    std::uint16_t number = 0;
    ASSERT_EQ(::read(told[0], &number, sizeof number), ssize_t{sizeof number});
    ASSERT_EQ(::read(told[0], &child, sizeof child), ssize_t{sizeof child});
    const auto name = "127.0.0.1:" + std::to_string(number);
    const auto server = acceptFrom(listener);
    ASSERT_EQ(::send(server.get(), "12345", 5, 0), 5);
    waitUntilSent(server);

    const auto heir = "heir." + std::to_string(child);
    const auto owner = line(nameOf("parent", parent));
    EXPECT_TRUE(holds(owner, name));
    EXPECT_EQ(owner.in, 5U);
    EXPECT_FALSE(hasLine(heir));
    parent.end();
    ASSERT_EQ(::send(server.get(), "678", 3, 0), 3);
    waitUntilSent(server);
    const auto inherited = line(heir);
    EXPECT_TRUE(holds(inherited, name));
    EXPECT_EQ(inherited.in, 3U);
    ::kill(child, SIGKILL);
    ::close(told[0]);
    ::close(told[1]);
}

bool sendDescriptor(int channel, int descriptor)
{
    char text = 'd';
    iovec content{&text, 1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> space{};
    msghdr message{};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    message.msg_control = space.data();
    message.msg_controllen = space.size();
    cmsghdr *header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
    return ::sendmsg(channel, &message, 0) == 1;
}

bool takeDescriptor(int channel)
{
    char text = 0;
    iovec content{&text, 1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> space{};
    msghdr message{};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    message.msg_control = space.data();
    message.msg_controllen = space.size();
    return ::recvmsg(channel, &message, 0) == 1 && CMSG_FIRSTHDR(&message) != nullptr;
}

TEST_F(HandoverTest, ASocketThatIsPassedOnGoesToWhoTookIt)
{
    std::array<int, 2> channel{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, channel.data()), 0);
    const auto listener = listenAt("127.0.0.1");
    const auto port = listener.port();
    Socket client;
    Actor giver({[&] {
                     ::prctl(PR_SET_NAME, "giver");
                     client = connectTo("127.0.0.1", port);
                 },
                 [&] {
                     if (sendDescriptor(channel[0], client.get()))
                         client.close();
                 }});
    Actor taker({[&] { ::prctl(PR_SET_NAME, "taker"); },
                 [&] {
                     if (!takeDescriptor(channel[1]))
                         ::_exit(1);
                 }});
    ::close(channel[0]);
    ::close(channel[1]);
    giver.act();
    taker.act();
    const auto server = acceptFrom(listener);
    ASSERT_EQ(::send(server.get(), "12345", 5, 0), 5);
    waitUntilSent(server);
    EXPECT_EQ(line(nameOf("giver", giver)).in, 5U);
    giver.act();
    taker.act();
    ASSERT_EQ(::send(server.get(), "678", 3, 0), 3);
    waitUntilSent(server);
    const auto owners = reportOf(m_setting);
    EXPECT_EQ(owners.at(nameOf("giver", giver)).in, 5U);
    EXPECT_TRUE(owners.at(nameOf("giver", giver)).connections.empty());
    EXPECT_EQ(owners.at(nameOf("taker", taker)).in, 3U);
    EXPECT_EQ(owners.at(nameOf("taker", taker)).connections.size(), 1U);
}

TEST_F(HandoverTest, AnotherUsersSocketsStandUnderTheUser)
{
    const Connection connection;
    transfer(connection.client, connection.server, 1000);
    const TestFolder runtime;
    ASSERT_EQ(::chown(runtime.path().c_str(), 65534, 65534), 0);
    const NettopSetting asNobody{{"-L1", "-m", "tcp", "-c"}, runtime.path(), {}, 65534};
    for (int i = 0; i < 2; ++i) {
        const auto owners = reportOf(asNobody);
        ASSERT_EQ(owners.size(), 1U);
        const auto &[name, owner] = *owners.begin();
        EXPECT_EQ(name, "root: other processes");
        EXPECT_EQ(owner.in, 1000U);
        EXPECT_EQ(owner.out, 1000U);
        EXPECT_EQ(owner.connections.size(), 3U);
    }
    EXPECT_TRUE(std::filesystem::exists(runtime.path() + "/pulsebar/nettop.state"));
}

TEST_F(HandoverTest, AnOrdinaryUserSeesOwnProcesses)
{
    const auto listener = listenAt("127.0.0.1");
    const auto port = listener.port();
    Socket client;
    Actor actor({[&] {
        ::prctl(PR_SET_NAME, "somebody");
        ::close(listener.get()); // only the other process's
        if (::setuid(65534) != 0)
            ::_exit(1);
        ::prctl(PR_SET_DUMPABLE, 1);
        client = connectTo("127.0.0.1", port);
    }});
    actor.act();
    const auto server = acceptFrom(listener);
    const TestFolder runtime;
    ASSERT_EQ(::chown(runtime.path().c_str(), 65534, 65534), 0);
    const auto owners = reportOf({{"-L1"}, runtime.path(), {}, 65534});
    EXPECT_EQ(owners.size(), 2U);
    EXPECT_EQ(owners.at(nameOf("somebody", actor)).connections.size(), 1U);
    EXPECT_EQ(owners.at("root: other processes").connections.size(), 2U);
}

TEST_F(HandoverTest, NoNameBreaksTheReport)
{
    const auto listener = listenAt("127.0.0.1");
    const auto port = listener.port();
    Socket client;
    const char *name = "";
    for (const char *each : {"tcp4 1.2.3.4:5", "a,b,c", "x\ntcp4 y,,,,,,", "\xFF\xFE", "time"}) {
        name = each;
        Actor actor({[&] {
            ::prctl(PR_SET_NAME, name);
            client = connectTo("127.0.0.1", port);
        }});
        actor.act();
        const auto server = acceptFrom(listener);
        const auto owners = reportOf(m_setting);
        const auto end = '.' + std::to_string(actor.pid());
        int found = 0;
        for (const auto &[owner, line] : owners) {
            if (owner.ends_with(end)) {
                ++found;
                EXPECT_EQ(line.connections.size(), 1U) << owner;
            }
        }
        EXPECT_EQ(found, 1) << each;
    }
}

} // namespace
} // namespace pulsebar::nettop
