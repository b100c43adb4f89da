#pragma once

#include "graph/GraphSettingStore.h"

#include <QSet>

namespace pulsebar {

class Settings;

/// What graph windows keep, as entries of the settings file.
class GraphSettings : public GraphSettingStore
{
public:
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
    Settings &m_settings;
    QSet<QString> m_reported;
};

} // namespace pulsebar
