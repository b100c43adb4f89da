#pragma once

#include <QByteArray>
#include <QString>

namespace pulsebar::e2e {

/// The sensors and batteries of a recorded machine, which a test changes while the program reads.
/// Laid out as the kernel does it: the folders of a class are links to those of the devices.
class SensorMachine
{
public:
    /// @param folder of a machine, with proc/ and sys/
    explicit SensorMachine(QString folder);

    /// Adds a chip, hwmon<number>, whose device has the same name.
    void addChip(int number, const QByteArray &name);
    /// Takes the chip away, with its device.
    void removeChip(int number);
    /// Writes a file of a chip, in place, as the kernel's are changed.
    void setChip(int number, const QString &file, const QByteArray &value);
    /// Writes power/runtime_status of the chip's device.
    void setRuntimeStatus(int number, const QByteArray &status);

    /// Writes a file of a folder of /sys/class/power_supply, which is made when it is not there.
    void setSupply(const QString &supply, const QString &file, const QByteArray &value);
    /// A battery of 50 Wh, BAT0, and its adapter, AC.
    void addBattery(int percent, bool connected);
    void setCharge(int percent, bool connected);

    QString path(const QString &below) const { return m_folder + u'/' + below; }
    void write(const QString &below, const QByteArray &value);

private:
    static QString deviceOf(int number);
    QString chipFolder(int number) const;

    QString m_folder;
};

} // namespace pulsebar::e2e
