#pragma once

#include <QString>
#include <QStringList>
#include <QVariantList>

#include <optional>

/// The list of alerts as the text of a JSON array, as it stands in the settings file.
namespace pulsebar::alertlist {

inline constexpr int kMostAlerts = 64;
/// Longest JSON text of one entry, in UTF-8 bytes, whatever its keys.
inline constexpr int kLongestEntry = 4096;
/// Most lists and dictionaries within each other, the entry counted. The bus lets a message have 64
/// levels, of which each of these takes up to three, and ends the connection of who sends more.
inline constexpr int kDeepestEntry = 16;

/// The entries of use, and why the others are not.
struct SoundEntries
{
    QVariantList entries;
    /// For the log: one per entry that was left out, and one for all behind the 64th.
    QStringList problems;
};

/// Sorts out broken entries (see alertRuleFromEntry()), those that are too long, and all behind the
/// 64th of use or the 64th of no use.
SoundEntries soundEntries(const QVariantList &entries);

/// Reads the array; absent when the text is none.
std::optional<QVariantList> entriesFromText(const QString &text);

/// What JSON can hold of the entries: texts, numbers, booleans, lists and dictionaries, be they the
/// program's own or the bus's.
QString textFromEntries(const QVariantList &entries);

} // namespace pulsebar::alertlist
