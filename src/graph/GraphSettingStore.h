#pragma once

#include <QString>

#include <optional>

namespace pulsebar {

/// Where graph windows keep what outlives the program: texts by key. A key may hold any character.
class GraphSettingStore
{
public:
    virtual ~GraphSettingStore() = default;

    /// Absent when nothing is stored under the key.
    virtual std::optional<QString> graphSetting(const QString &key) = 0;
    virtual void setGraphSetting(const QString &key, const QString &text) = 0;
    /// Puts every change on the disk.
    virtual void flush() = 0;
    /// Says in the log that a key's text is of no use.
    virtual void reportMalformed(const QString &key) = 0;
};

} // namespace pulsebar
