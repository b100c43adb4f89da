#include "platform/hwmon/HwmonTree.h"
#include "platform/linux_/hwmon/HwmonMachine.h"
#include "platform/linux_/hwmon/sensor_encoding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <future>
#include <memory>
#include <set>
#include <sstream>

namespace pulsebar {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::MatchesRegex;

constexpr const char *nct = "platform/nct6775.656";

/// A desktop with two temperatures and two fans.
void putDesktop(const HwmonTree &machine)
{
    machine.deviceChip(0, "platform/coretemp.0", "coretemp",
                       {{"temp1_label", "Package id 0"}, {"temp1_input", "47391"}});
    machine.deviceChip(1, nct, "nct6798",
                       {{"fan1_input", "1234"},
                        {"fan1_min", "300"},
                        {"fan1_max", "2000"},
                        {"fan1_target", "1200"},
                        {"fan2_input", "12345"},
                        {"temp1_label", "SYSTIN"},
                        {"temp1_input", "31000"}});
}

SmcStatus callWith(HwmonSmc &smc, SmcCommand command, const char *key, SmcRecord &output,
                   std::uint32_t index = 0)
{
    SmcRecord input{};
    input.keyCode = smcCode(key);
    input.command = static_cast<std::uint8_t>(command);
    input.argument = index;
    return smc.call(kSmcSelector, input, output);
}

SmcStatus writeTo(HwmonSmc &smc, const std::string &key, const EncodedValue &encoded)
{
    SmcRecord input{};
    SmcRecord output{};
    input.keyCode = smcCode(key);
    input.command = static_cast<std::uint8_t>(SmcCommand::WriteBytes);
    input.valueSize = encoded.size;
    input.value = encoded.bytes;
    return smc.call(kSmcSelector, input, output);
}

std::vector<std::string> allKeys(HwmonSmc &smc)
{
    std::vector<std::string> keys;
    const OpenSmc sample(smc);
    SmcCode key{};
    while (SMCReadKeyAt(static_cast<std::uint32_t>(keys.size()), key, smc) == kSmcSuccess)
        keys.emplace_back(smcText(key));
    return keys;
}

/// What a fan's key gives once it was read.
std::uint32_t rpmOf(HwmonSmc &smc, const std::string &key)
{
    std::uint32_t rpm = kSmcNoRpm;
    sampleUntil(smc, [&](OpenSmc &sample) {
        rpm = sample.rpm(key);
        return rpm != kSmcNoRpm;
    });
    return rpm;
}

TEST(HwmonSmc, GivesTemperaturesAndFans)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    EXPECT_EQ(degreesOf(smc, "Tcp0"), 47.390625);
    EXPECT_EQ(degreesOf(smc, "Tmb0"), 31.0);
    EXPECT_EQ(rpmOf(smc, "F0Ac"), 1234U);
    EXPECT_EQ(rpmOf(smc, "F0Mn"), 300U);
    EXPECT_EQ(rpmOf(smc, "F0Mx"), 2000U);
    EXPECT_EQ(rpmOf(smc, "F0Tg"), 1200U);
    EXPECT_EQ(rpmOf(smc, "F1Ac"), 12345U);
    OpenSmc sample(smc);
    EXPECT_EQ(smcInteger(sample.value("FNum")), 2U);
    for (const char *key : {"F1Mn", "F1Mx", "F1Tg", "F2Ac", "Tcp1", "none"}) {
        EXPECT_FALSE(sample.has(key)) << key;
        EXPECT_EQ(sample.status(key), kSmcSuccess) << key;
    }
}

TEST(HwmonSmc, NoSensorsAreNoService)
{
    const HwmonTree machine;
    HwmonSmc smc(machine.root());
    EXPECT_EQ(smc.open().opening, SmcOpening::NoService);
    SmcRecord output{};
    EXPECT_EQ(callWith(smc, SmcCommand::ReadInfo, "#KEY", output), kSmcNotOpen);
    smc.close();
    machine.plainChip(0, "power", {{"power1_input", "1"}});
    HwmonSmc other(machine.root());
    EXPECT_EQ(other.open().opening, SmcOpening::NoService);
    EXPECT_TRUE(other.names().empty());
}

