#include "platform/linux_/hwmon/HwmonMachine.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace pulsebar {

namespace {

/// In so many rounds all sensors but the slowest have answered once.
constexpr int roundsForFirstReadings = 5;

constexpr std::uint32_t countOfKeys = smcCode("#KEY");
constexpr std::uint32_t countOfFans = smcCode("FNum");
constexpr std::uint32_t processorKey = smcCode("Tcp0");

SmcStatus statusOfError(int error)
{
    switch (error) {
    case 0:
        return kSmcSuccess;
    case EACCES:
    case EPERM:
        return kSmcNotPrivileged;
    case EINVAL:
    case ERANGE:
        return kSmcBadArgument;
    case ENODEV:
    case ENOENT:
    case ENXIO:
        return kSmcNoDevice;
    case EROFS:
        return kSmcNotWritable;
    case EOPNOTSUPP:
        return kSmcUnsupported;
    default:
        return kSmcIoError;
    }
}

SmcStatus statusOf(InputReading::Outcome outcome)
{
    switch (outcome) {
    case InputReading::Outcome::Value:
        return kSmcSuccess;
    case InputReading::Outcome::Gone:
        return kSmcNoDevice;
    case InputReading::Outcome::Resting:
    case InputReading::Outcome::Pending:
    case InputReading::Outcome::Failed:
        break;
    }
    return kSmcIoError;
}

/// @return 0 or errno
int writeNumber(const std::string &path, std::int64_t number)
{
    const int file = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (file < 0)
        return errno;
    const auto text = std::to_string(number) + '\n';
    const auto count = ::write(file, text.data(), text.size());
    const int error = count < 0 ? errno : 0;
    ::close(file);
    return error;
}

} // namespace

std::optional<std::uint32_t> fanKey(int fan, std::string_view value)
{
    if (fan < 0 || fan >= HwmonMachine::kMostFans)
        return std::nullopt;
    // "Mn" and "Mx" begin alike.
    if (fan >= 10 && value.starts_with('M'))
        return std::nullopt;
    return smcCode('F' + std::to_string(fan) + std::string(value));
}

/// Puts the keys together anew, from the chips of a listing.
class HwmonMachine::Builder
{
public:
    explicit Builder(HwmonMachine &machine)
        : m_machine(machine)
    {
    }

    void build()
    {
        m_machine.m_sensors.clear();
        m_machine.m_isCut = m_machine.m_listing.isCut();
        addFans();
        addTemperatures(m_machine.m_registry.update(findTemperatures()));
        m_machine.m_inputs.adopt(m_paths);
        indexKeys();
    }

private:
    const std::vector<HwmonChip> &chips() const { return m_machine.m_listing.chips(); }

    std::size_t inputFor(std::string path)
    {
        m_paths.push_back(std::move(path));
        return m_paths.size() - 1;
    }

    void addFans()
    {
        m_machine.m_fans = 0;
        for (std::size_t chip = 0; chip < chips().size(); ++chip) {
            for (const auto &fan : chips()[chip].fans) {
                if (m_machine.m_fans == kMostFans) {
                    m_machine.m_isCut = true;
                    return;
                }
                addFan(chip, fan);
                ++m_machine.m_fans;
            }
        }
    }

    void addFan(std::size_t chip, const FanInput &fan)
    {
        addFanValue(chip, fan.number, "Ac", "input");
        if (fan.hasMinimum)
            addFanValue(chip, fan.number, "Mn", "min");
        if (fan.hasMaximum)
            addFanValue(chip, fan.number, "Mx", "max");
        if (fan.hasTarget)
            addFanValue(chip, fan.number, "Tg", "target");
    }

    void addFanValue(std::size_t chip, int number, std::string_view value, const char *detail)
    {
        const auto key = fanKey(m_machine.m_fans, value);
        if (!key)
            return;
        const auto path = chips()[chip].fanFile(number, detail);
        Sensor sensor;
        sensor.key = *key;
        sensor.isFan = true;
        sensor.chip = chip;
        sensor.input = inputFor(path);
        if (value != "Ac")
            sensor.writable = path;
        m_machine.m_sensors.push_back(std::move(sensor));
    }

