#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace pulsebar {

/// Walks over the text of a kernel file. Never reads outside the text; what is not there is absent.
class Scan
{
public:
    explicit Scan(std::string_view text)
        : m_rest(text)
    {
    }

    bool atEnd() const { return m_rest.empty(); }
    std::string_view rest() const { return m_rest; }

    /// The text up to the next newline (which is taken, too); absent at the end.
    std::optional<std::string_view> line();
    /// The next run of characters without blanks and tabs; absent when only blanks are left.
    std::optional<std::string_view> word();
    /// The next word as an unsigned decimal number. Absent, with the word left in place, when it
    /// does not begin with a digit or does not fit; what follows the digits stays in the text.
    std::optional<std::uint64_t> number();
    /// As number(), with an optional minus sign.
    std::optional<std::int64_t> signedNumber();
    /// Skips that many words; false when there were fewer.
    bool skipWords(int count);

private:
    void skipBlanks();

    std::string_view m_rest;
};

/// What a parser of one line, `std::optional<Record>(std::string_view)`, makes of each line of a
/// text; lines of which it makes nothing are left out.
template <typename Record, typename ParseLine>
std::vector<Record> parseEachLine(std::string_view text, ParseLine parseLine)
{
    std::vector<Record> list;
    Scan lines(text);
    while (const auto line = lines.line()) {
        if (const auto parsed = parseLine(*line))
            list.push_back(*parsed);
    }
    return list;
}

} // namespace pulsebar
