#include "helpers/common/TestFolder.h"
#include "helpers/nettop/NettopRun.h"
#include "helpers/nettop/TcpEnds.h"
#include "platform/TestNetwork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <chrono>
#include <unistd.h>

namespace pulsebar::nettop {
namespace {

TEST(NettopProgram, RefusesWhatItDoesNotKnow)
{
    for (const auto &arguments :
         std::vector<std::vector<std::string>>{{"-q"}, {"-m", "udp"}, {"-L"}, {"-s", "0"}}) {
        NettopRun run({arguments, {}, {}, 0});
        EXPECT_EQ(run.readAll(), "");
        const auto errors = run.readErrors();
        EXPECT_NE(errors.find("usage: pulsebar-nettop "), std::string::npos);
        EXPECT_EQ(errors.find('\n'), errors.size() - 1);
        EXPECT_EQ(run.wait(), 2);
    }
}

TEST(NettopProgram, TellsAboutItself)
{
    NettopRun help({{"--help"}, {}, {}, 0});
    EXPECT_TRUE(help.readAll().starts_with("usage: pulsebar-nettop "));
    EXPECT_EQ(help.wait(), 0);
    NettopRun version({{"--version"}, {}, {}, 0});
    EXPECT_THAT(version.readAll(),
                testing::MatchesRegex("pulsebar-nettop [0-9]+[.][0-9]+[.][0-9]+\n"));
    EXPECT_EQ(version.wait(), 0);
}

TEST(NettopProgram, WritesAReportAtOnce)
{
    const TestNetwork network;
    const TestNetwork::Visit visit(network);
    const Connection connection;
    NettopRun run({{"-L1", "-m", "tcp", "-c"}, {}, {}, 0});
    const auto report = run.readOnce();
    EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 5) << report;
    EXPECT_EQ(run.readAll(), "");
    EXPECT_EQ(run.wait(), 0);
}

TEST(NettopProgram, ANetworkWithoutSocketsHasAHeader)
{
    const TestNetwork network;
    const TestNetwork::Visit visit(network);
    NettopRun run({{}, {}, {}, 0});
    const auto report = run.readAll();
    EXPECT_TRUE(report.starts_with("time,,interface,state,bytes_in,bytes_out,"));
    EXPECT_EQ(report.find('\n'), report.size() - 1);
    EXPECT_EQ(run.wait(), 0);
}

TEST(NettopProgram, RepeatsInTime)
{
    const TestNetwork network;
    const TestNetwork::Visit visit(network);
    const TestFolder runtime;
    const Connection connection;
    transfer(connection.client, connection.server, 100);
    const auto start = std::chrono::steady_clock::now();
    NettopRun run({{"-L", "2", "-s", "1"}, runtime.path(), {}, 0});
    EXPECT_EQ(parseReport(run.readOnce()).begin()->second.in, 100U);
    transfer(connection.client, connection.server, 11);
    EXPECT_EQ(parseReport(run.readOnce()).begin()->second.in, 111U);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900));
    EXPECT_EQ(run.readOnce(), "");
    EXPECT_EQ(run.wait(), 0);
}

TEST(NettopProgram, EndsQuietlyWithItsReader)
{
    NettopRun run({{"-L", "0", "-s", "3600"}, {}, {}, 0});
    EXPECT_NE(run.readOnce(), "");
    run.closeOutput();
    EXPECT_EQ(run.wait(), 0);
    EXPECT_EQ(run.readErrors(), "");
}

TEST(NettopProgram, ReadsProcessesOfARecordedMachine)
{
    const TestNetwork network;
    const TestNetwork::Visit visit(network);
    const TestFolder machine;
    machine.writeStat(300, "recorded", 1, 77);
    const TestFolder runtime;
    const Connection connection;
    transfer(connection.client, connection.server, 100);
    std::string target(64, '\0');
    const auto link = "/proc/self/fd/" + std::to_string(connection.server.get());
    target.resize(static_cast<std::size_t>(::readlink(link.c_str(), target.data(), target.size())));
    std::filesystem::create_directories(machine.path() + "/proc/300/fd");
    std::filesystem::create_symlink(target, machine.path() + "/proc/300/fd/5");
    const auto owners = reportOf({{}, runtime.path(), machine.path(), 0});
    EXPECT_EQ(owners.at("recorded.300").in, 100U);
    EXPECT_EQ(owners.at("root: other processes").connections.size(), 2U);
    // A recorded machine is not this one's memory.
    EXPECT_FALSE(std::filesystem::exists(runtime.path() + "/pulsebar"));
}

/// From now on this process, and what it becomes, gets "protocol not supported" for netlink.
void takeNetlinkAway()
{
    constexpr unsigned netlink = 16;
    std::array<sock_filter, 6> program{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_socket, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[0])),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, netlink, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPROTONOSUPPORT),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog filter{program.size(), program.data()};
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter);
}

TEST(NettopProgram, SaysThatAKernelDoesNotTell)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const auto child = ::fork();
    if (child == 0) {
        takeNetlinkAway();
        ::dup2(ends[1], STDOUT_FILENO);
        ::dup2(ends[1], STDERR_FILENO);
        ::execl(PULSEBAR_NETTOP, PULSEBAR_NETTOP, nullptr);
        ::_exit(127);
    }
    ::close(ends[1]);
    std::string text(4096, '\0');
    text.resize(static_cast<std::size_t>(::read(ends[0], text.data(), text.size())));
    EXPECT_EQ(text, "pulsebar-nettop: the kernel does not list TCP sockets: Protocol not "
                    "supported\n");
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

} // namespace
} // namespace pulsebar::nettop