    std::vector<FoundSensor> findTemperatures() const
    {
        std::vector<FoundSensor> found;
        for (const auto &chip : chips()) {
            for (const auto &input : chip.temperatures)
                found.push_back({chip.identity, chip.name, input.label, input.number});
        }
        return found;
    }

    /// @param places at the registry, of all temperatures in the order of findTemperatures()
    void addTemperatures(const std::vector<std::optional<std::size_t>> &places)
    {
        std::size_t i = 0;
        for (std::size_t chip = 0; chip < chips().size(); ++chip) {
            for (const auto &input : chips()[chip].temperatures) {
                if (const auto place = places[i++])
                    addTemperature(chip, input, m_machine.m_registry.keyOf(*place));
                else
                    m_machine.m_isCut = true;
            }
        }
    }

    void addTemperature(std::size_t chip, const TemperatureInput &input, std::uint32_t key)
    {
        Sensor sensor;
        sensor.key = key;
        sensor.chip = chip;
        sensor.input = inputFor(chips()[chip].temperatureFile(input.number, "input"));
        if (input.hasFault)
            sensor.fault = inputFor(chips()[chip].temperatureFile(input.number, "fault"));
        m_machine.m_sensors.push_back(std::move(sensor));
    }

    void indexKeys()
    {
        auto &byKey = m_machine.m_byKey;
        auto &keys = m_machine.m_keys;
        byKey.clear();
        keys = {countOfKeys};
        if (m_machine.m_fans > 0)
            keys.push_back(countOfFans);
        for (std::size_t i = 0; i < m_machine.m_sensors.size(); ++i) {
            byKey[m_machine.m_sensors[i].key] = i;
            keys.push_back(m_machine.m_sensors[i].key);
        }
        // Where the processor's temperature is a sensor with another key.
        const auto &registry = m_machine.m_registry;
        if (const auto place = registry.presentWithKey(processorKey))
            byKey[processorKey] = byKey.at(registry.keyOf(*place));
    }

    HwmonMachine &m_machine;
    std::vector<std::string> m_paths;
};

HwmonMachine::HwmonMachine(const Sysroot &root, Now now, const PatientFiles::Options &patience)
    : m_listing(root)
    , m_inputs(patience)
    , m_now(now ? std::move(now) : Now(&std::chrono::steady_clock::now))
{
}

int HwmonMachine::list()
{
    const int error = m_listing.refresh(hasLost());
    m_sleep.beginListing();
    if (m_listing.hasChanged()) {
        Builder(*this).build();
        m_chipsAtRest.assign(m_listing.chips().size(), std::nullopt);
        m_roundsOfListing = 0;
        std::erase_if(m_disks, [this](const auto &disk) { return !isListed(disk.first); });
    }
    return error;
}

bool HwmonMachine::isListed(const std::string &rotatingDiskStat) const
{
    for (const auto &chip : m_listing.chips()) {
        if (chip.rotatingDiskStat == rotatingDiskStat)
            return true;
    }
    return false;
}

void HwmonMachine::beginRound()
{
    m_inputs.beginRound();
    m_sleep.beginRound();
    m_chipsAtRest.assign(m_chipsAtRest.size(), std::nullopt);
    if (m_roundsOfListing == 0)
        expectFirstReadings();
    if (m_roundsOfListing < roundsForFirstReadings)
        ++m_roundsOfListing;
}

/// All that are awake are read in one go, instead of each being waited for.
void HwmonMachine::expectFirstReadings()
{
    for (const Sensor &sensor : m_sensors) {
        if (!isChipAtRest(sensor.chip))
            m_inputs.expect(sensor.input);
    }
}

/// Whether fans would seem to stand still because their first readings are not in yet. One that
/// still does not answer after some rounds does not hide the others any more.
bool HwmonMachine::areFansPending()
{
    if (m_roundsOfListing >= roundsForFirstReadings)
        return false;
    bool isPending = false;
    for (const Sensor &sensor : m_sensors) {
        const bool isSpeed = sensor.isFan && sensor.writable.empty();
        if (isSpeed && readingOf(sensor).outcome == InputReading::Outcome::Pending)
            isPending = true;
    }
    return isPending;
}

