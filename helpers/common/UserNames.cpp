#include "common/UserNames.h"

#include "common/ProcessName.h"
#include "platform/linux_/low/Scan.h"
#include "platform/linux_/low/SmallFile.h"

#include <charconv>
#include <pwd.h>
#include <string_view>
#include <utility>
#include <vector>

namespace pulsebar {

namespace {

std::string askNameServices(std::uint32_t uid)
{
    constexpr std::size_t largestRecord = 1U << 20U;
    passwd record{};
    passwd *found = nullptr;
    std::vector<char> space(1024);
    while (::getpwuid_r(uid, &record, space.data(), space.size(), &found) == ERANGE &&
           space.size() < largestRecord)
        space.resize(space.size() * 2);
    return found && found->pw_name ? found->pw_name : "";
}

} // namespace

UserNames::UserNames(std::string passwdPath)
    : m_passwdPath(std::move(passwdPath))
{
}

std::string findInPasswd(std::string_view text, std::uint32_t uid)
{
    Scan lines(text);
    while (const auto line = lines.line()) {
        const auto nameEnd = line->find(':');
        const auto passwordEnd = line->find(':', nameEnd + 1);
        if (nameEnd == std::string_view::npos || nameEnd == 0 ||
            passwordEnd == std::string_view::npos)
            continue;
        std::uint32_t number = 0;
        const char *end = line->data() + line->size();
        const auto [stop, error] = std::from_chars(line->data() + passwordEnd + 1, end, number);
        if (error == std::errc() && stop != end && *stop == ':' && number == uid)
            return std::string(line->substr(0, nameEnd));
    }
    return {};
}

std::string UserNames::lookUp(std::uint32_t uid) const
{
    auto name = findInPasswd(readWholeFile(m_passwdPath).value_or(std::string()), uid);
    if (name.empty())
        name = askNameServices(uid);
    return name.empty() ? std::to_string(uid) : wordForRow(name);
}

const std::string &UserNames::nameOf(std::uint32_t uid)
{
    constexpr std::size_t most = 4096;
    const auto known = m_names.find(uid);
    if (known != m_names.end())
        return known->second;
    if (m_names.size() >= most)
        m_names.clear();
    return m_names.emplace(uid, lookUp(uid)).first->second;
}

} // namespace pulsebar
