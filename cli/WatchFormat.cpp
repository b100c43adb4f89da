#include "WatchFormat.h"

#include "JsonText.h"

namespace pulsebar::cli {

namespace {

class PlainFormat : public WatchFormat
{
public:
    QString line(const WatchSample &sample) override { return sample.title; }
};

class JsonFormat : public WatchFormat
{
public:
    QString line(const WatchSample &sample) override
    {
        return QStringLiteral("{\"title\":%1,\"time\":%2}")
            .arg(jsonString(sample.title), QString::number(sample.time));
    }
};

/// A custom module of Waybar with "return-type": "json". Waybar reads the texts as Pango markup.
class WaybarFormat : public WatchFormat
{
public:
    QString line(const WatchSample &sample) override
    {
        const QString text = sample.title.toHtmlEscaped();
        QString tooltip = QStringLiteral("Pulsebar");
        if (!text.isEmpty())
            tooltip += u'\n' + QString(text).replace(QLatin1String(" | "), QLatin1String("\n"));
        return QStringLiteral("{\"text\":") + jsonString(text) + QStringLiteral(",\"tooltip\":") +
               jsonString(tooltip) + QStringLiteral(",\"class\":") + jsonString(className(sample)) +
               u'}';
    }

    bool needsLoad() const override { return true; }

private:
    /// A style sheet colours the module by these.
    static QString className(const WatchSample &sample)
    {
        static constexpr double kWarning = 0.7;
        static constexpr double kCritical = 0.9;
        const double load = sample.load.value_or(0.0);
        if (load >= kCritical)
            return QStringLiteral("critical");
        return load >= kWarning ? QStringLiteral("warning") : QStringLiteral("normal");
    }
};

/// The i3bar input protocol, version 1: a header, then an array that never ends.
class I3BarFormat : public WatchFormat
{
public:
    QString header() const override { return QStringLiteral("{\"version\":1}\n[\n"); }

    QString line(const WatchSample &sample) override
    {
        const QString block = QStringLiteral("[{\"name\":\"pulsebar\",\"full_text\":") +
                              jsonString(sample.title) + QStringLiteral("}]");
        const bool isFirst = !m_started;
        m_started = true;
        return isFirst ? block : u',' + block;
    }

private:
    bool m_started = false;
};

} // namespace

std::unique_ptr<WatchFormat> WatchFormat::named(const QString &name)
{
    if (name == QLatin1String("plain"))
        return std::make_unique<PlainFormat>();
    if (name == QLatin1String("json"))
        return std::make_unique<JsonFormat>();
    if (name == QLatin1String("waybar"))
        return std::make_unique<WaybarFormat>();
    if (name == QLatin1String("i3bar"))
        return std::make_unique<I3BarFormat>();
    return nullptr;
}

} // namespace pulsebar::cli
