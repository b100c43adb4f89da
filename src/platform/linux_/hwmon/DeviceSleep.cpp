#include "platform/linux_/hwmon/DeviceSleep.h"

#include <algorithm>

namespace pulsebar {

RuntimeStatus parseRuntimeStatus(std::string_view text)
{
    const auto word = text.substr(0, text.find('\n'));
    if (word == "suspended" || word == "suspending")
        return RuntimeStatus::Asleep;
    if (word == "active" || word == "resuming")
        return RuntimeStatus::Awake;
    return RuntimeStatus::NoWord;
}

void DeviceSleep::beginRound()
{
    ++m_round;
}

void DeviceSleep::beginListing()
{
    // What nobody asked for since the last listing belongs to a chip that is gone, or to what a
    // device with a word hangs on.
    std::erase_if(m_files,
                  [this](const auto &entry) { return entry.second.askedFor != m_listing; });
    ++m_listing;
}

bool DeviceSleep::isAsleep(const std::vector<std::string> &files)
{
    for (const auto &path : files) {
        const auto status = statusOf(path);
        if (status != RuntimeStatus::NoWord)
            return status == RuntimeStatus::Asleep;
    }
    return false;
}

RuntimeStatus DeviceSleep::statusOf(const std::string &path)
{
    StatusFile &status = m_files.try_emplace(path, path).first->second;
    status.askedFor = m_listing;
    if (status.round == m_round || status.listing == m_listing)
        return status.status;
    const auto text = status.file.read();
    status.status = text ? parseRuntimeStatus(*text) : RuntimeStatus::NoWord;
    status.round = m_round;
    status.listing = status.status == RuntimeStatus::NoWord ? m_listing : 0;
    return status.status;
}

} // namespace pulsebar
