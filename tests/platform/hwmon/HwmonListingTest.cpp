#include "platform/linux_/hwmon/HwmonListing.h"

#include "platform/hwmon/HwmonTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace pulsebar {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

std::vector<std::string> namesOf(const HwmonListing &listing)
{
    std::vector<std::string> names;
    for (const auto &chip : listing.chips())
        names.push_back(chip.name);
    return names;
}

TEST(HwmonListing, NoMachineHasNoList)
{
    const HwmonTree machine;
    HwmonListing listing(machine.root());
    EXPECT_EQ(listing.refresh(), ENOENT);
    EXPECT_THAT(listing.chips(), IsEmpty());
    EXPECT_FALSE(listing.hasChanged());
}

TEST(HwmonListing, ChipsAreInTheOrderOfTheirNumbers)
{
    const HwmonTree machine;
    for (const int number : {10, 9, 2, 0})
        machine.plainChip(number, "chip" + std::to_string(number), {{"temp1_input", "1"}});
    machine.plainChip(1, "power", {{"power1_input", "1"}});
    machine.write("sys/class/hwmon/other/temp1_input", "1\n");
    HwmonListing listing(machine.root());
    EXPECT_EQ(listing.refresh(), 0);
    EXPECT_THAT(namesOf(listing), ElementsAre("chip0", "chip2", "chip9", "chip10"));
}

TEST(HwmonListing, InputsAreInTheOrderOfTheirNumbers)
{
    const HwmonTree machine;
    machine.plainChip(0, "chip",
                      {{"temp10_input", "1"},
                       {"temp2_input", "1"},
                       {"temp2_label", "two"},
                       {"temp2_fault", "0"},
                       {"temp3_label", "without input"},
                       {"temp4_max", "9"},
                       {"fan2_input", "1"},
                       {"fan2_max", "1"},
                       {"fan1_input", "1"},
                       {"fan1_target", "1"},
                       {"fan1_min", "1"}});
    HwmonListing listing(machine.root());
    listing.refresh();
    const auto &chip = listing.chips().front();
    EXPECT_EQ(chip.temperatures,
              (std::vector<TemperatureInput>{{2, "two", true}, {10, "", false}}));
    EXPECT_EQ(chip.fans, (std::vector<FanInput>{{1, true, false, true}, {2, false, true, false}}));
}

TEST(HwmonListing, OldDriversHaveTheirFilesAtTheDevice)
{
    const HwmonTree machine;
    machine.write("sys/class/hwmon/hwmon0/device/temp1_input", "41000\n");
    machine.write("sys/class/hwmon/hwmon0/device/temp1_label", "Board\n");
    machine.write("sys/class/hwmon/hwmon0/device/name", "lm90\n");
    HwmonListing listing(machine.root());
    listing.refresh();
    ASSERT_THAT(namesOf(listing), ElementsAre("lm90"));
    EXPECT_THAT(listing.chips()[0].temperatureFile(1, "input"),
                EndsWith("/hwmon0/device/temp1_input"));
    EXPECT_EQ(listing.chips()[0].temperatures[0].label, "Board");
}

TEST(HwmonListing, IdentityIsTheDeviceNotTheNumber)
{
    const HwmonTree machine;
    machine.deviceChip(3, "pci0000:00/0000:00:18.3", "k10temp", {{"temp1_input", "1"}});
    HwmonListing listing(machine.root());
    listing.refresh();
    EXPECT_EQ(listing.chips()[0].identity, "/sys/devices/pci0000:00/0000:00:18.3#k10temp");
    machine.removeDeviceChip(3, "pci0000:00/0000:00:18.3");
    machine.deviceChip(5, "pci0000:00/0000:00:18.3", "k10temp", {{"temp1_input", "1"}});
    listing.refresh();
    EXPECT_TRUE(listing.hasChanged());
    EXPECT_EQ(listing.chips()[0].identity, "/sys/devices/pci0000:00/0000:00:18.3#k10temp");
}

