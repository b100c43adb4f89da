#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

namespace pulsebar {

/// Names of users, asked for once each.
class UserNames
{
public:
    /// `passwdPath`: the local list of users, which is looked at first; who is not there is asked
    /// for through the system's name services (whose libraries are only then loaded).
    explicit UserNames(std::string passwdPath = "/etc/passwd");

    /// The name as one word for a report's row; the number when nobody knows a name.
    const std::string &nameOf(std::uint32_t uid);

private:
    std::string lookUp(std::uint32_t uid) const;

    std::string m_passwdPath;
    std::unordered_map<std::uint32_t, std::string> m_names;
};

/// The name of a user in a text in the form of passwd(5); empty when it is not there.
std::string findInPasswd(std::string_view text, std::uint32_t uid);

} // namespace pulsebar
