#include "platform/linux_/desktop/LinuxDesktop.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QProcess>
#include <QTimer>

#include <unistd.h>
#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logRights, "pulsebar.rights")

// pkexec(1): the dialogue was dismissed; the authorisation was not given, or nobody could ask.
constexpr int dismissed = 126;
constexpr int notAuthorised = 127;

/// Only what pkexec itself goes by: where the authority is, and the user's language. What the
/// program gets is pkexec's business.
QProcessEnvironment plainEnvironment()
{
    const QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/usr/sbin:/usr/bin:/sbin:/bin"));
    for (const char *name : {"LANG", "LANGUAGE", "LC_ALL", "LC_MESSAGES", "XDG_SESSION_ID",
                             "DBUS_SYSTEM_BUS_ADDRESS"}) {
        const QString key = QString::fromLatin1(name);
        if (own.contains(key))
            environment.insert(key, own.value(key));
    }
    return environment;
}

class PkexecRun : public PrivilegedRun
{
public:
    PkexecRun(const QString &pkexec, const QStringList &command, const std::function<void()> &ended)
        // It must not outlive the program, whoever forgets it.
        : m_process(new QProcess(QCoreApplication::instance()))
    {
        m_process->setProcessEnvironment(plainEnvironment());
        m_process->setStandardInputFile(QProcess::nullDevice());
        m_process->setStandardOutputFile(QProcess::nullDevice());
        m_process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // Without a terminal it cannot ask for the password where nobody looks.
        m_process->setChildProcessModifier([] { ::setsid(); });
        QObject::connect(m_process, &QProcess::finished, m_process,
                         [this, ended] { report(ended); });
        QObject::connect(m_process, &QProcess::errorOccurred, m_process,
                         [this, ended](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart)
                                 report(ended);
                         });
        m_process->start(pkexec, command);
    }

    /// Before consent it runs as this user and can be ended; afterwards it cannot, and is not.
    ~PkexecRun() override
    {
        m_process->disconnect();
        if (m_process->state() == QProcess::NotRunning) {
            m_process->deleteLater();
            return;
        }
        QObject::connect(m_process, &QProcess::finished, m_process, &QObject::deleteLater);
        m_process->terminate();
    }
    PkexecRun(const PkexecRun &) = delete;
    PkexecRun &operator=(const PkexecRun &) = delete;

private:
    void report(const std::function<void()> &ended)
    {
        if (m_process->error() == QProcess::FailedToStart)
            qCWarning(logRights) << "the administrator cannot be asked:"
                                 << m_process->errorString();
        else if (m_process->exitStatus() == QProcess::NormalExit &&
                 (m_process->exitCode() == dismissed || m_process->exitCode() == notAuthorised))
            qCWarning(logRights) << "the administrator's rights were not given, pkexec answered"
                                 << m_process->exitCode();
        // Not from within the start, and not from within the process's own signal.
        QTimer::singleShot(0, &m_context, ended);
    }

    QProcess *m_process;
    QObject m_context; ///< what is told later is told as long as this object is there
};

class PkexecRights : public AdministratorRights
{
public:
    explicit PkexecRights(QString pkexec)
        : m_pkexec(std::move(pkexec))
    {
    }

    std::unique_ptr<PrivilegedRun> run(const QString &program, const QStringList &arguments,
                                       std::function<void()> ended) override
    {
        return std::make_unique<PkexecRun>(m_pkexec, QStringList{program} + arguments, ended);
    }

private:
    QString m_pkexec;
};

} // namespace

std::unique_ptr<AdministratorRights> makeAdministratorRights(const QString &pkexec)
{
    return std::make_unique<PkexecRights>(pkexec);
}

} // namespace pulsebar
