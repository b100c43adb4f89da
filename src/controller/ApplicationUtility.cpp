#include "controller/ApplicationUtility.h"

#include "controller/Settings.h"
#include "platform/SystemFacts.h"
#include "platform/UrlOpener.h"

#include <QFileInfo>
#include <QLoggingCategory>

#include <algorithm>
#include <limits>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(lcManual, "pulsebar.manual")

QString withoutPoints(QString version)
{
    return version.remove(u'.');
}

} // namespace

int applicationVersionNumber(const QString &bundleVersion, const QString &shortVersion)
{
    static constexpr int kLength = 3;
    QString digits = withoutPoints(bundleVersion);
    if (digits.isEmpty())
        digits = withoutPoints(shortVersion);
    for (int added = 0; added < 2 && digits.size() < kLength; ++added)
        digits += u'0';
    return digits.toInt();
}

int numOfProcessorCores(const SystemFacts &facts)
{
    const std::optional<std::int64_t> cores = facts.numberByName("hw.physicalcpu");
    return cores && *cores > 0 && *cores <= std::numeric_limits<int>::max()
               ? static_cast<int>(*cores)
               : 1;
}

ApplicationUtility::ApplicationUtility(UrlOpener *opener, QStringList manuals)
    : m_opener(opener)
    , m_manuals(std::move(manuals))
{
}

void ApplicationUtility::openURL(const QUrl &url)
{
    if (m_opener != nullptr && url.isValid() && !url.isRelative())
        m_opener->open(url);
}

void ApplicationUtility::openURL(const QString &text)
{
    // All that a URL may consist of, apart from the letters and digits that are never escaped.
    const QByteArray escaped =
        QUrl::toPercentEncoding(text, QByteArrayLiteral(":/?#[]@!$&'()*+,;="));
    openURL(QUrl::fromEncoded(escaped, QUrl::StrictMode));
}

void ApplicationUtility::showManual()
{
    const auto manual =
        std::find_if(m_manuals.cbegin(), m_manuals.cend(),
                     [](const QString &place) { return QFileInfo(place).isFile(); });
    if (manual == m_manuals.cend()) {
        qCWarning(lcManual, "The manual is not installed.");
        return;
    }
    openURL(QUrl::fromLocalFile(*manual));
}

void ApplicationUtility::showManualIfItIsFirstLaunch(Settings &settings)
{
    if (settings.value(preferences::kNotFirstLaunch))
        return;
    showManual();
    settings.setValue(preferences::kNotFirstLaunch, true);
    settings.synchronize();
}

} // namespace pulsebar
