#include "platform/linux_/low/Scan.h"

#include <charconv>
#include <system_error>

namespace pulsebar {

namespace {

template <typename Number> std::optional<Number> takeNumber(std::string_view &rest)
{
    Number value{};
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    if (error != std::errc())
        return std::nullopt;
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    return value;
}

} // namespace

void Scan::skipBlanks()
{
    const auto start = m_rest.find_first_not_of(" \t");
    m_rest.remove_prefix(start == std::string_view::npos ? m_rest.size() : start);
}

std::optional<std::string_view> Scan::line()
{
    if (m_rest.empty())
        return std::nullopt;
    const auto newline = m_rest.find('\n');
    const auto text = m_rest.substr(0, newline);
    m_rest.remove_prefix(newline == std::string_view::npos ? m_rest.size() : newline + 1);
    return text;
}

std::optional<std::string_view> Scan::word()
{
    skipBlanks();
    if (m_rest.empty())
        return std::nullopt;
    const auto text = m_rest.substr(0, m_rest.find_first_of(" \t"));
    m_rest.remove_prefix(text.size());
    return text;
}

std::optional<std::uint64_t> Scan::number()
{
    skipBlanks();
    return takeNumber<std::uint64_t>(m_rest);
}

std::optional<std::int64_t> Scan::signedNumber()
{
    skipBlanks();
    return takeNumber<std::int64_t>(m_rest);
}

bool Scan::skipWords(int count)
{
    for (int i = 0; i < count; ++i) {
        if (!word())
            return false;
    }
    return true;
}

} // namespace pulsebar
