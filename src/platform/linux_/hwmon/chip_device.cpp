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

constexpr std::string_view hexDigits = "0123456789ABCDEF";

/// Whether a text begins as the folder of a HID device does: bus, vendor and product.
bool startsWithHidDevice(std::string_view text)
{
    constexpr std::string_view form = "hhhh:hhhh:hhhh.";
    const auto fits = [](char character, char expected) {
        return expected == 'h' ? hexDigits.find(character) != std::string_view::npos
                               : character == expected;
    };
    return text.size() > form.size() && std::equal(form.begin(), form.end(), text.begin(),
                                                   [&](char f, char c) { return fits(c, f); });
}

/// How many characters at the front of a text a running number follows; 0 when none does.
std::size_t beforeRunningNumber(std::string_view text)
{
    if (startsWithHidDevice(text))
        return std::string_view("hhhh:hhhh:hhhh.").size();
    for (const std::string_view prefix : {"/ieee80211/phy", "_phy", "iwlwifi_"}) {
        if (text.starts_with(prefix) && text.size() > prefix.size() && text[prefix.size()] >= '0' &&
            text[prefix.size()] <= '9')
            return prefix.size();
    }
    return 0;
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

std::string withoutRunningNumbers(std::string_view text)
{
    std::string lasting;
    while (!text.empty()) {
        const auto prefix = beforeRunningNumber(text);
        lasting += text.substr(0, std::max<std::size_t>(prefix, 1));
        text.remove_prefix(std::max<std::size_t>(prefix, 1));
        if (prefix > 0)
            text.remove_prefix(std::min(text.find_first_not_of(hexDigits), text.size()));
    }
    return lasting;
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
