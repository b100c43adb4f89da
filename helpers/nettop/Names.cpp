#include "nettop/Names.h"

#include "common/ProcessName.h"

namespace pulsebar::nettop {

namespace {

std::string withoutCommas(std::string_view text)
{
    constexpr std::string_view likeAComma = "\u201A";
    std::string field;
    for (const char c : text) {
        if (c == ',')
            field += likeAComma;
        else
            field += c;
    }
    return field;
}

std::string unlikeAConnection(std::string field)
{
    if (!field.starts_with("tcp"))
        return field;
    return "\u2018" + field + "\u2019";
}

} // namespace

std::string fieldForProcess(std::string_view comm, std::string_view commandLine)
{
    return unlikeAConnection(withoutCommas(nameForRow(completeName(comm, commandLine))));
}

std::string fieldForUser(std::string_view userName)
{
    return unlikeAConnection(withoutCommas(wordForRow(userName))) + ": other processes";
}

} // namespace pulsebar::nettop
