#pragma once

#include <QString>
#include <QStringList>
#include <QVariantList>

#include <optional>

namespace pulsebar::cli {

/// How far back `culprits` looks: `--since SECONDS`, `--since=SECONDS`, or all that is kept.
/// @return absent for any other arguments
std::optional<quint32> secondsFromArguments(const QStringList &arguments);

/// One line per sample, as "14:03:12 92.1%: cc1plus, Web Content", local time. A control character
/// in a name becomes U+FFFD, so that a line is a sample; each name is there once.
/// @param samples of the method `culprits`, each [time, total, [[name, number, fraction]…]]; others
///        are left out
QString linesOfCulprits(const QVariantList &samples);

} // namespace pulsebar::cli
