#include "processes/NettopMonitor.h"

#include "processes/NettopReport.h"
#include "processes/NettopRun.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace pulsebar {

namespace {

constexpr qint64 ShortestRefreshSec = 1;
constexpr qint64 LongestRefreshSec = 24 * 60 * 60;

} // namespace

NettopMonitor::NettopMonitor(SamplerCommand sampler, QObject *parent)
    : QObject(parent)
    , m_run(std::make_unique<NettopRun>(std::move(sampler)))
{
    connect(&m_timer, &QTimer::timeout, this, &NettopMonitor::reloadNettop);
    connect(m_run.get(), &NettopRun::reportReady, this, &NettopMonitor::readNettopData);
}

NettopMonitor::~NettopMonitor() = default;

void NettopMonitor::setRunNettop(bool on)
{
    m_runNettop = on;
    if (on && !m_timer.isActive())
        startMonitoringNettop();
    else if (!on && m_timer.isActive())
        stopMonitoringNettop();
}

void NettopMonitor::setRefreshSec(int seconds)
{
    m_refreshSec = seconds;
    if (!m_runNettop)
        return;
    stopMonitoringNettop();
    startMonitoringNettop();
}

void NettopMonitor::startMonitoringNettop()
{
    m_run->resetTroubles();
    m_timer.start(
        std::chrono::seconds(std::clamp(m_refreshSec, ShortestRefreshSec, LongestRefreshSec)));
    // Last, as whoever hears of its result may stop the monitor.
    reloadNettop();
}

void NettopMonitor::stopMonitoringNettop()
{
    clearNettop();
    m_timer.stop();
}

void NettopMonitor::clearNettop()
{
    m_run->end();
}

void NettopMonitor::reloadNettop()
{
    m_run->start();
}

void NettopMonitor::readNettopData(const QByteArray &report)
{
    m_previousReport = std::exchange(m_report, report);
    m_hasReport = true;
    m_topDict.reset();
    Q_EMIT topDictChanged();
}

std::optional<QVariantMap> NettopMonitor::topDict() const
{
    if (m_hasReport && !m_topDict)
        m_topDict = parseNettopReport(m_report, m_previousReport);
    return m_topDict;
}

qint64 NettopMonitor::processId() const
{
    return m_run->processId();
}

} // namespace pulsebar
