// What a sample's sensors cost on a machine with 40 temperatures and 6 fans, against the limit: the
// same files fetched with plain calls on descriptors that are kept open, and thrown away. Beside
// it, what opening, reading and closing each of them costs.
//
// Usage: sensors_bench [samples] [pause in milliseconds] [only]
// Cold figures come from samples with a pause between them, as in real use; hot ones from a loop.
// With "only" there is nothing but that many samples of ours: to be looked at with strace -f -c.
//
// The machine is made of symbolic links to files of the running kernel's /sys, as their reading
// costs what it costs there; what a driver or a bus adds is not in it.
#include "platform/linux_/hwmon/HwmonSmc.h"
#include "sensors/Fans.h"
#include "sensors/SensorLists.h"
#include "sensors/Temperatures.h"
#include "sensors/smc/Smc.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numeric>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace pulsebar;
namespace fs = std::filesystem;

constexpr const char *anyNumber = "/sys/class/net/lo/mtu"; // 65536 would be 65.5 degrees

/// A file that says "active", as of a device that is awake.
std::string awakeDevice()
{
    for (const auto &device : fs::directory_iterator("/sys/devices/pci0000:00")) {
        const auto file = device.path() / "power/runtime_status";
        std::string word;
        if (std::ifstream(file) >> word && word == "active")
            return file;
    }
    return {};
}

/// A desktop: 40 temperatures on seven chips, 6 fans with speed and minimum, four of the chips on
/// devices that may sleep.
class Machine
{
public:
    Machine()
        : m_folder((fs::temp_directory_path() / "sensors_bench-XXXXXX").string())
        , m_awake(awakeDevice())
    {
        if (!::mkdtemp(m_folder.data()))
            std::abort();
        putProcessor();
        putBoard();
        for (int drive = 0; drive < 3; ++drive)
            putDrive(drive);
        putGraphics();
        putZone();
    }
    ~Machine() { fs::remove_all(m_folder); }
    Machine(const Machine &) = delete;
    Machine &operator=(const Machine &) = delete;

    Sysroot root() const { return Sysroot(m_folder); }
    const std::vector<std::string> &files() const { return m_files; }

private:
    fs::path addChip(const std::string &device, const std::string &name, bool maySleep)
    {
        const fs::path place = m_folder + "/sys/devices/" + device;
        const auto hwmon = "hwmon" + std::to_string(m_chips++);
        const auto chip = place / "hwmon" / hwmon;
        fs::create_directories(chip);
        fs::create_directories(place / "power");
        fs::create_directories(m_folder + "/sys/class/hwmon");
        fs::create_symlink(place, chip / "device");
        fs::create_symlink(chip, m_folder + "/sys/class/hwmon/" + hwmon);
        std::ofstream(chip / "name") << name << '\n';
        if (maySleep && !m_awake.empty())
            fs::create_symlink(m_awake, place / "power/runtime_status");
        return chip;
    }
    void addFile(const fs::path &file)
    {
        fs::create_symlink(anyNumber, file);
        m_files.push_back(file);
    }
    void addTemperature(const fs::path &chip, int number, const std::string &label)
    {
        const auto input = chip / ("temp" + std::to_string(number));
        addFile(input.string() + "_input");
        if (!label.empty())
            std::ofstream(input.string() + "_label") << label << '\n';
    }

    void putProcessor()
    {
        const auto chip = addChip("platform/coretemp.0", "coretemp", false);
        addTemperature(chip, 1, "Package id 0");
        for (int core = 0; core < 16; ++core)
            addTemperature(chip, core + 2, "Core " + std::to_string(core));
    }
    void putBoard()
    {
        const auto chip = addChip("platform/nct6775.656", "nct6798", false);
        addTemperature(chip, 1, "SYSTIN");
        for (int i = 0; i < 9; ++i)
            addTemperature(chip, i + 2, "AUXTIN" + std::to_string(i));
        for (int fan = 1; fan <= 6; ++fan) {
            addFile(chip / ("fan" + std::to_string(fan) + "_input"));
            addFile(chip / ("fan" + std::to_string(fan) + "_min"));
        }
    }
    void putDrive(int drive)
    {
        const auto chip =
            addChip("pci0000:00/0000:0" + std::to_string(drive) + ":00.0", "nvme", true);
        addTemperature(chip, 1, "Composite");
        addTemperature(chip, 2, "Sensor 1");
        addTemperature(chip, 3, "Sensor 2");
    }
    void putGraphics()
    {
        const auto chip = addChip("pci0000:00/0000:0b:00.0", "amdgpu", true);
        addTemperature(chip, 1, "edge");
        addTemperature(chip, 2, "junction");
        addTemperature(chip, 3, "mem");
    }
    void putZone() { addTemperature(addChip("virtual/thermal_zone0", "acpitz", false), 1, ""); }

    std::string m_folder;
    std::string m_awake;
    int m_chips = 0;
    std::vector<std::string> m_files;
};

