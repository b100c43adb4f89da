#include "platform/linux_/SysBlockDisks.h"

#include "platform/TemporaryMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using testing::ElementsAre;

std::vector<std::string> namesOf(const std::optional<std::vector<DiskCounters>> &disks)
{
    std::vector<std::string> names;
    if (disks) {
        for (const auto &disk : *disks)
            names.push_back(disk.name);
    }
    return names;
}

TEST(SysBlockDisks, CountersOfADiskInBytesAndNanoseconds)
{
    const auto disks = SysBlockDisks(recordedMachine("vm")).readDiskCounters();
    ASSERT_THAT(namesOf(disks), ElementsAre("vda"));
    const DiskCounters &disk = disks->front();
    EXPECT_EQ(disk.readOperations, 20344);
    EXPECT_EQ(disk.readBytes, 1203344LL * 512);
    EXPECT_EQ(disk.readTime, 4120LL * 1'000'000);
    EXPECT_EQ(disk.writeOperations, 30122);
    EXPECT_EQ(disk.writtenBytes, 2203344LL * 512);
    EXPECT_EQ(disk.writeTime, 12033LL * 1'000'000);
}

TEST(SysBlockDisks, WhatTheKernelDoesNotCountIsAbsent)
{
    const auto disks = SysBlockDisks(recordedMachine("vm")).readDiskCounters();
    ASSERT_THAT(namesOf(disks), ElementsAre("vda"));
    const DiskCounters &disk = disks->front();
    EXPECT_FALSE(disk.readErrors || disk.writeErrors || disk.readRetries || disk.writeRetries ||
                 disk.readLatency || disk.writeLatency);
}

TEST(SysBlockDisks, OnlyRealDisksInTheOrderOfTheirNames)
{
    EXPECT_THAT(namesOf(SysBlockDisks(recordedMachine("laptop")).readDiskCounters()),
                ElementsAre("nvme0n1"));
    EXPECT_THAT(namesOf(SysBlockDisks(recordedMachine("server")).readDiskCounters()),
                ElementsAre("sda", "sdb", "sr0"));
    EXPECT_THAT(namesOf(SysBlockDisks(recordedMachine("board")).readDiskCounters()),
                ElementsAre("mmcblk0"));
}

TEST(SysBlockDisks, TheOrderIsThatOfBytes)
{
    const TemporaryMachine machine;
    for (const char *name : {"sdb", "sdaa", "sda", "nvme10n1", "nvme2n1"})
        machine.write(std::string("sys/block/") + name + "/device/model", "disk\n");
    EXPECT_THAT(namesOf(SysBlockDisks(machine.root()).readDiskCounters()),
                ElementsAre("nvme10n1", "nvme2n1", "sda", "sdaa", "sdb"));
}

TEST(SysBlockDisks, AMachineWithoutDisksHasAnEmptyList)
{
    const auto disks = SysBlockDisks(recordedMachine("container")).readDiskCounters();
    ASSERT_TRUE(disks);
    EXPECT_TRUE(disks->empty());
}

TEST(SysBlockDisks, WithoutTheFolderTheListIsAbsent)
{
    EXPECT_FALSE(SysBlockDisks(TemporaryMachine().root()).readDiskCounters());
}

TEST(SysBlockDisks, ADiskWithoutStatisticsKeepsItsPlace)
{
    const TemporaryMachine machine;
    machine.write("sys/block/sda/device/model", "a\n");
    machine.write("sys/block/sdb/device/model", "b\n");
    machine.write("sys/block/sdb/stat", " 1 0 2 3 4 0 5 6 0 0 0\n");
    const auto disks = SysBlockDisks(machine.root()).readDiskCounters();
    ASSERT_THAT(namesOf(disks), ElementsAre("sda", "sdb"));
    EXPECT_FALSE(disks->at(0).readBytes || disks->at(0).writeTime);
    EXPECT_EQ(disks->at(1).readBytes, 1024);
}

