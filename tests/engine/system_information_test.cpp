#include "engine/SystemInformation.h"
#include "support/FakeSources.h"
#include "support/QtPrinting.h"

namespace pulsebar {
namespace {

constexpr std::int64_t Mebi = 1 << 20;

TEST(SystemInformation, TextsByName)
{
    fakes::FactsAnswer facts;
    facts.texts = {{1, "x86_64"}, {2, "Väli 3"}, {8, "sda sdb"}, {9, "s"}, {12, "amd64"}};
    const SystemInformation system(&facts);
    EXPECT_EQ(system.machineName(), QStringLiteral("x86_64"));
    EXPECT_EQ(system.modelName(), QStringLiteral("Väli 3"));
    EXPECT_EQ(system.diskName(), QStringLiteral("sda sdb"));
    EXPECT_EQ(system.diskStat(), QStringLiteral("s"));
    EXPECT_EQ(system.machineArchitecture(), QStringLiteral("amd64"));
}

TEST(SystemInformation, NumbersInTheirUnits)
{
    fakes::FactsAnswer facts;
    facts.numbers = {{5, 16384 * Mebi},  {6, 12000 * Mebi + 5}, {7, 4096},
                     {14, 100000000},    {15, 2400999999},      {16, 64},
                     {17, 32768},        {18, 49152},           {20, 2 * Mebi},
                     {22, 24 * Mebi - 1}};
    const SystemInformation system(&facts);
    EXPECT_EQ(system.PHYSMEM(), 16384);
    EXPECT_EQ(system.userMemory(), 12000);
    EXPECT_EQ(system.pageSize(), 0);
    EXPECT_EQ(system.busFreq(), 100);
    EXPECT_EQ(system.cpuFreq(), 2400);
    EXPECT_EQ(system.cacheLine(), 64);
    EXPECT_EQ(system.L1IcacheSize(), 32768);
    EXPECT_EQ(system.L1DcacheSize(), 49152);
    EXPECT_EQ(system.L2cacheSize(), 2);
    EXPECT_EQ(system.L3cacheSize(), 23);
}

TEST(SystemInformation, WhatTheSystemRejects)
{
    const fakes::FactsAnswer nothing;
    for (const SystemFacts *facts :
         {static_cast<const SystemFacts *>(&nothing), static_cast<const SystemFacts *>(nullptr)}) {
        const SystemInformation system(facts);
        EXPECT_EQ(system.hwMaxID(), -1);
        EXPECT_EQ(system.sysStringForType(26), QStringLiteral("N/A"));
        EXPECT_EQ(system.sysNumberForType(26, 1), -1);
        EXPECT_EQ(system.PHYSMEM(), -1);
        EXPECT_EQ(system.machineName(), QStringLiteral("N/A"));
    }
}

TEST(SystemInformation, ADivisorOfNothingIsRejected)
{
    fakes::FactsAnswer facts;
    facts.numbers = {{5, 7}};
    EXPECT_EQ(SystemInformation(&facts).sysNumberForType(5, 0), -1);
    EXPECT_EQ(SystemInformation(&facts).sysNumberForType(5, 2), 3);
}

} // namespace
} // namespace pulsebar
