#pragma once

#include <optional>
#include <string>
#include <vector>

/// What is to be seen of each recorded machine, from its files up to the menu.
namespace pulsebar::expected {

struct Sensor
{
    std::string name;
    int millidegrees;
    std::string row; ///< its row in the menu
};

struct Fan
{
    float actual;
    float minimum;
    float maximum;
    float target;
};

struct Pack
{
    bool connected;
    bool full;
    float percent;
    std::optional<int> cycles;
    std::optional<int> millivolts;
    std::optional<int> milliamperes;
};

struct Section
{
    std::string title; ///< empty: the section is not in the menu
    std::vector<std::string> rows;
};

struct Machine
{
    std::string name;
    std::vector<Sensor> sensors; ///< in the order in which they are shown
    std::vector<Fan> fans;
    float average; ///< of the fans
    std::optional<Pack> battery;
    std::string temperatureTitle; ///< of the item in the panel
    std::string fanTitle;
    std::string batteryTitle;
    std::string temperatureSection;
    Section fanSection;
    Section batterySection;
    std::string fahrenheitTitle;
};

inline Machine laptop()
{
    return {.name = "laptop",
            .sensors = {{"CPU Die", 54000, "CPU Die:54.0℃"},
                        {"CPU Core 1", 52000, "CPU Core 1:52.0℃"},
                        {"CPU Core 2", 54000, "CPU Core 2:54.0℃"},
                        {"NVMe Drive", 38850, "NVMe Drive:38.8℃"},
                        {"Wi-Fi", 44000, "Wi-Fi:44.0℃"},
                        {"Chipset", 46500, "Chipset:46.5℃"},
                        {"Board", 49000, "Board:49.0℃"},
                        {"thinkpad CPU", 51000, "thinkpad CPU:51.0℃"}},
            .fans = {{2718, 0, 0, 0}},
            .average = 2718,
            .battery = Pack{false, false, 62.4227F, 118, 11874, -799},
            .temperatureTitle = "CPU:54℃",
            .fanTitle = "2718RPM",
            .batteryTitle = "62.4%",
            .temperatureSection = "CPU Die: 54.0℃",
            .fanSection = {"Fan: 2718RPM",
                           {"Actual: 2718RPM", "Minimum: 0RPM", "Maximum: 0RPM", "Target: 0RPM"}},
            .batterySection = {"Battery: 62.4%",
                               {" Voltage:11874mV", "Amperage:-799mA", "Cycle Count:118"}},
            .fahrenheitTitle = "CPU:155℉"};
}

inline Machine desktop()
{
    return {.name = "desktop",
            .sensors = {{"CPU Die", 51625, "CPU Die:51.6℃"},
                        {"CPU Chiplet 1", 49250, "CPU Chiplet 1:49.2℃"},
                        {"GPU", 43000, "GPU:43.0℃"},
                        {"GPU Hotspot", 47000, "GPU Hotspot:47.0℃"},
                        {"GPU Memory", 52000, "GPU Memory:52.0℃"},
                        {"NVMe Drive", 41850, "NVMe Drive:41.8℃"},
                        {"SATA Drive", 34000, "SATA Drive:34.0℃"},
                        {"Board", 33000, "Board:33.0℃"},
                        {"nvme Sensor 1", 41850, "nvme Sensor 1:41.8℃"},
                        {"nvme Sensor 2", 47850, "nvme Sensor 2:47.8℃"},
                        {"k10temp Tctl", 61625, "k10temp Tctl:61.6℃"},
                        {"nct6798 CPUTIN", 36500, "nct6798 CPUTIN:36.5℃"},
                        {"nct6798 AUXTIN0", 28000, "nct6798 AUXTIN0:28.0℃"},
                        {"nct6798 AUXTIN2", 23500, "nct6798 AUXTIN2:23.5℃"},
                        {"nct6798 SMBUSMASTER 0", 47000, "nct6798 SMBUSMASTER 0:47.0℃"},
                        {"nct6798 TSI0_TEMP", 51625, "nct6798 TSI0_TEMP:51.6℃"}},
            .fans = {{1043, 0, 3300, 1043},
                     {932, 0, 0, 0},
                     {1288, 0, 0, 0},
                     {0, 0, 0, 0},
                     {711, 0, 0, 0},
                     {704, 0, 0, 0},
                     {0, 0, 0, 0}},
            .average = 4678.0F / 7,
            .battery = std::nullopt,
            .temperatureTitle = "CPU:52℃",
            .fanTitle = "668RPM",
            .batteryTitle = "0.0%",
            .temperatureSection = "CPU Die: 51.6℃",
            .fanSection = {"Fan: 668RPM",
                           {"Fan #1: 1043RPM", "Fan #2: 932RPM", "Fan #3: 1288RPM", "Fan #4: 0RPM",
                            "Fan #5: 711RPM", "Fan #6: 704RPM", "Fan #7: 0RPM"}},
            .batterySection = {},
            .fahrenheitTitle = "CPU:151℉"};
}

inline Machine board()
{
    return {.name = "board",
            .sensors = {{"CPU Die", 47774, "CPU Die:47.8℃"}},
            .fans = {},
            .average = 0,
            .battery = std::nullopt,
            .temperatureTitle = "CPU:48℃",
            .fanTitle = "0RPM",
            .batteryTitle = "0.0%",
            .temperatureSection = "CPU Die: 47.8℃",
            .fanSection = {},
            .batterySection = {},
            .fahrenheitTitle = "CPU:144℉"};
}

inline Machine appleLaptop()
{
    return {.name = "apple-laptop",
            .sensors = {{"CPU Die", 56000, "CPU Die:56.0℃"},
                        {"CPU Core 1", 53000, "CPU Core 1:53.0℃"},
                        {"CPU Core 2", 54000, "CPU Core 2:54.0℃"},
                        {"CPU Core 3", 56000, "CPU Core 3:56.0℃"},
                        {"CPU Core 4", 52000, "CPU Core 4:52.0℃"},
                        {"CPU Diode", 55250, "CPU Diode:55.2℃"},
                        {"CPU Diode, Filtered", 57500, "CPU Diode, Filtered:57.5℃"},
                        {"CPU Diode, Raw", 56000, "CPU Diode, Raw:56.0℃"},
                        {"CPU Package", 55750, "CPU Package:55.8℃"},
                        {"CPU Core, Second", 54000, "CPU Core, Second:54.0℃"},
                        {"CPU Core, Third", 53000, "CPU Core, Third:53.0℃"},
                        {"CPU Proximity", 48500, "CPU Proximity:48.5℃"},
                        {"GPU Diode", 52000, "GPU Diode:52.0℃"},
                        {"GPU Proximity", 48250, "GPU Proximity:48.2℃"},
                        {"Memory Proximity", 45500, "Memory Proximity:45.5℃"},
                        {"Platform Controller Diode", 53000, "Platform Controller Diode:53.0℃"},
                        {"Drive Bay", 38000, "Drive Bay:38.0℃"},
                        {"Battery Pack", 31250, "Battery Pack:31.2℃"},
                        {"Battery Cells 1", 31250, "Battery Cells 1:31.2℃"},
                        {"Battery Cells 2", 30750, "Battery Cells 2:30.8℃"},
                        {"Airport", 40500, "Airport:40.5℃"},
                        {"Heatsink, Right", 44750, "Heatsink, Right:44.8℃"},
                        {"Heatsink, Rear", 42500, "Heatsink, Rear:42.5℃"},
                        {"Palm Rest", 29750, "Palm Rest:29.8℃"},
                        {"Memory Door", 38250, "Memory Door:38.2℃"},
                        {"Mainboard Proximity", 39000, "Mainboard Proximity:39.0℃"},
                        {"Air Inlet", 33500, "Air Inlet:33.5℃"}},
            .fans = {{2160, 2160, 6156, 0}, {2000, 2000, 5700, 0}},
            .average = 2080,
            .battery = Pack{true, false, 73.3102F, 412, 12305, 1241},
            .temperatureTitle = "CPU:56℃",
            .fanTitle = "2080RPM",
            .batteryTitle = "73.3%",
            .temperatureSection = "CPU Die: 56.0℃",
            .fanSection = {"Fan: 2080RPM", {"Fan #1: 2160RPM", "Fan #2: 2000RPM"}},
            .batterySection = {"Charging: 73.3%",
                               {" Voltage:12305mV", "Amperage:1241mA", "Cycle Count:412"}},
            .fahrenheitTitle = "CPU:158℉"};
}

inline Machine twoBatteries()
{
    return {.name = "two-batteries",
            .sensors = {{"CPU Die", 45000, "CPU Die:45.0℃"},
                        {"CPU Core 1", 44000, "CPU Core 1:44.0℃"},
                        {"CPU Core 2", 45000, "CPU Core 2:45.0℃"},
                        {"Board", 43000, "Board:43.0℃"}},
            .fans = {{0, 0, 0, 0}},
            .average = 0,
            .battery = Pack{false, false, 5.26316F, std::nullopt, 11102, std::nullopt},
            .temperatureTitle = "CPU:45℃",
            .fanTitle = "0RPM",
            .batteryTitle = "5.3%",
            .temperatureSection = "CPU Die: 45.0℃",
            .fanSection = {},
            .batterySection = {"Battery: 5.3%", {" Voltage:11102mV"}},
            .fahrenheitTitle = "CPU:139℉"};
}

inline Machine bare()
{
    return {.name = "bare",
            .sensors = {},
            .fans = {},
            .average = 0,
            .battery = std::nullopt,
            .temperatureTitle = "N/A",
            .fanTitle = "0RPM",
            .batteryTitle = "0.0%",
            .temperatureSection = "",
            .fanSection = {},
            .batterySection = {},
            .fahrenheitTitle = "N/A"};
}

inline std::vector<Machine> machines()
{
    return {laptop(), desktop(), board(), appleLaptop(), twoBatteries(), bare()};
}

} // namespace pulsebar::expected
