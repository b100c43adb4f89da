#pragma once

#include "platform/SmcTransport.h"
#include "platform/linux_/hwmon/DeviceSleep.h"
#include "platform/linux_/hwmon/DiskRest.h"
#include "platform/linux_/hwmon/HwmonListing.h"
#include "platform/linux_/hwmon/InputFiles.h"
#include "platform/linux_/hwmon/SensorRegistry.h"
#include "platform/linux_/hwmon/sensor_encoding.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace pulsebar {

/// The keys of a machine's sensors and what they say: what HwmonSmc answers, without the protocol.
class HwmonMachine
{
public:
    using Now = std::function<std::chrono::steady_clock::time_point()>;

    static constexpr int kMostFans = 100; ///< the keys of later ones would have five characters

    explicit HwmonMachine(const Sysroot &root, Now now = {},
                          const PatientFiles::Options &patience = InputFiles::defaultOptions());

    /// Looks at what there is.
    /// @return 0 or the errno of reading the list of chips
    int list();
    /// Forgets all readings.
    void beginRound();

    /// Whether there is no sensor at all.
    bool isEmpty() const { return m_sensors.empty(); }
    /// Whether an input went since the last round began.
    bool hasLost() const { return m_inputs.hasLost(); }
    /// Whether sensors had to be left out.
    bool isCut() const { return m_isCut; }

    /// Type and size of a key; size 0 when it does not exist. Measures fans, not temperatures.
    SmcStatus describe(std::uint32_t key, EncodedValue &value);
    /// The same, with the bytes.
    SmcStatus read(std::uint32_t key, EncodedValue &value);
    SmcStatus write(std::uint32_t key, std::span<const std::uint8_t> bytes);
    std::optional<std::uint32_t> keyAt(std::uint32_t index) const;

    bool isResting(std::uint32_t key) const;
    const SensorRegistry &registry() const { return m_registry; }

private:
    /// What a key reads. The numbers are those of m_inputs and of the listing's chips.
    struct Sensor
    {
        std::uint32_t key = 0;
        bool isFan = false;
        std::size_t chip = 0;
        std::size_t input = 0;
        std::optional<std::size_t> fault;
        std::string writable; ///< the file to write; empty when there is nothing to set
    };
    class Builder;

    std::optional<EncodedValue> ownKey(std::uint32_t key) const;
    const Sensor *find(std::uint32_t key) const;
    bool isChipAtRest(std::size_t chip);
    bool isAsleep(const HwmonChip &chip);
    InputReading readingOf(const Sensor &sensor);
    void expectFirstReadings();
    bool areFansPending();
    bool isListed(const std::string &rotatingDiskStat) const;

    HwmonListing m_listing;
    SensorRegistry m_registry;
    InputFiles m_inputs;
    DeviceSleep m_sleep;
    Now m_now;
    std::unordered_map<std::string, DiskRest> m_disks; ///< by HwmonChip::rotatingDiskStat
    std::vector<std::optional<bool>> m_chipsAtRest;    ///< in this round
    std::vector<Sensor> m_sensors;
    std::unordered_map<std::uint32_t, std::size_t> m_byKey;
    std::vector<std::uint32_t> m_keys; ///< in the order of their indices
    int m_fans = 0;
    int m_roundsOfListing = 0; ///< since new chips were found
    bool m_isCut = false;
};

/// The key of a fan's value, such as "F0Ac" for fan 0 and "Ac"; absent where it would not tell the
/// fan and the value.
std::optional<std::uint32_t> fanKey(int fan, std::string_view value);

} // namespace pulsebar
