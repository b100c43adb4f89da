#include "platform/linux_/low/process_origin.h"

#include "platform/linux_/low/Scan.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace pulsebar {

namespace {

/// systemd writes bytes that a unit's name may not hold as \xNN.
std::string unescapedUnit(std::string_view name)
{
    std::string text;
    while (!name.empty()) {
        unsigned byte = 0;
        const char *digits = name.data() + 2;
        if (name.size() >= 4 && name.starts_with("\\x") &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            text += static_cast<char>(byte);
            name.remove_prefix(4);
        } else {
            text += name[0];
            name.remove_prefix(1);
        }
    }
    return text;
}

std::vector<std::string> idsOfSnap(std::string_view unit)
{
    const auto application = unit.find('.');
    if (application == std::string_view::npos)
        return {};
    const auto name = unit.substr(0, application);
    auto program = unit.substr(application + 1);
    program = program.substr(0, program.find('.'));
    // Older ones append a number to the name, after a dash.
    std::vector<std::string> ids{std::string(name) + '_' + std::string(program)};
    if (const auto dash = program.find('-'); dash != std::string_view::npos)
        ids.push_back(std::string(name) + '_' + std::string(program.substr(0, dash)));
    return ids;
}

std::vector<std::string> idsOfApplication(std::string_view unit)
{
    auto name = unit.substr(0, unit.find('@'));
    if (name.size() == unit.size())
        name = name.substr(0, name.rfind('-'));
    if (name.empty())
        return {};
    std::vector<std::string> ids;
    // A dash within the identifier is escaped, so what stands before a dash is the launcher. Some
    // launchers do not escape: then the whole is the identifier.
    const auto launcher = name.find('-');
    if (launcher != std::string_view::npos && launcher + 1 < name.size())
        ids.push_back(unescapedUnit(name.substr(launcher + 1)));
    ids.push_back(unescapedUnit(name));
    return ids;
}

std::vector<std::string> idsOfUnit(std::string_view unit)
{
    const auto suffix = unit.rfind('.');
    if (suffix == std::string_view::npos)
        return {};
    const auto name = unit.substr(0, suffix);
    const auto kind = unit.substr(suffix);
    if (kind != ".scope" && kind != ".service")
        return {};
    if (name.starts_with("snap."))
        return idsOfSnap(name.substr(5));
    if (name.starts_with("app-"))
        return idsOfApplication(name.substr(4));
    return {};
}

} // namespace

bool isInterpreter(std::string_view program)
{
    constexpr std::array<std::string_view, 11> names{
        "python", "perl", "ruby", "node", "gjs", "bash", "sh", "dash", "java", "mono", "lua"};
    // With or without a version: python3.11.
    const auto bare = program.substr(0, program.find_last_not_of("0123456789.-") + 1);
    return std::find(names.begin(), names.end(), bare) != names.end();
}

std::string_view baseName(std::string_view path)
{
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::vector<std::string> desktopIdsOfCgroup(std::string_view cgroup)
{
    Scan scan(cgroup);
    while (const auto line = scan.line()) {
        // An application may have made groups below its own: the innermost that names one counts.
        auto path = *line;
        for (auto slash = path.rfind('/'); slash != std::string_view::npos;
             slash = path.rfind('/')) {
            auto ids = idsOfUnit(path.substr(slash + 1));
            if (!ids.empty())
                return ids;
            path = path.substr(0, slash);
        }
    }
    return {};
}

std::vector<std::string> programsOfCommandLine(std::string_view cmdline)
{
    std::vector<std::string> programs;
    bool first = true;
    while (!cmdline.empty() && programs.size() < 2) {
        const auto word = cmdline.substr(0, cmdline.find('\0'));
        cmdline.remove_prefix(std::min(word.size() + 1, cmdline.size()));
        if (first ? !word.empty() : !word.starts_with('-') && !word.empty())
            programs.emplace_back(word);
        if (first && (word.empty() || !isInterpreter(baseName(word))))
            break;
        first = false;
    }
    return programs;
}

} // namespace pulsebar
