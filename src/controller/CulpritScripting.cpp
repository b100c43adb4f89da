#include "controller/CulpritScripting.h"

#include "controller/BusValues.h"
#include "engine/CulpritHistory.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDateTime>

namespace pulsebar {

namespace {

/// (sxd): a process's name, its number, and what it used as a fraction of one core.
struct BusCulprit
{
    QString name;
    qlonglong number = 0;
    double fraction = 0;
};

/// (xda(sxd)): milliseconds since the epoch, the load as a fraction, the processes.
struct BusSample
{
    qlonglong time = 0;
    double total = 0;
    QList<BusCulprit> processes;
};

// Found by QtDBus where it looks for them: beside the types.
QDBusArgument &operator<<(QDBusArgument &wire, const BusCulprit &process)
{
    wire.beginStructure();
    wire << process.name << process.number << process.fraction;
    wire.endStructure();
    return wire;
}

const QDBusArgument &operator>>(const QDBusArgument &wire, BusCulprit &process)
{
    wire.beginStructure();
    wire >> process.name >> process.number >> process.fraction;
    wire.endStructure();
    return wire;
}

QDBusArgument &operator<<(QDBusArgument &wire, const BusSample &sample)
{
    wire.beginStructure();
    wire << sample.time << sample.total << sample.processes;
    wire.endStructure();
    return wire;
}

const QDBusArgument &operator>>(const QDBusArgument &wire, BusSample &sample)
{
    wire.beginStructure();
    wire >> sample.time >> sample.total >> sample.processes;
    wire.endStructure();
    return wire;
}

void registerTypes()
{
    qDBusRegisterMetaType<BusCulprit>();
    qDBusRegisterMetaType<QList<BusCulprit>>();
    qDBusRegisterMetaType<BusSample>();
    qDBusRegisterMetaType<QList<BusSample>>();
}

BusSample busSample(const CulpritSample &sample)
{
    BusSample wire{sample.time, sample.total, {}};
    for (const Culprit &process : sample.processes())
        wire.processes +=
            {busvalues::fromValue(process.name).toString(), process.number, process.fraction};
    return wire;
}

} // namespace

BusMethod culpritsMethod(const QString &interface, const CulpritHistory &history)
{
    registerTypes();
    return {interface, QStringLiteral("culprits"), QStringLiteral("u"),
            [&history](const QVariantList &arguments) -> BusResult {
                QList<BusSample> samples;
                const auto since =
                    history.since(arguments.at(0).toUInt(), QDateTime::currentMSecsSinceEpoch());
                for (const CulpritSample &sample : since)
                    samples += busSample(sample);
                return QVariant::fromValue(samples);
            }};
}

} // namespace pulsebar