std::optional<EncodedValue> HwmonMachine::ownKey(std::uint32_t key) const
{
    if (key == countOfKeys)
        return encodeTotal(static_cast<std::uint32_t>(m_keys.size()));
    if (key == countOfFans && m_fans > 0)
        return encodeCount(static_cast<std::uint8_t>(m_fans));
    return std::nullopt;
}

const HwmonMachine::Sensor *HwmonMachine::find(std::uint32_t key) const
{
    const auto known = m_byKey.find(key);
    return known == m_byKey.end() ? nullptr : &m_sensors[known->second];
}

SmcStatus HwmonMachine::describe(std::uint32_t key, EncodedValue &value)
{
    const Sensor *sensor = find(key);
    if (!sensor || sensor->isFan)
        return read(key, value); // the size of a speed depends on the speed
    value.type = encodeTemperature(0).type;
    value.size = encodeTemperature(0).size;
    return kSmcSuccess;
}

SmcStatus HwmonMachine::read(std::uint32_t key, EncodedValue &value)
{
    if (key == countOfFans && areFansPending())
        return kSmcIoError;
    if (const auto own = ownKey(key)) {
        value = *own;
        return kSmcSuccess;
    }
    // Without a fan there is no number of fans either, not even 0.
    if (key == countOfFans)
        return kSmcNotFound;
    const Sensor *sensor = find(key);
    if (!sensor)
        return kSmcSuccess;
    const auto reading = readingOf(*sensor);
    if (!reading.isValue())
        return statusOf(reading.outcome);
    value = sensor->isFan ? encodeFanSpeed(reading.value) : encodeTemperature(reading.value);
    return kSmcSuccess;
}

InputReading HwmonMachine::readingOf(const Sensor &sensor)
{
    if (isChipAtRest(sensor.chip))
        return {InputReading::Outcome::Resting, 0};
    const auto reading = m_inputs.read(sensor.input);
    if (!reading.isValue() || !sensor.fault)
        return reading;
    // A broken thermistor, or none: the chip then gives the end of its scale.
    const auto fault = m_inputs.read(*sensor.fault);
    if (fault.isValue() && fault.value != 0)
        return {InputReading::Outcome::Failed, 0};
    return reading;
}

bool HwmonMachine::isChipAtRest(std::size_t chip)
{
    auto &rest = m_chipsAtRest[chip];
    if (!rest)
        rest = isAsleep(m_listing.chips()[chip]);
    return *rest;
}

bool HwmonMachine::isAsleep(const HwmonChip &chip)
{
    if (m_sleep.isAsleep(chip.runtimeStatus))
        return true;
    if (chip.rotatingDiskStat.empty())
        return false;
    auto &disk = m_disks.try_emplace(chip.rotatingDiskStat, chip.rotatingDiskStat).first->second;
    return disk.mayHaveStopped(m_now());
}

bool HwmonMachine::isResting(std::uint32_t key) const
{
    if (ownKey(key) || (key == countOfFans))
        return false;
    const Sensor *sensor = find(key);
    if (!sensor || m_chipsAtRest[sensor->chip].value_or(false))
        return true;
    const auto outcome = m_inputs.lastReading(sensor->input).outcome;
    return outcome != InputReading::Outcome::Value && outcome != InputReading::Outcome::Failed;
}

SmcStatus HwmonMachine::write(std::uint32_t key, std::span<const std::uint8_t> bytes)
{
    const Sensor *sensor = find(key);
    if (!sensor || sensor->writable.empty())
        return kSmcNotWritable;
    const auto rpm = decodeFanSpeed(bytes);
    if (!rpm)
        return kSmcBadArgument;
    const int error = writeNumber(sensor->writable, *rpm);
    if (error == 0)
        m_inputs.forget(sensor->input);
    return statusOfError(error);
}

std::optional<std::uint32_t> HwmonMachine::keyAt(std::uint32_t index) const
{
    if (index >= m_keys.size())
        return std::nullopt;
    return m_keys[index];
}

} // namespace pulsebar
