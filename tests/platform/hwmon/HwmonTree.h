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
        write(folder + "/name", name + '\n');
        for (const auto &[file, text] : files)
            write(folder + '/' + file, text + '\n');
    }

    /// A chip of a device, such as "pci0000:00/0000:00:18.3", with the links of a real machine.
    void deviceChip(int number, const std::string &device, const std::string &name,
                    const Files &files) const
    {
        const auto chip = "hwmon" + std::to_string(number);
        const auto folder = "sys/devices/" + device + "/hwmon/" + chip;
        write(folder + "/name", name + '\n');
        for (const auto &[file, text] : files)
            write(folder + '/' + file, text + '\n');
        link(folder + "/device", "sys/devices/" + device);
        link("sys/class/hwmon/" + chip, folder);
    }
    void removeDeviceChip(int number, const std::string &device) const
    {
        const auto chip = "hwmon" + std::to_string(number);
        remove("sys/class/hwmon/" + chip);
        remove("sys/devices/" + device + "/hwmon/" + chip);
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
    double degrees(const char *key) { return SMCGetTemperature(key, m_smc); }
    std::uint32_t rpm(const char *key) { return SMCGetFanRpm(key, m_smc); }
    SmcStatus status(const char *key)
    {
        SmcValue value;
        return SMCReadKey(key, value, m_smc);
    }
    SmcValue value(const char *key)
    {
        SmcValue value;
        SMCReadKey(key, value, m_smc);
        return value;
    }
    bool has(const char *key) { return value(key).size != 0; }

private:
    HwmonSmc &m_smc;
    SmcOpenResult m_result;
};

/// Samples until every file there is has been read once and is known to be quick.
inline void settle(HwmonSmc &smc)
{
    for (int round = 0; round < 5; ++round) {
        const OpenSmc sample(smc);
        for (const auto &sensor : smc.names())
            SMCGetTemperature(sensor.key, smc);
    }
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
