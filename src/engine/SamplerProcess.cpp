#include "engine/SamplerProcess.h"

#include "engine/SamplerPipe.h"

#include <QLoggingCategory>
#include <QPointer>
#include <QSocketNotifier>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logSampler, "pulsebar.sampler")

using namespace std::chrono_literals;

constexpr auto TerminateGrace = 1500ms;
/// Reports are a second apart at the least; only a sampler gone wrong writes all the time. What a
/// sample cost to take then decides how long the next one waits, so that a tenth of a processor is
/// the most that such a sampler can make us use.
constexpr auto ShortestPause = 25ms;
constexpr auto LongestPause = 1000ms;
constexpr int PausePerCost = 9;
constexpr int LongestIntervalSec = 24 * 60 * 60;

} // namespace

SamplerProcess::SamplerProcess(SamplerCommand command, QObject *parent)
    : QObject(parent)
    , m_command(std::move(command))
{
    m_launchTimer.setSingleShot(true);
    m_launchTimer.setInterval(0);
    connect(&m_launchTimer, &QTimer::timeout, this, &SamplerProcess::launch);
    connect(&m_emptySampleTimer, &QTimer::timeout, this, [this] { Q_EMIT sampleReady({}); });
    m_pauseTimer.setSingleShot(true);
    connect(&m_pauseTimer, &QTimer::timeout, this, [this] { m_notifier->setEnabled(true); });
}

SamplerProcess::~SamplerProcess()
{
    stop();
    for (auto *process : findChildren<QProcess *>()) {
        process->disconnect();
        if (process->state() == QProcess::NotRunning)
            continue;
        if (!process->waitForFinished(300)) {
            process->kill();
            process->waitForFinished(1000);
        }
    }
}

void SamplerProcess::start(const QStringList &arguments, int intervalSec)
{
    stop();
    m_active = true;
    m_arguments = arguments;
    m_emptySampleTimer.setInterval(std::chrono::seconds(std::min(intervalSec, LongestIntervalSec)));
    m_launchTimer.start();
}

void SamplerProcess::stop()
{
    m_active = false;
    m_launchTimer.stop();
    m_emptySampleTimer.stop();
    dropPipe();
    retire();
}

void SamplerProcess::launch()
{
    const QString program = m_command.program ? m_command.program() : QString();
    if (program.isEmpty()) {
        qCWarning(logSampler) << "the sampler is missing; samples go on without processes";
        beginEmptySamples();
        return;
    }
    m_pipe = SamplerPipe::open();
    if (!m_pipe) {
        qCWarning(logSampler) << "no pipe for the sampler:" << std::strerror(errno);
        beginEmptySamples();
        return;
    }
    m_notifier = new QSocketNotifier(m_pipe->readEnd(), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SamplerProcess::onReadable);

    m_process = new QProcess(this);
    connectProcess();
    m_process->start(program, m_arguments, QIODevice::ReadOnly);
    if (m_pipe)
        m_pipe->closeWriteEnd();
}

void SamplerProcess::connectProcess()
{
    m_pipe->becomeOutputOf(*m_process);
    connect(m_process, &QProcess::finished, this, &SamplerProcess::onFinished);
    connect(m_process, &QProcess::errorOccurred, this, &SamplerProcess::onError);
}

void SamplerProcess::onReadable()
{
    const auto passed = std::chrono::milliseconds(m_sinceSample.isValid() ? m_sinceSample.elapsed()
                                                                          : m_pause.count());
    if (passed >= m_pause) {
        readSample();
        return;
    }
    m_notifier->setEnabled(false);
    m_pauseTimer.start(m_pause - passed);
}

void SamplerProcess::readSample()
{
    QElapsedTimer cost;
    cost.start();
    const SamplerPipe::Chunk chunk = m_pipe->readAvailable();
    const QPointer<QSocketNotifier> run = m_notifier;
    if (!chunk.bytes.isEmpty())
        Q_EMIT sampleReady(chunk.bytes);
    // Whoever took the sample may have stopped or restarted the sampler.
    if (!run || run != m_notifier)
        return;
    if (!chunk.bytes.isEmpty()) {
        m_pause = std::clamp<std::chrono::milliseconds>(
            std::chrono::milliseconds(cost.elapsed() * PausePerCost), ShortestPause, LongestPause);
        m_sinceSample.start();
    }
    if (!chunk.ended)
        return;
    if (m_process)
        QTimer::singleShot(TerminateGrace, m_process, &QProcess::terminate);
    beginEmptySamples();
}

void SamplerProcess::beginEmptySamples()
{
    dropPipe();
    m_emptySampleTimer.start();
    Q_EMIT sampleReady({});
}

void SamplerProcess::onFinished(int exitCode, QProcess::ExitStatus status)
{
    if (status == QProcess::CrashExit)
        qCWarning(logSampler) << "the sampler was ended by signal" << exitCode
                              << "- samples go on without processes";
    else
        qCWarning(logSampler) << "the sampler ended with exit status" << exitCode
                              << "- samples go on without processes";
    std::exchange(m_process, nullptr)->deleteLater();
    // Its last words may still be in the pipe, and a process of its own may hold the pipe open.
    const QPointer<QSocketNotifier> run = m_notifier;
    if (run)
        readSample();
    if (run && run == m_notifier)
        beginEmptySamples();
}

void SamplerProcess::onError(QProcess::ProcessError error)
{
    if (error != QProcess::FailedToStart)
        return;
    qCWarning(logSampler) << "the sampler cannot be started:" << m_process->errorString();
    // The pipe has lost its only other writer, so its end is read next and the empty samples begin.
    std::exchange(m_process, nullptr)->deleteLater();
}

void SamplerProcess::retire()
{
    if (!m_process)
        return;
    QProcess *process = std::exchange(m_process, nullptr);
    process->disconnect(this);
    if (process->state() == QProcess::NotRunning) {
        process->deleteLater();
        return;
    }
    connect(process, &QProcess::finished, process, &QObject::deleteLater);
    connect(process, &QProcess::errorOccurred, process, [process](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            process->deleteLater();
    });
    QTimer::singleShot(TerminateGrace, process, &QProcess::kill);
    process->terminate();
}

void SamplerProcess::dropPipe()
{
    m_pauseTimer.stop();
    m_sinceSample.invalidate();
    if (m_notifier) {
        // Perhaps it is just being heard.
        m_notifier->setEnabled(false);
        std::exchange(m_notifier, nullptr)->deleteLater();
    }
    m_pipe.reset();
}

} // namespace pulsebar
