#include "platform/linux_/hwmon/chip_device.h"

#include "platform/linux_/low/SmallFile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace pulsebar {

namespace {

bool exists(const std::string &path)
{
    return ::access(path.c_str(), F_OK) == 0;
}

std::string parentOf(const std::string &path)
{
    return path.substr(0, path.rfind('/'));
}

std::string_view nameOf(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

bool isBusAdapter(std::string_view name)
{
    return name.starts_with("i2c-") &&
           name.find_first_not_of("0123456789", 4) == std::string_view::npos;
}

} // namespace

std::string resolvedPath(const std::string &path)
{
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr),
                                                               &std::free);
    return resolved ? resolved.get() : std::string();
}

std::string deviceOfChip(const std::string &folder)
{
    auto device = resolvedPath(folder + "/device");
    if (!device.empty())
        return device;
    // DEVICE/hwmon/hwmonN; what has no device of its own hangs in /sys/devices/virtual.
    const auto above = parentOf(folder);
    auto aboveThat = parentOf(above);
    if (nameOf(above) == "hwmon" && nameOf(aboveThat) != "virtual" && nameOf(aboveThat) != "class")
        return aboveThat;
    return folder;
}

std::vector<std::string> runtimeStatusFiles(const std::string &device, const std::string &devices)
{
    std::vector<std::string> files;
    auto place = device;
    do {
        if (isBusAdapter(nameOf(place)))
            break;
        auto file = place + "/power/runtime_status";
        if (exists(file))
            files.push_back(std::move(file));
        place = parentOf(place);
    } while (!devices.empty() && place.starts_with(devices + '/'));
    return files;
}

std::string rotatingDiskStat(const std::string &device)
{
    std::error_code error;
    for (const auto &disk : std::filesystem::directory_iterator(device + "/block", error)) {
        const auto folder = disk.path().string();
        const auto rotational = readWholeFile(folder + "/queue/rotational", 16);
        if (rotational && rotational->starts_with('1'))
            return folder + "/stat";
    }
    return {};
}

} // namespace pulsebar