TEST(HwmonSmc, AnswersOnlyWhileOpen)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    SmcRecord output{};
    EXPECT_EQ(callWith(smc, SmcCommand::ReadInfo, "#KEY", output), kSmcNotOpen);
    smc.open();
    EXPECT_EQ(callWith(smc, SmcCommand::ReadInfo, "#KEY", output), kSmcSuccess);
    smc.close();
    EXPECT_EQ(callWith(smc, SmcCommand::ReadInfo, "#KEY", output), kSmcNotOpen);
}

TEST(HwmonSmc, OtherMethodsAndCommandsAreUnsupported)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    const OpenSmc sample(smc);
    SmcRecord input{};
    SmcRecord output{};
    input.command = static_cast<std::uint8_t>(SmcCommand::ReadInfo);
    EXPECT_EQ(smc.call(3, input, output), kSmcUnsupported);
    for (const int command : {0, 1, 4, 7, 10, 255}) {
        input.command = static_cast<std::uint8_t>(command);
        EXPECT_EQ(smc.call(kSmcSelector, input, output), kSmcUnsupported) << command;
    }
}

TEST(HwmonSmc, WithoutAFanTheNumberOfFansIsAnError)
{
    const HwmonTree machine;
    machine.plainChip(0, "cpu_thermal", {{"temp1_input", "51540"}});
    HwmonSmc smc(machine.root());
    OpenSmc sample(smc);
    EXPECT_EQ(sample.status("FNum"), kSmcNotFound);
    EXPECT_FALSE(smc.isResting("FNum"));
    EXPECT_THAT(allKeys(smc), ElementsAre("#KEY", "Tcp0"));
}

TEST(HwmonSmc, CountsAndNamesItsKeys)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    const auto keys = allKeys(smc);
    EXPECT_THAT(
        keys, ElementsAre("#KEY", "FNum", "F0Ac", "F0Mn", "F0Mx", "F0Tg", "F1Ac", "Tcp0", "Tmb0"));
    OpenSmc sample(smc);
    EXPECT_EQ(SMCReadIndexCount(smc), keys.size());
    EXPECT_EQ(smcText(sample.value("#KEY").type), "ui32");
}

TEST(HwmonSmc, CountsMoreThanAByteHolds)
{
    const HwmonTree machine;
    for (int chip = 0; chip < 5; ++chip) {
        HwmonTree::Files inputs;
        for (int number = 1; number <= 60; ++number)
            inputs.emplace_back("temp" + std::to_string(number) + "_input", "30000");
        machine.plainChip(chip, "chip", inputs);
    }
    HwmonSmc smc(machine.root());
    const auto keys = allKeys(smc);
    EXPECT_EQ(keys.size(), 301U);
    EXPECT_EQ(std::set<std::string>(keys.begin(), keys.end()).size(), 301U);
    OpenSmc sample(smc);
    const auto count = sample.value("#KEY");
    EXPECT_EQ(count.bytes[2], 1);
    EXPECT_EQ(count.bytes[3], 301 - 256);
    EXPECT_EQ(SMCReadIndexCount(smc), 301U - 256U);
}

TEST(HwmonSmc, FansFromTheTenthOnHaveTwoKeys)
{
    const HwmonTree machine;
    HwmonTree::Files files;
    for (int fan = 1; fan <= 12; ++fan) {
        const auto name = "fan" + std::to_string(fan);
        for (const char *detail : {"_input", "_min", "_max", "_target"})
            files.emplace_back(name + detail, std::to_string(1000 + fan));
    }
    machine.plainChip(0, "server", files);
    HwmonSmc smc(machine.root());
    EXPECT_EQ(rpmOf(smc, "F9Mx"), 1010U);
    EXPECT_EQ(rpmOf(smc, "F10Ac"), 1011U);
    EXPECT_EQ(rpmOf(smc, "F10Tg"), 1011U);
    EXPECT_EQ(rpmOf(smc, "F11Ac"), 1012U);
    OpenSmc sample(smc);
    EXPECT_EQ(smcInteger(sample.value("FNum")), 12U);
    EXPECT_FALSE(sample.has("F10Mn") || sample.has("F10Mx") || sample.has("F1"));
    const auto keys = allKeys(smc);
    EXPECT_EQ(keys.size(), 2U + 10U * 4U + 2U * 2U);
}

