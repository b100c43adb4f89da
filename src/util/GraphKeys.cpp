#include "util/GraphKeys.h"

namespace pulsebar::graphkeys {

QString totalCpu()
{
    return QStringLiteral("CPUTotalUsage");
}

QString core(int number)
{
    return QStringLiteral("CPUUsage__CPU%1").arg(number);
}

QString process(const QString &key)
{
    return QStringLiteral("CPUUsage__") + key;
}

QString process(qint64 number, const QString &name)
{
    return process(QString::number(number) + QStringLiteral("//") + name);
}

QString traffic(const QString &name)
{
    return QStringLiteral("Network__") + name;
}

QString temperature(const QString &sensor)
{
    return QStringLiteral("Temperature__") + sensor;
}

QString fanAverage()
{
    return QStringLiteral("FanMove__FanAverage");
}

QString fan(int number)
{
    return QStringLiteral("FanMove__Fan%1").arg(number);
}

} // namespace pulsebar::graphkeys
