#pragma once

#include "engine/MonitorSources.h"
#include "engine/NetworkMonitor.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>

#include <memory>

namespace pulsebar {

class NettopRun;

/// What each process moves over TCP, from a run of pulsebar-nettop per refresh. A run that is not
/// done when the next is due is ended, and nothing of it is published; nor is anything of one that
/// writes without an end. One that cannot be started gives an empty dictionary. What was written is
/// made a dictionary only when somebody asks for it.
class NettopMonitor : public QObject, public NetworkMonitor
{
    Q_OBJECT

public:
    /// It is off, and 3 seconds are between two runs.
    explicit NettopMonitor(SamplerCommand sampler, QObject *parent = nullptr);
    /// Ends a run, waiting a moment for its child to go.
    ~NettopMonitor() override;

    bool runNettop() const override { return m_runNettop; }
    void setRunNettop(bool on) override;
    qint64 refreshSec() const { return m_refreshSec; }
    /// A running monitor starts anew. Less than 1 second stands for 1, more than a day for a day.
    void setRefreshSec(int seconds) override;
    std::optional<QVariantMap> topDict() const override;

    /// Runs the sampler now and then once per refresh.
    void startMonitoringNettop();
    void stopMonitoringNettop();
    /// Ends the run that there is; nothing comes of it.
    void clearNettop();
    /// Starts one run.
    void reloadNettop();
    /// Replaces the dictionary with what a run has written, whole; see NettopReport.h.
    void readNettopData(const QByteArray &report);

    /// The process number of the run's child, 0 when there is none.
    qint64 processId() const;

Q_SIGNALS:
    /// topDict was replaced; once per completed run.
    void topDictChanged();

private:
    std::unique_ptr<NettopRun> m_run;
    QTimer m_timer;
    bool m_runNettop = false;
    qint64 m_refreshSec = 3;
    bool m_hasReport = false;
    QByteArray m_report;
    QByteArray m_previousReport;                  ///< empty for the first
    mutable std::optional<QVariantMap> m_topDict; ///< as far as it was asked for
};

} // namespace pulsebar
