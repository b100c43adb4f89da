#pragma once

#include "platform/TemporaryMachine.h"
#include "platform/linux_/hwmon/HwmonSmc.h"
#include "sensors/smc/Smc.h"
#include "sensors/smc/SmcDecode.h"

#include <filesystem>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace pulsebar {

/// A machine with sensor chips, as the kernel shows them.
class HwmonTree : public TemporaryMachine
{
public:
    using Files = std::vector<std::pair<std::string, std::string>>;

    /// A chip whose files are plainly in the folder of its class, as recorded machines have them.
    void plainChip(int number, const std::string &name, const Files &files) const
    {
        const auto folder = "sys/class/hwmon/hwmon" + std::to_string(number);
        putFiles(folder, name, files);
    }

    /// A chip of a device, such as "pci0000:00/0000:00:18.3", with the links of a real machine.
    void deviceChip(int number, const std::string &device, const std::string &name,
                    const Files &files) const
    {
        const auto chip = "hwmon" + std::to_string(number);
        const auto folder = "sys/devices/" + device + "/hwmon/" + chip;
        putFiles(folder, name, files);
        link(folder + "/device", "sys/devices/" + device);
        link("sys/class/hwmon/" + chip, folder);
    }
    void removeDeviceChip(int number, const std::string &device) const
    {
        const auto chip = "hwmon" + std::to_string(number);
        remove("sys/class/hwmon/" + chip);
        remove("sys/devices/" + device + "/hwmon/" + chip);
    }

    void putFiles(const std::string &folder, const std::string &name, const Files &files) const
    {
        const auto below = folder + '/';
        write(below + "name", name + '\n');
        for (const auto &[file, text] : files)
            write(below + file, text + '\n');
    }
    void link(const std::string &place, const std::string &target) const
    {
        std::filesystem::create_directories(std::filesystem::path(path(place)).parent_path());
        std::filesystem::create_symlink(path(target), path(place));
    }
};

/// One sample: opens, and closes again.
class OpenSmc
{
public:
    explicit OpenSmc(HwmonSmc &smc)
        : m_smc(smc)
        , m_result(smc.open())
    {
    }
    ~OpenSmc() { m_smc.close(); }
    OpenSmc(const OpenSmc &) = delete;
    OpenSmc &operator=(const OpenSmc &) = delete;

    bool isOpen() const { return m_result.opening == SmcOpening::Opened; }
    double degrees(const std::string &key) { return SMCGetTemperature(key, m_smc); }
    std::uint32_t rpm(const std::string &key) { return SMCGetFanRpm(key, m_smc); }
    SmcStatus status(const std::string &key)
    {
        SmcValue value;
        return SMCReadKey(key, value, m_smc);
    }
    SmcValue value(const std::string &key)
    {
        SmcValue value;
        SMCReadKey(key, value, m_smc);
        return value;
    }
    bool has(const std::string &key) { return value(key).size != 0; }

private:
    HwmonSmc &m_smc;
    SmcOpenResult m_result;
};

/// Takes samples until one of them says yes. A sample waits a little for first readings, so this
/// waits for events; a machine that is busy with other things may need more than one.
template <typename Check> bool sampleUntil(HwmonSmc &smc, Check check)
{
    for (int round = 0; round < 1000; ++round) {
        OpenSmc sample(smc);
        if (check(sample))
            return true;
    }
    return false;
}

/// What a key says once it says anything but nothing.
inline double degreesOf(HwmonSmc &smc, const std::string &key)
{
    double degrees = 0;
    sampleUntil(smc, [&](OpenSmc &sample) {
        degrees = sample.degrees(key);
        return degrees != 0;
    });
    return degrees;
}

inline bool saysOnce(HwmonSmc &smc, const std::string &key, double degrees)
{
    return sampleUntil(smc, [&](OpenSmc &sample) { return sample.degrees(key) == degrees; });
}

/// As many openings as it takes to look at the machine anew.
inline void relist(HwmonSmc &smc)
{
    for (int opening = 0; opening < 4; ++opening)
        const OpenSmc sample(smc);
}

inline std::string nameOf(const HwmonSmc &smc, const std::string &key)
{
    for (const auto &sensor : smc.names()) {
        if (sensor.key == key)
            return sensor.name;
    }
    return {};
}

inline std::string keyOf(const HwmonSmc &smc, const std::string &name)
{
    for (const auto &sensor : smc.names()) {
        if (sensor.name == name)
            return sensor.key;
    }
    return {};
}

} // namespace pulsebar
