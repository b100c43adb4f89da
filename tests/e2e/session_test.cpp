#include "e2e/MenuClient.h"
#include "e2e/Panel.h"
#include "e2e/RunningProgram.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>

namespace pulsebar::e2e {
namespace {

/// A desktop session with a session manager of its own.
class SessionTest : public testing::Test
{
protected:
    SessionTest()
        : manager(s(PULSEBAR_TEST_PROGRAMS "/session_manager"), {}, desktop.environment())
    {
        if (!waitFor([this] { return manager.output().endsWith(u'\n'); }))
            throw std::runtime_error("the session manager does not start");
        desktop.environment().insert(s("SESSION_MANAGER"), manager.output().trimmed());
        desktop.writeSettings("[General]\nrefreshSec=1\nNotFirstLaunch=true\n");
    }

    bool waitForLine(const char *line, int times = 1)
    {
        return waitFor(
            [this, line, times] { return manager.output().split(u'\n').count(s(line)) >= times; });
    }

    void join(RunningProgram &program)
    {
        ASSERT_TRUE(program.waitForSamples(1));
        ASSERT_TRUE(waitForLine("joined")) << manager.log().toStdString();
        // What the protocol makes every newcomer do.
        ASSERT_TRUE(waitForLine("saved")) << manager.log().toStdString();
        program.set(RunningProgram::kScripting, "listMax", 7);
    }

    void expectSavedAndGone(RunningProgram &program)
    {
        EXPECT_TRUE(waitForLine("saved", 2));
        EXPECT_TRUE(desktop.settings().contains("\nlistMax=7\n")) << desktop.settings().constData();
        EXPECT_EQ(program.process().waitForEnd(), 0);
        EXPECT_TRUE(waitForLine("left"));
        // 3: never; the login items say whether it is started again.
        EXPECT_TRUE(manager.output().contains(s("\nrestart 3\n")))
            << manager.output().toStdString();
    }

    Desktop desktop;
    Process manager;
};

TEST_F(SessionTest, LogoutSavesAndEndsTheProgramInAPanel)
{
    const Panel panel(desktop);
    RunningProgram program(desktop);
    join(program);
    manager.say("logout");
    expectSavedAndGone(program);
}

TEST_F(SessionTest, LogoutSavesAndEndsTheProgramWithItsStrip)
{
    RunningProgram program(desktop);
    join(program);
    manager.say("logout");
    expectSavedAndGone(program);
}

TEST_F(SessionTest, ACheckpointSavesAndGoesOn)
{
    const Panel panel(desktop);
    RunningProgram program(desktop);
    join(program);
    manager.say("checkpoint");
    EXPECT_TRUE(waitForLine("saved", 2));
    EXPECT_TRUE(desktop.settings().contains("\nlistMax=7\n")) << desktop.settings().constData();
    EXPECT_TRUE(program.waitForSamples(2));
    EXPECT_EQ(program.quit(), 0);
}

} // namespace
} // namespace pulsebar::e2e
