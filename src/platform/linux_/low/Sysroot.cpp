#include "platform/linux_/low/Sysroot.h"

#include <cstdlib>
#include <utility>

namespace pulsebar {

Sysroot::Sysroot(std::string folder)
    : m_folder(std::move(folder))
{
    while (m_folder.ends_with('/'))
        m_folder.pop_back();
}

Sysroot Sysroot::fromEnvironment()
{
    // A program that has more rights than its caller writes nowhere the caller says.
    const char *folder = ::secure_getenv("PULSEBAR_SYSROOT");
    return Sysroot(folder ? folder : "");
}

std::string Sysroot::path(std::string_view absolute) const
{
    std::string place = m_folder;
    place.append(absolute);
    return place;
}

} // namespace pulsebar
