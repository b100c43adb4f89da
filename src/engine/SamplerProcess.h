#pragma once

#include "engine/MonitorSources.h"

#include <QElapsedTimer>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <memory>

class QSocketNotifier;

namespace pulsebar {

class SamplerPipe;

/// Runs the sampler and hands over what it writes: one completed read, however long, is one
/// sample. Output that follows a sample at once waits in the pipe for a multiple of what that
/// sample cost, so that a sampler that never stops writing takes a bounded share of our time. A
/// sampler that ends or cannot be started gives one empty sample at once and then one per interval;
/// it is not started again on its own. One that only closes its output is of no more use and is
/// asked to go.
class SamplerProcess : public QObject
{
    Q_OBJECT

public:
    explicit SamplerProcess(SamplerCommand command, QObject *parent = nullptr);
    /// Ends the running sampler, waiting a moment for it to go.
    ~SamplerProcess() override;

    /// Replaces the sampler. It is launched at the end of the current turn of the event loop.
    /// @param intervalSec pace of the empty samples, at least 1
    void start(const QStringList &arguments, int intervalSec);
    /// Ends the sampler in the background; nothing that it still writes is handed over.
    void stop();
    /// From start() to stop(), whatever became of the process.
    bool isActive() const { return m_active; }
    /// The running sampler's process number; 0 when none runs.
    qint64 processId() const { return m_process ? m_process->processId() : 0; }

Q_SIGNALS:
    void sampleReady(const QByteArray &data);

private:
    void launch();
    void connectProcess();
    void onReadable();
    void readSample();
    void beginEmptySamples();
    void onFinished(int exitCode, QProcess::ExitStatus status);
    void onError(QProcess::ProcessError error);
    void retire();
    void dropPipe();

    SamplerCommand m_command;
    QStringList m_arguments;
    QTimer m_launchTimer;
    QTimer m_emptySampleTimer;
    QTimer m_pauseTimer;                  ///< runs while output waits in the pipe
    QElapsedTimer m_sinceSample;          ///< of this run; invalid before its first sample
    std::chrono::milliseconds m_pause{0}; ///< what has to pass since then
    bool m_active = false;
    QProcess *m_process = nullptr; ///< a child object, as those that are on their way out are
    std::unique_ptr<SamplerPipe> m_pipe;
    QSocketNotifier *m_notifier = nullptr;
};

} // namespace pulsebar
