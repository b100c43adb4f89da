#include "platform/linux_/DesktopProcessIcons.h"

#include "platform/TemporaryMachine.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <unistd.h>

namespace pulsebar {
namespace {

using namespace std::string_literals;

/// A machine with processes and installed applications.
class DesktopProcessIconsTest : public testing::Test
{
protected:
    void install(const std::string &id, const std::string &keys)
    {
        m_machine.write("apps/" + id + ".desktop", "[Desktop Entry]\nType=Application\n" + keys);
    }
    void run(int pid, int parent, const std::string &cmdline, int startTime = 100,
             const std::string &cgroup = "0::/user.slice\n")
    {
        const std::string folder = "proc/" + std::to_string(pid) + '/';
        std::string stat = std::to_string(pid) + " (a) b) S " + std::to_string(parent);
        for (int field = 5; field <= 52; ++field)
            stat += ' ' + std::to_string(field == 22 ? startTime : 0);
        m_machine.write(folder + "stat", stat + '\n');
        m_machine.write(folder + "cmdline", cmdline);
        m_machine.write(folder + "cgroup", cgroup);
    }
    void link(int pid, const std::string &executable)
    {
        const auto place = m_machine.path("proc/" + std::to_string(pid) + "/exe");
        std::filesystem::remove(place);
        std::filesystem::create_symlink(executable, place);
    }
    std::shared_ptr<DesktopEntries> entries()
    {
        return std::make_shared<DesktopEntries>(
            std::vector<std::string>{m_machine.path("home-apps"), m_machine.path("apps")},
            std::chrono::seconds(0));
    }
    QString iconOf(int pid)
    {
        if (!m_icons)
            m_icons.emplace(m_machine.root(), entries());
        return m_icons->iconForPID(QString::number(pid));
    }

