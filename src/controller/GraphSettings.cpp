#include "controller/GraphSettings.h"

#include "controller/Settings.h"

namespace pulsebar {

namespace {

/// The key that is missed least. With a number of a process in it, it names one that has ended or
/// will; else the last, as the machine's own series have names that begin with capital letters.
QString leastOf(const QStringList &keys)
{
    for (const QString &key : keys) {
        if (key.contains(QLatin1String("//")))
            return key;
    }
    return keys.constLast();
}

} // namespace

std::optional<QString> GraphSettings::graphSetting(const QString &key)
{
    return m_settings.text(key);
}

void GraphSettings::makeRoom(const QString &key)
{
    if (m_settings.hasText(key))
        return;
    const QStringList keys = m_settings.textKeys(key.section(u'_', 0, 0) + u'_');
    if (keys.size() >= kMostOfAKind)
        m_settings.removeText(leastOf(keys));
}

void GraphSettings::setGraphSetting(const QString &key, const QString &text)
{
    makeRoom(key);
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
