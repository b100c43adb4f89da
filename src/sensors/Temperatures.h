#pragma once

#include "engine/Collectors.h"
#include "platform/SensorNames.h"
#include "sensors/SmcLink.h"

#include <QHash>

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace pulsebar {

/// Reads the temperature sensors of a list through the SMC, and those that the machine has beside
/// it.
///
/// A sensor that reads below 1 degree twice in a row is not read any more while the program runs.
/// One that rests (a sleeping device, one that went away) neither counts for that nor is shown,
/// and one that comes back is read again. "CPU Die" has other keys to fall back on.
class Temperatures : public TemperatureCollector
{
public:
    /// @param smc outlives the collector
    /// @param keys the list: dictionaries with "Key" and "SMCKey" (SensorLists.h)
    /// @param names what is known of the machine's sensors; null = nothing. Outlives the collector
    Temperatures(SmcLink &smc, const QVariantList &keys, const SensorNames *names = nullptr);

    /// Never absent. In Fahrenheit a reading t is (t + 32) / 5 * 9.
    std::optional<QVariantMap> SMCGetTemperatures(bool fahrenheit) override;
    /// The list, and behind it every other sensor that was there once, under its own name.
    QVariantList temperatureKeys() const override { return m_temperatureKeys; }

private:
    struct Sensor
    {
        QString name;
        std::string key;
        bool isCpuDie = false;
        bool answered = false; ///< had a reading once
        bool missing = false;  ///< not asked before the machine's sensors change
    };
    struct Reading
    {
        double degrees = 0.0;
        bool resting = false;
    };

    void addSensor(const QString &name, const QString &key);
    void followSensors();
    void appendUnlisted(const SensorName &present);
    void forgive(const std::unordered_set<std::string> &present);
    QString uniqueName(const QString &wanted) const;
    Reading read(const Sensor &sensor, SmcTransport &smc) const;
    bool isResting(const std::string &key) const;
    void measure(Sensor &sensor, SmcTransport &smc, bool fahrenheit, QVariantMap &sample);

    SmcLink &m_smc;
    const SensorNames *m_names;
    std::optional<std::uint64_t> m_revision; ///< of the names as they were taken up last
    std::unordered_set<std::string> m_present;
    std::vector<Sensor> m_sensors;
    QVariantList m_temperatureKeys;
    QHash<QString, int> m_smcErrorCheckDict; ///< failures in a row, by name
};

} // namespace pulsebar
