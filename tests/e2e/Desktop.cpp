#include "e2e/Desktop.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <csignal>
#include <filesystem>
#include <stdexcept>

namespace pulsebar::e2e {

namespace {

constexpr const char *kBusConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <servicedir>%1/services</servicedir>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

/// Starts a server that says on its first line where it is to be found.
QString startServer(QProcess &server, const QString &program, const QStringList &arguments)
{
    server.setStandardErrorFile(QProcess::nullDevice());
    server.start(program, arguments);
    while (!server.canReadLine()) {
        if (!server.waitForReadyRead(15000))
            throw std::runtime_error("a server of the test does not start");
    }
    return QString::fromUtf8(server.readLine()).trimmed();
}

void stopServer(QProcess &server)
{
    server.kill();
    server.waitForFinished();
}

void writeFile(const QString &name, const QByteArray &text)
{
    QFile file(name);
    if (!QDir().mkpath(QFileInfo(name).path()) || !file.open(QIODevice::WriteOnly) ||
        file.write(text) != text.size())
        throw std::runtime_error("a file of the test cannot be written");
}

} // namespace

bool waitFor(const std::function<bool()> &condition, int milliseconds)
{
    static constexpr int kLookAgain = 20;
    const QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QEventLoop loop;
        QTimer::singleShot(kLookAgain, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

Process::Process(const QString &program, const QStringList &arguments,
                 const QProcessEnvironment &environment)
{
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput,
                     [this] { m_output += m_process.readAllStandardOutput(); });
    QObject::connect(&m_process, &QProcess::readyReadStandardError,
                     [this] { m_log += m_process.readAllStandardError(); });
    m_process.setProcessEnvironment(environment);
    m_process.start(program, arguments);
    if (!m_process.waitForStarted())
        throw std::runtime_error("a program of the test does not start");
}

Process::~Process()
{
    m_process.disconnect();
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished();
}

void Process::signal(int number) const
{
    ::kill(static_cast<pid_t>(pid()), number);
}

void Process::say(const QByteArray &line)
{
    m_process.write(line + '\n');
}

int Process::waitForEnd()
{
    const bool ended = waitFor([this] { return m_process.state() == QProcess::NotRunning; });
    return ended && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

Desktop::Desktop(const DesktopOptions &options)
{
    m_environment.insert(QStringLiteral("PATH"), m_folder.filePath(QStringLiteral("bin")) + u':' +
                                                     qEnvironmentVariable("PATH"));
    for (const char *name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name))
            m_environment.insert(QString::fromLatin1(name), qEnvironmentVariable(name));
    }
    m_environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    m_environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    m_environment.insert(QStringLiteral("HOME"), m_folder.path());
    for (const char *name :
         {"CONFIG_HOME", "DATA_HOME", "CACHE_HOME", "STATE_HOME", "RUNTIME_DIR"}) {
        const QString folder = m_folder.filePath(QString::fromLatin1(name).toLower());
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        m_environment.insert(QStringLiteral("XDG_") + QLatin1String(name), folder);
    }
    installOpener();
    startBus(options.services);
    startDisplay(options);
}

Desktop::~Desktop()
{
    stopBus();
    stopDisplay();
}

void Desktop::installOpener()
{
    const QString script = QStringLiteral("#!/bin/sh\nprintf '%s\\n' \"$*\" >>\"$HOME/opened\"\n");
    const QString name = m_folder.filePath(QStringLiteral("bin/xdg-open"));
    writeFile(name, script.toUtf8());
    QFile::setPermissions(name, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QStringList Desktop::openedUrls() const
{
    QFile notes(m_folder.filePath(QStringLiteral("opened")));
    if (!notes.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(notes.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

void Desktop::startBus(const QStringList &services)
{
    const QDir folder(m_folder.filePath(QStringLiteral("services")));
    folder.mkpath(folder.path());
    for (const QString &service : services)
        QFile::link(QStringLiteral("/usr/share/dbus-1/services/%1.service").arg(service),
                    folder.filePath(service + QStringLiteral(".service")));
    const QString configuration = m_folder.filePath(QStringLiteral("bus.conf"));
    writeFile(configuration, QString::fromLatin1(kBusConfiguration).arg(m_folder.path()).toUtf8());
    const QString address =
        startServer(m_busDaemon, QStringLiteral("dbus-daemon"),
                    {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                     QStringLiteral("--config-file"), configuration});
    m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    m_bus =
        std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(address, m_folder.path()));
    if (!m_bus->isConnected())
        throw std::runtime_error("the test's bus cannot be reached");
}

void Desktop::startDisplay(const DesktopOptions &options)
{
    const QSize screen = options.screen;
    QStringList arguments{QStringLiteral("-displayfd"), QStringLiteral("1"),
                          QStringLiteral("-screen"), QStringLiteral("0"),
                          QStringLiteral("%1x%2x24").arg(screen.width()).arg(screen.height()),
                          QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                          // Else the server starts afresh whenever its last client leaves.
                          QStringLiteral("-noreset")};
    for (const QString &extension : options.withoutExtensions)
        arguments << QStringLiteral("-extension") << extension;
    const QString number = startServer(m_xServer, QStringLiteral("Xvfb"), arguments);
    m_environment.insert(QStringLiteral("DISPLAY"), u':' + number);
}

void Desktop::stopBus()
{
    if (m_bus)
        QDBusConnection::disconnectFromBus(m_folder.path());
    m_bus.reset();
    stopServer(m_busDaemon);
}

void Desktop::stopDisplay()
{
    stopServer(m_xServer);
}

QString Desktop::settingsFile() const
{
    return m_folder.filePath(QStringLiteral("config_home/Pulsebar/Pulsebar.conf"));
}

void Desktop::writeSettings(const QByteArray &text) const
{
    writeFile(settingsFile(), text);
}

QByteArray Desktop::settings() const
{
    QFile file(settingsFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString Desktop::useMachine(const QString &kind)
{
    namespace fs = std::filesystem;
    const fs::path recorded = fs::path(PULSEBAR_FIXTURES "/machines") / kind.toStdString();
    const fs::path copy = m_folder.filePath(QStringLiteral("machine")).toStdString();
    // Links stay links: whose device a chip is, they tell.
    fs::copy(recorded, copy, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(copy)) {
        if (!entry.is_symlink())
            fs::permissions(entry, fs::perms::owner_read | fs::perms::owner_write,
                            fs::perm_options::add);
    }
    m_environment.insert(QStringLiteral("PULSEBAR_SYSROOT"), QString::fromStdString(copy));
    return QString::fromStdString(copy);
}

std::unique_ptr<Process> Desktop::startProgram(const QStringList &arguments)
{
    return std::make_unique<Process>(QStringLiteral(PULSEBAR_PROGRAMS "/pulsebar"), arguments,
                                     m_environment);
}

std::unique_ptr<Process> Desktop::startClient(const QStringList &arguments)
{
    return std::make_unique<Process>(QStringLiteral(PULSEBAR_PROGRAMS "/pulsebarctl"), arguments,
                                     m_environment);
}

} // namespace pulsebar::e2e