void addDisk(const TemporaryMachine &machine, const std::string &name, const std::string &stat)
{
    machine.write("sys/block/" + name + "/device/model", "disk\n");
    machine.write("sys/block/" + name + "/stat", stat);
}

TEST(SysBlockDisks, ANewDiskIsThereWithinAFewReadings)
{
    const TemporaryMachine machine;
    addDisk(machine, "sdb", "1 0 1 1 1 0 1 1 0 0 0\n");
    SysBlockDisks source(machine.root());
    EXPECT_THAT(namesOf(source.readDiskCounters()), ElementsAre("sdb"));
    addDisk(machine, "sda", "7 0 1 1 1 0 1 1 0 0 0\n");
    machine.write("sys/block/dm-0/stat", "7 0 1 1 1 0 1 1 0 0 0\n");
    auto disks = source.readDiskCounters();
    for (int reading = 2; reading <= 4; ++reading)
        disks = source.readDiskCounters();
    ASSERT_THAT(namesOf(disks), ElementsAre("sda", "sdb"));
    EXPECT_EQ(disks->at(0).readOperations, 7);
    EXPECT_EQ(disks->at(1).readOperations, 1);
}

TEST(SysBlockDisks, ADiskThatIsPulledOutIsGoneAtTheNextReading)
{
    const TemporaryMachine machine;
    addDisk(machine, "sda", "1 0 1 1 1 0 1 1 0 0 0\n");
    addDisk(machine, "sdb", "2 0 1 1 1 0 1 1 0 0 0\n");
    SysBlockDisks source(machine.root());
    EXPECT_THAT(namesOf(source.readDiskCounters()), ElementsAre("sda", "sdb"));
    machine.remove("sys/block/sda");
    const auto disks = source.readDiskCounters();
    ASSERT_THAT(namesOf(disks), ElementsAre("sdb"));
    EXPECT_EQ(disks->at(0).readOperations, 2);
}

TEST(SysBlockDisks, ANewDiskOfAnOldNameStartsWithItsOwnFigures)
{
    const TemporaryMachine machine;
    machine.write("sys/block/sda/device/model", "old\n");
    machine.write("sys/block/sda/stat", "900 0 1 1 1 0 1 1 0 0 0\n");
    SysBlockDisks source(machine.root());
    EXPECT_EQ(source.readDiskCounters()->at(0).readOperations, 900);
    machine.remove("sys/block/sda");
    machine.write("sys/block/sda/device/model", "new\n");
    machine.write("sys/block/sda/stat", "3 0 1 1 1 0 1 1 0 0 0\n");
    EXPECT_EQ(source.readDiskCounters()->at(0).readOperations, 3);
}

TEST(SysBlockDisks, TheSinglePathsOfAMultipathDiskAreNotCountedAgain)
{
    const TemporaryMachine machine;
    for (const char *name : {"nvme0c0n1", "nvme0c1n1", "nvme0n1"})
        machine.write(std::string("sys/block/") + name + "/device/model", "disk\n");
    machine.write("sys/block/nvme0c0n1/hidden", "1\n");
    machine.write("sys/block/nvme0c1n1/hidden", "1\n");
    machine.write("sys/block/nvme0n1/hidden", "0\n");
    EXPECT_THAT(namesOf(SysBlockDisks(machine.root()).readDiskCounters()), ElementsAre("nvme0n1"));
}

TEST(SysBlockDisks, FiguresThatNoDiskCanReachAreAbsent)
{
    const TemporaryMachine machine;
    machine.write("sys/block/sda/device/model", "a\n");
    machine.write("sys/block/sda/stat", "1 0 18446744073709551615 18446744073709551615 2 0 8 9\n");
    const auto disks = SysBlockDisks(machine.root()).readDiskCounters();
    EXPECT_FALSE(disks->at(0).readBytes);
    EXPECT_FALSE(disks->at(0).readTime);
    EXPECT_EQ(disks->at(0).writtenBytes, 4096);
}

} // namespace
} // namespace pulsebar
