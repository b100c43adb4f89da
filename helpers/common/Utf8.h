#pragma once

#include <string>
#include <string_view>

namespace pulsebar {

constexpr char32_t replacementCharacter = 0xFFFD;

/// Takes characters from bytes that should be UTF-8. Each byte that is not part of a valid
/// sequence (cut short, overlong, a surrogate, beyond U+10FFFF) is one U+FFFD.
class Utf8Reader
{
public:
    explicit Utf8Reader(std::string_view bytes)
        : m_rest(bytes)
    {
    }
    bool atEnd() const { return m_rest.empty(); }
    /// Only when not at the end.
    char32_t next();

private:
    std::string_view m_rest;
};

/// Appends a Unicode scalar value.
void appendUtf8(std::string &bytes, char32_t c);

} // namespace pulsebar
