#pragma once

#include "platform/linux_/low/Sysroot.h"

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace pulsebar {

struct TemperatureInput
{
    int number = 0;    ///< N of tempN_input
    std::string label; ///< readable; empty without tempN_label
    bool hasFault = false;

    bool operator==(const TemperatureInput &) const = default;
};

struct FanInput
{
    int number = 0; ///< N of fanN_input
    bool hasMinimum = false;
    bool hasMaximum = false;
    bool hasTarget = false;

    bool operator==(const FanInput &) const = default;
};

/// A sensor chip, and the inputs that are of use to us, by number.
struct HwmonChip
{
    std::string folder; ///< where its files are, without symbolic links in the path
    /// The device's path below the root, and the name, both without numbers that only count how
    /// often something was plugged in. No two chips have the same.
    std::string identity;
    std::string name; ///< readable
    std::vector<TemperatureInput> temperatures;
    std::vector<FanInput> fans;
    /// Files that tell whether the device sleeps, and those of the devices that it hangs on,
    /// nearest first.
    std::vector<std::string> runtimeStatus;
    /// The counters of the rotating disk that this is the sensor of; empty for any other chip.
    std::string rotatingDiskStat;

    std::string temperatureFile(int number, const char *detail) const;
    std::string fanFile(int number, const char *detail) const;

    bool operator==(const HwmonChip &) const = default;
};

/// The chips below /sys/class/hwmon, in the order of their numbers. Only folders that are new or
/// seem changed are walked, and one of the others every fourth time, in turn: the kernel does not
/// tell when a chip gets another input.
///
/// Old drivers have their files in the folder "device" of the chip's; they are taken from there.
class HwmonListing
{
public:
    // Above what large servers have: shelves of a hundred drives, processors of 288 cores.
    static constexpr std::size_t kMostChips = 256;
    static constexpr std::size_t kMostInputs = 512; ///< of a kind, of one chip
    static constexpr unsigned kRefreshesPerTurn = 4;

    explicit HwmonListing(const Sysroot &root);

    /// Looks anew.
    /// @param atEverything look at the names in every folder: something is known to have gone
    /// @return 0, or the errno of reading the list: ENOENT on a machine without sensors
    int refresh(bool atEverything = false);

    const std::vector<HwmonChip> &chips() const { return m_chips; }
    /// Whether the last refresh() found other chips or inputs than the one before it.
    bool hasChanged() const { return m_hasChanged; }
    /// Whether there are more chips or inputs than are taken.
    bool isCut() const { return m_isCut; }

private:
    /// What tells that a folder is another one, or has other files.
    struct Stamp
    {
        dev_t device = 0;
        ino_t inode = 0;
        timespec modified{};
        bool isFresh = false; ///< so new that another change could bear the same time

        static Stamp of(const std::string &folder);
        bool isStill(const Stamp &now) const;
    };
    struct Entry
    {
        int number = 0;
        Stamp folder;
        Stamp device;
        bool isCut = false;
        bool mayHaveFilesAtDevice = false; ///< has no inputs in its own folder
        HwmonChip chip;
    };

    int nextInTurn();
    Entry entryFor(int number, bool lookInside);
    void walk(const std::string &place, Entry &entry) const;
    bool takeInputs(Entry &entry) const;
    void gatherChips();

    Sysroot m_root;
    std::vector<Entry> m_entries;
    std::vector<HwmonChip> m_chips;
    unsigned m_refreshes = 0;
    std::size_t m_turn = 0;
    bool m_hasChanged = false;
    bool m_isCut = false;
};

} // namespace pulsebar
