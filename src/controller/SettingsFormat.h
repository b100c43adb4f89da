#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QStringView>

/// The settings file: INI text in the grammar of QSettings, for people to read and edit.
///
/// It differs from QSettings' own format in what it refuses. Nothing in the file is ever decoded
/// into a typed object (`@Variant(...)` is text like any other), a line never runs past its end
/// (so a quote left open costs one value, not the rest of the file), and the size is bounded.
/// Values come back as text, or as a list of texts where an unquoted comma stood.
namespace pulsebar::settingsformat {

/// Bytes of a settings file that are looked at. What stands behind them is ignored.
inline constexpr qint64 kMaxFileSize = 1 << 20;

/// What was found in a file.
struct Parsed
{
    QSettings::SettingsMap values; ///< QString or QStringList by key; "group/key" outside [General]
    int droppedLines = 0;          ///< lines that are neither a comment, a group nor a setting
};

/// Reads INI text. Accepts any bytes: bytes that are not UTF-8 become U+FFFD. A key that appears
/// twice has its last value.
Parsed parse(const QByteArray &bytes);

/// Writes `values` in a form that parse() reads back. Booleans are `true`/`false`, floating-point
/// numbers plain decimal, lists comma-separated. An empty list has no line at all.
QByteArray write(const QSettings::SettingsMap &values);

/// A key of any characters as it stands in the file: ASCII letters, digits, `_` and `-` literally,
/// every other byte of its UTF-8 text as `%XX`.
QString encodedKey(QStringView key);

/// The key that encodedKey() wrote.
QString decodedKey(QStringView encoded);

/// The format's number for QSettings, registered on the first call.
QSettings::Format format();

} // namespace pulsebar::settingsformat
