#include "platform/linux_/low/proc_loadavg.h"

#include "platform/linux_/low/Scan.h"

#include <limits>

namespace pulsebar {

namespace {

/// "12.34" and nothing else: the text is passed on as it stands.
bool isPlainDecimal(std::string_view word)
{
    return word.size() <= 16 && word.find_first_not_of("0123456789.") == std::string_view::npos &&
           word.find('.') == word.rfind('.');
}

} // namespace

std::optional<LoadAverage> parseLoadAverage(std::string_view text)
{
    Scan lines(text);
    Scan scan(lines.line().value_or(std::string_view()));
    const auto one = scan.word();
    const auto five = scan.word();
    const auto fifteen = scan.word();
    if (!one || !five || !fifteen || !isPlainDecimal(*one) || !isPlainDecimal(*five) ||
        !isPlainDecimal(*fifteen) || !scan.skipWords(1))
        return std::nullopt;
    const auto last = scan.number();
    if (!last || *last > static_cast<std::uint64_t>(std::numeric_limits<int>::max()))
        return std::nullopt;
    return LoadAverage{*one, *five, *fifteen, static_cast<int>(*last)};
}

} // namespace pulsebar
