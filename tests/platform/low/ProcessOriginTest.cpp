#include "platform/linux_/low/process_origin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char *slice = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";

std::vector<std::string> idsOf(const std::string &unit)
{
    return desktopIdsOfCgroup(slice + unit + "\n");
}

TEST(ProcessOrigin, UnitsThatADesktopNamesForTheApplication)
{
    EXPECT_THAT(idsOf("app-gnome-org.example.Editor-4121.scope"),
                ElementsAre("org.example.Editor", "gnome-org.example.Editor"));
    EXPECT_THAT(idsOf("app-org.example.Editor@f2a0.service"), ElementsAre("org.example.Editor"));
    EXPECT_THAT(idsOf("app-flatpak-org.example.Web-90.scope"), Contains("org.example.Web"));
    EXPECT_THAT(idsOf("app-firefox\\x2desr-12.scope"), ElementsAre("firefox-esr"));
}

TEST(ProcessOrigin, UnitsOfSnaps)
{
    EXPECT_THAT(idsOf("snap.web.browser.1c2d-33.scope"), ElementsAre("web_browser"));
    EXPECT_THAT(idsOf("snap.web.browser-1c2d.scope"), Contains("web_browser"));
    EXPECT_THAT(idsOf("snap.web.scope"), IsEmpty());
}

TEST(ProcessOrigin, TheInnermostGroupThatNamesAnApplicationCounts)
{
    EXPECT_THAT(idsOf("app-one-1.scope/app-two-2.scope/tab3"), ElementsAre("two"));
}

TEST(ProcessOrigin, OtherGroupsNameNone)
{
    for (const char *text : {"", "0::/\n", "0::/init.scope\n", "0::/system.slice/cron.service\n",
                             "0::/app-\n", "0::/app-.scope\n", "0::/snap..scope\n", "garbage"})
        EXPECT_THAT(desktopIdsOfCgroup(text), IsEmpty()) << text;
}

TEST(ProcessOrigin, DamagedEscapesStayAsTheyAre)
{
    EXPECT_THAT(idsOf("app-a\\x2-1.scope"), Contains("a\\x2"));
    EXPECT_THAT(idsOf("app-a\\xzz-1.scope"), Contains("a\\xzz"));
}

TEST(ProcessOrigin, ProgramsOfACommandLine)
{
    using namespace std::string_literals;
    EXPECT_THAT(programsOfCommandLine("/usr/bin/web\0--tab\0"s), ElementsAre("/usr/bin/web"));
    EXPECT_THAT(programsOfCommandLine("python3.11\0-u\0/usr/bin/tool\0x\0"s),
                ElementsAre("python3.11", "/usr/bin/tool"));
    EXPECT_THAT(programsOfCommandLine("/bin/sh\0"s), ElementsAre("/bin/sh"));
    EXPECT_THAT(programsOfCommandLine(""), IsEmpty());
    EXPECT_THAT(programsOfCommandLine("\0\0"s), IsEmpty());
}

TEST(ProcessOrigin, Interpreters)
{
    for (const char *name : {"python", "python3", "python3.11", "perl5.36", "sh", "bash"})
        EXPECT_TRUE(isInterpreter(name)) << name;
    for (const char *name : {"", "3", "web", "shell", "pythonista", "node-gui"})
        EXPECT_FALSE(isInterpreter(name)) << name;
}

} // namespace
} // namespace pulsebar
