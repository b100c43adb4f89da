// What pulsebar-smc prints of a machine, for somebody whose sensor is missing.
#include "e2e/Desktop.h"
#include "e2e/SensorMachine.h"
#include "support/Text.h"

#include <gtest/gtest.h>

namespace pulsebar::e2e {
namespace {

class SmcToolTest : public testing::Test
{
protected:
    int run(const QStringList &arguments)
    {
        QProcessEnvironment environment;
        environment.insert(s("PULSEBAR_SYSROOT"), folder.path());
        Process process(s(PULSEBAR_SMC), arguments, environment);
        const int status = process.waitForEnd();
        output = process.output();
        complaint = process.log();
        return status;
    }

    void addFans()
    {
        machine.setChip(2, s("fan1_input"), "1200");
        machine.setChip(2, s("fan1_min"), "300");
        machine.setChip(2, s("fan2_input"), "22000");
        machine.addChip(2, "nct6775");
    }

    void addProcessor()
    {
        machine.setChip(0, s("temp1_label"), "Package id 0");
        machine.setChip(0, s("temp1_input"), "45500");
        machine.addChip(0, "coretemp");
    }

    QTemporaryDir folder;
    SensorMachine machine{folder.path()};
    QString output;
    QString complaint;
};

TEST_F(SmcToolTest, ListsEveryKey)
{
    addProcessor();
    addFans();
    EXPECT_EQ(run({s("-l")}), 0);
    const QStringList lines = output.split(u'\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.value(0), s("  #KEY  [ui32]  6 (bytes 00 00 00 06)")) << output.toStdString();
    EXPECT_EQ(lines.value(1), s("  FNum  [ui8 ]  2 (bytes 02)"));
    EXPECT_TRUE(lines.contains(s("  F0Ac  [fpe2]  1200 (bytes 12 c0)"))) << output.toStdString();
    EXPECT_TRUE(lines.contains(s("  F0Mn  [fpe2]  300 (bytes 04 b0)"))) << output.toStdString();
    EXPECT_EQ(lines.filter(s("  F1Ac  [fpe2]  22000 (bytes ")).size(), 1);
    EXPECT_EQ(lines.filter(s("  Tcp0  [sp78]  (bytes ")).size(), 1);
}

TEST_F(SmcToolTest, TellsOfTheFans)
{
    addFans();
    EXPECT_EQ(run({s("-f")}), 0);
    EXPECT_EQ(output, s("Total fans in system: 2\n"
                        "\nFan #0:\n"
                        "    Actual speed : 1200\n"
                        "    Minimum speed: 300\n"
                        "    Maximum speed: 0\n"
                        "    Safe speed   : 0\n"
                        "    Target speed : 0\n"
                        "    Mode         : auto\n"
                        "\nFan #1:\n"
                        "    Actual speed : 22000\n"
                        "    Minimum speed: 0\n"
                        "    Maximum speed: 0\n"
                        "    Safe speed   : 0\n"
                        "    Target speed : 0\n"
                        "    Mode         : auto\n"));
}

TEST_F(SmcToolTest, ReadsOneKey)
{
    addProcessor();
    EXPECT_EQ(run({s("-k"), s("Tcp0"), s("-r")}), 0);
    // 45.5 degrees: a second byte beyond 127 takes its 256 from the first.
    EXPECT_EQ(output, s("  Tcp0  [sp78]  (bytes 2e 80)\n"));
}

TEST_F(SmcToolTest, SaysThatThereIsNothing)
{
    EXPECT_EQ(run({s("-l")}), 1);
    EXPECT_EQ(output, QString());
    EXPECT_TRUE(complaint.contains(s("no SMC found"))) << complaint.toStdString();
}

} // namespace
} // namespace pulsebar::e2e
