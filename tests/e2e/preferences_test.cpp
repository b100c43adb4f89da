#include "e2e/MenuClient.h"
#include "e2e/Panel.h"
#include "e2e/RunningProgram.h"

#include <QFile>

#include <gtest/gtest.h>

namespace pulsebar::e2e {
namespace {

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

/// The program in a panel, and its menu as that panel reads it.
class PreferencesTest : public testing::Test
{
protected:
    Desktop desktop;
    Panel panel{desktop};
};

TEST_F(PreferencesTest, AChoiceShowsInTheNextMenu)
{
    RunningProgram program(desktop);
    MenuClient menu(desktop, program.process().pid());
    EXPECT_EQ(menu.look({s("Preference"), s("Refresh Time")}).labelsThatAreOn(),
              QStringList{s("3 Seconds")});
    ASSERT_TRUE(menu.choose({s("Preference"), s("Refresh Time"), s("1 Second")}));
    EXPECT_TRUE(waitFor([&program] {
        return program.get(RunningProgram::kScripting, "refreshSec").value == QVariant(1);
    }));
    EXPECT_EQ(menu.look({s("Preference"), s("Refresh Time")}).labelsThatAreOn(),
              QStringList{s("1 Second")});
    EXPECT_FALSE(menu.choose({s("Preference"), s("no such row")}));
}

} // namespace
} // namespace pulsebar::e2e