TEST(HwmonSmc, FansAreNumberedOverAllChips)
{
    const HwmonTree machine;
    machine.plainChip(2, "late", {{"fan1_input", "300"}});
    machine.plainChip(0, "board", {{"fan3_input", "100"}, {"fan7_input", "200"}});
    HwmonSmc smc(machine.root());
    EXPECT_EQ(rpmOf(smc, "F0Ac"), 100U);
    EXPECT_EQ(rpmOf(smc, "F1Ac"), 200U);
    EXPECT_EQ(rpmOf(smc, "F2Ac"), 300U);
}

TEST(HwmonSmc, MoreFansThanKeysCanSayAreLeftOutAndSaid)
{
    const HwmonTree machine;
    for (int chip = 0; chip < 2; ++chip) {
        HwmonTree::Files fans;
        for (int number = 1; number <= 60; ++number)
            fans.emplace_back("fan" + std::to_string(number) + "_input", "900");
        machine.plainChip(chip, "rack", fans);
    }
    int complaints = 0;
    HwmonSmc smc(machine.root(), {{}, [&](const std::string &) { ++complaints; }});
    relist(smc);
    relist(smc);
    EXPECT_EQ(complaints, 1);
    OpenSmc sample(smc);
    EXPECT_EQ(smcInteger(sample.value("FNum")), 100U);
    EXPECT_EQ(allKeys(smc).size(), 102U);
}

TEST(HwmonSmc, MeasuresAKeyOnceInAConnection)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    ASSERT_EQ(rpmOf(smc, "F0Ac"), 1234U);
    {
        OpenSmc sample(smc);
        const auto first = sample.rpm("F0Ac");
        // Faster, and in need of a byte more.
        machine.write(std::string("sys/devices/") + nct + "/hwmon/hwmon1/fan1_input", "9000\n");
        EXPECT_EQ(sample.rpm("F0Ac"), first);
    }
    EXPECT_TRUE(sampleUntil(smc, [](OpenSmc &sample) { return sample.rpm("F0Ac") == 9000U; }));
}

TEST(HwmonSmc, ReadingsThatAreNotThereAreErrors)
{
    const HwmonTree machine;
    machine.plainChip(0, "chip",
                      {{"temp1_input", "garbage"},
                       {"temp2_input", ""},
                       {"temp3_input", "127000"},
                       {"temp3_fault", "1"},
                       {"temp4_input", "-12345"},
                       {"temp4_fault", "0"},
                       {"fan1_input", "none"}});
    HwmonSmc smc(machine.root());
    EXPECT_TRUE(saysOnce(smc, keyOf(smc, "chip 4"), 0)) << "before the first reading";
    EXPECT_EQ(degreesOf(smc, keyOf(smc, "chip 4")), -12.34375);
    for (const char *name : {"chip 1", "chip 2", "chip 3"}) {
        const auto key = keyOf(smc, name);
        // Not resting any more once it was read: a failure.
        EXPECT_TRUE(sampleUntil(smc, [&](OpenSmc &sample) {
            return sample.status(key) == kSmcIoError && !smc.isResting(key);
        })) << name;
        OpenSmc sample(smc);
        EXPECT_EQ(sample.degrees(key), 0.0) << name;
    }
    OpenSmc sample(smc);
    EXPECT_EQ(sample.rpm("F0Ac"), kSmcNoRpm);
}

TEST(HwmonSmc, ASleepingDeviceIsNotRead)
{
    const HwmonTree machine;
    const std::string gpu = "pci0000:00/0000:01:00.0";
    machine.deviceChip(0, gpu, "amdgpu",
                       {{"temp1_label", "edge"}, {"temp1_input", "55000"}, {"fan1_input", "900"}});
    const auto status = "sys/devices/" + gpu + "/power/runtime_status";
    machine.write(status, "active\n");
    HwmonSmc smc(machine.root());
    ASSERT_EQ(degreesOf(smc, "Tgp0"), 55.0);
    ASSERT_EQ(rpmOf(smc, "F0Ac"), 900U);
    machine.write(status, "suspended\n");
    {
        OpenSmc sample(smc);
        EXPECT_EQ(sample.degrees("Tgp0"), 0.0);
        EXPECT_EQ(sample.rpm("F0Ac"), kSmcNoRpm);
        EXPECT_EQ(sample.status("F0Ac"), kSmcIoError);
        EXPECT_TRUE(smc.isResting("Tgp0"));
        EXPECT_TRUE(smc.isResting("F0Ac"));
        EXPECT_EQ(smcInteger(sample.value("FNum")), 1U);
    }
    EXPECT_TRUE(smc.isResting("Tgp0")) << "after the connection";
    EXPECT_EQ(smc.names().size(), 1U);
    machine.write(status, "active\n");
    EXPECT_EQ(degreesOf(smc, "Tgp0"), 55.0);
    EXPECT_FALSE(smc.isResting("Tgp0"));
}

