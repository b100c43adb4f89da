#include "e2e/SensorMachine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <stdexcept>
#include <utility>

namespace pulsebar::e2e {

namespace {

void link(const QString &target, const QString &name)
{
    if (!QDir().mkpath(QFileInfo(name).path()) || !QFile::link(target, name))
        throw std::runtime_error("a link of the test's machine cannot be made");
}

QString chipName(int number)
{
    return QStringLiteral("hwmon%1").arg(number);
}

} // namespace

SensorMachine::SensorMachine(QString folder)
    : m_folder(std::move(folder))
{
    QDir().mkpath(path(QStringLiteral("sys/class/hwmon")));
    QDir().mkpath(path(QStringLiteral("sys/class/power_supply")));
}

QString SensorMachine::deviceOf(int number)
{
    return QStringLiteral("sys/devices/platform/chip.%1").arg(number);
}

QString SensorMachine::chipFolder(int number) const
{
    return QStringLiteral("%1/hwmon/%2/").arg(deviceOf(number), chipName(number));
}

void SensorMachine::write(const QString &below, const QByteArray &value)
{
    const QString name = path(below);
    QDir().mkpath(QFileInfo(name).path());
    QFile file(name);
    const QByteArray text = value + '\n';
    // Its length comes last: a reader must not find the file empty meanwhile.
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) ||
        file.write(text) != text.size() || !file.resize(text.size()))
        throw std::runtime_error("a file of the test's machine cannot be written");
}

void SensorMachine::addChip(int number, const QByteArray &name)
{
    setChip(number, QStringLiteral("name"), name);
    link(QStringLiteral("../../../chip.%1").arg(number),
         path(chipFolder(number) + QStringLiteral("device")));
    link(
        QStringLiteral("../../devices/platform/chip.%1/hwmon/%2").arg(number).arg(chipName(number)),
        path(QStringLiteral("sys/class/hwmon/") + chipName(number)));
}

void SensorMachine::removeChip(int number)
{
    QFile::remove(path(QStringLiteral("sys/class/hwmon/") + chipName(number)));
    // Links are removed as such, not followed.
    if (!QDir(path(deviceOf(number))).removeRecursively())
        throw std::runtime_error("a chip of the test's machine cannot be removed");
}

void SensorMachine::setChip(int number, const QString &file, const QByteArray &value)
{
    write(chipFolder(number) + file, value);
}

void SensorMachine::setRuntimeStatus(int number, const QByteArray &status)
{
    write(deviceOf(number) + QStringLiteral("/power/runtime_status"), status);
}

void SensorMachine::setSupply(const QString &supply, const QString &file, const QByteArray &value)
{
    write(QStringLiteral("sys/class/power_supply/%1/%2").arg(supply, file), value);
}

void SensorMachine::addBattery(int percent, bool connected)
{
    const QString battery = QStringLiteral("BAT0");
    setSupply(battery, QStringLiteral("type"), "Battery");
    setSupply(battery, QStringLiteral("present"), "1");
    setSupply(battery, QStringLiteral("energy_full"), "50000000");
    setSupply(battery, QStringLiteral("voltage_now"), "12000000");
    setSupply(battery, QStringLiteral("power_now"), "6000000");
    setSupply(battery, QStringLiteral("cycle_count"), "120");
    setSupply(QStringLiteral("AC"), QStringLiteral("type"), "Mains");
    setCharge(percent, connected);
}

void SensorMachine::setCharge(int percent, bool connected)
{
    const QString battery = QStringLiteral("BAT0");
    setSupply(battery, QStringLiteral("energy_now"), QByteArray::number(500000 * percent));
    setSupply(battery, QStringLiteral("status"), connected ? "Charging" : "Discharging");
    setSupply(QStringLiteral("AC"), QStringLiteral("online"), connected ? "1" : "0");
}

} // namespace pulsebar::e2e
