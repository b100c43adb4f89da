#pragma once

#include <QString>

#include <optional>

namespace pulsebar {

/// A text that may be absent. Absent is not the same as empty: every cut of an absent text is
/// absent, so that chains of cuts fall through without checks in between.
using Text = std::optional<QString>;

/// The text before the first occurrence of `separator`; the search ignores case.
/// Absent when the separator is empty, is not found, or stands at the very beginning.
Text substringTo(const Text &text, const QString &separator);

/// The text after the first occurrence of `separator`; the search ignores case.
/// Absent when the separator is empty, is not found, or ends the text.
Text substringFrom(const Text &text, const QString &separator);

/// The text strictly between the first `start` and the first `end` after it, ignoring case.
/// Absent when either marker is absent, empty or not found, or when nothing stands between them.
Text substringFromTo(const Text &text, const Text &start, const Text &end);

/// The text without any occurrence of `piece`; the search is exact.
Text removeString(const Text &text, const QString &piece);
QString removeString(const QString &text, const QString &piece);

/// The text with every occurrence of `oldPiece` replaced; the search is exact. An absent or empty
/// old piece leaves the text as it is.
Text replaceStringFromTo(const Text &text, const Text &oldPiece, const QString &newPiece);
QString replaceStringFromTo(const QString &text, const Text &oldPiece, const QString &newPiece);

/// The text with the line ends "\r\n" and "\r" turned into "\n".
Text replaceReturnCode(const Text &text);
QString replaceReturnCode(const QString &text);

} // namespace pulsebar
