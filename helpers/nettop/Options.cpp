#include "nettop/Options.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace pulsebar::nettop {

namespace {

constexpr unsigned long longestInterval = 86400;

std::optional<unsigned long> wholeNumber(std::string_view text)
{
    unsigned long value = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

/// Takes the arguments one after the other; the first that is not understood ends it.
class ArgumentReader
{
public:
    explicit ArgumentReader(const std::vector<std::string> &arguments)
        : m_arguments(arguments)
    {
    }

    void readAll()
    {
        while (result.error.empty() && m_next < m_arguments.size())
            readOne(m_arguments[m_next++]);
    }

    ParsedOptions result;

private:
    void readOne(const std::string &argument)
    {
        const auto name = argument.substr(0, 2);
        if (argument == "--help")
            result.options.help = true;
        else if (argument == "--version")
            result.options.version = true;
        else if (name == "-L" || name == "-s" || name == "-m")
            readValue(name, argument.substr(2));
        else if (argument != "-c")
            result.error = "unknown option " + argument;
    }

    void readValue(const std::string &name, std::string value)
    {
        if (value.empty()) {
            if (m_next == m_arguments.size()) {
                result.error = name + " wants a value";
                return;
            }
            value = m_arguments[m_next++];
        }
        if (!take(name, value))
            result.error = name + " cannot be " + value;
    }

    bool take(const std::string &name, const std::string &value)
    {
        if (name == "-m")
            return value == "tcp";
        const auto number = wholeNumber(value);
        if (!number || (name == "-s" && (*number == 0 || *number > longestInterval)))
            return false;
        (name == "-L" ? result.options.reports : result.options.interval) = *number;
        return true;
    }

    const std::vector<std::string> &m_arguments;
    std::size_t m_next = 0;
};

} // namespace

ParsedOptions parseOptions(const std::vector<std::string> &arguments)
{
    ArgumentReader reader(arguments);
    reader.readAll();
    return std::move(reader.result);
}

std::string usageLine()
{
    return "usage: pulsebar-nettop [-L N] [-s N] [-m tcp] [-c]";
}

} // namespace pulsebar::nettop