TEST(HwmonListing, ADeviceThatIsPluggedInAgainIsTheSame)
{
    const HwmonTree machine;
    const auto identityOf = [&](int number, const std::string &device, const std::string &name) {
        machine.deviceChip(number, device, name, {{"temp1_input", "1"}});
        HwmonListing listing(machine.root());
        listing.refresh();
        auto identity = listing.chips().at(0).identity;
        machine.removeDeviceChip(number, device);
        return identity;
    };
    const std::string port = "pci0/usb1/1-5/1-5:1.1/";
    EXPECT_EQ(identityOf(3, port + "0003:1E71:2007.0005", "kraken"),
              identityOf(4, port + "0003:1E71:2007.002A", "kraken"));
    EXPECT_EQ(identityOf(5, "pci0/ieee80211/phy0", "mt7921_phy0"),
              identityOf(5, "pci0/ieee80211/phy12", "mt7921_phy12"));
    EXPECT_EQ(identityOf(6, "virtual/thermal/thermal_zone8", "iwlwifi_1"),
              identityOf(6, "virtual/thermal/thermal_zone8", "iwlwifi_2"));
    EXPECT_NE(identityOf(7, port + "0003:1E71:2007.0005", "kraken"),
              identityOf(7, port + "0003:1E71:3008.0005", "kraken"));
    EXPECT_NE(identityOf(8, "pci0/usb1/1-5", "kraken"), identityOf(8, "pci0/usb1/1-6", "kraken"));
}

TEST(HwmonListing, WithoutALinkTheDeviceIsWhereTheChipHangs)
{
    const HwmonTree machine;
    machine.deviceChip(0, "pci0000:00/0000:01:00.0", "nvme", {{"temp1_input", "1"}});
    machine.remove("sys/devices/pci0000:00/0000:01:00.0/hwmon/hwmon0/device");
    machine.deviceChip(1, "virtual", "virt", {{"temp1_input", "1"}});
    machine.remove("sys/devices/virtual/hwmon/hwmon1/device");
    HwmonListing listing(machine.root());
    listing.refresh();
    EXPECT_EQ(listing.chips()[0].identity, "/sys/devices/pci0000:00/0000:01:00.0#nvme");
    EXPECT_EQ(listing.chips()[1].identity, "/sys/devices/virtual/hwmon/hwmon1#virt");
}

TEST(HwmonListing, TwinsOfOneDeviceAreToldApart)
{
    const HwmonTree machine;
    machine.deviceChip(0, "platform/ec", "ec", {{"temp1_input", "1"}});
    machine.deviceChip(1, "platform/ec", "ec", {{"temp1_input", "1"}});
    HwmonListing listing(machine.root());
    listing.refresh();
    EXPECT_NE(listing.chips()[0].identity, listing.chips()[1].identity);
}

TEST(HwmonListing, SaysWhetherAnythingChanged)
{
    const HwmonTree machine;
    machine.plainChip(0, "chip", {{"temp1_input", "1"}});
    HwmonListing listing(machine.root());
    listing.refresh();
    EXPECT_TRUE(listing.hasChanged());
    listing.refresh();
    EXPECT_FALSE(listing.hasChanged());
    machine.plainChip(1, "usb", {{"temp1_input", "1"}});
    listing.refresh();
    EXPECT_TRUE(listing.hasChanged());
    machine.remove("sys/class/hwmon/hwmon1");
    listing.refresh();
    EXPECT_TRUE(listing.hasChanged());
    EXPECT_THAT(namesOf(listing), ElementsAre("chip"));
}

TEST(HwmonListing, FollowsInputsOfAChip)
{
    const HwmonTree machine;
    machine.plainChip(0, "chip", {{"temp1_input", "1"}});
    HwmonListing listing(machine.root());
    listing.refresh();
    machine.plainChip(0, "chip", {{"temp2_input", "1"}, {"temp2_label", "late"}});
    listing.refresh();
    EXPECT_TRUE(listing.hasChanged());
    ASSERT_EQ(listing.chips()[0].temperatures.size(), 2U);
    EXPECT_EQ(listing.chips()[0].temperatures[1].label, "late");
    machine.remove("sys/class/hwmon/hwmon0/temp1_input");
    listing.refresh();
    ASSERT_EQ(listing.chips()[0].temperatures.size(), 1U);
}

/// The kernel need not change a folder's time when it adds a file.
TEST(HwmonListing, FollowsInputsThatLeaveNoTrace)
{
    const HwmonTree machine;
    const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    const auto date = [&](int number) {
        const auto folder = machine.path("sys/class/hwmon/hwmon" + std::to_string(number));
        std::filesystem::last_write_time(folder, old);
    };
    for (int number = 0; number < 3; ++number) {
        machine.plainChip(number, "chip", {{"temp1_input", "1"}});
        date(number);
    }
    HwmonListing listing(machine.root());
    listing.refresh();
    machine.plainChip(2, "chip", {{"fan1_input", "1"}});
    date(2);
    for (unsigned round = 0; round < 3 * HwmonListing::kRefreshesPerTurn; ++round)
        listing.refresh();
    EXPECT_EQ(listing.chips()[2].fans.size(), 1U);
    machine.plainChip(1, "chip", {{"fan1_input", "1"}});
    date(1);
    listing.refresh(true);
    EXPECT_EQ(listing.chips()[1].fans.size(), 1U);
}

