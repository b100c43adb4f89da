#include "platform/linux_/hwmon/HwmonListing.h"

#include "platform/linux_/hwmon/chip_device.h"
#include "platform/linux_/hwmon/hwmon_text.h"
#include "platform/linux_/low/SmallFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace pulsebar {

namespace {

constexpr std::size_t longestLabel = 4096; // a page: the kernel has no longer ones
constexpr const char *classFolder = "/sys/class/hwmon";

struct CloseFolder
{
    void operator()(DIR *folder) const { ::closedir(folder); }
};

template <typename Take> int forEachName(const std::string &folder, Take take)
{
    const std::unique_ptr<DIR, CloseFolder> list(::opendir(folder.c_str()));
    if (!list)
        return errno;
    while (const auto *entry = ::readdir(list.get()))
        take(std::string_view(entry->d_name));
    return 0;
}

std::string textOf(const std::string &path)
{
    return readableText(readWholeFile(path, longestLabel).value_or(std::string()));
}

/// Which files there are, by the numbers of the inputs.
struct FilesOfChip
{
    std::map<int, std::set<std::string, std::less<>>> temperatures;
    std::map<int, std::set<std::string, std::less<>>> fans;
};

FilesOfChip filesOf(const std::string &folder)
{
    FilesOfChip files;
    forEachName(folder, [&files](std::string_view name) {
        const auto file = parseHwmonFileName(name);
        if (!file)
            return;
        auto &inputs = file->kind == HwmonFile::Kind::Temperature ? files.temperatures : files.fans;
        inputs[file->number].emplace(file->detail);
    });
    const auto hasNoInput = [](const auto &input) { return !input.second.contains("input"); };
    std::erase_if(files.temperatures, hasNoInput);
    std::erase_if(files.fans, hasNoInput);
    return files;
}

/// Without the labels.
std::vector<TemperatureInput> temperaturesOf(const FilesOfChip &files)
{
    std::vector<TemperatureInput> inputs;
    for (const auto &[number, details] : files.temperatures) {
        if (inputs.size() < HwmonListing::kMostInputs)
            inputs.push_back({number, std::string(), details.contains("fault")});
    }
    return inputs;
}

std::vector<FanInput> fansOf(const FilesOfChip &files)
{
    std::vector<FanInput> inputs;
    for (const auto &[number, details] : files.fans) {
        if (inputs.size() < HwmonListing::kMostInputs)
            inputs.push_back({number, details.contains("min"), details.contains("max"),
                              details.contains("target")});
    }
    return inputs;
}

/// Whether a chip's folder lists other inputs than are known. Looks at names only.
bool hasOtherInputs(const HwmonChip &chip)
{
    const auto files = filesOf(chip.folder);
    const auto temperatures = temperaturesOf(files);
    const auto isSame = [](const TemperatureInput &a, const TemperatureInput &b) {
        return a.number == b.number && a.hasFault == b.hasFault;
    };
    return chip.fans != fansOf(files) ||
           !std::equal(temperatures.begin(), temperatures.end(), chip.temperatures.begin(),
                       chip.temperatures.end(), isSame);
}

} // namespace

std::string HwmonChip::temperatureFile(int number, const char *detail) const
{
    return folder + "/temp" + std::to_string(number) + '_' + detail;
}

std::string HwmonChip::fanFile(int number, const char *detail) const
{
    return folder + "/fan" + std::to_string(number) + '_' + detail;
}

HwmonListing::Stamp HwmonListing::Stamp::of(const std::string &folder)
{
    Stamp stamp;
    struct stat facts
    {
    };
    if (::stat(folder.c_str(), &facts) != 0)
        return stamp;
    stamp.device = facts.st_dev;
    stamp.inode = facts.st_ino;
    stamp.modified = facts.st_mtim;
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    stamp.isFresh = now.tv_sec - facts.st_mtim.tv_sec < 2;
    return stamp;
}

bool HwmonListing::Stamp::isStill(const Stamp &now) const
{
    return !isFresh && device == now.device && inode == now.inode &&
           modified.tv_sec == now.modified.tv_sec && modified.tv_nsec == now.modified.tv_nsec;
}

HwmonListing::HwmonListing(const Sysroot &root)
    : m_root(root)
{
}

