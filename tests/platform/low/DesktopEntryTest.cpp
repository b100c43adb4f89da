#include "platform/linux_/low/desktop_entry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pulsebar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> commandOf(const std::string &exec)
{
    return parseDesktopEntry("[Desktop Entry]\nExec=" + exec + "\n").command;
}

TEST(DesktopEntry, TakesWhatNamesTheProgram)
{
    const auto entry = parseDesktopEntry("# comment\n\n[Desktop Entry]\nType=Application\n"
                                         "Name=Editor\nName[de]=Bearbeiter\nIcon = edit \n"
                                         "Icon[de]=falsch\nExec=edit %U\nStartupWMClass=Edit\n");
    EXPECT_EQ(entry.icon, "edit");
    EXPECT_EQ(entry.startupWmClass, "Edit");
    EXPECT_THAT(entry.command, ElementsAre("edit"));
    EXPECT_TRUE(entry.shown);
    EXPECT_FALSE(entry.removed);
}

TEST(DesktopEntry, ActionsDoNotSpeakForTheEntry)
{
    const auto entry = parseDesktopEntry("[Desktop Action new]\nIcon=a\n[Desktop Entry]\nIcon=b\n"
                                         "[Desktop Action more]\nIcon=c\nExec=c\n");
    EXPECT_EQ(entry.icon, "b");
    EXPECT_THAT(entry.command, IsEmpty());
}

TEST(DesktopEntry, KnowsWhatIsNotShownAndWhatIsRemoved)
{
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nNoDisplay=true\n").shown);
    EXPECT_TRUE(parseDesktopEntry("[Desktop Entry]\nNoDisplay=false\n").shown);
    EXPECT_TRUE(parseDesktopEntry("[Desktop Entry]\nHidden=true\r\n").removed);
}

TEST(DesktopEntry, KnowsWhatIsSwitchedOffAtLogin)
{
    EXPECT_TRUE(parseDesktopEntry("[Desktop Entry]\nExec=a\n").autostart);
    EXPECT_TRUE(parseDesktopEntry("[Desktop Entry]\nX-GNOME-Autostart-enabled=true\n").autostart);
    EXPECT_FALSE(
        parseDesktopEntry("[Desktop Entry]\nX-GNOME-Autostart-enabled = false\n").autostart);
}

TEST(DesktopEntry, WordsAreQuotedWhereTheyNeedIt)
{
    EXPECT_EQ(desktopEntryWord("/usr/bin/pulsebar"), "/usr/bin/pulsebar");
    EXPECT_EQ(desktopEntryWord("/my programs/a"), "\"/my programs/a\"");
    EXPECT_EQ(desktopEntryWord("a\"b`c$d\\e"), "\"a\\\"b\\`c\\$d\\\\e\"");
    EXPECT_EQ(desktopEntryWord("100%f"), "100%%f");
    EXPECT_EQ(desktopEntryWord(""), "\"\"");
}

TEST(DesktopEntry, StringsAreEscapedAsTheyAreRead)
{
    EXPECT_EQ(desktopEntryString(" a\\b\n\t\r c"), "\\sa\\\\b\\n\\t\\r c");
    for (const std::string text : {"a", " a b ", "\n\\n", "\t\r\\\\"}) {
        const auto entry =
            parseDesktopEntry("[Desktop Entry]\nIcon=" + desktopEntryString(text + "|") + "\n");
        EXPECT_EQ(entry.icon, text + "|");
    }
}

TEST(DesktopEntry, CommandLines)
{
    EXPECT_THAT(commandOf("/opt/app/bin/app --x %f"), ElementsAre("/opt/app/bin/app", "--x"));
    EXPECT_THAT(commandOf("\"/opt/My App/app\" \"a \\\\\"b\\\\\" c\""),
                ElementsAre("/opt/My App/app", "a \"b\" c"));
    EXPECT_THAT(commandOf("env LANG=C A=b prog x"), ElementsAre("prog", "x"));
    EXPECT_THAT(commandOf("/usr/bin/env prog"), ElementsAre("prog"));
    EXPECT_THAT(commandOf("env A=b"), IsEmpty());
    EXPECT_THAT(commandOf("a\\sb"), ElementsAre("a", "b"));
    EXPECT_THAT(commandOf("a %% %c"), ElementsAre("a", "%%"));
    EXPECT_THAT(commandOf("\"unended a"), ElementsAre("unended a"));
    EXPECT_THAT(commandOf(""), IsEmpty());
    EXPECT_THAT(commandOf("\\"), ElementsAre("\\"));
}

TEST(DesktopEntry, GarbageHasNothingToSay)
{
    EXPECT_EQ(parseDesktopEntry("Icon=before\n").icon, "");
    EXPECT_EQ(parseDesktopEntry("[Desktop Entry\nIcon=x\n").icon, "");
    EXPECT_EQ(parseDesktopEntry(std::string("[Desktop Entry]\nIcon=a\0b\n", 25)).icon.size(), 3U);
    EXPECT_EQ(parseDesktopEntry("").icon, "");
}

} // namespace
} // namespace pulsebar
