#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

#include <array>
#include <deque>
#include <optional>

namespace pulsebar {

/// A process and the CPU time it used.
struct Culprit
{
    QString name;        ///< at most 64 characters, printable and on one line
    qint64 number = 0;   ///< process number; 0: not known, or no longer that process's
    double fraction = 0; ///< of one core: 1.0 is one core, busy all the time
};

/// One sample: the load, and who caused it.
struct CulpritSample
{
    qint64 time = 0;  ///< milliseconds since the epoch
    double total = 0; ///< mean load of the cores, 0.0 to 1.0, as TopMonitor::CPUTotalUsage()
    quint64 load = 0; ///< the number of that load, as TopMonitor::CPUTotalUsageCount()
    /// The processes that used most, the busiest first; those that used nothing are not there.
    QList<Culprit> processes() const;

    static constexpr int kMostProcesses = 3;
    /// Takes an entry of a "ProcessList" among the busiest, if it is one of them.
    void consider(const QVariantMap &process);
    /// Makes equal names one, so that they are kept once.
    void shareNamesWith(const CulpritSample &before);

private:
    std::array<Culprit, kMostProcesses> m_processes;
    int m_count = 0;
};

/// Who used the processors during the last ten minutes.
///
/// At most 600 samples are kept (ten minutes at one per second), each about 150 bytes and at most
/// three names. A process that stays among the busiest shares its name with the sample before. That
/// is some 30 KB with a sample every 3 seconds and the same processes, and never more than 400 KB.
class CulpritHistory
{
public:
    static constexpr qint64 kSpan = 10 * 60 * 1000; ///< milliseconds
    static constexpr std::size_t kMostSamples = 600;
    static constexpr int kLongestName = 64;

    /// Takes a sample's "CPUUsageCoreAverage" and the busiest of its "ProcessList", in whatever
    /// order that is; their numbers are texts there. A sample without a load (the first one) is
    /// left out.
    /// @param time milliseconds since the epoch. Samples older than ten minutes before it go; when
    ///        the clock was set back, nothing goes for that.
    /// @param load the number of the sample's load; a number as before says that it is that load
    void add(const QVariantMap &sample, qint64 time, quint64 load);

    /// The samples not older than `seconds` before `now`, oldest first. Those of a time to come, as
    /// there are after the clock was set back, are of no use to whoever asks by time.
    QList<CulpritSample> since(quint32 seconds, qint64 now) const;
    /// The nth sample counted from the newest, which is 0; absent beyond the oldest.
    std::optional<CulpritSample> newest(std::size_t back = 0) const;
    /// The sample that brought the nth value of the series "CPUTotalUsage", counted from the
    /// newest, which is 0. Samples that repeated a load count for nothing. Absent when it is not
    /// kept.
    std::optional<CulpritSample> ofLoad(std::size_t back) const;
    std::size_t size() const { return m_samples.size(); }

    /// The name that used most over the newest `count` samples: short-lived processes of one name,
    /// such as those of a build, count together. `fraction` is the mean over these samples,
    /// `number` the busiest of that name in the newest sample, 0 when none is in it.
    /// Absent when nobody used anything.
    std::optional<Culprit> busiest(std::size_t count) const;

private:
    std::deque<CulpritSample> m_samples;
};

/// A sample for people: "14:03:12 92.1%: cc1plus, Web Content"; local time, the names printable
/// and on one line, each of them once. Without processes: "14:03:12 0.3%".
QString culpritText(const CulpritSample &sample);

} // namespace pulsebar