int HwmonListing::refresh(bool atEverything)
{
    std::set<int> numbers;
    const int error = forEachName(m_root.path(classFolder), [&numbers](std::string_view name) {
        if (const auto number = parseHwmonFolderName(name))
            numbers.insert(*number);
    });
    const int inTurn = m_refreshes++ % kRefreshesPerTurn == 0 ? nextInTurn() : -1;
    m_isCut = numbers.size() > kMostChips;
    m_hasChanged = false;
    std::vector<Entry> entries;
    for (const int number : numbers) {
        if (entries.size() == kMostChips)
            break;
        entries.push_back(entryFor(number, atEverything || number == inTurn));
        m_isCut = m_isCut || entries.back().isCut;
    }
    m_hasChanged = m_hasChanged || entries.size() != m_entries.size();
    m_entries = std::move(entries);
    if (m_hasChanged)
        gatherChips();
    return error;
}

int HwmonListing::nextInTurn()
{
    if (m_entries.empty())
        return -1;
    m_turn = (m_turn + 1) % m_entries.size();
    return m_entries[m_turn].number;
}

/// Takes what is known of a folder out of the former entries, or walks it.
HwmonListing::Entry HwmonListing::entryFor(int number, bool lookInside)
{
    const auto place = m_root.path(classFolder) + "/hwmon" + std::to_string(number);
    Entry entry;
    entry.number = number;
    entry.folder = Stamp::of(place);
    const auto known = std::find_if(m_entries.begin(), m_entries.end(),
                                    [number](const Entry &e) { return e.number == number; });
    // Where the chip's own folder has inputs, the device's does not matter.
    if (known == m_entries.end() || known->mayHaveFilesAtDevice)
        entry.device = Stamp::of(place + "/device");
    if (known != m_entries.end() && known->folder.isStill(entry.folder) &&
        (!known->mayHaveFilesAtDevice || known->device.isStill(entry.device)) &&
        !(lookInside && hasOtherInputs(known->chip))) {
        entry.chip = std::move(known->chip);
        entry.isCut = known->isCut;
        entry.mayHaveFilesAtDevice = known->mayHaveFilesAtDevice;
        return entry;
    }
    walk(place, entry);
    m_hasChanged = m_hasChanged || known == m_entries.end() || known->chip != entry.chip;
    return entry;
}

void HwmonListing::walk(const std::string &place, Entry &entry) const
{
    HwmonChip &chip = entry.chip;
    const auto folder = resolvedPath(place);
    if (folder.empty())
        return;
    const auto device = deviceOfChip(folder);
    chip.folder = folder;
    if (!takeInputs(entry)) {
        entry.mayHaveFilesAtDevice = true;
        chip.folder = folder + "/device";
        if (!takeInputs(entry))
            return;
    }
    chip.name = textOf(folder + "/name");
    if (chip.name.empty())
        chip.name = textOf(folder + "/device/name");
    const auto root = resolvedPath(m_root.path("/"));
    chip.identity = withoutRunningNumbers(
        (root.size() > 1 && device.starts_with(root) ? device.substr(root.size()) : device) + '#' +
        chip.name);
    chip.runtimeStatus = runtimeStatusFiles(device, resolvedPath(m_root.path("/sys/devices")));
    chip.rotatingDiskStat = rotatingDiskStat(device);
}

/// @return whether there are any
bool HwmonListing::takeInputs(Entry &entry) const
{
    HwmonChip &chip = entry.chip;
    const auto files = filesOf(chip.folder);
    chip.temperatures = temperaturesOf(files);
    chip.fans = fansOf(files);
    for (auto &input : chip.temperatures) {
        if (files.temperatures.at(input.number).contains("label"))
            input.label = textOf(chip.temperatureFile(input.number, "label"));
    }
    entry.isCut = files.temperatures.size() > kMostInputs || files.fans.size() > kMostInputs;
    return !chip.temperatures.empty() || !chip.fans.empty();
}

void HwmonListing::gatherChips()
{
    m_chips.clear();
    std::unordered_map<std::string, int> identities;
    for (const auto &entry : m_entries) {
        if (entry.chip.temperatures.empty() && entry.chip.fans.empty())
            continue;
        m_chips.push_back(entry.chip);
        if (const int count = ++identities[entry.chip.identity]; count > 1)
            m_chips.back().identity += '#' + std::to_string(count);
    }
}

} // namespace pulsebar
