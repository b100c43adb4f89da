#pragma once

#include "graph/GraphSettingStore.h"

#include <QSet>

namespace pulsebar {

class Settings;

/// What graph windows keep, as entries of the settings file. Every process that ever had a graph
/// leaves some, so that some are forgotten before the file grows too large to be read.
class GraphSettings : public GraphSettingStore
{
public:
    /// So many entries of a kind are kept; the kind is what stands before the key's first '_'.
    static constexpr qsizetype kMostOfAKind = 512;

    /// The settings must outlive it.
    explicit GraphSettings(Settings &settings)
        : m_settings(settings)
    {
    }

    std::optional<QString> graphSetting(const QString &key) override;
    void setGraphSetting(const QString &key, const QString &text) override;
    void flush() override;
    /// Once for each key.
    void reportMalformed(const QString &key) override;

private:
    void makeRoom(const QString &key);

    Settings &m_settings;
    QSet<QString> m_reported;
};

} // namespace pulsebar
