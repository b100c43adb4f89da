#include "platform/linux_/hwmon/SensorRegistry.h"

#include "platform/linux_/hwmon/hwmon_text.h"
#include "platform/linux_/hwmon/sensor_encoding.h"

#include <algorithm>
#include <utility>

namespace pulsebar {

namespace {

constexpr std::uint32_t processorKey = smcCode("Tcp0");
constexpr std::size_t longestName = 64; // characters

std::string identityOf(const FoundSensor &sensor)
{
    return sensor.chipIdentity + "#temp" + std::to_string(sensor.number);
}

std::string textOfKey(std::uint32_t key)
{
    std::string text(4, ' ');
    for (std::size_t i = 0; i < 4; ++i)
        text[i] = static_cast<char>(key >> (8 * (3 - i)) & 0xFFU);
    return text;
}

bool isRoleKeyOf(SensorRole role, std::uint32_t key)
{
    return key != 0 && textOfKey(key).starts_with(keyPrefix(role));
}

/// Keys that mean something else here: those of roles, of fans, and the two of the whole.
bool isReserved(std::string_view key)
{
    const bool isFans = key[0] == 'F' && key[1] >= '0' && key[1] <= '9';
    return isFans || key == "FNum" || key == "#KEY" || isRoleKey(key);
}

bool canBeKey(std::string_view label)
{
    const auto isPrintable = [](char character) { return character >= 0x20 && character < 0x7F; };
    return label.size() == 4 && std::all_of(label.begin(), label.end(), isPrintable) &&
           !isReserved(label);
}

/// FNV-1a: the same on every machine and in every build.
std::uint64_t hashOf(std::string_view text)
{
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char character : text) {
        hash ^= static_cast<unsigned char>(character);
        hash *= 0x100000001B3U;
    }
    return hash;
}

constexpr std::uint64_t generatedKeys = 36ULL * 36 * 36;

std::uint32_t generatedKey(std::uint64_t number)
{
    constexpr std::string_view digits = "0123456789abcdefghijklmnopqrstuvwxyz";
    std::string text = "t000";
    for (std::size_t i = 3; i > 0; --i, number /= 36)
        text[i] = digits[number % 36];
    return smcCode(text);
}

std::string plainName(const FoundSensor &sensor)
{
    const std::string chip = sensor.chip.empty() ? "sensor" : sensor.chip;
    return readableText(chip + ' ' +
                            (sensor.label.empty() ? std::to_string(sensor.number) : sensor.label),
                        longestName);
}

} // namespace

SensorRegistry::SensorRegistry(std::size_t limit)
    : m_limit(limit)
{
}

std::vector<std::optional<std::size_t>>
SensorRegistry::update(const std::vector<FoundSensor> &found)
{
    ++m_updates;
    for (auto &sensor : m_sensors)
        sensor.isPresent = false;
    // The known ones first, so that none of them is forgotten for a new one.
    std::vector<std::string> identities;
    Places places;
    for (const auto &sensor : found) {
        identities.push_back(identityOf(sensor));
        places.push_back(knownPlace(identities.back()));
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (!places[i])
            places[i] = newPlace(found[i], identities[i]);
    }
    electProcessor(places);
    giveProcessorKeys();
    for (const auto &place : places) {
        if (place && m_sensors[*place].key == 0)
            giveOrdinaryKey(*place);
    }
    for (std::size_t place = 0; place < m_sensors.size(); ++place) {
        if (m_sensors[place].key == 0)
            giveOrdinaryKey(place);
    }
    list(places);
    return places;
}

std::optional<std::size_t> SensorRegistry::knownPlace(const std::string &identity)
{
    const auto known = m_byIdentity.find(identity);
    if (known == m_byIdentity.end())
        return std::nullopt;
    Sensor &sensor = m_sensors[known->second];
    sensor.isPresent = true;
    sensor.lastSeen = m_updates;
    return known->second;
}

std::optional<std::size_t> SensorRegistry::newPlace(const FoundSensor &found,
                                                    const std::string &identity)
{
    if (const auto known = knownPlace(identity))
        return known;
    const auto place = freePlace();
    if (!place)
        return std::nullopt;
    Sensor sensor;
    sensor.identity = identity;
    sensor.name = takeUniqueName(found);
    if (found.chip == "applesmc" && canBeKey(found.label))
        sensor.label = found.label;
    sensor.purpose = purposeOf(found.chip, found.label);
    sensor.isPresent = true;
    sensor.lastSeen = m_updates;
    m_byIdentity[identity] = *place;
    m_sensors[*place] = std::move(sensor);
    return place;
}

std::optional<std::size_t> SensorRegistry::freePlace()
{
    if (m_sensors.size() < m_limit) {
        m_sensors.emplace_back();
        return m_sensors.size() - 1;
    }
    const auto longestGone =
        std::min_element(m_sensors.begin(), m_sensors.end(),
                         [](const Sensor &a, const Sensor &b) { return a.lastSeen < b.lastSeen; });
    if (longestGone == m_sensors.end() || longestGone->lastSeen == m_updates)
        return std::nullopt;
    const auto place = static_cast<std::size_t>(longestGone - m_sensors.begin());
    forget(place);
    return place;
}

void SensorRegistry::forget(std::size_t place)
{
    const Sensor &sensor = m_sensors[place];
    m_byIdentity.erase(sensor.identity);
    m_byKey.erase(sensor.key);
    m_takenNames.erase(sensor.name);
    if (m_elected == place)
        m_elected.reset();
    m_sensors[place] = Sensor();
}

