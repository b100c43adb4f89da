#include "nettop/ProcFolder.h"

#include "helpers/common/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <unistd.h>

namespace pulsebar::nettop {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

std::vector<std::pair<std::uint32_t, std::uint32_t>> socketsOf(ProcFolder &processes, pid_t pid)
{
    std::vector<std::pair<std::uint32_t, std::uint32_t>> sockets;
    processes.lookAtSockets(pid, [&](std::uint32_t inode, std::uint32_t descriptor) {
        sockets.emplace_back(descriptor, inode);
        return true;
    });
    return sockets;
}

TEST(ProcFolder, SeesThisProcess)
{
    ProcFolder processes{Sysroot()};
    EXPECT_TRUE(processes.hasClocks());
    EXPECT_THAT(processes.list(), Contains(::getpid()));
    EXPECT_TRUE(processes.clock(::getpid()));
    const auto facts = processes.facts(::getpid());
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->uid, ::geteuid());
    EXPECT_EQ(facts->comm, "test_nettop");
    EXPECT_NE(processes.commandLine(::getpid()).find("test_nettop"), std::string::npos);

    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    struct stat about
    {
    };
    ASSERT_EQ(::fstat(descriptor, &about), 0);
    const auto number = static_cast<std::uint32_t>(descriptor);
    const auto inode = static_cast<std::uint32_t>(about.st_ino);
    EXPECT_THAT(socketsOf(processes, ::getpid()), Contains(Pair(number, inode)));
    EXPECT_TRUE(processes.holds(::getpid(), number, inode));
    EXPECT_FALSE(processes.holds(::getpid(), number, inode + 1));
    EXPECT_FALSE(processes.holds(::getpid(), 0, inode));
    ::close(descriptor);
    EXPECT_FALSE(processes.holds(::getpid(), number, inode));
}

TEST(ProcFolder, ReadsARecordedMachine)
{
    const TestFolder machine;
    machine.writeStat(300, "Web Server", 1, 77);
    machine.write("proc/300/cmdline", std::string("web\0-x\0", 7));
    machine.write("proc/300/fd/placeholder", "");
    const auto link = [&](const std::string &name, const std::string &target) {
        std::filesystem::create_symlink(target, machine.path() + "/proc/300/fd/" + name);
    };
    link("0", "/dev/null");
    link("3", "socket:[4711]");
    link("4", "pipe:[4712]");
    link("17", "socket:[4713]");
    machine.write("proc/meminfo", "");
    ProcFolder processes{Sysroot(machine.path())};
    EXPECT_FALSE(processes.hasClocks());
    EXPECT_FALSE(processes.clock(::getpid()));
    EXPECT_THAT(processes.list(), UnorderedElementsAre(300));
    EXPECT_EQ(processes.facts(300)->startTicks, 77U);
    EXPECT_EQ(processes.facts(300)->comm, "Web Server");
    EXPECT_EQ(processes.commandLine(300).size(), 7U);
    EXPECT_THAT(socketsOf(processes, 300), UnorderedElementsAre(Pair(3, 4711), Pair(17, 4713)));
    EXPECT_TRUE(processes.holds(300, 17, 4713));
    EXPECT_FALSE(processes.facts(301));
    EXPECT_THAT(socketsOf(processes, 301), IsEmpty());
}

TEST(ProcFolder, WithoutAFolderThereIsNobody)
{
    ProcFolder processes{Sysroot("/nonexistent")};
    EXPECT_THAT(processes.list(), IsEmpty());
    EXPECT_FALSE(processes.facts(1));
    EXPECT_EQ(processes.commandLine(1), "");
    EXPECT_THAT(socketsOf(processes, 1), IsEmpty());
}

TEST(ProcFolder, KnowsSocketsByTheirLinks)
{
    EXPECT_EQ(socketInodeOf("socket:[4711]"), 4711U);
    for (const char *target : {"", "socket:", "socket:[", "socket:[]", "socket:[x]", "socket:[0]",
                               "socket:[12", "socket:[99999999999]", "pipe:[4711]", "/socket:[1]"})
        EXPECT_FALSE(socketInodeOf(target)) << target;
}

} // namespace
} // namespace pulsebar::nettop
