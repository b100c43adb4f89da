#include "e2e/MenuClient.h"
#include "e2e/Panel.h"
#include "e2e/RunningProgram.h"
#include "support/Text.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <netinet/in.h>
#include <optional>
#include <stdexcept>
#include <unistd.h>

namespace pulsebar::e2e {
namespace {

const QString kNoValue = QStringLiteral("org.pulsebar.Error.NoValue");

/// What a nested dictionary is once it came over the bus.
QVariantMap dictionary(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantMap ? value.toMap()
                                                    : qdbus_cast<QVariantMap>(value);
}

/// The program with a network sampler of the test's own beside the real process sampler.
class NetworkTest : public testing::Test
{
protected:
    NetworkTest()
    {
        QDir(desktop.folder()).mkdir(s("helpers"));
        QFile::link(s(PULSEBAR_HELPERS "/pulsebar-top"), helper("pulsebar-top"));
        desktop.environment().insert(s("PULSEBAR_LIBEXEC_DIR"), desktop.folder() + s("/helpers"));
    }

    QString helper(const char *name) const { return desktop.folder() + s("/helpers/") + s(name); }

    /// @param lines shell; "$runs" is how often it has been started, this time included
    void writeSampler(const QByteArray &lines) const
    {
        QFile file(helper("pulsebar-nettop"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\necho $$ \"$@\" >> \"$0.log\"\nruns=$(wc -l < \"$0.log\")\n" + lines);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    /// The command line of every run, the process number in front.
    QStringList runs() const
    {
        QFile file(helper("pulsebar-nettop.log"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }

    bool waitForRuns(qsizetype count)
    {
        return waitFor([&] { return runs().size() >= count; });
    }

    static bool isGone(const QString &run)
    {
        return ::kill(run.section(u' ', 0, 0).toInt(), 0) != 0;
    }

    void start(const QByteArray &settings)
    {
        desktop.writeSettings("[General]\nrefreshSec=1\nlistMax=1\n" + settings);
        program.emplace(desktop);
        ASSERT_TRUE(program->waitForSamples());
        menu.emplace(desktop, program->process().pid());
    }

    QVariantMap traffic() const
    {
        return dictionary(program->control("netInformationDictionary").value);
    }

    /// The rows between the processes and the processors.
    QStringList networkRows()
    {
        QStringList labels = menu->open().labels();
        menu->close();
        const auto isProcessors = [](const QString &label) {
            return label.startsWith(s("CPU Average"));
        };
        const auto from = std::find(labels.cbegin(), labels.cend(), s("-")) + 1;
        return {from, std::find_if(from, labels.cend(), isProcessors)};
    }

    Desktop desktop;
    Panel panel{desktop};
    std::optional<RunningProgram> program;
    std::optional<MenuClient> menu;
};

/// Twenty processes. Every two of them grow alike, the later of the two has the larger total.
const QByteArray kTwenty = "for i in $(seq 20); do\n"
                           "echo \"9,p$i.$i,,,$((runs * ((i + 1) / 2) * 1000 + i)),0,0\"\n"
                           "echo \"9,tcp4 10.0.0.1:$i<->10.0.0.2:80,eth0,Established,$i,7,0\"\n"
                           "done\n";

QString nameOf(const QString &label)
{
    return label.section(u':', -1);
}

TEST_F(NetworkTest, TheSamplerIsRunWithItsArguments)
{
    writeSampler("echo 9,a.1,,,1,2,0\n");
    start("networkMax=3\n");
    ASSERT_TRUE(waitForRuns(2));
    EXPECT_EQ(runs().constFirst().section(u' ', 1), s("-L1 -m tcp -c"));
}

TEST_F(NetworkTest, NothingIsKnownBeforeTheFirstRunHasEnded)
{
    writeSampler("until [ -e \"$0.go\" ]; do sleep 0.02; done; echo 9,a.1,,,4294967296,2,0\n"
                 "echo '9,tcp6 [::1]:22<->*:*,lo,Listen,0,0,0'");
    start("networkMax=3\n");
    EXPECT_EQ(program->control("netInformationDictionary").error, kNoValue);
    EXPECT_EQ(networkRows(), QStringList{s("-")});
    QFile go(helper("pulsebar-nettop.go"));
    ASSERT_TRUE(go.open(QIODevice::WriteOnly));
    ASSERT_TRUE(waitFor([&] { return !traffic().isEmpty(); }));
    const QVariantMap process = dictionary(traffic().value(s("a.1")));
    EXPECT_EQ(process.value(s("bytes_in")), QVariant(qint64(4294967296)));
    EXPECT_EQ(process.value(s("bytes_in")).typeId(), QMetaType::LongLong);
    QVariantList connections;
    process.value(s("subprocess")).value<QDBusArgument>() >> connections;
    ASSERT_EQ(connections.size(), 1);
    EXPECT_EQ(dictionary(connections[0]).value(s("address")), s("[::1]:22<->*:*"));
}

TEST_F(NetworkTest, NobodyWithTraffic)
{
    writeSampler("echo time,,interface,state,bytes_in,bytes_out,rx_dupe\n");
    start("networkMax=5\n");
    ASSERT_TRUE(waitForRuns(2));
    EXPECT_EQ(program->control("netInformationDictionary").error, QString());
    EXPECT_TRUE(traffic().isEmpty());
    EXPECT_EQ(networkRows(), QStringList{s("-")});
}

TEST_F(NetworkTest, AsManyAsAreShown)
{
    writeSampler("for i in 1 2 3 4 5; do echo 9,p$i.$i,,,$((i * 1000)),$i,0; done\n");
    start("networkMax=5\n");
    ASSERT_TRUE(waitForRuns(2));
    EXPECT_EQ(networkRows(), (QStringList{s("\u21934.9KB(+0.0B)/\u21915.0B(+0.0B):p5.5"),
                                          s("\u21933.9KB(+0.0B)/\u21914.0B(+0.0B):p4.4"),
                                          s("\u21932.9KB(+0.0B)/\u21913.0B(+0.0B):p3.3"),
                                          s("\u21932.0KB(+0.0B)/\u21912.0B(+0.0B):p2.2"),
                                          s("\u21931000B(+0.0B)/\u21911.0B(+0.0B):p1.1"), s("-")}));
}

TEST_F(NetworkTest, TheOthersStandInASubmenuInTheSameOrder)
{
    writeSampler(kTwenty);
    start("networkMax=5\n");
    ASSERT_TRUE(waitForRuns(3));
    const QStringList rows = networkRows();
    ASSERT_EQ(rows.size(), 7);
    EXPECT_EQ(rows.constLast(), s("-"));
    ASSERT_EQ(rows[5], s("Other Network Activities"));
    QStringList shown = rows.mid(0, 5);
    EXPECT_TRUE(shown[0].contains(s("(+9.8KB)/\u21910.0B(+0.0B):p20.20")))
        << shown[0].toStdString();
    const MenuRow *others = menu->root().child(rows[5]);
    shown += others->labels();
    QStringList expected;
    for (int i = 20; i > 0; --i)
        expected += s("p%1.%1").arg(i);
    std::transform(shown.begin(), shown.end(), shown.begin(), nameOf);
    EXPECT_EQ(shown, expected);
    ASSERT_FALSE(others->children.isEmpty());
    EXPECT_EQ(others->children.constFirst().labels(),
              QStringList{s("\u219315B/\u21917.0B:tcp4(Established) 10.0.0.1:15<->10.0.0.2:80")});
}

TEST_F(NetworkTest, WithoutAnyInTheMenuNothingRuns)
{
    writeSampler("exec sleep 60\n");
    start("networkMax=0\n");
    EXPECT_EQ(networkRows(), QStringList());
    EXPECT_EQ(runs(), QStringList());
    EXPECT_EQ(program->control("netInformationDictionary").error, kNoValue);

    ASSERT_TRUE(menu->choose({s("Preference"), s("Max of Network"), s("3")}));
    ASSERT_TRUE(waitForRuns(1));
    EXPECT_EQ(networkRows(), QStringList{s("-")});
    ASSERT_TRUE(menu->choose({s("Preference"), s("Max of Network"), s("0")}));
    ASSERT_TRUE(waitFor([&] { return isGone(runs().constLast()); }));
    const qsizetype count = runs().size();
    ASSERT_TRUE(program->waitForSamples(2));
    EXPECT_EQ(runs().size(), count);
    EXPECT_EQ(networkRows(), QStringList());
}

TEST_F(NetworkTest, ASamplerThatHangsIsReplacedAtTheNextTick)
{
    writeSampler("[ $runs -gt 2 ] || { echo 9,half.1,,,1,1,0; exec sleep 60; }; "
                 "echo 9,whole.1,,,1,1,0\n");
    start("networkMax=5\n");
    ASSERT_TRUE(waitFor([&] { return !traffic().isEmpty(); }));
    EXPECT_EQ(traffic().keys(), QStringList{s("whole.1")});
    EXPECT_TRUE(isGone(runs()[0]));
    EXPECT_TRUE(isGone(runs()[1]));
    EXPECT_EQ(program->process().log().count(s("still running")), 1)
        << program->process().log().toStdString();
}

TEST_F(NetworkTest, AMissingSamplerIsAnEmptyListAndSaidOnce)
{
    start("networkMax=5\n");
    ASSERT_TRUE(program->waitForSamples(2));
    EXPECT_TRUE(traffic().isEmpty());
    EXPECT_EQ(program->control("netInformationDictionary").error, QString());
    EXPECT_EQ(program->process().log().count(s("network sampler is missing")), 1);
}

TEST_F(NetworkTest, TheRunEndsWithTheProgram)
{
    writeSampler("trap '' TERM; while :; do sleep 0.1; done\n");
    start("networkMax=5\n");
    ASSERT_TRUE(waitForRuns(1));
    EXPECT_EQ(program->quit(), 0);
    const QStringList all = runs();
    for (const QString &run : all)
        EXPECT_TRUE(isGone(run));
}

#ifdef PULSEBAR_HAS_SYSROOT
/// A connection over loopback of which this program holds both ends.
class Loopback
{
public:
    Loopback()
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto *place = reinterpret_cast<sockaddr *>(&address);
        const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (::bind(listener, place, size) != 0 || ::listen(listener, 1) != 0 ||
            ::getsockname(listener, place, &size) != 0 || ::connect(m_client, place, size) != 0)
            throw std::runtime_error("no connection over loopback");
        m_server = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        ::close(listener);
        size = sizeof address;
        ::getsockname(m_client, place, &size);
        m_clientPort = ntohs(address.sin_port);
    }
    ~Loopback()
    {
        ::close(m_client);
        ::close(m_server);
    }
    Loopback(const Loopback &) = delete;
    Loopback &operator=(const Loopback &) = delete;

    void upload(qint64 bytes) const { move(m_client, m_server, bytes); }
    void download(qint64 bytes) const { move(m_server, m_client, bytes); }
    QString clientEnd() const { return s("127.0.0.1:%1").arg(m_clientPort); }

private:
    static void move(int from, int to, qint64 bytes)
    {
        std::array<char, 4096> block{};
        for (qint64 left = bytes; left > 0;) {
            const auto piece = static_cast<std::size_t>(qMin<qint64>(left, block.size()));
            const ssize_t sent = ::send(from, block.data(), piece, MSG_NOSIGNAL);
            if (sent <= 0 ||
                ::recv(to, block.data(), static_cast<std::size_t>(sent), MSG_WAITALL) != sent)
                throw std::runtime_error("the connection broke");
            left -= sent;
        }
    }

    int m_client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int m_server = -1;
    int m_clientPort = 0;
};

TEST_F(NetworkTest, ARealTransferIsTheirsToTheByte)
{
    constexpr qint64 kUp = 5000001;
    constexpr qint64 kDown = 1537;
    QFile::link(s(PULSEBAR_HELPERS "/pulsebar-nettop"), helper("pulsebar-nettop"));
    const Loopback loopback;
    loopback.upload(kUp);
    loopback.download(kDown);
    start("networkMax=20\n");

    const QString ours = s(".%1").arg(QCoreApplication::applicationPid());
    QString name;
    ASSERT_TRUE(waitFor([&] {
        const QStringList names = traffic().keys();
        const auto found = std::find_if(names.cbegin(), names.cend(),
                                        [&](const QString &key) { return key.endsWith(ours); });
        name = found == names.cend() ? QString() : *found;
        return !name.isEmpty();
    })) << program->process().log().toStdString();
    const QVariantMap process = dictionary(traffic().value(name));
    EXPECT_EQ(process.value(s("bytes_in")), QVariant(kUp + kDown));
    EXPECT_EQ(process.value(s("bytes_out")), QVariant(kUp + kDown));

    QVariantList connections;
    process.value(s("subprocess")).value<QDBusArgument>() >> connections;
    int ends = 0;
    for (const QVariant &entry : connections) {
        const QVariantMap connection = dictionary(entry);
        const QString address = connection.value(s("address")).toString();
        if (!address.contains(loopback.clientEnd()))
            continue;
        ++ends;
        const bool isClient = address.startsWith(loopback.clientEnd());
        EXPECT_EQ(connection.value(s("bytes_in")), QVariant(isClient ? kDown : kUp));
        EXPECT_EQ(connection.value(s("bytes_out")), QVariant(isClient ? kUp : kDown));
        EXPECT_EQ(connection.value(s("interface")), s("lo"));
        EXPECT_EQ(connection.value(s("state")), s("Established"));
        EXPECT_EQ(connection.value(s("type")), s("tcp4"));
    }
    EXPECT_EQ(ends, 2);

    // What is new is told once.
    loopback.upload(1024);
    ASSERT_TRUE(waitFor([&] {
        return networkRows().contains(s("\u21934.8MB(+1024B)/\u21914.8MB(+1024B):") + name);
    }));
    ASSERT_TRUE(waitFor([&] {
        return networkRows().contains(s("\u21934.8MB(+0.0B)/\u21914.8MB(+0.0B):") + name);
    }));
    EXPECT_EQ(program->quit(), 0);
    EXPECT_EQ(program->process().log(), QString());
}
#endif

} // namespace
} // namespace pulsebar::e2e
