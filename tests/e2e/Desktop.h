#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

#include <functional>
#include <memory>

namespace pulsebar::e2e {

/// Runs the event loop until `condition` holds. @return whether it did within `milliseconds`
bool waitFor(const std::function<bool()> &condition, int milliseconds = 15000);

/// A process of the test: everything it wrote is kept, and it does not outlive its object.
class Process
{
public:
    Process(const QString &program, const QStringList &arguments,
            const QProcessEnvironment &environment);
    ~Process();
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    qint64 pid() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    QString output() const { return QString::fromUtf8(m_output); }
    QString log() const { return QString::fromUtf8(m_log); }
    void signal(int number) const;
    /// Writes a line to its standard input.
    void say(const QByteArray &line);
    /// @return the exit status; -1 when it did not end, or by a signal
    int waitForEnd();

private:
    QProcess m_process;
    QByteArray m_output;
    QByteArray m_log;
};

/// What a test wants its desktop to be like.
struct DesktopOptions
{
    QSize screen{800, 600};
    /// Names of services of this system that the bus may start; otherwise it starts none.
    QStringList services = {};
    /// Extensions of the X server that the display is to do without.
    QStringList withoutExtensions = {};
};

/// A display, a session bus and a home of their own for one test.
class Desktop
{
public:
    explicit Desktop(const DesktopOptions &options = {});
    ~Desktop();

    /// The bus as the test sees it.
    QDBusConnection &bus() { return *m_bus; }
    QProcessEnvironment &environment() { return m_environment; }
    QString folder() const { return m_folder.path(); }
    QString settingsFile() const;
    void writeSettings(const QByteArray &text) const;
    QByteArray settings() const;
    /// What the programs have asked to be opened, a URL per line. Nothing is: what stands for the
    /// desktop's opener only takes notes, so that no test shows anything to a developer.
    QStringList openedUrls() const;
    /// Copies a recorded machine and makes the programs read it. @return the folder of the copy
    QString useMachine(const QString &kind);

    std::unique_ptr<Process> startProgram(const QStringList &arguments = {});
    std::unique_ptr<Process> startClient(const QStringList &arguments);

    void stopBus();
    void stopDisplay();

private:
    void installOpener();
    void startBus(const QStringList &services);
    void startDisplay(const DesktopOptions &options);

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
    QProcess m_busDaemon;
    QProcess m_xServer;
    std::unique_ptr<QDBusConnection> m_bus;
};

} // namespace pulsebar::e2e