TEST(HwmonSmc, ADeviceWithoutAWordSleepsWithWhatItHangsOn)
{
    const HwmonTree machine;
    const std::string card = "pci0000:00/0000:01:00.0";
    machine.deviceChip(0, card + "/nvme/nvme0", "nvme",
                       {{"temp1_label", "Composite"}, {"temp1_input", "38850"}});
    machine.write("sys/devices/" + card + "/nvme/nvme0/power/runtime_status", "unsupported\n");
    machine.write("sys/devices/" + card + "/power/runtime_status", "suspended\n");
    HwmonSmc smc(machine.root());
    {
        OpenSmc sample(smc);
        EXPECT_EQ(sample.degrees("Tdn0"), 0.0);
        EXPECT_TRUE(smc.isResting("Tdn0"));
    }
    machine.write("sys/devices/" + card + "/power/runtime_status", "active\n");
    EXPECT_EQ(degreesOf(smc, "Tdn0"), 38.84375);
}

TEST(HwmonSmc, ADiskThatMayHaveStoppedIsNotRead)
{
    const HwmonTree machine;
    const std::string disk = "pci0/ata1/host0/target0/0:0:0:0";
    const auto stat = "sys/devices/" + disk + "/block/sda/stat";
    machine.deviceChip(0, disk, "drivetemp", {{"temp1_input", "34000"}});
    machine.write("sys/devices/" + disk + "/block/sda/queue/rotational", "1\n");
    machine.write(stat, "5 0 40 0 0 0 0 0 0 0 0\n");
    HwmonSmc::Clock::time_point now{};
    HwmonSmc smc(machine.root(), {[&] { return now; }, {}});
    ASSERT_EQ(degreesOf(smc, "Tds0"), 34.0);
    now += 2min;
    {
        OpenSmc sample(smc);
        EXPECT_EQ(sample.degrees("Tds0"), 0.0);
        EXPECT_TRUE(smc.isResting("Tds0"));
    }
    machine.write(stat, "6 0 48 0 0 0 0 0 0 0 0\n");
    EXPECT_EQ(degreesOf(smc, "Tds0"), 34.0);
}

TEST(HwmonSmc, SensorsThatAppearAreFollowedWithinFourOpenings)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    relist(smc);
    const auto revision = smc.revision();
    machine.deviceChip(2, "usb1/1-2", "drive", {{"temp1_input", "25000"}});
    relist(smc);
    EXPECT_NE(smc.revision(), revision);
    const auto key = keyOf(smc, "drive 1");
    ASSERT_THAT(key, MatchesRegex("t[0-9a-z]{3}"));
    EXPECT_EQ(degreesOf(smc, key), 25.0);
    machine.removeDeviceChip(2, "usb1/1-2");
    relist(smc);
    EXPECT_EQ(keyOf(smc, "drive 1"), "");
    EXPECT_TRUE(smc.isResting(key));
    OpenSmc sample(smc);
    EXPECT_FALSE(sample.has(key));
    EXPECT_EQ(sample.degrees("Tcp0"), 47.390625);
}

TEST(HwmonSmc, AFileThatWentIsNoticedAtTheNextOpening)
{
    const HwmonTree machine;
    putDesktop(machine);
    machine.deviceChip(2, "usb1/1-2", "drive", {{"temp1_input", "25000"}});
    HwmonSmc smc(machine.root());
    relist(smc);
    const auto key = keyOf(smc, "drive 1");
    ASSERT_EQ(degreesOf(smc, key), 25.0); // at the fifth opening, which lists again
    machine.removeDeviceChip(2, "usb1/1-2");
    {
        OpenSmc sample(smc);
        EXPECT_EQ(sample.degrees(key), 0.0);
        EXPECT_TRUE(smc.isResting(key));
    }
    const OpenSmc sample(smc);
    EXPECT_EQ(smc.names().size(), 2U);
}

