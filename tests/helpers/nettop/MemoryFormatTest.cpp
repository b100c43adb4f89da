#include "nettop/MemoryFormat.h"

#include <gtest/gtest.h>

namespace pulsebar::nettop {
namespace {

MemoryOrigin origin()
{
    MemoryOrigin made;
    made.boot[0] = 'b';
    made.network = 4;
    made.processes = 5;
    return made;
}

Memory example()
{
    Memory memory;
    OwnerRecord process;
    process.pid = 10;
    process.uid = 1000;
    process.startTicks = 77;
    process.received = 1;
    process.sent = ~std::uint64_t{0};
    process.lookedAt = 9;
    process.namedAt = 8;
    process.name = "na\u00efve";
    OwnerRecord nameless;
    nameless.pid = 11;
    OwnerRecord someone;
    someone.uid = 33;
    memory.owners = {process, nameless, someone};
    memory.sockets = {{1, 2, 3, 4, 0, 6, 7, 8, 0}, {9, 0, 0, 5, 2, 0, 0, 0, 1}};
    return memory;
}

TEST(MemoryFormat, ComesBackAsItWas)
{
    for (const auto &memory : {Memory(), example()}) {
        const auto back = decodeMemory(encodeMemory(memory, origin()), origin());
        ASSERT_TRUE(back);
        EXPECT_EQ(*back, memory);
    }
}

TEST(MemoryFormat, MeansNothingElsewhere)
{
    const auto bytes = encodeMemory(example(), origin());
    auto other = origin();
    other.boot[39] = 'x';
    EXPECT_FALSE(decodeMemory(bytes, other));
    other = origin();
    other.network = 9;
    EXPECT_FALSE(decodeMemory(bytes, other));
    other = origin();
    other.processes = 9;
    EXPECT_FALSE(decodeMemory(bytes, other));
    EXPECT_EQ(MemoryOrigin::here(), MemoryOrigin::here());
    EXPECT_NE(MemoryOrigin::here().boot[0], '\0');
    EXPECT_NE(MemoryOrigin::here().network, 0U);
}

TEST(MemoryFormat, RefusesEveryDamage)
{
    const auto bytes = encodeMemory(example(), origin());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        EXPECT_FALSE(decodeMemory(bytes.substr(0, i), origin())) << "cut at " << i;
        auto damaged = bytes;
        damaged[i] = static_cast<char>(damaged[i] ^ 0x10);
        EXPECT_FALSE(decodeMemory(damaged, origin())) << "damaged at " << i;
    }
    EXPECT_FALSE(decodeMemory(bytes + '\0', origin()));
    EXPECT_FALSE(decodeMemory(std::string(5000, '\xFF'), origin()));
}

TEST(MemoryFormat, RefusesWhatIsNotConsistent)
{
    const auto refused = [](const Memory &memory) {
        return !decodeMemory(encodeMemory(memory, origin()), origin());
    };
    auto memory = example();
    memory.sockets[0].owner = 3;
    EXPECT_TRUE(refused(memory));
    memory = example();
    memory.sockets[0].owner = noOwner;
    EXPECT_TRUE(refused(memory));
    memory = example();
    memory.sockets[1].cookie = memory.sockets[0].cookie;
    EXPECT_TRUE(refused(memory));
    memory = example();
    memory.owners[0].pid = -1;
    EXPECT_TRUE(refused(memory));
    for (const char *name : {"a,b", "a\nb", "tcp", "tcp4 ", "\x7F"}) {
        memory = example();
        memory.owners[0].name = name;
        EXPECT_TRUE(refused(memory)) << name;
    }
    memory = example();
    memory.owners[0].name = std::string(5000, 'a');
    EXPECT_TRUE(refused(memory));
}

TEST(MemoryFormat, IsBounded)
{
    Memory memory;
    memory.owners.resize(2);
    for (std::uint64_t i = 0; i < 100'000; ++i)
        memory.sockets.push_back({i + 1, 1, 0, 1, 1, 0, 0, 0, 0});
    const auto bytes = encodeMemory(memory, origin());
    EXPECT_LE(bytes.size(), largestMemory);
    const auto back = decodeMemory(bytes, origin());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->sockets.size(), 65536U);
    memory.owners.resize(100'000);
    EXPECT_EQ(encodeMemory(memory, origin()), "");
}

TEST(MemoryFormat, WhatIsLeftOutIsInNoTotal)
{
    constexpr std::uint64_t stored = 65536;
    Memory memory;
    memory.owners.resize(2);
    memory.owners[0].received = stored * 3;
    memory.owners[1].received = 1000;
    memory.owners[1].sent = 50; // it had the socket only for a part of what this one sent
    for (std::uint64_t i = 0; i < stored; ++i)
        memory.sockets.push_back({i + 1, 3, 0, 1, 0, 0, 0, 0, 0});
    memory.sockets.push_back({stored + 1, 400, 70, 1, 1, 0, 0, 0, 0});
    auto back = decodeMemory(encodeMemory(memory, origin()), origin());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->sockets.size(), stored);
    EXPECT_EQ(back->owners[0].received, stored * 3);
    EXPECT_EQ(back->owners[1].received, 600U);
    EXPECT_EQ(back->owners[1].sent, 0U);
    // One that moved nothing is not missed.
    memory.sockets[7].received = 0;
    back = decodeMemory(encodeMemory(memory, origin()), origin());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->sockets.size(), stored);
    EXPECT_EQ(back->sockets.back().cookie, stored + 1);
    EXPECT_EQ(back->owners, memory.owners);
}

TEST(Memory, DropsOwnersAndKeepsPlaces)
{
    auto memory = example();
    memory.sockets[0].owner = 2;
    dropOwners(memory, {false, false, true});
    ASSERT_EQ(memory.owners.size(), 1U);
    EXPECT_EQ(memory.owners[0].uid, 33U);
    EXPECT_EQ(memory.sockets[0].owner, 0U);
    EXPECT_EQ(memory.sockets[1].owner, 0U);
}

} // namespace
} // namespace pulsebar::nettop
