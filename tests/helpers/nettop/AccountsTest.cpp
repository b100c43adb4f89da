#include "nettop/Accounts.h"

#include "helpers/nettop/FakeProcesses.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar::nettop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t user = 1000;

/// Sockets, processes, and what is made of them from report to report.
class AccountsTest : public testing::Test
{
protected:
    TcpSocket &socket(std::uint64_t cookie, std::uint32_t inode, std::uint64_t received = 0,
                      std::uint64_t sent = 0)
    {
        auto &made = sockets[cookie];
        made.cookie = cookie;
        made.inode = inode;
        made.uid = user;
        made.state = TcpState::Established;
        made.hasCounters = true;
        made.counters.received = received;
        made.counters.sent = sent;
        return made;
    }
    void left(std::uint64_t cookie)
    {
        auto &socket = sockets[cookie];
        socket.cookie = cookie;
        socket.inode = socket.uid = 0;
        socket.state = TcpState::TimeWait;
        socket.hasCounters = false;
        socket.left = true;
        socket.counters = {};
    }
    bool report(std::uint32_t viewer = user)
    {
        processes.forget();
        std::vector<TcpSocket> list;
        for (const auto &[cookie, socket] : sockets)
            list.push_back(socket);
        Accounts accounts(memory, processes, viewer);
        accounts.update(list, ++time);
        owners.clear();
        for (std::size_t i = 0; i < list.size(); ++i)
            owners[list[i].cookie] = memory.owners.at(accounts.ownerOf(i));
        return accounts.hasChanged();
    }
    /// The process that owns a socket; minus the user's number for a user's line.
    std::int64_t ownerOf(std::uint64_t cookie)
    {
        const auto &owner = owners.at(cookie);
        return owner.isProcess() ? owner.pid : -std::int64_t{owner.uid};
    }
    const OwnerRecord *process(pid_t pid) const
    {
        for (const auto &owner : memory.owners) {
            if (owner.pid == pid)
                return &owner;
        }
        return nullptr;
    }
    std::uint64_t receivedBy(pid_t pid) const
    {
        return process(pid) ? process(pid)->received : ~std::uint64_t{0};
    }

    std::map<std::uint64_t, TcpSocket> sockets;
    FakeProcesses processes;
    Memory memory;
    std::map<std::uint64_t, OwnerRecord> owners;
    std::uint32_t time = 100;
};

TEST_F(AccountsTest, FindsTheHolderOnceAndLooksNoFurther)
{
    processes.give(10, 501);
    processes.run(11);
    socket(1, 501, 70, 30);
    EXPECT_TRUE(report());
    EXPECT_EQ(ownerOf(1), 10);
    EXPECT_EQ(receivedBy(10), 70U);
    EXPECT_EQ(process(10)->sent, 30U);
    EXPECT_EQ(process(10)->name, "program");
    EXPECT_FALSE(report());
    EXPECT_EQ(processes.lists, 0);
    EXPECT_THAT(processes.looks, IsEmpty());
    EXPECT_EQ(processes.factsRead, 0);
}

TEST_F(AccountsTest, LooksOnlyAtWhoRan)
{
    for (pid_t pid = 10; pid < 30; ++pid)
        processes.run(pid).start = static_cast<std::uint64_t>(pid);
    processes.give(10, 501);
    socket(1, 501);
    socket(2, 999); // nobody's: everybody is looked at
    report();
    EXPECT_EQ(processes.looks.size(), 20U);
    processes.give(25, 502);
    processes.run(27);
    socket(3, 502);
    report();
    EXPECT_THAT(processes.looks, ElementsAre(25));
    EXPECT_EQ(ownerOf(3), 25);
}

TEST_F(AccountsTest, TotalsCountClosedConnections)
{
    processes.give(10, 501);
    socket(1, 501, 1000);
    report();
    sockets[1].counters.received = 1500;
    report();
    sockets.clear();
    report();
    report();
    report();
    EXPECT_EQ(receivedBy(10), 1500U);
    EXPECT_THAT(memory.sockets, IsEmpty());
    processes.give(10, 502);
    socket(2, 502, 11);
    report();
    EXPECT_EQ(receivedBy(10), 1511U);
}

TEST_F(AccountsTest, ASocketThatAListMissedIsCountedOnce)
{
    processes.give(10, 501);
    const auto made = socket(1, 501, 1000);
    report();
    sockets.clear();
    report();
    sockets[1] = made;
    report();
    EXPECT_EQ(receivedBy(10), 1000U);
    EXPECT_EQ(processes.lists, 0);
}

TEST_F(AccountsTest, WhatIsLeftOfAConnectionStaysWithItsOwner)
{
    processes.give(10, 501);
    socket(1, 501, 1000, 7);
    report();
    left(1);
    report();
    EXPECT_EQ(ownerOf(1), 10);
    EXPECT_EQ(receivedBy(10), 1000U);
    EXPECT_EQ(memory.sockets.front().received, 1000U);
    left(2);
    report();
    EXPECT_EQ(ownerOf(2), -std::int64_t{OwnerRecord::nobodyKnown});
}

