#include "platform/linux_/DesktopWorkspace.h"

#include "platform/TemporaryMachine.h"
#include "support/QtPrinting.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <filesystem>

namespace pulsebar {
namespace {

class DesktopWorkspaceTest : public testing::Test
{
protected:
    DesktopWorkspaceTest()
    {
        program("bin/viewer");
        install("org.example.Viewer", "Name=Viewer\nName[de]=Betrachter\nIcon=viewer\nExec=" +
                                          m_machine.path("bin/viewer") + " --new \"a b\" %U\n");
    }
    ~DesktopWorkspaceTest() override { QLocale::setDefault(QLocale::c()); }

    void install(const std::string &id, const std::string &keys)
    {
        m_machine.write("apps/" + id + ".desktop", "[Desktop Entry]\nType=Application\n" + keys);
    }
    void program(const std::string &file)
    {
        m_machine.write(file, "#!/bin/sh\n");
        std::filesystem::permissions(m_machine.path(file), std::filesystem::perms::owner_all);
    }
    QString path(const char *file) const { return QString::fromStdString(m_machine.path(file)); }

    TemporaryMachine m_machine;
    DesktopWorkspace m_workspace{std::make_shared<DesktopEntries>(
        std::vector<std::string>{m_machine.path("apps")}, std::chrono::seconds(0))};
};

TEST_F(DesktopWorkspaceTest, AProgramHasItsApplicationsIcon)
{
    EXPECT_EQ(m_workspace.iconForFile(path("bin/viewer")), QStringLiteral("viewer"));
    program("bin/other");
    EXPECT_EQ(m_workspace.iconForFile(path("bin/other")),
              QStringLiteral("application-x-executable"));
}

TEST_F(DesktopWorkspaceTest, OtherFilesHaveTheIconOfTheirKind)
{
    m_machine.write("text.txt", "x");
    EXPECT_EQ(m_workspace.iconForFile(path("text.txt")), QStringLiteral("text-plain"));
    EXPECT_EQ(m_workspace.iconForFile(path("bin")), QStringLiteral("folder"));
    EXPECT_EQ(m_workspace.iconForFile(path("missing")), QString());
    EXPECT_EQ(m_workspace.iconForFile(QStringLiteral("bin/viewer")), QString());
    EXPECT_EQ(m_workspace.iconForFile(QString()), QString());
}

TEST_F(DesktopWorkspaceTest, NamesAreInTheUsersLanguage)
{
    EXPECT_EQ(m_workspace.displayName(path("bin/viewer")), QStringLiteral("Viewer"));
    QLocale::setDefault(QLocale(QStringLiteral("de_AT")));
    EXPECT_EQ(m_workspace.displayName(path("bin/viewer")), QStringLiteral("Betrachter"));
    EXPECT_EQ(m_workspace.displayName(path("bin/nothing")), QStringLiteral("nothing"));
}

TEST_F(DesktopWorkspaceTest, ApplicationsAreFoundByName)
{
    QLocale::setDefault(QLocale(QStringLiteral("de_AT")));
    for (const char *name : {"Viewer", "Betrachter", "viewer"})
        EXPECT_EQ(m_workspace.fullPathForApplication(QString::fromLatin1(name)), path("bin/viewer"))
            << name;
    EXPECT_EQ(m_workspace.fullPathForApplication(QStringLiteral("VIEWER")), QString());
    EXPECT_EQ(m_workspace.fullPathForApplication(QString()), QString());
    EXPECT_EQ(m_workspace.fullPathForApplication(QStringLiteral("../apps")), QString());
    EXPECT_TRUE(m_workspace.fullPathForApplication(QStringLiteral("sh")).startsWith(u'/'));
}

TEST_F(DesktopWorkspaceTest, AnApplicationIsStartedByItsEntry)
{
    const QStringList command{path("bin/viewer"), QStringLiteral("--new"), QStringLiteral("a b")};
    EXPECT_EQ(m_workspace.commandForProgram(path("bin/viewer")), command);
    std::filesystem::create_symlink(m_machine.path("bin/viewer"), m_machine.path("bin/link"));
    EXPECT_EQ(m_workspace.commandForProgram(path("bin/link")), command);
    // Another program of that name is not the application.
    program("elsewhere/viewer");
    EXPECT_EQ(m_workspace.commandForProgram(path("elsewhere/viewer")), QStringList());
    // The plainest command is the application itself.
    install("org.example.Private",
            "Name=Private\nIcon=p\nExec=" + m_machine.path("bin/viewer") + "\n");
    EXPECT_EQ(m_workspace.commandForProgram(path("bin/viewer")), QStringList{path("bin/viewer")});
    EXPECT_EQ(m_workspace.commandForProgram(QString()), QStringList());
}

} // namespace
} // namespace pulsebar