std::string SensorRegistry::takeUniqueName(const FoundSensor &found)
{
    const auto plain = plainName(found);
    auto name = plain;
    while (m_takenNames.contains(name)) {
        const auto suffix = ' ' + std::to_string(++m_takenNames[plain]);
        name = readableText(plain, longestName - suffix.size()) + suffix;
    }
    m_takenNames[name] = 1;
    return name;
}

void SensorRegistry::giveKey(std::size_t place, std::uint32_t key)
{
    Sensor &sensor = m_sensors[place];
    if (sensor.key != 0)
        m_byKey.erase(sensor.key);
    sensor.key = key;
    m_byKey[key] = place;
}

void SensorRegistry::giveOrdinaryKey(std::size_t place)
{
    if (!giveLabelAsKey(place) && !giveRoleKey(place, 0))
        giveGeneratedKey(place);
}

bool SensorRegistry::giveLabelAsKey(std::size_t place)
{
    const auto &label = m_sensors[place].label;
    if (label.empty() || m_byKey.contains(smcCode(label)))
        return false;
    giveKey(place, smcCode(label));
    return true;
}

bool SensorRegistry::giveRoleKey(std::size_t place, int firstInstance)
{
    const auto role = m_sensors[place].purpose.role;
    // A processor's come from the election alone.
    if (role == SensorRole::None || (role == SensorRole::CpuPackage && firstInstance == 0))
        return false;
    for (int instance = firstInstance; instance < kInstancesOfARole; ++instance) {
        const auto key = smcCode(std::string(keyPrefix(role)) + instanceDigit(instance));
        if (!m_byKey.contains(key)) {
            giveKey(place, key);
            return true;
        }
    }
    return false;
}

void SensorRegistry::giveGeneratedKey(std::size_t place)
{
    auto number = hashOf(m_sensors[place].identity) % generatedKeys;
    while (m_byKey.contains(generatedKey(number)))
        number = (number + 1) % generatedKeys;
    giveKey(place, generatedKey(number));
}

void SensorRegistry::electProcessor(const Places &places)
{
    std::optional<std::size_t> best;
    for (const auto &place : places) {
        if (!place || !m_sensors[*place].purpose.claim)
            continue;
        if (!best || m_sensors[*place].purpose.claim < m_sensors[*best].purpose.claim)
            best = place;
    }
    if (!best)
        return;
    if (!m_elected || m_sensors[*best].purpose.claim < m_sensors[*m_elected].purpose.claim)
        m_elected = best;
}

bool SensorRegistry::isPackageLikeTheElected(const Sensor &sensor) const
{
    if (!m_elected || sensor.purpose.role != SensorRole::CpuPackage || !sensor.purpose.claim)
        return false;
    const auto claim = sensor.purpose.claim->first;
    const auto &elected = m_sensors[*m_elected];
    return claim <= CpuClaim::AmdControl && elected.purpose.claim->first == claim;
}

void SensorRegistry::takeUnfitProcessorKeys()
{
    for (std::size_t place = 0; place < m_sensors.size(); ++place) {
        Sensor &sensor = m_sensors[place];
        if (place == m_elected || !isRoleKeyOf(SensorRole::CpuPackage, sensor.key))
            continue;
        if (sensor.key == processorKey || !isPackageLikeTheElected(sensor)) {
            m_byKey.erase(sensor.key);
            sensor.key = 0;
        }
    }
}

void SensorRegistry::giveProcessorKeys()
{
    takeUnfitProcessorKeys();
    if (!m_elected)
        return;
    const Sensor &elected = m_sensors[*m_elected];
    if (elected.purpose.role == SensorRole::CpuPackage && elected.key != processorKey)
        giveKey(*m_elected, processorKey);
    std::vector<std::size_t> others;
    for (std::size_t place = 0; place < m_sensors.size(); ++place) {
        const Sensor &sensor = m_sensors[place];
        if (place != m_elected && isPackageLikeTheElected(sensor) &&
            !isRoleKeyOf(SensorRole::CpuPackage, sensor.key))
            others.push_back(place);
    }
    std::stable_sort(others.begin(), others.end(), [this](std::size_t a, std::size_t b) {
        return m_sensors[a].purpose.claim < m_sensors[b].purpose.claim;
    });
    for (const auto place : others)
        giveRoleKey(place, 1);
}

std::optional<std::size_t> SensorRegistry::presentWithKey(std::uint32_t key) const
{
    auto place = m_elected;
    if (key != processorKey) {
        const auto known = m_byKey.find(key);
        place = known == m_byKey.end() ? std::nullopt : std::optional(known->second);
    }
    return place && m_sensors[*place].isPresent ? place : std::nullopt;
}

void SensorRegistry::list(const Places &places)
{
    std::vector<SensorName> names;
    for (const auto &place : places) {
        if (place)
            names.push_back({textOfKey(m_sensors[*place].key), m_sensors[*place].name});
    }
    const auto isSame = [](const SensorName &a, const SensorName &b) {
        return a.key == b.key && a.name == b.name;
    };
    if (std::equal(names.begin(), names.end(), m_names.begin(), m_names.end(), isSame))
        return;
    m_names = std::move(names);
    ++m_revision;
}

} // namespace pulsebar
