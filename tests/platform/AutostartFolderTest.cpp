#include "platform/linux_/AutostartFolder.h"

#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/desktop_entry.h"
#include "support/QtPrinting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace pulsebar {
namespace {

const QString kOwnFile = AutostartFolder::kOwnFile;

class AutostartFolderTest : public testing::Test
{
protected:
    AutostartFolderTest()
        : list(folder(), "relative:" + QFile::encodeName(m_home.filePath(QStringLiteral("bin"))))
    {
        program = makeProgram(QStringLiteral("bin/pulsebar"));
    }

    QString folder() const { return m_home.filePath(QStringLiteral("config/autostart")); }
    QString filePath(const QString &name) const { return folder() + u'/' + name; }

    QString makeProgram(const QString &name)
    {
        QString path = m_home.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }

    void writeEntry(const QString &name, const QByteArray &text)
    {
        QDir().mkpath(folder());
        QFile file(filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QByteArray ownText() const
    {
        QFile file(filePath(kOwnFile));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QStringList files() const
    {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::System | QDir::Hidden |
                                        QDir::NoDotAndDotDot);
    }

    /// The paths of the list as it is for a program at `own`.
    QStringList paths(const QString &own = QStringLiteral("/own"))
    {
        QStringList found;
        const QVariantList items = list.items(own).value_or(QVariantList());
        for (const QVariant &item : items)
            found += item.toMap().value(QStringLiteral("Path")).toString();
        return found;
    }

    /// Does what switching on does to a list in which the program is not.
    void enable(const QString &path)
    {
        QVariantList items = list.items(path).value_or(QVariantList());
        items += QVariantMap{{QStringLiteral("Path"), path}, {QStringLiteral("Hide"), false}};
        ASSERT_TRUE(list.setItems(items));
    }

    QTemporaryDir m_home;
    AutostartFolder list;
    QString program;
};

TEST_F(AutostartFolderTest, AMissingFolderIsAnEmptyListAndIsMadeWhenNeeded)
{
    EXPECT_EQ(list.items(program), QVariantList());
    EXPECT_TRUE(list.setItems({}));
    EXPECT_FALSE(QFileInfo::exists(folder()));
    enable(program);
    EXPECT_EQ(paths(program), QStringList{program});
    struct stat facts = {};
    ASSERT_EQ(::stat(QFile::encodeName(folder()).constData(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0700U);
}

TEST_F(AutostartFolderTest, WhatCannotBeReadIsNoList)
{
    QDir().mkpath(QFileInfo(folder()).path());
    QFile inTheWay(folder());
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_EQ(list.items(program), std::nullopt);
    EXPECT_FALSE(list.setItems({QVariantMap{{QStringLiteral("Path"), program}}}));
}

TEST_F(AutostartFolderTest, ListsWhatIsInForce)
{
    const QString other = makeProgram(QStringLiteral("bin/other"));
    writeEntry(QStringLiteral("a.desktop"), "[Desktop Entry]\nExec=other --tray\n");
    writeEntry(QStringLiteral("b.desktop"), "[Desktop Entry]\nExec=/opt/b\n");
    writeEntry(QStringLiteral("c.desktop"), "[Desktop Entry]\nExec=/opt/c\nHidden=true\n");
    writeEntry(QStringLiteral("d.desktop"),
               "[Desktop Entry]\nExec=/opt/d\nX-GNOME-Autostart-enabled=false\n");
    writeEntry(QStringLiteral("e.desktop"),
               "[Desktop Entry]\nExec=/opt/100%%\nX-GNOME-Autostart-enabled=true\n");
    writeEntry(QStringLiteral("f.desktop"), "[Desktop Entry]\nExec=nowhere\n");
    writeEntry(QStringLiteral("g.txt"), "[Desktop Entry]\nExec=/opt/g\n");
    writeEntry(QStringLiteral(".h.desktop"), "[Desktop Entry]\nExec=/opt/h\n");
    EXPECT_EQ(paths(), (QStringList{other, QStringLiteral("/opt/b"), QStringLiteral("/opt/100%"),
                                    QStringLiteral("nowhere")}));
}

TEST_F(AutostartFolderTest, OurEntryIsOursWhateverItStarts)
{
    for (const char *command : {"pulsebar", "env LANG=C pulsebar --x", "%1"}) {
        writeEntry(
            kOwnFile,
            "[Desktop Entry]\nExec=" +
                QString::fromLatin1(command).replace(QStringLiteral("%1"), program).toUtf8() +
                '\n');
        EXPECT_EQ(paths(QStringLiteral("/new/place/pulsebar")),
                  QStringList{QStringLiteral("/new/place/pulsebar")})
            << command;
    }
}

TEST_F(AutostartFolderTest, AnEntryOfOursThatDoesNothingIsWrittenAnew)
{
    for (const QByteArray &text :
         {QByteArray("[Desktop Entry]\nExec=/gone/pulsebar\n"), QByteArray(),
          "[Desktop Entry]\nHidden=true\nExec=" + program.toUtf8() + '\n',
          "[Desktop Entry]\nX-GNOME-Autostart-enabled=false\nExec=" + program.toUtf8() + '\n'}) {
        writeEntry(kOwnFile, text);
        EXPECT_EQ(paths(program), QStringList()) << text.constData();
        enable(program);
        EXPECT_EQ(paths(program), QStringList{program}) << text.constData();
    }
}

TEST_F(AutostartFolderTest, RemovesOnlyWhatIsTakenOut)
{
    const QByteArray others = "[Desktop Entry]\nExec=/opt/other\n# a remark\n";
    writeEntry(QStringLiteral("other.desktop"), others);
    writeEntry(QStringLiteral("off.desktop"), "[Desktop Entry]\nHidden=true\nExec=/opt/off\n");
    writeEntry(QStringLiteral("broken.desktop"), "\xff\xfe nonsense");
    enable(program);
    QVariantList items = list.items(program).value_or(QVariantList());
    ASSERT_EQ(items.size(), 2);
    items.removeAt(0); // org.pulsebar comes before other
    ASSERT_TRUE(list.setItems(items));
    EXPECT_EQ(files(), (QStringList{QStringLiteral("broken.desktop"), QStringLiteral("off.desktop"),
                                    QStringLiteral("other.desktop")}));
    QFile other(filePath(QStringLiteral("other.desktop")));
    ASSERT_TRUE(other.open(QIODevice::ReadOnly));
    EXPECT_EQ(other.readAll(), others);
}

TEST_F(AutostartFolderTest, HostileFilesAreNotInTheWay)
{
    QDir().mkpath(folder());
    ASSERT_EQ(
        ::mkfifo(QFile::encodeName(filePath(QStringLiteral("fifo.desktop"))).constData(), 0600), 0);
    QDir().mkpath(filePath(QStringLiteral("folder.desktop")));
    QFile::link(QStringLiteral("/dev/zero"), filePath(QStringLiteral("zero.desktop")));
    QFile::link(QStringLiteral("loop.desktop"), filePath(QStringLiteral("loop.desktop")));
    QFile huge(filePath(QStringLiteral("huge.desktop")));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize(1LL << 32));
    writeEntry(QStringLiteral("long.desktop"),
               "[Desktop Entry]\n" + QByteArray(1 << 19, 'x') + "\nExec=/opt/long\n");
    EXPECT_EQ(paths(program), QStringList());
    enable(program);
    EXPECT_EQ(paths(program), QStringList{program});
}

TEST_F(AutostartFolderTest, ALinkIsReplacedAndWhatItLeadsToStays)
{
    const QString target = m_home.filePath(QStringLiteral("precious"));
    for (const bool exists : {true, false}) {
        QFile::remove(target);
        QFile file(target);
        if (exists) {
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write("precious");
            file.close();
        }
        QDir().mkpath(folder());
        QFile::remove(filePath(kOwnFile));
        ASSERT_TRUE(QFile::link(target, filePath(kOwnFile)));
        enable(program);
        EXPECT_FALSE(QFileInfo(filePath(kOwnFile)).isSymLink());
        EXPECT_EQ(QFileInfo::exists(target), exists);
        EXPECT_EQ(QFileInfo(target).size(), exists ? 8 : 0);
    }
}

TEST_F(AutostartFolderTest, AFifoInItsPlaceDoesNotBlock)
{
    QDir().mkpath(folder());
    ASSERT_EQ(::mkfifo(QFile::encodeName(filePath(kOwnFile)).constData(), 0600), 0);
    EXPECT_EQ(paths(program), QStringList());
    enable(program);
    EXPECT_TRUE(QFileInfo(filePath(kOwnFile)).isFile());
}

TEST_F(AutostartFolderTest, AFolderInItsPlaceIsReported)
{
    QDir().mkpath(filePath(kOwnFile));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(list.setItems({QVariantMap{{QStringLiteral("Path"), program}}}));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("cannot be written"), std::string::npos);
}

TEST_F(AutostartFolderTest, TheEntryIsValidAndStartsTheProgramWhateverItIsCalled)
{
    for (const char *name :
         {"plain", "my programs", "dollar$HOME`id`", "per%cent%f", "quo\"te'", "back\\slash",
          "semi;colon&pipe|", "tab\there", "Ünïcode", "(a) <b> #c ~d *e ?f"}) {
        SCOPED_TRACE(name);
        const QString path = makeProgram(QString::fromUtf8(name) + QStringLiteral("/pulsebar"));
        QFile::remove(filePath(kOwnFile));
        enable(path);
        EXPECT_EQ(paths(path), QStringList{path});
        const DesktopEntry entry = parseDesktopEntry(ownText().toStdString());
        const std::string literal = path.toStdString();
        std::string doubled;
        for (const char c : literal)
            doubled.append(c == '%' ? 2 : 1, c);
        EXPECT_THAT(entry.command, testing::ElementsAre(doubled)) << ownText().constData();
        QProcess validator;
        validator.setProcessChannelMode(QProcess::MergedChannels);
        validator.start(QStringLiteral("desktop-file-validate"), {filePath(kOwnFile)});
        ASSERT_TRUE(validator.waitForFinished());
        EXPECT_EQ(validator.readAll(), QByteArray());
        EXPECT_EQ(validator.exitCode(), 0);
    }
}

} // namespace
} // namespace pulsebar
