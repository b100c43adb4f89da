#pragma once

#include <QString>

namespace pulsebar {

/// A test's text from its UTF-8.
inline QString s(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace pulsebar
