#include "sensors/Temperatures.h"

#include "sensors/smc/Smc.h"
#include "util/TemperatureScale.h"

#include <algorithm>

namespace pulsebar {

namespace {

constexpr double LowestGoodReading = 1.0;
constexpr int FailuresForgiven = 1;

/// Where dies of other generations have their sensor, in this order.
constexpr const char *CpuDieFallbacks[] = {"TC0F", "TCAH", "TC0H"};

const QString NameKey = QStringLiteral("Key");
const QString SmcKeyKey = QStringLiteral("SMCKey");

} // namespace

Temperatures::Temperatures(SmcLink &smc, const QVariantList &keys, const SensorNames *names)
    : m_smc(smc)
    , m_names(names)
    , m_temperatureKeys(keys)
{
    m_sensors.reserve(static_cast<std::size_t>(keys.size()));
    for (const QVariant &element : keys) {
        const QVariantMap sensor = element.toMap();
        addSensor(sensor.value(NameKey).toString(), sensor.value(SmcKeyKey).toString());
    }
}

void Temperatures::addSensor(const QString &name, const QString &key)
{
    Sensor sensor;
    sensor.name = name;
    sensor.key = key.toStdString();
    sensor.isCpuDie = name == u"CPU Die";
    m_sensors.push_back(std::move(sensor));
}

std::optional<QVariantMap> Temperatures::SMCGetTemperatures(bool fahrenheit)
{
    const SmcLink::Connection connection(m_smc);
    followSensors();
    QVariantMap sample;
    for (Sensor &sensor : m_sensors) {
        if (!sensor.missing && m_smcErrorCheckDict.value(sensor.name) <= FailuresForgiven)
            measure(sensor, connection.transport(), fahrenheit, sample);
    }
    return sample;
}

void Temperatures::measure(Sensor &sensor, SmcTransport &smc, bool fahrenheit, QVariantMap &sample)
{
    const Reading reading = read(sensor, smc);
    if (reading.resting) {
        // Most of a list is of other machines; "CPU Die" is asked on, since not all of its keys
        // have names.
        sensor.missing = !sensor.isCpuDie && !sensor.answered && !m_present.contains(sensor.key);
        return;
    }
    if (reading.degrees < LowestGoodReading) {
        ++m_smcErrorCheckDict[sensor.name];
    } else {
        m_smcErrorCheckDict.remove(sensor.name);
        sensor.answered = true;
    }
    if (reading.degrees > 0.0)
        sample.insert(sensor.name,
                      fahrenheit ? shownInFahrenheit(reading.degrees) : reading.degrees);
}

Temperatures::Reading Temperatures::read(const Sensor &sensor, SmcTransport &smc) const
{
    Reading reading;
    const auto readOf = [&](const std::string &key, bool mayRest) {
        reading.degrees = SMCGetTemperature(key, smc);
        const bool failed = reading.degrees < LowestGoodReading;
        reading.resting = failed && (reading.resting || (mayRest && isResting(key)));
        return !failed;
    };
    if (readOf(sensor.key, true) || !sensor.isCpuDie)
        return reading;
    for (const char *key : CpuDieFallbacks) {
        // What other machines have instead does not excuse a failure on this one.
        if (readOf(key, m_present.contains(key)))
            break;
    }
    return reading;
}

bool Temperatures::isResting(const std::string &key) const
{
    return m_names && m_names->isResting(key);
}

/// Looks what came and went since the last time.
void Temperatures::followSensors()
{
    if (!m_names || m_revision == m_names->revision())
        return;
    m_revision = m_names->revision();
    const std::vector<SensorName> names = m_names->names();
    std::unordered_set<std::string> present;
    for (const SensorName &name : names) {
        present.insert(name.key);
        appendUnlisted(name);
    }
    forgive(present);
    m_present = std::move(present);
}

void Temperatures::appendUnlisted(const SensorName &present)
{
    const auto has = [&](const Sensor &sensor) { return sensor.key == present.key; };
    if (std::any_of(m_sensors.begin(), m_sensors.end(), has))
        return;
    const QString name = uniqueName(QString::fromStdString(present.name));
    const QString key = QString::fromStdString(present.key);
    addSensor(name, key);
    m_temperatureKeys.append(QVariantMap{{NameKey, name}, {SmcKeyKey, key}});
}

/// A sensor that was not there before may be read again, whatever it did when it was last.
void Temperatures::forgive(const std::unordered_set<std::string> &present)
{
    for (Sensor &sensor : m_sensors) {
        sensor.missing = false;
        const bool isNew = present.contains(sensor.key) && !m_present.contains(sensor.key);
        if (isNew || sensor.isCpuDie)
            m_smcErrorCheckDict.remove(sensor.name);
    }
}

QString Temperatures::uniqueName(const QString &wanted) const
{
    const auto isTaken = [&](const QString &name) {
        return std::any_of(m_sensors.begin(), m_sensors.end(),
                           [&](const Sensor &sensor) { return sensor.name == name; });
    };
    QString name = wanted;
    for (int number = 2; isTaken(name); ++number)
        name = wanted + QStringLiteral(" %1").arg(number);
    return name;
}

} // namespace pulsebar
