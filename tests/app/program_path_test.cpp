#include "app/ProgramPath.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

class ProgramPathTest : public testing::Test
{
protected:
    QString at(const QString &name) const
    {
        return QFileInfo(m_folder.path()).canonicalFilePath() + u'/' + name;
    }

    QString makeFile(const QString &name)
    {
        QDir().mkpath(QFileInfo(at(name)).path());
        QFile file(at(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return at(name);
    }

    QString makeLink(const QString &name, const QString &target)
    {
        QDir().mkpath(QFileInfo(at(name)).path());
        EXPECT_TRUE(QFile::link(target, at(name)));
        return at(name);
    }

    QByteArray searchPath() const
    {
        return ":relative:" + QFile::encodeName(at(s("local/bin"))) + ':' +
               QFile::encodeName(at(s("usr/bin"))) + ':';
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(ProgramPathTest, AnInstalledProgramIsWhereItIs)
{
    const QString program = makeFile(s("usr/bin/pulsebar"));
    EXPECT_EQ(lastingProgramPath(program, s("pulsebar"), searchPath()), program);
}

TEST_F(ProgramPathTest, AProgramBesideThePathIsWhereItIs)
{
    const QString program = makeFile(s("opt/bin/pulsebar"));
    EXPECT_EQ(lastingProgramPath(program, s("./pulsebar"), searchPath()), program);
    // Another one that is installed is another one.
    makeFile(s("usr/bin/pulsebar"));
    EXPECT_EQ(lastingProgramPath(program, program, searchPath()), program);
}

TEST_F(ProgramPathTest, ALinkInThePathOutlivesTheFolderWithAVersion)
{
    const QString program = makeFile(s("opt/pulsebar-0.1/bin/pulsebar"));
    const QString link = makeLink(s("usr/bin/pulsebar"), program);
    EXPECT_EQ(lastingProgramPath(program, program, searchPath()), link);
    // The next version is there, and the link leads to it.
    QFile::remove(program);
    QFile::remove(link);
    makeLink(s("usr/bin/pulsebar"), makeFile(s("opt/pulsebar-0.2/bin/pulsebar")));
    EXPECT_EQ(lastingProgramPath(program, program, searchPath()), link);
}

TEST_F(ProgramPathTest, OfTwoInstalledProgramsItIsTheOneThatRuns)
{
    makeFile(s("local/bin/pulsebar"));
    const QString program = makeFile(s("opt/pulsebar-0.1/bin/pulsebar"));
    const QString link = makeLink(s("usr/bin/pulsebar"), program);
    EXPECT_EQ(lastingProgramPath(program, program, searchPath()), link);
}

TEST_F(ProgramPathTest, ALinkThatItWasStartedByOutlivesItToo)
{
    const QString program = makeFile(s("opt/pulsebar-0.1/bin/pulsebar"));
    makeLink(s("opt/pulsebar"), at(s("opt/pulsebar-0.1")));
    const QString started = at(s("opt/pulsebar/bin/pulsebar"));
    EXPECT_EQ(lastingProgramPath(program, started, searchPath()), started);
}

TEST_F(ProgramPathTest, WhatItCallsItselfIsNotBelieved)
{
    const QString program = makeFile(s("opt/bin/pulsebar"));
    const QString other = makeFile(s("tmp/evil"));
    EXPECT_EQ(lastingProgramPath(program, other, searchPath()), program);
    EXPECT_EQ(lastingProgramPath(program, QString(), QByteArray()), program);
}

TEST_F(ProgramPathTest, FromABuildTreeTheInstalledOneIsStarted)
{
    const QString program = makeFile(s("src/build/bin/pulsebar"));
    makeFile(s("src/build/CMakeCache.txt"));
    EXPECT_EQ(lastingProgramPath(program, program, searchPath()), program);
    const QString installed = makeFile(s("usr/bin/pulsebar"));
    EXPECT_EQ(lastingProgramPath(program, program, searchPath()), installed);
}

TEST_F(ProgramPathTest, WhatCannotBeStartedIsNotInstalled)
{
    const QString program = makeFile(s("src/build/bin/pulsebar"));
    makeFile(s("src/build/CMakeCache.txt"));
    QDir().mkpath(at(s("local/bin/pulsebar")));
    QFile::setPermissions(makeFile(s("usr/bin/pulsebar")), QFile::ReadOwner);
    EXPECT_EQ(lastingProgramPath(program, program, searchPath()), program);
}

} // namespace
} // namespace pulsebar
