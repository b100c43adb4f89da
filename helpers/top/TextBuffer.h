#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pulsebar::top {

/// Builds text without locale: a decimal point is always ".".
class TextBuffer
{
public:
    void clear() { m_text.clear(); }
    const std::string &text() const { return m_text; }
    std::size_t size() const { return m_text.size(); }

    TextBuffer &add(std::string_view text);
    TextBuffer &add(std::uint64_t number);
    /// A number of tenths or hundredths, e.g. decimal(352, 2) is "3.52".
    TextBuffer &decimal(std::uint64_t scaled, unsigned decimals);
    /// A number with at least that many digits, filled with zeros.
    TextBuffer &padded(std::uint64_t number, unsigned digits);
    /// Blanks until `width` characters (UTF-8 sequences) stand after `start`, at least one.
    TextBuffer &padTo(std::size_t start, unsigned width);
    /// Takes blanks off the end.
    void trimEnd();
    void removeLast() { m_text.pop_back(); }

private:
    std::string m_text;
};

} // namespace pulsebar::top
