#include "platform/linux_/KernelFacts.h"

#include "platform/TemporaryMachine.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

int of(SystemFact fact)
{
    return static_cast<int>(fact);
}

TEST(KernelFacts, ALaptop)
{
    const KernelFacts facts(recordedMachine("laptop"));
    EXPECT_EQ(facts.text(of(SystemFact::Machine)), "x86_64");
    EXPECT_EQ(facts.text(of(SystemFact::MachineArchitecture)), "x86_64");
    EXPECT_EQ(facts.text(of(SystemFact::Model)), "Example Book 14");
    EXPECT_EQ(facts.text(of(SystemFact::DiskNames)), "nvme0n1");
    EXPECT_EQ(facts.number(of(SystemFact::PhysicalMemory)), 16128412LL * 1024);
    EXPECT_EQ(facts.number(of(SystemFact::UserMemory)),
              (16128412LL - 104200 - 209864 - 19120 - 52200) * 1024);
    EXPECT_EQ(facts.number(of(SystemFact::CpuFrequency)), 2'100'000'000);
    EXPECT_EQ(facts.number(of(SystemFact::CacheLine)), 64);
    EXPECT_EQ(facts.number(of(SystemFact::L1InstructionCache)), 32 << 10);
    EXPECT_EQ(facts.number(of(SystemFact::L1DataCache)), 48 << 10);
    EXPECT_EQ(facts.number(of(SystemFact::L2Cache)), 1280 << 10);
    EXPECT_EQ(facts.number(of(SystemFact::L3Cache)), 12288 << 10);
}

TEST(KernelFacts, AServerWhoseMakerFilledInNothing)
{
    const KernelFacts facts(recordedMachine("server"));
    EXPECT_EQ(facts.text(of(SystemFact::Model)), "Rack Board X1");
    EXPECT_EQ(facts.number(of(SystemFact::CpuFrequency)), 2'450'000'000);
    EXPECT_EQ(facts.number(of(SystemFact::L3Cache)), 32 << 20);
    EXPECT_EQ(facts.text(of(SystemFact::DiskNames)), "sda sdb sr0");
    const auto statistics = facts.text(of(SystemFact::DiskStatistics));
    ASSERT_TRUE(statistics);
    EXPECT_EQ(statistics->substr(0, 26), "sda 90233441 120344 712034");
    EXPECT_NE(statistics->find("\nsr0 0 0 0"), std::string::npos);
}

TEST(KernelFacts, ABoardDescribedByADeviceTree)
{
    const KernelFacts facts(recordedMachine("board"));
    EXPECT_EQ(facts.text(of(SystemFact::Machine)), "aarch64");
    EXPECT_EQ(facts.text(of(SystemFact::Model)), "Example Single Board Rev 1.2");
    EXPECT_EQ(facts.number(of(SystemFact::CpuFrequency)), 1'500'000'000);
    EXPECT_FALSE(facts.number(of(SystemFact::CacheLine)));
    EXPECT_FALSE(facts.number(of(SystemFact::L2Cache)));
    EXPECT_FALSE(facts.number(of(SystemFact::BusFrequency)));
}

TEST(KernelFacts, AVirtualMachineTellsItsPresentClock)
{
    const KernelFacts facts(recordedMachine("vm"));
    EXPECT_EQ(facts.number(of(SystemFact::CpuFrequency)), 2'499'998'000);
    EXPECT_FALSE(facts.number(of(SystemFact::L3Cache)));
}

TEST(KernelFacts, AContainerTellsLittle)
{
    const KernelFacts facts(recordedMachine("container"));
    EXPECT_FALSE(facts.text(of(SystemFact::Model)));
    EXPECT_FALSE(facts.number(of(SystemFact::CpuFrequency)));
    EXPECT_EQ(facts.text(of(SystemFact::DiskNames)), "");
    EXPECT_EQ(facts.number(of(SystemFact::UserMemory)), 2097152LL * 1024);
}

TEST(KernelFacts, AnEmptyMachineTellsNothingButThePageSize)
{
    const TemporaryMachine machine;
    const KernelFacts facts(machine.root());
    for (int selector = -1; selector <= 30; ++selector) {
        EXPECT_FALSE(facts.text(selector)) << selector;
        EXPECT_EQ(facts.number(selector).has_value(), selector == of(SystemFact::PageSize))
            << selector;
    }
}

TEST(KernelFacts, UnknownSelectorsAndTheWrongKindAreAbsent)
{
    const KernelFacts facts(recordedMachine("laptop"));
    constexpr int endMarker = 26;
    EXPECT_FALSE(facts.number(endMarker));
    EXPECT_FALSE(facts.text(endMarker));
    EXPECT_FALSE(facts.number(of(SystemFact::Model)));
    EXPECT_FALSE(facts.text(of(SystemFact::PhysicalMemory)));
}

TEST(KernelFacts, TheRunningKernelKnowsItself)
{
    const KernelFacts facts{Sysroot()};
    EXPECT_FALSE(facts.text(of(SystemFact::Machine)).value_or("").empty());
    EXPECT_GT(facts.number(of(SystemFact::PhysicalMemory)).value_or(0), 1 << 20);
    EXPECT_GE(facts.number(of(SystemFact::PageSize)).value_or(0), 4096);
}

TEST(KernelFacts, CoresAreCountedHoweverManyThreadsTheyRun)
{
    TemporaryMachine machine;
    const std::string cpus = "/sys/devices/system/cpu/cpu";
    for (const auto &[thread, siblings] : {std::pair{"0", "0,4\n"}, std::pair{"1", "1,5\n"},
                                           std::pair{"4", "0,4\n"}, std::pair{"5", "1,5\n"}})
        machine.write(cpus + thread + "/topology/thread_siblings_list", siblings);
    machine.write(cpus + "6/online", "0\n");
    machine.write(cpus + "freq/policy0/x", "\n");
    const KernelFacts facts(machine.root());
    EXPECT_EQ(facts.numberByName("hw.physicalcpu"), 2);
    EXPECT_EQ(facts.numberByName("hw.logicalcpu"), std::nullopt);
    EXPECT_EQ(KernelFacts(TemporaryMachine().root()).numberByName("hw.physicalcpu"), std::nullopt);
}

} // namespace
} // namespace pulsebar
