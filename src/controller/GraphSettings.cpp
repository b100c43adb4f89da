#include "controller/GraphSettings.h"

#include "controller/Settings.h"

namespace pulsebar {

std::optional<QString> GraphSettings::graphSetting(const QString &key)
{
    return m_settings.text(key);
}

void GraphSettings::setGraphSetting(const QString &key, const QString &text)
{
    m_settings.setText(key, text);
}

void GraphSettings::flush()
{
    m_settings.synchronize();
}

void GraphSettings::reportMalformed(const QString &key)
{
    if (m_reported.contains(key))
        return;
    m_reported.insert(key);
    m_settings.reportMalformed(key);
}

} // namespace pulsebar
