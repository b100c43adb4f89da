#include "platform/linux_/BlockDevices.h"

#include "platform/linux_/low/SmallFile.h"

#include <algorithm>
#include <dirent.h>
#include <memory>
#include <unistd.h>
#include <utility>

namespace pulsebar {

BlockDevices::BlockDevices(const Sysroot &root)
    : m_folder(root.path("/sys/block/"))
{
}

std::string BlockDevices::of(const std::string &name, const char *file) const
{
    return m_folder + name + '/' + file;
}

std::optional<std::vector<std::string>> BlockDevices::entries() const
{
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir(m_folder.c_str()), &::closedir);
    if (!folder)
        return std::nullopt;
    std::vector<std::string> names;
    while (const dirent *entry = ::readdir(folder.get())) {
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool BlockDevices::isDisk(const std::string &name) const
{
    if (::access(of(name, "device").c_str(), F_OK) != 0)
        return false;
    const auto hidden = readWholeFile(of(name, "hidden"), 8);
    return !hidden || !hidden->starts_with('1');
}

std::optional<std::vector<std::string>> BlockDevices::list()
{
    auto names = entries();
    if (!names)
        return std::nullopt;
    if (*names == m_entries)
        return m_disks;
    std::vector<std::string> disks;
    for (const auto &name : *names) {
        const bool known = std::binary_search(m_entries.begin(), m_entries.end(), name);
        if (known ? std::binary_search(m_disks.begin(), m_disks.end(), name) : isDisk(name))
            disks.push_back(name);
    }
    m_entries = std::move(*names);
    m_disks = std::move(disks);
    return m_disks;
}

} // namespace pulsebar