/// The floor.
class PlainReads
{
public:
    explicit PlainReads(const std::vector<std::string> &files)
        : m_files(files)
    {
        for (const auto &file : files)
            m_descriptors.push_back(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    }
    ~PlainReads()
    {
        for (const int descriptor : m_descriptors)
            ::close(descriptor);
    }
    PlainReads(const PlainReads &) = delete;
    PlainReads &operator=(const PlainReads &) = delete;

    void keptOpen()
    {
        for (const int descriptor : m_descriptors)
            fetch(descriptor);
    }
    void openedEach()
    {
        for (const auto &file : m_files) {
            const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
            fetch(descriptor);
            ::close(descriptor);
        }
    }

private:
    void fetch(int descriptor)
    {
        if (::pread(descriptor, m_buffer.data(), m_buffer.size(), 0) <= 0)
            std::abort();
    }

    std::vector<std::string> m_files;
    std::vector<int> m_descriptors;
    std::array<char, 128> m_buffer{};
};

/// Ours, with the lists as they are installed.
class Collectors
{
public:
    explicit Collectors(const Sysroot &root)
        : m_smc(root)
        , m_link(m_smc)
        , m_lists(readSensorLists({QStringLiteral(PULSEBAR_DATA)}))
        , m_temperatures(m_link, m_lists.temperature, &m_smc)
        , m_fans(m_link, m_lists.fan)
    {
    }

    void sample()
    {
        const auto temperatures = m_temperatures.SMCGetTemperatures(false);
        const auto fans = m_fans.SMCGetFanMove();
        m_sensors =
            (temperatures ? static_cast<int>(temperatures->size()) : 0) +
            (fans ? static_cast<int>(fans->value(QStringLiteral("DataArray")).toList().size()) : 0);
    }
    /// Until every file was read once.
    void settle()
    {
        for (int round = 0; round < 1000 && m_sensors != 46; ++round)
            sample();
        if (m_sensors != 46)
            std::abort();
    }
    /// The same keys, without the collectors.
    void keys()
    {
        m_smc.open();
        for (const auto &sensor : m_smc.names())
            SMCGetTemperature(sensor.key, m_smc);
        m_smc.close();
        m_smc.open();
        SmcValue value;
        for (int fan = 0; fan < 6; ++fan) {
            for (const char *figure : {"Ac", "Mn", "Mx", "Tg"})
                SMCReadKey('F' + std::to_string(fan) + figure, value, m_smc);
        }
        m_smc.close();
    }

private:
    HwmonSmc m_smc;
    SmcLink m_link;
    SensorLists m_lists;
    Temperatures m_temperatures;
    Fans m_fans;
    int m_sensors = 0;
};

double cpuMicroseconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

double mean(const std::vector<double> &values)
{
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

struct Way
{
    const char *name;
    std::function<void()> run;
    std::vector<double> costs = {};
};

/// All ways in turns within one run, so that they meet the same machine.
void measure(std::vector<Way> ways, int samples, std::chrono::milliseconds pause)
{
    for (int i = 0; i < samples; ++i) {
        for (auto &way : ways) {
            std::this_thread::sleep_for(pause);
            const double before = cpuMicroseconds();
            way.run();
            way.costs.push_back(cpuMicroseconds() - before);
        }
    }
    const double limit = median(ways.front().costs);
    const double meanLimit = mean(ways.front().costs);
    for (const auto &way : ways)
        std::printf("%-4s %-34s median %6.1f us, ratio %.2f   mean %6.1f us, ratio %.2f\n",
                    pause.count() > 0 ? "cold" : "hot", way.name, median(way.costs),
                    median(way.costs) / limit, mean(way.costs), mean(way.costs) / meanLimit);
}

} // namespace

int main(int argc, char **argv)
{
    const int samples = argc > 1 ? std::max(std::atoi(argv[1]), 1) : 21;
    const std::chrono::milliseconds pause(argc > 2 ? std::atoi(argv[2]) : 500);
    const Machine machine;
    Collectors collectors(machine.root());
    Collectors bare(machine.root());
    collectors.settle();
    bare.settle();
    bare.keys();
    // A folder that has just been made is looked through at every listing.
    std::this_thread::sleep_for(std::chrono::seconds(3));
    if (argc > 3 && std::strcmp(argv[3], "only") == 0) {
        for (int i = 0; i < samples; ++i) {
            std::this_thread::sleep_for(pause);
            collectors.sample();
        }
        return 0;
    }
    auto temperatures = machine.files();
    std::erase_if(temperatures, [](const auto &file) {
        return !file.ends_with("_input") || file.find("/fan") != std::string::npos;
    });
    PlainReads forty(temperatures);
    PlainReads all(machine.files());
    const std::vector<Way> ways{
        {"limit: 52 preads of open files", [&] { all.keptOpen(); }},
        {"of them, the 40 temperatures", [&] { forty.keptOpen(); }},
        {"each opened, read, closed", [&] { all.openedEach(); }},
        {"all keys through the client", [&] { bare.keys(); }},
        {"the collectors' sample", [&] { collectors.sample(); }},
    };
    constexpr int hotFactor = 50;
    measure(ways, samples * hotFactor, std::chrono::milliseconds(0));
    measure(ways, samples, pause);
    return 0;
}