TEST_F(AccountsTest, AnOrphanThatStillSendsStaysWithItsOwner)
{
    processes.give(10, 501);
    socket(1, 501, 0, 100);
    report();
    socket(1, 0, 0, 300).state = TcpState::FinWait1;
    report();
    EXPECT_EQ(ownerOf(1), 10);
    EXPECT_EQ(process(10)->sent, 300U);
    processes.end(10);
    sockets[1].counters.sent = 350;
    report();
    EXPECT_EQ(ownerOf(1), -std::int64_t{user});
    EXPECT_EQ(owners[1].sent, 50U);
}

TEST_F(AccountsTest, AnOrphanThatTheKernelCallsRootsIsNotRoots)
{
    auto &orphan = socket(1, 0, 0, 100);
    orphan.state = TcpState::FinWait1;
    orphan.uid = 0;
    report();
    EXPECT_EQ(ownerOf(1), -std::int64_t{OwnerRecord::nobodyKnown});
    EXPECT_EQ(owners[1].sent, 100U);
    // Those in a queue are whom the kernel says.
    socket(2, 0).uid = 0;
    report();
    EXPECT_EQ(ownerOf(2), 0);
}

TEST_F(AccountsTest, SharedSocketsBelongToTheOldestAndAreCountedOnce)
{
    processes.give(30, 501);
    processes.run(30).start = 5;
    processes.give(20, 501);
    processes.run(20).start = 6;
    processes.give(10, 501);
    processes.run(10).start = 7;
    socket(1, 501, 1000);
    report();
    EXPECT_EQ(ownerOf(1), 30);
    // An even older one of another user comes last.
    processes.give(5, 502);
    processes.run(5).uid = 0;
    processes.give(40, 502);
    processes.run(40).start = 9;
    socket(2, 502, 1);
    report();
    EXPECT_EQ(ownerOf(2), 40);
    std::uint64_t sum = 0;
    for (const auto &owner : memory.owners)
        sum += owner.received;
    EXPECT_EQ(sum, 1001U);
}

TEST_F(AccountsTest, ASocketGoesToWhoTakesItOver)
{
    processes.give(10, 501);
    socket(1, 501, 1000);
    report();
    processes.give(20, 501);
    processes.run(10).sockets.clear();
    sockets[1].counters.received = 1600;
    report();
    EXPECT_EQ(ownerOf(1), 20);
    EXPECT_EQ(receivedBy(10), 1000U); // it lives on, and does not fall
    EXPECT_EQ(receivedBy(20), 600U);
}

TEST_F(AccountsTest, AllGoThatAreHandedOverByWhoNeverRunsAgain)
{
    for (std::uint32_t inode = 501; inode < 506; ++inode) {
        processes.give(10, inode);
        socket(inode, inode, 1000);
    }
    report();
    for (std::uint32_t inode = 501; inode < 506; ++inode)
        processes.give(20, inode);
    processes.run(10).sockets.clear();
    report();
    for (std::uint32_t inode = 501; inode < 506; ++inode)
        EXPECT_EQ(ownerOf(inode), 20) << inode;
    EXPECT_THAT(processes.looks, ElementsAre(10, 20)); // each once
}

TEST_F(AccountsTest, ASocketThatMovesBytesIsCheckedAmongManyThatDoNot)
{
    for (std::uint32_t inode = 501; inode < 2501; ++inode) {
        processes.give(10, inode);
        socket(inode, inode, 1000);
    }
    report();
    processes.give(20, 1700);
    processes.run(10).sockets.erase(3 + 1700 - 501);
    sockets[1700].counters.sent = 50;
    report();
    ASSERT_EQ(ownerOf(1700), 20);
    EXPECT_EQ(process(10)->sent, 0U);
    EXPECT_EQ(process(20)->sent, 50U);
    EXPECT_LE(processes.checks, 31);
}

TEST_F(AccountsTest, ChecksAreBounded)
{
    for (std::uint32_t inode = 501; inode < 2501; ++inode) {
        processes.give(10, inode);
        socket(inode, inode, 1000);
    }
    report();
    for (auto &[cookie, each] : sockets)
        each.counters.received = 2000;
    report();
    EXPECT_GE(processes.checks, 16);
    EXPECT_LE(processes.checks, 31);
    EXPECT_EQ(receivedBy(10), 2000U * 2000U);
}

TEST_F(AccountsTest, ASocketGoesToAnHeirThatNeverRanAgain)
{
    processes.give(10, 501);
    processes.give(11, 501);
    processes.run(11).start = 3;
    socket(1, 501, 1000);
    socket(2, 999);
    report();
    EXPECT_EQ(ownerOf(1), 10);
    processes.end(10);
    report();
    EXPECT_EQ(ownerOf(1), 11);
}

TEST_F(AccountsTest, ADescriptorThatMovedIsStillHeld)
{
    processes.give(10, 501);
    socket(1, 501, 1000);
    report();
    processes.run(10).sockets = {{77, 501}};
    report();
    EXPECT_EQ(ownerOf(1), 10);
    EXPECT_EQ(processes.lists, 0);
    EXPECT_EQ(memory.sockets.front().descriptor, 77U);
}

