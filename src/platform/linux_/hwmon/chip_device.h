#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pulsebar {

/// A path without symbolic links; empty when there is nothing.
std::string resolvedPath(const std::string &path);

/// The device of a chip's folder (both without symbolic links), or the folder itself where the
/// kernel does not name one.
std::string deviceOfChip(const std::string &folder);

/// A path of devices, or a chip's name, without the numbers that the kernel counts on with each
/// time that a device is plugged in or its driver loaded: of HID devices (0003:1E71:2007.0005) and
/// of Wi-Fi cards (ieee80211/phy3, mt7921_phy3, iwlwifi_2). What is left is the same when the
/// device comes back.
std::string withoutRunningNumbers(std::string_view text);

/// The files power/runtime_status of a device and of those that it hangs on, nearest first, as far
/// as they exist. `devices` is where all devices are (/sys/devices).
///
/// What an I2C adapter and its controller say is left out: they are suspended between any two
/// transfers, and say nothing of the sensors on their bus.
std::vector<std::string> runtimeStatusFiles(const std::string &device, const std::string &devices);

/// The file "stat" of the rotating disk that a device is; empty when it is none.
std::string rotatingDiskStat(const std::string &device);

} // namespace pulsebar
