#include "processes/NettopRun.h"

#include "engine/SamplerPipe.h"

#include <QLoggingCategory>
#include <QSocketNotifier>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logNettop, "pulsebar.nettop")

using namespace std::chrono_literals;

constexpr auto TerminateGrace = 1500ms;
constexpr int LastGraceMs = 300;
constexpr int KillGraceMs = 1000;

/// One report of TCP traffic as comma-separated lines.
QStringList arguments()
{
    return {QStringLiteral("-L1"), QStringLiteral("-m"), QStringLiteral("tcp"),
            QStringLiteral("-c")};
}

} // namespace

NettopRun::NettopRun(SamplerCommand command, QObject *parent)
    : QObject(parent)
    , m_command(std::move(command))
{
    m_killTimer.setSingleShot(true);
    m_killTimer.setInterval(TerminateGrace);
    connect(&m_killTimer, &QTimer::timeout, this, [this] {
        if (m_process)
            m_process->kill();
    });
}

NettopRun::~NettopRun()
{
    end();
    if (!m_process)
        return;
    m_process->disconnect(this);
    if (m_process->state() != QProcess::NotRunning && !m_process->waitForFinished(LastGraceMs)) {
        m_process->kill();
        m_process->waitForFinished(KillGraceMs);
    }
}

void NettopRun::start()
{
    if (!m_process) {
        launch();
        return;
    }
    if (!m_isEnding && isFirst(StillRunning))
        qCWarning(logNettop) << "the network sampler is still running when it is due again; it is"
                                " ended";
    end();
    m_isDue = true;
}

void NettopRun::end()
{
    m_isDue = false;
    dropPipe();
    m_report.clear();
    if (!m_process || std::exchange(m_isEnding, true))
        return;
    m_killTimer.start();
    m_process->terminate();
}

void NettopRun::launch()
{
    const QString program = m_command.program ? m_command.program() : QString();
    if (program.isEmpty()) {
        if (isFirst(Missing))
            qCWarning(logNettop) << "the network sampler is missing; nothing is known of the"
                                    " traffic of processes";
        finishReport();
        return;
    }
    m_pipe = SamplerPipe::open();
    if (!m_pipe) {
        if (isFirst(NotStarted))
            qCWarning(logNettop) << "no pipe for the network sampler:" << std::strerror(errno);
        finishReport();
        return;
    }
    m_notifier = new QSocketNotifier(m_pipe->readEnd(), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &NettopRun::onReadable);

    m_process = new QProcess(this);
    m_pipe->becomeOutputOf(*m_process);
    // What it complains about each time is heard once.
    if ((m_told & Failed) != 0) {
        m_process->setProcessChannelMode(QProcess::ForwardedOutputChannel);
        m_process->setStandardErrorFile(QProcess::nullDevice());
    }
    connect(m_process, &QProcess::finished, this, &NettopRun::onFinished);
    connect(m_process, &QProcess::errorOccurred, this, &NettopRun::onError);
    m_process->start(program, arguments(), QIODevice::ReadOnly);
    if (m_pipe)
        m_pipe->closeWriteEnd();
}

void NettopRun::onReadable()
{
    if (takeOutput())
        finishReport();
}

/// Adds what is in the pipe. @return whether that was the last of it
bool NettopRun::takeOutput()
{
    const SamplerPipe::Chunk chunk = m_pipe->readAvailable();
    m_report += chunk.bytes;
    if (m_report.size() <= kLongestReport)
        return chunk.ended;
    if (isFirst(TooLong))
        qCWarning(logNettop) << "the network sampler writes without an end; it is ended";
    end();
    return false;
}

void NettopRun::onFinished(int exitCode, QProcess::ExitStatus status)
{
    const bool isCrash = status == QProcess::CrashExit;
    if (!m_isEnding && (isCrash || exitCode != 0) && isFirst(Failed))
        qCWarning(logNettop).nospace()
            << "the network sampler ended " << (isCrash ? "by signal " : "with exit status ")
            << exitCode;
    followProcess();
}

void NettopRun::onError(QProcess::ProcessError error)
{
    if (error != QProcess::FailedToStart)
        return;
    if (!m_isEnding && isFirst(NotStarted))
        qCWarning(logNettop) << "the network sampler cannot be started:"
                             << m_process->errorString();
    followProcess();
}

/// What comes after the child: the next one, or its report.
void NettopRun::followProcess()
{
    dropProcess();
    if (std::exchange(m_isDue, false)) {
        launch();
        return;
    }
    // Its last words may still be in the pipe, and a process of its own may hold the pipe open.
    if (!m_pipe)
        return;
    takeOutput();
    if (m_pipe)
        finishReport();
}

void NettopRun::finishReport()
{
    dropPipe();
    QByteArray report = std::exchange(m_report, {});
    report.squeeze();
    Q_EMIT reportReady(report);
}

void NettopRun::dropProcess()
{
    m_killTimer.stop();
    m_isEnding = false;
    m_process->disconnect(this);
    std::exchange(m_process, nullptr)->deleteLater();
}

void NettopRun::dropPipe()
{
    if (m_notifier) {
        // Perhaps it is just being heard.
        m_notifier->setEnabled(false);
        std::exchange(m_notifier, nullptr)->deleteLater();
    }
    m_pipe.reset();
}

bool NettopRun::isFirst(Trouble trouble)
{
    return (std::exchange(m_told, m_told | trouble) & trouble) == 0;
}

} // namespace pulsebar
