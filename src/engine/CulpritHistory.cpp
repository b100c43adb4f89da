#include "engine/CulpritHistory.h"

#include "util/Localisation.h"
#include "util/PlainLine.h"
#include "util/Values.h"

#include <QDateTime>
#include <QHash>
#include <QStringList>

#include <algorithm>

namespace pulsebar {

namespace {

/// The numbers in a list of processes are texts.
double usageOf(const QVariantMap &process)
{
    return doubleValueForKey(process, QStringLiteral("CPUUsage"));
}

QString nameOf(const QVariantMap &process)
{
    const QString name = process.value(QStringLiteral("ProcessName")).toString();
    return plainLine(name, CulpritHistory::kLongestName);
}

std::ptrdiff_t offset(std::size_t count)
{
    return static_cast<std::ptrdiff_t>(count);
}

} // namespace

QList<Culprit> CulpritSample::processes() const
{
    return {m_processes.begin(), m_processes.begin() + m_count};
}

/// Keeps the busiest in their order; of equals the one that is listed first.
void CulpritSample::consider(const QVariantMap &process)
{
    const double fraction = usageOf(process);
    if (!(fraction > 0.0) || !process.contains(QStringLiteral("ProcessName")))
        return;
    const auto end = m_processes.begin() + m_count;
    const auto place = std::find_if(m_processes.begin(), end, [fraction](const Culprit &other) {
        return other.fraction < fraction;
    });
    if (place == m_processes.end())
        return;
    m_count = std::min(m_count + 1, kMostProcesses);
    std::move_backward(place, m_processes.begin() + m_count - 1, m_processes.begin() + m_count);
    *place = {nameOf(process), longValueForKey(process, QStringLiteral("PID")), fraction};
}

void CulpritSample::shareNamesWith(const CulpritSample &before)
{
    for (Culprit &mine : m_processes) {
        for (const Culprit &earlier : before.m_processes) {
            if (mine.name == earlier.name)
                mine.name = earlier.name;
        }
    }
}

void CulpritHistory::add(const QVariantMap &sample, qint64 time, quint64 load)
{
    const QVariant total = sample.value(QStringLiteral("CPUUsageCoreAverage"));
    if (!total.isValid())
        return;
    CulpritSample entry;
    entry.time = time;
    entry.total = doubleValue(total);
    entry.load = load;
    const QVariantList processes = sample.value(QStringLiteral("ProcessList")).toList();
    for (const QVariant &process : processes)
        entry.consider(process.toMap());
    if (!m_samples.empty())
        entry.shareNamesWith(m_samples.back());
    m_samples.push_back(entry);
    while (m_samples.size() > kMostSamples || m_samples.front().time < time - kSpan)
        m_samples.pop_front();
}

QList<CulpritSample> CulpritHistory::since(quint32 seconds, qint64 now) const
{
    const qint64 first = now - static_cast<qint64>(seconds) * 1000;
    QList<CulpritSample> samples;
    for (const CulpritSample &sample : m_samples) {
        if (sample.time >= first && sample.time <= now)
            samples += sample;
    }
    return samples;
}

std::optional<CulpritSample> CulpritHistory::newest(std::size_t back) const
{
    if (back >= m_samples.size())
        return std::nullopt;
    return m_samples[m_samples.size() - 1 - back];
}

std::optional<CulpritSample> CulpritHistory::ofLoad(std::size_t back) const
{
    if (m_samples.empty() || m_samples.back().load < back)
        return std::nullopt;
    const quint64 load = m_samples.back().load - back;
    const auto found =
        std::partition_point(m_samples.begin(), m_samples.end(),
                             [load](const CulpritSample &sample) { return sample.load < load; });
    return found->load == load ? std::optional(*found) : std::nullopt;
}

std::optional<Culprit> CulpritHistory::busiest(std::size_t count) const
{
    count = std::min(count, m_samples.size());
    QHash<QString, double> sums;
    Culprit most;
    // From the newest, so that of equals the later one is answered.
    for (auto sample = m_samples.rbegin(); sample != m_samples.rbegin() + offset(count); ++sample) {
        for (const Culprit &process : sample->processes()) {
            const double sum = sums[process.name] += process.fraction;
            if (sum > most.fraction)
                most = {process.name, 0, sum};
        }
    }
    if (sums.isEmpty())
        return std::nullopt;
    most.fraction /= static_cast<double>(count);
    const QList<Culprit> now = m_samples.back().processes();
    const auto listed = std::find_if(
        now.begin(), now.end(), [&most](const Culprit &other) { return other.name == most.name; });
    most.number = listed != now.end() ? listed->number : 0;
    return most;
}

QString culpritText(const CulpritSample &sample)
{
    static constexpr double kPercent = 100.0;
    const QTime time = QDateTime::fromMSecsSinceEpoch(sample.time).time();
    const QString load = localizedFormat(QStringLiteral("%.1f%%"), sample.total * kPercent);
    QString text = time.toString(QStringLiteral("HH:mm:ss")) + u' ' + load;
    QStringList names;
    for (const Culprit &process : sample.processes())
        names += process.name;
    names.removeDuplicates();
    if (!names.isEmpty())
        text += QStringLiteral(": ") + names.join(QStringLiteral(", "));
    return text;
}

} // namespace pulsebar
