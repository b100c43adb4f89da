#include "smc/Options.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace pulsebar::smc {

namespace {

constexpr std::size_t KeyLength = 4;
constexpr std::size_t MostDigits = 64;

bool isPrintable(char c)
{
    return c >= ' ' && c <= '~';
}

bool isHexDigit(char c)
{
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

class Parser
{
public:
    explicit Parser(const std::vector<std::string> &arguments)
        : m_arguments(arguments)
    {
    }

    ParsedOptions parse()
    {
        while (m_error.empty() && m_at < m_arguments.size())
            take(m_arguments[m_at++]);
        if (m_error.empty())
            checkWhole();
        if (m_action)
            m_options.action = *m_action;
        return {m_options, m_error};
    }

private:
    void take(const std::string &argument)
    {
        if (argument == "-h" || argument == "--help")
            choose(Action::Help);
        else if (argument == "-v" || argument == "--version")
            choose(Action::Version);
        else if (argument == "-l")
            choose(Action::ListKeys);
        else if (argument == "-f")
            choose(Action::ShowFans);
        else if (argument == "-r")
            choose(Action::ReadKey);
        else if (argument.starts_with("-k"))
            takeKey(valueOf(argument));
        else if (argument.starts_with("-w"))
            takeValue(valueOf(argument));
        else
            m_error = "unknown option " + argument;
    }

    void choose(Action action)
    {
        if (m_action && *m_action != action)
            m_error = "only one of -f, -h, -l, -r, -v and -w at a time";
        m_action = action;
    }

    std::optional<std::string> valueOf(const std::string &argument)
    {
        if (argument.size() > 2)
            return argument.substr(2);
        if (m_at == m_arguments.size()) {
            m_error = argument + " needs a value";
            return std::nullopt;
        }
        return m_arguments[m_at++];
    }

    void takeKey(const std::optional<std::string> &key)
    {
        if (!key)
            return;
        m_options.key = *key;
        if (key->empty() || key->size() > KeyLength ||
            !std::all_of(key->begin(), key->end(), isPrintable))
            m_error = "a key has up to four printable characters";
        m_options.key.resize(KeyLength, ' ');
    }

    void takeValue(const std::optional<std::string> &value)
    {
        if (!value)
            return;
        m_options.value = *value;
        if (value->empty() || value->size() % 2 != 0 || value->size() > MostDigits ||
            !std::all_of(value->begin(), value->end(), isHexDigit))
            m_error = "a value is 1 to 32 pairs of hexadecimal digits";
        else
            choose(Action::WriteKey);
    }

    void checkWhole()
    {
        const bool needsKey = m_action == Action::ReadKey || m_action == Action::WriteKey;
        if (!m_action)
            m_error = m_options.key.empty() ? "what shall be done?" : "-k goes with -r or -w";
        else if (needsKey && m_options.key.empty())
            m_error = "which key? (-k)";
    }

    const std::vector<std::string> &m_arguments;
    std::size_t m_at = 0;
    Options m_options;
    std::optional<Action> m_action;
    std::string m_error;
};

} // namespace

ParsedOptions parseOptions(const std::vector<std::string> &arguments)
{
    return Parser(arguments).parse();
}

} // namespace pulsebar::smc
