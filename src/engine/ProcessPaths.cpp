#include "engine/ProcessPaths.h"

#include "engine/ProcessPathReport.h"
#include "util/Text.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QProcess>
#include <QTimer>

#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logPaths, "pulsebar.paths")

// Command lines can be megabytes long; the path stands at the start, and no file's is longer than
// 4096 bytes. What is learned is kept for good, so that a longer one is not worth keeping.
constexpr qint64 LongestReport = 5 * 1024;

/// What ps prints depends on nobody's settings; with the encoding it leaves names as they are.
QProcessEnvironment plainEnvironment()
{
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return environment;
}

} // namespace

ProcessPaths::ProcessPaths(const MonitorSources &sources, QObject *parent)
    : QObject(parent)
    , m_icons(sources.icons)
    , m_workspace(sources.workspace)
    , m_command(sources.pathQuery)
{
}

ProcessPaths::~ProcessPaths()
{
    // The one that runs, and those that were ended but are not gone yet.
    for (auto *process : findChildren<QProcess *>()) {
        process->disconnect();
        process->kill();
        process->waitForFinished(1000);
    }
}

QVariant ProcessPaths::dataForPID(const QString &pid, const QString &type)
{
    const QString dash = QStringLiteral("-");
    const QString key = pid.contains(dash) ? substringTo(pid, dash).value_or(QString()) : pid;
    const auto record = m_processPathDict.constFind(key);
    if (record != m_processPathDict.constEnd())
        return record->toMap().value(type);
    if (!key.isEmpty())
        checkPathForPID(key);
    return {};
}

void ProcessPaths::checkPathForPID(const QString &pid)
{
    m_processPathDict.insert(pid, QVariantMap());
    m_waiting.append(pid);
    startNext();
}

void ProcessPaths::startNext()
{
    if (m_process || m_waiting.isEmpty())
        return;
    m_process = new QProcess(this);
    m_process->setProcessEnvironment(plainEnvironment());
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->setStandardErrorFile(QProcess::nullDevice());
    connect(m_process, &QProcess::finished, this,
            [this] { finish(m_process->readAllStandardOutput()); });
    connect(m_process, &QProcess::readyReadStandardOutput, this, [this] {
        if (m_process->bytesAvailable() > LongestReport)
            finish(m_process->read(LongestReport));
    });
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            onFailedToStart();
    });
    QTimer::singleShot(m_command.patience, m_process, [this] { finish({}); });
    m_process->start(m_command.program,
                     {QStringLiteral("-p"), m_waiting.takeFirst(), QStringLiteral("-o"),
                      QStringLiteral("pid,command")},
                     QIODevice::ReadOnly);
}

void ProcessPaths::onFailedToStart()
{
    if (!std::exchange(m_failureReported, true))
        qCWarning(logPaths).noquote() << m_process->errorString();
    finish({});
}

/// Ends the query with what it gave, and lets the next one have its turn.
void ProcessPaths::finish(const QByteArray &report)
{
    QProcess *process = std::exchange(m_process, nullptr);
    process->disconnect(this);
    if (process->state() == QProcess::NotRunning) {
        process->deleteLater();
    } else {
        connect(process, &QProcess::finished, process, &QObject::deleteLater);
        process->kill();
    }
    readProcessPath(report);
    QTimer::singleShot(0, this, &ProcessPaths::startNext);
}

void ProcessPaths::readProcessPath(const QByteArray &report)
{
    const auto found = parseProcessPath(report);
    if (!found)
        return;
    QVariantMap record{{QStringLiteral("path"), found->path}};
    const QString icon = iconFor(found->pid, found->path);
    if (!icon.isEmpty())
        record.insert(QStringLiteral("icon"), icon);
    m_processPathDict.insert(found->pid, record);
}

/// What the process itself tells comes first: a path may be a bare name, a launcher's or a
/// script's, and a browser's tabs have no entry of their own.
QString ProcessPaths::iconFor(const QString &pid, const QString &path) const
{
    QString own = m_icons ? m_icons->iconForPID(pid) : QString();
    if (!own.isEmpty() || !m_workspace || !QFileInfo::exists(path))
        return own;
    return m_workspace->iconForFile(path);
}

} // namespace pulsebar
