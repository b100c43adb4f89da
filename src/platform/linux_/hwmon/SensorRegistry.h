#pragma once

#include "platform/SensorNames.h"
#include "platform/linux_/hwmon/sensor_roles.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pulsebar {

/// A temperature input that a listing of the machine found.
struct FoundSensor
{
    /// The chip, told apart from any other, and the same from start to start: its device's path
    /// and its name.
    std::string chipIdentity;
    std::string chip;  ///< the chip's name, readable
    std::string label; ///< readable; empty when the input has none
    int number = 0;    ///< N of tempN_input
};

/// Gives the machine's temperature sensors their keys and names, and sees to it that they keep
/// them: also while they are away, since a device that goes must not make another one take its
/// name.
///
/// The key is
/// - the label of an input of Apple's controller, when it can be one;
/// - else a key of the sensor's role: keyPrefix() and an instance, counted in order of appearance;
/// - else "t" and three base-36 digits made of the sensor's identity, the same from start to start
///   as long as no two sensors meet.
///
/// "Tcp0" is what to take for the processor's temperature. It belongs to the best CpuClaim, and
/// moves when a better one appears, since modules load late. Where that is an input of Apple's
/// controller, "Tcp0" is a second key of it, which names() does not list. "Tcp1" and so on are the
/// other packages, if there are several.
///
/// Bounded: knows at most `limit` sensors; of those away the longest gone is forgotten for a new
/// one.
class SensorRegistry
{
public:
    static constexpr std::size_t kLimit = 1024;

    explicit SensorRegistry(std::size_t limit = kLimit);

    /// Takes the sensors that are there now, in the order to list them.
    /// @return the place of each in this registry; absent for one too many
    std::vector<std::optional<std::size_t>> update(const std::vector<FoundSensor> &found);

    /// The sensor with a key, if it is there now.
    std::optional<std::size_t> presentWithKey(std::uint32_t key) const;
    std::uint32_t keyOf(std::size_t place) const { return m_sensors[place].key; }

    /// Those that are there now. The revision changes with them.
    const std::vector<SensorName> &names() const { return m_names; }
    std::uint64_t revision() const { return m_revision; }

private:
    struct Sensor
    {
        std::string identity;
        std::string name;
        std::string label; ///< where it could be the key, else empty
        SensorPurpose purpose;
        std::uint32_t key = 0; ///< 0 = none yet
        bool isPresent = false;
        std::uint64_t lastSeen = 0;
    };
    using Places = std::vector<std::optional<std::size_t>>;

    std::optional<std::size_t> knownPlace(const std::string &identity);
    std::optional<std::size_t> newPlace(const FoundSensor &found, const std::string &identity);
    std::optional<std::size_t> freePlace();
    void forget(std::size_t place);
    std::string takeUniqueName(const FoundSensor &found);

    void giveKey(std::size_t place, std::uint32_t key);
    void giveOrdinaryKey(std::size_t place);
    bool giveLabelAsKey(std::size_t place);
    bool giveRoleKey(std::size_t place, int firstInstance);
    void giveGeneratedKey(std::size_t place);
    void electProcessor(const Places &places);
    void giveProcessorKeys();
    void takeUnfitProcessorKeys();
    bool isPackageLikeTheElected(const Sensor &sensor) const;
    void list(const Places &places);

    std::size_t m_limit;
    std::vector<Sensor> m_sensors;
    std::unordered_map<std::string, std::size_t> m_byIdentity;
    std::unordered_map<std::uint32_t, std::size_t> m_byKey;
    std::unordered_map<std::string, int> m_takenNames; ///< and how often each was asked for
    std::optional<std::size_t> m_elected;              ///< the sensor that "Tcp0" reads
    std::uint64_t m_updates = 0;
    std::vector<SensorName> m_names;
    std::uint64_t m_revision = 0;
};

} // namespace pulsebar