TEST_F(AccountsTest, ASuccessorInTheNumberIsAnotherProcess)
{
    processes.give(10, 501);
    socket(1, 501, 1000);
    report();
    processes.end(10);
    processes.run(10).start = 99;
    processes.processes[10].sockets[3] = 502;
    sockets.clear();
    socket(2, 502, 5);
    report();
    EXPECT_EQ(ownerOf(2), 10);
    EXPECT_EQ(receivedBy(10), 5U);
    EXPECT_EQ(process(10)->startTicks, 99U);
}

TEST_F(AccountsTest, WhatMayNotBeSeenStandsUnderTheUser)
{
    processes.give(10, 501);
    processes.run(10).isOpen = false;
    processes.run(10).uid = 0;
    socket(1, 501, 1000).uid = 0;
    report();
    EXPECT_EQ(ownerOf(1), 0);
    EXPECT_FALSE(owners[1].isProcess());
    EXPECT_EQ(owners[1].received, 1000U);
    // It is not looked for again at once, but after a while.
    processes.run(10);
    EXPECT_FALSE(report());
    EXPECT_EQ(processes.lists, 0);
    time += 40;
    processes.run(10).isOpen = true;
    report();
    EXPECT_EQ(ownerOf(1), 10);
    EXPECT_EQ(receivedBy(10), 0U); // what the user was credited with is not counted twice
}

TEST_F(AccountsTest, LooksAgainMoreAndMoreSeldom)
{
    socket(1, 501);
    report();
    int lists = 0;
    for (int i = 0; i < 2000; ++i) {
        report();
        lists += processes.lists;
    }
    EXPECT_GE(lists, 5);
    EXPECT_LE(lists, 9);
}

TEST_F(AccountsTest, AQueuedConnectionStandsUnderTheListener)
{
    processes.give(10, 501);
    auto &listener = socket(1, 501);
    listener.state = TcpState::Listen;
    listener.localPort = 80;
    socket(2, 0, 400).localPort = 80;
    report();
    EXPECT_EQ(ownerOf(2), 10);
    EXPECT_EQ(receivedBy(10), 0U);
    // A worker takes it: all that came before was sent to the worker.
    processes.give(20, 502);
    sockets[2].inode = 502;
    report();
    EXPECT_EQ(ownerOf(2), 20);
    EXPECT_EQ(receivedBy(10), 0U);
    EXPECT_EQ(receivedBy(20), 400U);
    socket(3, 0, 5).localPort = 81;
    report();
    EXPECT_EQ(ownerOf(3), -std::int64_t{user});
}

TEST_F(AccountsTest, AMoreExactListenerGoesFirst)
{
    processes.give(10, 501);
    processes.give(11, 502);
    processes.run(11).start = 1;
    for (const std::uint32_t inode : {501U, 502U}) {
        auto &listener = socket(inode, inode);
        listener.state = TcpState::Listen;
        listener.localPort = 80;
    }
    sockets[502].localAddress[0] = std::byte{127};
    auto &waiting = socket(600, 0);
    waiting.localPort = 80;
    waiting.localAddress[0] = std::byte{127};
    report();
    EXPECT_EQ(ownerOf(600), 11);
}

TEST_F(AccountsTest, WithoutClocksEverybodyIsLookedAt)
{
    processes.clocksWork = false;
    processes.give(10, 501);
    processes.run(11).start = 4;
    socket(1, 501, 10);
    report();
    EXPECT_EQ(ownerOf(1), 10);
    processes.processes[11].sockets[3] = 502;
    socket(2, 502, 20);
    report();
    EXPECT_EQ(ownerOf(2), 11);
    EXPECT_EQ(processes.lists, 1);
    processes.end(10);
    sockets.erase(1);
    report();
    EXPECT_EQ(process(10), nullptr);
}

TEST_F(AccountsTest, ForgetsWhoIsGone)
{
    for (pid_t pid = 10; pid < 20; ++pid)
        processes.give(pid, 500 + static_cast<std::uint32_t>(pid));
    for (std::uint32_t inode = 510; inode < 520; ++inode)
        socket(inode, inode, 1);
    report();
    for (pid_t pid = 10; pid < 19; ++pid)
        processes.end(pid);
    for (std::uint32_t inode = 510; inode < 519; ++inode)
        sockets.erase(inode);
    report();
    report();
    EXPECT_EQ(memory.owners.size(), 1U);
    EXPECT_EQ(memory.sockets.size(), 1U);
}

TEST_F(AccountsTest, SaysWhetherSomethingIsNew)
{
    processes.give(10, 501);
    socket(1, 501, 10);
    EXPECT_TRUE(report());
    EXPECT_FALSE(report());
    sockets[1].counters.sent = 1;
    EXPECT_TRUE(report());
    EXPECT_FALSE(report());
    processes.run(10).comm = "renamed";
    EXPECT_TRUE(report());
    EXPECT_EQ(process(10)->name, "renamed");
}

} // namespace
} // namespace pulsebar::nettop
