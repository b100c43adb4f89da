#include "e2e/MenuClient.h"
#include "e2e/Panel.h"
#include "e2e/RunningProgram.h"
#include "support/Text.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>

namespace pulsebar::e2e {
namespace {

/// The program in a panel, and its menu as that panel reads it.
class MenuTest : public testing::Test
{
protected:
    Desktop desktop;
    Panel panel{desktop};
};

#ifdef PULSEBAR_HAS_SYSROOT
TEST_F(MenuTest, TellsARecordedMachine)
{
    desktop.useMachine(s("server"));
    // Connections are the running kernel's, whatever machine is recorded.
    desktop.writeSettings("[General]\nrefreshSec=1\nnetworkMax=0\n");
    RunningProgram program(desktop);
    ASSERT_TRUE(program.waitForSamples(2));
    MenuClient menu(desktop, program.process().pid());
    const MenuRow &root = menu.open();

    QStringList labels = root.labels();
    ASSERT_GT(labels.size(), 1);
    // Its processors stand still, so their load is no number.
    EXPECT_TRUE(labels.takeAt(1).startsWith(s("CPU Average: ")));
    EXPECT_EQ(labels, (QStringList{s("-"), s("System Memory"), s("Disk #1"), s("Disk #2"),
                                   s("Network In: 0.0B/sec"), s("Network Out: 0.0B/sec"),
                                   s(" Disk Read: 0.0B/sec"), s("Disk Write: 0.0B/sec"),
                                   s("Detailed Information"), s("-"), s("Hide Graph"),
                                   s("Preference"), s("-"), s("Quit")}));
    EXPECT_EQ(root.children[1].labels().filter(s("Core #")).size(), 8);
    EXPECT_EQ(root.at({s("System Memory")})->labels(),
              (QStringList{s("Free: 95820M (74.4%)"), s("Wired: 2208M (1.7%)"),
                           s("Active: 39180M (30.4%)"), s("Inactive: 58711M (45.6%)")}));
    // The disk that was found last stands first.
    EXPECT_EQ(root.at({s("Disk #1")})->labels(),
              (QStringList{s("Disk Read / Write"), s("Speed: 0.0B/s / 0.0B/s"),
                           s("Total: 3390GB / 4349GB"), s("Operations: 90133441 / 210344119"),
                           s("Time: 120144112 ms / 402034412 ms")}));
}

TEST_F(MenuTest, TellsWhoIsBusyNow)
{
    desktop.writeSettings("[General]\nrefreshSec=1\nlistMax=3\n");
    RunningProgram program(desktop);
    ASSERT_TRUE(program.waitForSamples(2));
    MenuClient menu(desktop, program.process().pid());
    const MenuRow &root = menu.open();

    const QRegularExpression process(s("^[0-9]+\\.[0-9]% : ."));
    ASSERT_GT(root.children.size(), 3);
    EXPECT_TRUE(root.children[3].isSeparator());
    for (int i = 0; i < 3; ++i) {
        const MenuRow &row = root.children[i];
        EXPECT_TRUE(process.match(row.label()).hasMatch()) << row.label().toStdString();
        EXPECT_TRUE(row.labels().value(0).startsWith(s("PID: ")));
        EXPECT_TRUE(row.labels().value(1).startsWith(s("User: ")));
        EXPECT_TRUE(row.labels().contains(s("Show Graph")));
        EXPECT_TRUE(row.labels().constLast().startsWith(s("Force Quit")));
    }
    // Paths are learned in the background, each when its row was first built.
    EXPECT_TRUE(waitFor([&menu] {
        const QVector<MenuRow> rows = menu.open().children;
        return std::any_of(rows.begin(), rows.end(), [](const MenuRow &row) {
            return row.labels().contains(s("Show in Finder"));
        });
    }));
}
#endif

} // namespace
} // namespace pulsebar::e2e