TEST(HwmonSmc, KeysStayWithTheirDevicesWhenFoldersAreNumberedAnew)
{
    const HwmonTree machine;
    const HwmonTree::Files first{{"temp1_label", "Composite"}, {"temp1_input", "31000"}};
    const HwmonTree::Files second{{"temp1_label", "Composite"}, {"temp1_input", "32000"}};
    machine.deviceChip(0, "pci/a", "nvme", first);
    machine.deviceChip(1, "pci/b", "nvme", second);
    HwmonSmc smc(machine.root());
    ASSERT_EQ(degreesOf(smc, "Tdn0"), 31.0);
    ASSERT_EQ(degreesOf(smc, "Tdn1"), 32.0);
    machine.removeDeviceChip(0, "pci/a");
    machine.removeDeviceChip(1, "pci/b");
    machine.deviceChip(0, "pci/b", "nvme", second);
    relist(smc);
    EXPECT_EQ(degreesOf(smc, "Tdn1"), 32.0);
    {
        OpenSmc sample(smc);
        EXPECT_FALSE(sample.has("Tdn0"));
        EXPECT_TRUE(smc.isResting("Tdn0"));
    }
    machine.deviceChip(7, "pci/a", "nvme", first);
    relist(smc);
    EXPECT_EQ(degreesOf(smc, "Tdn0"), 31.0);
    EXPECT_EQ(degreesOf(smc, "Tdn1"), 32.0);
    EXPECT_EQ(nameOf(smc, "Tdn0"), "nvme Composite");
}

TEST(HwmonSmc, ApplesKeysAreItsOwn)
{
    const HwmonTree machine;
    machine.deviceChip(0, "platform/applesmc.768", "applesmc",
                       {{"temp1_label", "TB0T"},
                        {"temp1_input", "30500"},
                        {"temp2_label", "TC0D"},
                        {"temp2_input", "58250"},
                        {"fan1_label", "Left side"},
                        {"fan1_input", "1999"}});
    HwmonSmc smc(machine.root());
    EXPECT_EQ(degreesOf(smc, "TB0T"), 30.5);
    EXPECT_EQ(degreesOf(smc, "TC0D"), 58.25);
    EXPECT_EQ(degreesOf(smc, "Tcp0"), 58.25);
    EXPECT_EQ(rpmOf(smc, "F0Ac"), 1999U);
    EXPECT_THAT(allKeys(smc), ElementsAre("#KEY", "FNum", "F0Ac", "TB0T", "TC0D"));
    OpenSmc sample(smc);
    EXPECT_FALSE(sample.has("TC0F"));
}

TEST(HwmonSmc, KeysThatAreNotThereAreWaitedFor)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    ASSERT_EQ(degreesOf(smc, "Tcp0"), 47.390625);
    EXPECT_TRUE(smc.isResting("Tdn0"));
    EXPECT_FALSE(smc.isResting("Tcp0"));
    EXPECT_FALSE(smc.isResting("#KEY"));
    EXPECT_FALSE(smc.isResting("FNum"));
    EXPECT_FALSE(smc.isResting("Tcp"));
}

