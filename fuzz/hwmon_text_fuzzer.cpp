#include "platform/linux_/hwmon/DeviceSleep.h"
#include "platform/linux_/hwmon/SensorRegistry.h"
#include "platform/linux_/hwmon/hwmon_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

std::string_view takeLine(std::string_view &text)
{
    const auto line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

void requireReadable(std::string_view text)
{
    const auto startsCharacter = [](char byte) { return (byte & 0xC0) != 0x80; };
    require(std::count_if(text.begin(), text.end(), startsCharacter) <= 64);
    require(std::none_of(text.begin(), text.end(),
                         [](char byte) { return (byte >= 0 && byte < 0x20) || byte == 0x7F; }));
    require(pulsebar::readableText(text) == text);
}

void requireKey(std::string_view key)
{
    require(key.size() == 4 && key != "#KEY" && key != "FNum");
    require(std::all_of(key.begin(), key.end(),
                        [](char character) { return character >= 0x20 && character < 0x7F; }));
}

} // namespace

/// Names and labels of chips, two lines to a sensor: whatever a driver or a device calls itself,
/// each sensor has a key and a readable name of its own.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string_view text(reinterpret_cast<const char *>(data), size);
    pulsebar::parseHwmonNumber(text);
    pulsebar::parseRuntimeStatus(text);
    pulsebar::parseHwmonFolderName(text);
    if (const auto file = pulsebar::parseHwmonFileName(text))
        require(file->number >= 0 && text.ends_with(file->detail));
    requireReadable(pulsebar::readableText(text));

    std::vector<pulsebar::FoundSensor> sensors;
    while (!text.empty() && sensors.size() < 100) {
        const auto chip = pulsebar::readableText(takeLine(text));
        const auto label = pulsebar::readableText(takeLine(text));
        sensors.push_back({std::to_string(sensors.size()), chip, label, 1});
    }
    pulsebar::SensorRegistry registry;
    registry.update(sensors);
    require(registry.names().size() == sensors.size());
    std::set<std::string> keys;
    std::set<std::string> names;
    for (const auto &sensor : registry.names()) {
        requireKey(sensor.key);
        requireReadable(sensor.name);
        require(keys.insert(sensor.key).second && names.insert(sensor.name).second);
    }
    return 0;
}
