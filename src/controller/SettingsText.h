#pragma once

#include <QString>
#include <QVariant>

#include <optional>

/// Values of the settings file: the text behind `key=`, and back.
namespace pulsebar::settingsformat {

/// Reads the text behind the `=`: quotes, backslash escapes and commas as QSettings writes them,
/// and an unquoted `;` ends the value, as there: what follows is a remark. A JSON object or
/// array written without quotes around it and escapes inside is one text, as it stands.
/// @return a QString, or a QStringList where an unquoted comma stands
QVariant valueFromText(const QString &text);

/// @return the text of a boolean, number, string or list of these; absent for an empty list and
///         for a type that the file does not hold
std::optional<QString> textFromValue(const QVariant &value);

} // namespace pulsebar::settingsformat