std::string contentOf(const HwmonTree &machine, const std::string &file)
{
    std::ifstream stream(machine.path(file));
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

TEST(HwmonSmcWriting, SetsWhatAFanHasAFileFor)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    ASSERT_EQ(rpmOf(smc, "F0Mn"), 300U);
    const auto folder = std::string("sys/devices/") + nct + "/hwmon/hwmon1/";
    {
        OpenSmc sample(smc);
        EXPECT_EQ(writeTo(smc, "F0Mn", encodeFanSpeed(450)), kSmcSuccess);
        EXPECT_EQ(writeTo(smc, "F0Mx", encodeFanSpeed(12'000)), kSmcSuccess);
        EXPECT_EQ(writeTo(smc, "F0Tg", encodeFanSpeed(0)), kSmcSuccess);
    }
    EXPECT_EQ(contentOf(machine, folder + "fan1_min"), "450\n");
    EXPECT_EQ(contentOf(machine, folder + "fan1_max"), "12000\n");
    EXPECT_EQ(contentOf(machine, folder + "fan1_target"), "0\n");
    EXPECT_TRUE(sampleUntil(smc, [](OpenSmc &sample) { return sample.rpm("F0Mn") == 450U; }));
}

TEST(HwmonSmcWriting, NothingElseCanBeSet)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    const OpenSmc sample(smc);
    for (const char *key : {"F0Ac", "F1Mn", "Tcp0", "FNum", "#KEY", "none"})
        EXPECT_EQ(writeTo(smc, key, encodeFanSpeed(100)), kSmcNotWritable) << key;
    EXPECT_EQ(contentOf(machine, std::string("sys/devices/") + nct + "/hwmon/hwmon1/fan1_input"),
              "1234\n");
}

TEST(HwmonSmcWriting, SaysWhyNot)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    const OpenSmc sample(smc);
    EncodedValue empty{smcCode("fpe2"), 0, {}};
    EXPECT_EQ(writeTo(smc, "F0Mn", empty), kSmcBadArgument);
    empty.size = 33;
    EXPECT_EQ(writeTo(smc, "F0Mn", empty), kSmcBadArgument);
    const auto minimum = std::string("sys/devices/") + nct + "/hwmon/hwmon1/fan1_min";
    machine.remove(minimum);
    EXPECT_EQ(writeTo(smc, "F0Mn", encodeFanSpeed(100)), kSmcNoDevice);
    machine.write(minimum + "/now/a-folder", "");
    EXPECT_EQ(writeTo(smc, "F0Mn", encodeFanSpeed(100)), kSmcIoError);
}

TEST(HwmonSmcWriting, GoesThroughTheClient)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc smc(machine.root());
    ASSERT_EQ(rpmOf(smc, "F0Mn"), 300U);
    OpenSmc sample(smc);
    auto value = sample.value("F0Mn");
    value.bytes[0] = 0x0F;
    value.bytes[1] = 0xA0;
    EXPECT_EQ(SMCWriteKey(smc, value), kSmcSuccess);
    EXPECT_EQ(contentOf(machine, std::string("sys/devices/") + nct + "/hwmon/hwmon1/fan1_min"),
              "1000\n");
}

/// A machine whose second fan does not answer before it is told to.
class SlowFan : public testing::Test
{
protected:
    SlowFan() { putDesktop(m_tree); }
    ~SlowFan() override { m_answer.set_value(); }

    PatientFiles::Options options()
    {
        PatientFiles::Options options;
        options.firstBudget = 1ms;
        options.budget = 1ms;
        options.open = [asked = m_asked, answer = std::shared_future<void>(m_answer.get_future())](
                           const std::string &path) -> PatientFiles::ReadFile {
            return [asked, answer, path](std::string &text) {
                if (path.ends_with("fan2_input")) {
                    asked->set_value();
                    answer.wait();
                }
                std::getline(std::ifstream(path), text);
                return text.empty() ? ENOENT : 0;
            };
        };
        return options;
    }

    SmcStatus countFans()
    {
        EncodedValue count;
        m_machine.beginRound();
        return m_machine.read(smcCode("FNum"), count);
    }

    const HwmonTree m_tree;
    std::shared_ptr<std::promise<void>> m_asked = std::make_shared<std::promise<void>>();
    std::promise<void> m_answer;
    HwmonMachine m_machine{m_tree.root(), {}, options()};
};

TEST_F(SlowFan, HidesTheFansForSomeRoundsOnly)
{
    ASSERT_EQ(m_machine.list(), 0);
    EXPECT_EQ(countFans(), kSmcIoError);
    // By then the first fan, which was to be read before it, has answered.
    ASSERT_EQ(m_asked->get_future().wait_for(20s), std::future_status::ready);
    for (int round = 1; round < 4; ++round)
        EXPECT_EQ(countFans(), kSmcIoError) << round;
    EXPECT_EQ(countFans(), kSmcSuccess);
    EncodedValue speed;
    EXPECT_EQ(m_machine.read(smcCode("F0Ac"), speed), kSmcSuccess);
    EXPECT_EQ(m_machine.read(smcCode("F1Ac"), speed), kSmcIoError);
    EXPECT_TRUE(m_machine.isResting(smcCode("F1Ac")));
}

TEST(HwmonSmc, FansAreCountedWithTheirFirstReadings)
{
    const HwmonTree machine;
    putDesktop(machine);
    HwmonSmc::Options options;
    options.patience = 20s;
    HwmonSmc smc(machine.root(), options);
    OpenSmc sample(smc);
    EXPECT_EQ(sample.rpm("F0Ac"), 1234U);
    EXPECT_EQ(sample.rpm("F1Ac"), 12345U);
    EXPECT_EQ(sample.degrees("Tmb0"), 31.0);
}

} // namespace
} // namespace pulsebar
