#pragma once

#include <QByteArray>

namespace pulsebar {

bool isBinaryPropertyList(const QByteArray &bytes);

/// Whether a binary property list, written out in full, has at most so many nodes and so many
/// levels. Its containers name their parts by number, and any number of times: thirty small arrays
/// can stand for more than a computer can hold. False also for one that is damaged.
bool isTameBinaryPropertyList(const QByteArray &bytes, int deepest, qsizetype mostNodes);

} // namespace pulsebar
