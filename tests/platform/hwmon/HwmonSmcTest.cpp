#include "platform/hwmon/HwmonTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

TEST(HwmonSmc, GivesTemperaturesAndFans)
{
    const HwmonTree machine;
    machine.deviceChip(0, "platform/coretemp.0", "coretemp",
                       {{"temp1_label", "Package id 0"}, {"temp1_input", "47391"}});
    machine.deviceChip(1, "platform/nct6775.656", "nct6798",
                       {{"fan1_input", "1234"},
                        {"fan1_min", "300"},
                        {"fan2_input", "12345"},
                        {"temp1_label", "SYSTIN"},
                        {"temp1_input", "31000"}});
    HwmonSmc smc(machine.root());
    settle(smc);
    OpenSmc sample(smc);
    EXPECT_EQ(sample.degrees("Tcp0"), 47.390625);
    EXPECT_EQ(sample.degrees("Tmb0"), 31.0);
    EXPECT_EQ(sample.value("FNum").bytes[0], 2);
    EXPECT_EQ(sample.rpm("F0Ac"), 1234U);
    EXPECT_EQ(sample.rpm("F0Mn"), 300U);
    EXPECT_EQ(sample.rpm("F1Ac"), 12345U);
    EXPECT_FALSE(sample.has("F0Mx") || sample.has("F0Tg") || sample.has("F1Mn"));
}

} // namespace
} // namespace pulsebar