    TemporaryMachine m_machine;
    std::optional<DesktopProcessIcons> m_icons;
};

TEST_F(DesktopProcessIconsTest, ByTheProgramsFile)
{
    install("edit", "Exec=/opt/edit/bin/edit %U\nIcon=edit-icon\n");
    install("web", "Exec=web\nIcon=/opt/web.png\n");
    run(10, 1, "edit\0"s);
    run(11, 1, "/usr/lib/web/web\0--x\0"s);
    run(12, 1, "renamed\0"s);
    link(12, "/opt/edit/bin/edit (deleted)");
    EXPECT_EQ(iconOf(10), QStringLiteral("edit-icon"));
    EXPECT_EQ(iconOf(11), QStringLiteral("/opt/web.png"));
    EXPECT_EQ(iconOf(12), QStringLiteral("edit-icon"));
}

TEST_F(DesktopProcessIconsTest, ByTheControlGroupBeforeTheProgram)
{
    install("edit", "Exec=edit\nIcon=edit-icon\n");
    install("org.example.Web", "Exec=flatpak run org.example.Web\nIcon=web-icon\n");
    run(10, 1, "edit\0"s, 1, "0::/user.slice/app-flatpak-org.example.Web-12.scope\n");
    EXPECT_EQ(iconOf(10), QStringLiteral("web-icon"));
}

TEST_F(DesktopProcessIconsTest, AScriptIsNotItsInterpreter)
{
    install("python3.11", "Exec=/usr/bin/python3.11\nIcon=python\nNoDisplay=true\n");
    install("tool", "Exec=python3 /opt/tool.py\nIcon=tool-icon\n");
    install("starter", "Exec=flatpak run x\nIcon=starter-icon\n");
    run(10, 1, "/usr/bin/python3.11\0-u\0/opt/tool.py\0"s);
    run(11, 1, "/usr/bin/python3.11\0/opt/other.py\0"s);
    run(12, 1, "flatpak\0"s);
    EXPECT_EQ(iconOf(10), QStringLiteral("tool-icon"));
    EXPECT_EQ(iconOf(11), QString());
    EXPECT_EQ(iconOf(12), QString());
}

TEST_F(DesktopProcessIconsTest, ChildrenHaveTheirApplicationsIcon)
{
    install("web", "Exec=web\nIcon=web-icon\n");
    run(10, 1, "web\0"s);
    run(11, 10, "web-helper\0"s);
    run(12, 11, "Web Content\0"s);
    EXPECT_EQ(iconOf(12), QStringLiteral("web-icon"));
}

TEST_F(DesktopProcessIconsTest, ThePanelDoesNotPassItsIconOn)
{
    install("panel", "Exec=panel\nIcon=panel-icon\nNoDisplay=true\n");
    run(10, 1, "panel\0"s);
    run(11, 10, "some-tool\0"s);
    EXPECT_EQ(iconOf(10), QStringLiteral("panel-icon"));
    EXPECT_EQ(iconOf(11), QString());
}

TEST_F(DesktopProcessIconsTest, TheWalkToTheParentsEnds)
{
    install("web", "Exec=web\nIcon=web-icon\n");
    run(10, 1, "web\0"s);
    for (int pid = 11; pid <= 15; ++pid)
        run(pid, pid - 1, "deep\0"s);
    EXPECT_EQ(iconOf(14), QStringLiteral("web-icon"));
    EXPECT_EQ(iconOf(15), QString());
    run(20, 21, "a\0"s);
    run(21, 20, "b\0"s);
    EXPECT_EQ(iconOf(20), QString());
}

TEST_F(DesktopProcessIconsTest, AnAnswerIsKeptAsLongAsItIsTheSameProcess)
{
    install("edit", "Exec=edit\nIcon=edit-icon\n");
    install("web", "Exec=web\nIcon=web-icon\n");
    run(10, 1, "edit\0"s, 100);
    EXPECT_EQ(iconOf(10), QStringLiteral("edit-icon"));
    run(10, 1, "web\0"s, 100);
    EXPECT_EQ(iconOf(10), QStringLiteral("edit-icon"));
    run(10, 1, "web\0"s, 200);
    EXPECT_EQ(iconOf(10), QStringLiteral("web-icon"));
}

TEST_F(DesktopProcessIconsTest, AnswersStayRightWhenNoMoreCanBeKept)
{
    install("edit", "Exec=edit\nIcon=edit-icon\n");
    m_icons.emplace(m_machine.root(), entries(), 2);
    for (int pid = 10; pid < 15; ++pid)
        run(pid, 1, "edit\0"s);
    for (int pid : {10, 11, 12, 13, 14, 10, 11})
        EXPECT_EQ(iconOf(pid), QStringLiteral("edit-icon")) << pid;
    // Forgotten in between: looked up again.
    install("web", "Exec=web\nIcon=web-icon\n");
    run(12, 1, "web\0"s);
    EXPECT_EQ(iconOf(12), QStringLiteral("web-icon"));
}

TEST_F(DesktopProcessIconsTest, NoNumberAndNoProcessHaveNoIcon)
{
    DesktopProcessIcons icons(m_machine.root(), entries());
    for (const QString &pid :
         {QString(), QStringLiteral("x"), QStringLiteral("-1"), QStringLiteral("0"),
          QStringLiteral("99999999999"), QStringLiteral("4121")})
        EXPECT_EQ(icons.iconForPID(pid), QString()) << pid.toStdString();
}

TEST_F(DesktopProcessIconsTest, WhatIsInstalledLaterIsFound)
{
    run(10, 1, "late\0"s);
    run(11, 1, "late\0"s);
    EXPECT_EQ(iconOf(10), QString());
    install("late", "Exec=late\nIcon=late-icon\n");
    EXPECT_EQ(iconOf(11), QStringLiteral("late-icon"));
}

TEST_F(DesktopProcessIconsTest, TheUsersEntryHidesTheSystems)
{
    install("edit", "Exec=edit\nIcon=system-icon\n");
    install("web", "Exec=web\nIcon=web-icon\n");
    m_machine.write("home-apps/edit.desktop", "[Desktop Entry]\nExec=edit\nIcon=own-icon\n");
    m_machine.write("home-apps/web.desktop", "[Desktop Entry]\nHidden=true\n");
    run(10, 1, "edit\0"s);
    run(11, 1, "web\0"s);
    EXPECT_EQ(iconOf(10), QStringLiteral("own-icon"));
    EXPECT_EQ(iconOf(11), QString());
}

TEST_F(DesktopProcessIconsTest, OfSeveralEntriesThePlainOneIsTheApplication)
{
    install("a-office-calc", "Exec=office --calc %U\nIcon=calc\n");
    install("b-office", "Exec=office %U\nIcon=office\n");
    install("c-office-autorun", "Exec=office\nIcon=autorun\nNoDisplay=true\n");
    run(10, 1, "/usr/bin/office\0--calc\0"s);
    EXPECT_EQ(iconOf(10), QStringLiteral("office"));
}

TEST(DesktopEntries, FoldersBelowArePartOfTheIdentifier)
{
    const TemporaryMachine machine;
    machine.write("apps/vendor/sub/tool.desktop", "[Desktop Entry]\nExec=t\nIcon=tool-icon\n");
    DesktopEntries entries({machine.path("apps")});
    const auto *application = entries.byId("vendor-sub-tool");
    ASSERT_NE(application, nullptr);
    EXPECT_EQ(application->icon, "tool-icon");
    EXPECT_EQ(entries.byId("tool"), nullptr);
}

TEST(DesktopEntries, FoldersThatGoInCirclesAreSurvived)
{
    const TemporaryMachine machine;
    machine.write("apps/a.desktop", "[Desktop Entry]\nExec=a\nIcon=a\n");
    std::filesystem::create_directory_symlink(machine.path("apps"), machine.path("apps/loop"));
    DesktopEntries entries({machine.path("apps")});
    EXPECT_NE(entries.byId("a"), nullptr);
}

TEST(DesktopEntries, StandardFoldersComeFromTheEnvironment)
{
    ::setenv("XDG_DATA_HOME", "/home/u/share", 1);
    ::setenv("XDG_DATA_DIRS", "/a:relative:/b", 1);
    EXPECT_EQ(DesktopEntries::standardFolders(),
              (std::vector<std::string>{"/home/u/share/applications", "/a/applications",
                                        "/b/applications"}));
    ::unsetenv("XDG_DATA_HOME");
    ::unsetenv("XDG_DATA_DIRS");
    ::setenv("HOME", "/home/v", 1);
    EXPECT_EQ(
        DesktopEntries::standardFolders(),
        (std::vector<std::string>{"/home/v/.local/share/applications",
                                  "/usr/local/share/applications", "/usr/share/applications"}));
}

} // namespace
} // namespace pulsebar
