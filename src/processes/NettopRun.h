#pragma once

#include "engine/MonitorSources.h"

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QTimer>

#include <memory>

class QSocketNotifier;

namespace pulsebar {

class SamplerPipe;

/// Runs pulsebar-nettop once at a time and hands over all that it has written. There is never more
/// than one child: one that is still there when the next is due is asked to go, then made to, and
/// the next is launched when it is gone. Nobody waits for it meanwhile. What goes wrong is said
/// once, until resetTroubles().
class NettopRun : public QObject
{
    Q_OBJECT

public:
    /// More than this from one run is no report (some sixty thousand connections are).
    static constexpr qsizetype kLongestReport = 8 << 20;

    explicit NettopRun(SamplerCommand command, QObject *parent = nullptr);
    /// Ends the child, waiting a moment for it to go.
    ~NettopRun() override;

    /// Launches the sampler, at once or as soon as the child before is gone. One report follows, or
    /// none when the run is ended before its output is.
    void start();
    /// Ends the run in the background, if there is one; what it wrote is dropped.
    void end();
    /// What went wrong may be said again.
    void resetTroubles() { m_told = 0; }

    /// The child's process number, also while it is being ended; 0 when there is none.
    qint64 processId() const { return m_process ? m_process->processId() : 0; }

Q_SIGNALS:
    /// The child has closed its output or ended, or could not be started. Empty where it has
    /// written nothing.
    void reportReady(const QByteArray &report);

private:
    enum Trouble : unsigned {
        Missing = 1,
        NotStarted = 2,
        Failed = 4,
        TooLong = 8,
        StillRunning = 16
    };

    void launch();
    void onReadable();
    bool takeOutput();
    void onFinished(int exitCode, QProcess::ExitStatus status);
    void onError(QProcess::ProcessError error);
    void followProcess();
    void finishReport();
    void dropProcess();
    void dropPipe();
    bool isFirst(Trouble trouble);

    SamplerCommand m_command;
    QTimer m_killTimer;            ///< runs while the child is asked to go
    bool m_isEnding = false;       ///< the child was told to go
    bool m_isDue = false;          ///< and another is to follow it
    unsigned m_told = 0;           ///< Troubles
    QProcess *m_process = nullptr; ///< a child object
    std::unique_ptr<SamplerPipe> m_pipe;
    QSocketNotifier *m_notifier = nullptr;
    QByteArray m_report; ///< what came of it so far
};

} // namespace pulsebar
