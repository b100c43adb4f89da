#include "support/QtPrinting.h"
#include "support/Text.h"
#include "util/GraphKeys.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

TEST(GraphKeys, NameEachKindOfSeries)
{
    EXPECT_EQ(graphkeys::totalCpu(), s("CPUTotalUsage"));
    EXPECT_EQ(graphkeys::core(3), s("CPUUsage__CPU3"));
    EXPECT_EQ(graphkeys::process(s("Web Content")), s("CPUUsage__Web Content"));
    EXPECT_EQ(graphkeys::process(412, s("%1//x")), s("CPUUsage__412//%1//x"));
    EXPECT_EQ(graphkeys::traffic(s("NetworkInMinuteStats")), s("Network__NetworkInMinuteStats"));
    EXPECT_EQ(graphkeys::temperature(s("CPU Die")), s("Temperature__CPU Die"));
    EXPECT_EQ(graphkeys::fanAverage(), s("FanMove__FanAverage"));
    EXPECT_EQ(graphkeys::fan(0), s("FanMove__Fan0"));
}

} // namespace
} // namespace pulsebar
