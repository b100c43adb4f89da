#include "top/Options.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace pulsebar::top {

namespace {

constexpr long longestInterval = 86400;

std::optional<long> wholeNumber(std::string_view text)
{
    long value = 0;
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
        result.options.columns = *parseColumnList("pid,command,cpu,time,threads,user,power");
    }

    void readAll()
    {
        while (result.error.empty() && m_next < m_arguments.size())
            readOne(m_arguments[m_next++]);
    }

    ParsedOptions result;

private:
    void readOne(const std::string &name)
    {
        auto &options = result.options;
        if (name == "-u")
            options.sortKey = SortKey::Cpu;
        else if (name == "--help")
            options.help = true;
        else if (name == "--version")
            options.version = true;
        else if (name == "-l" || name == "-n" || name == "-s")
            readNumber(name);
        else if (name == "-o")
            readSortKey();
        else if (name == "-stats")
            readColumns();
        else if (name != "-R")
            result.error = "unknown option " + name;
    }

    std::optional<std::string> value(const std::string &name)
    {
        if (m_next < m_arguments.size())
            return m_arguments[m_next++];
        result.error = name + " wants a value";
        return std::nullopt;
    }

    void readNumber(const std::string &name)
    {
        const auto text = value(name);
        if (!text)
            return;
        const auto number = wholeNumber(*text);
        const bool fits = number && (name == "-n" || (name == "-l" && *number >= 0) ||
                                     (name == "-s" && *number >= 1 && *number <= longestInterval));
        if (!fits) {
            result.error = name + " cannot be " + *text;
            return;
        }
        const auto positive = static_cast<unsigned long>(*number < 0 ? 0 : *number);
        if (name == "-l")
            result.options.reports = positive;
        else if (name == "-n")
            result.options.rows = positive;
        else
            result.options.interval = positive;
    }

    void readSortKey()
    {
        const auto key = value("-o");
        if (!key)
            return;
        if (*key == "rsize")
            result.options.sortKey = SortKey::Memory;
        else if (*key == "cpu")
            result.options.sortKey = SortKey::Cpu;
        else
            result.error = "cannot sort by " + *key;
    }

    void readColumns()
    {
        const auto list = value("-stats");
        if (!list)
            return;
        const auto columns = parseColumnList(*list);
        if (columns)
            result.options.columns = *columns;
        else
            result.error = "unknown column in " + *list;
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
    return "usage: pulsebar-top [-l N] [-u] [-n N] [-s N] [-o rsize] [-R] [-stats LIST]";
}

} // namespace pulsebar::top
