#pragma once

#include <string>
#include <vector>

namespace pulsebar {

/// A path without symbolic links; empty when there is nothing.
std::string resolvedPath(const std::string &path);

/// The device of a chip's folder (both without symbolic links), or the folder itself where the
/// kernel does not name one.
std::string deviceOfChip(const std::string &folder);

/// The files power/runtime_status of a device and of those that it hangs on, nearest first, as far
/// as they exist. `devices` is where all devices are (/sys/devices).
///
/// What an I2C adapter and its controller say is left out: they are suspended between any two
/// transfers, and say nothing of the sensors on their bus.
std::vector<std::string> runtimeStatusFiles(const std::string &device, const std::string &devices);

/// The file "stat" of the rotating disk that a device is; empty when it is none.
std::string rotatingDiskStat(const std::string &device);

} // namespace pulsebar