TEST(HwmonListing, TakesAllOfALargeServer)
{
    const HwmonTree machine;
    HwmonTree::Files cores{{"temp1_input", "70000"}, {"temp1_label", "Package id 0"}};
    for (int core = 0; core < 288; ++core)
        cores.emplace_back("temp" + std::to_string(core + 2) + "_input", "60000");
    machine.plainChip(0, "coretemp", cores);
    for (int drive = 1; drive <= 102; ++drive)
        machine.plainChip(drive, "drivetemp", {{"temp1_input", "35000"}});
    HwmonListing listing(machine.root());
    listing.refresh();
    EXPECT_EQ(listing.chips().size(), 103U);
    EXPECT_EQ(listing.chips()[0].temperatures.size(), 289U);
    EXPECT_FALSE(listing.isCut());
}

TEST(HwmonListing, IsBounded)
{
    const HwmonTree machine;
    HwmonTree::Files inputs;
    constexpr int tooMany = static_cast<int>(HwmonListing::kMostInputs) + 1;
    for (int number = 1; number <= tooMany; ++number)
        inputs.emplace_back("temp" + std::to_string(number) + "_input", "1");
    machine.plainChip(0, "chip", inputs);
    HwmonListing listing(machine.root());
    listing.refresh();
    EXPECT_EQ(listing.chips()[0].temperatures.size(), HwmonListing::kMostInputs);
    EXPECT_TRUE(listing.isCut());
    listing.refresh();
    EXPECT_TRUE(listing.isCut());
    machine.remove("sys/class/hwmon/hwmon0/temp" + std::to_string(tooMany) + "_input");
    listing.refresh();
    EXPECT_FALSE(listing.isCut());
    for (int number = 1; number <= static_cast<int>(HwmonListing::kMostChips); ++number)
        machine.plainChip(number, "chip", {{"temp1_input", "1"}});
    listing.refresh();
    EXPECT_EQ(listing.chips().size(), HwmonListing::kMostChips);
    EXPECT_TRUE(listing.isCut());
}

TEST(HwmonListing, KnowsWhatSaysWhetherADeviceSleeps)
{
    const HwmonTree machine;
    const std::string bridge = "pci0000:00/0000:00:1d.0";
    const std::string card = bridge + "/0000:01:00.0";
    machine.deviceChip(0, card + "/nvme/nvme0", "nvme", {{"temp1_input", "1"}});
    machine.write("sys/devices/" + bridge + "/power/runtime_status", "active\n");
    machine.write("sys/devices/" + card + "/power/runtime_status", "active\n");
    machine.write("sys/devices/power/runtime_status", "active\n");
    HwmonListing listing(machine.root());
    listing.refresh();
    EXPECT_THAT(listing.chips()[0].runtimeStatus,
                ElementsAre(EndsWith("0000:01:00.0/power/runtime_status"),
                            EndsWith("0000:00:1d.0/power/runtime_status")));
}

/// Adapters count as suspended whenever nothing is being transferred.
TEST(HwmonListing, AnI2cAdapterDoesNotSpeakForItsSensors)
{
    const HwmonTree machine;
    const std::string client = "pci0000:00/0000:00:1f.4/i2c-7/7-0050";
    machine.deviceChip(0, client, "spd5118", {{"temp1_input", "1"}});
    machine.write("sys/devices/" + client + "/power/runtime_status", "unsupported\n");
    machine.write("sys/devices/pci0000:00/0000:00:1f.4/i2c-7/power/runtime_status", "suspended\n");
    machine.write("sys/devices/pci0000:00/0000:00:1f.4/power/runtime_status", "suspended\n");
    HwmonListing listing(machine.root());
    listing.refresh();
    EXPECT_THAT(listing.chips()[0].runtimeStatus,
                ElementsAre(EndsWith("7-0050/power/runtime_status")));
}

TEST(HwmonListing, KnowsRotatingDisks)
{
    const HwmonTree machine;
    for (const char *disk : {"a", "b"}) {
        const std::string device = std::string("pci0/ata1/host0/target0/") + disk;
        machine.deviceChip(disk[0] - 'a', device, "drivetemp", {{"temp1_input", "1"}});
        machine.write("sys/devices/" + device + "/block/sd" + disk + "/queue/rotational",
                      disk[0] == 'a' ? "1\n" : "0\n");
    }
    HwmonListing listing(machine.root());
    listing.refresh();
    EXPECT_THAT(listing.chips()[0].rotatingDiskStat, EndsWith("/block/sda/stat"));
    EXPECT_EQ(listing.chips()[1].rotatingDiskStat, "");
}

} // namespace
} // namespace pulsebar
