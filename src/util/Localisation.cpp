#include "util/Localisation.h"

#include <QCoreApplication>
#include <QHash>
#include <QLocale>
#include <QLoggingCategory>
#include <QSet>

#include <array>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logLocalisation, "pulsebar.localisation")

struct EnglishText
{
    const char16_t *key;
    const char16_t *text;
};

constexpr std::array EnglishTexts{
    EnglishText{u"TitleOption_1", u"CPU Usage"},
    EnglishText{u"TitleOption_2", u"Network In"},
    EnglishText{u"TitleOption_3", u"Network Out"},
    EnglishText{u"TitleOption_4", u"Battery"},
    EnglishText{u"TitleOption_5", u"Disk Read"},
    EnglishText{u"TitleOption_6", u"Disk Write"},
    EnglishText{u"TitleOption_7", u"Rotate"},
    EnglishText{u"TitleOption_8", u"Icon Only"},
    EnglishText{u"TitleOption_9", u"Busiest Process"},
    EnglishText{u"TitleOption_10", u"CPU Temperature"},
    EnglishText{u"TitleOption_11", u"Fan Speed"},
    EnglishText{u"AverageValue", u"Average"},
    EnglishText{u"MaxValue", u"Maximum"},
    EnglishText{u"MinValue", u"Minimum"},
    EnglishText{u"free", u"Free: %@ (%.1f%%)"},
    EnglishText{u"wired", u"Wired: %@ (%.1f%%)"},
    EnglishText{u"active", u"Active: %@ (%.1f%%)"},
    EnglishText{u"inactive", u"Inactive: %@ (%.1f%%)"},
    EnglishText{u"Disk Menu Label0", u"Speed: %@/s / %@/s"},
    EnglishText{u"Disk Menu Label2", u"Total: %@ / %@"},
    EnglishText{u"Disk Menu Label4", u"Operations: %@ / %@"},
    EnglishText{u"Disk Menu Label6", u"Errors: %@ / %@"},
    EnglishText{u"Disk Menu Label8", u"Retries: %@ / %@"},
    EnglishText{u"Disk Menu Label10", u"Time: %@ ms / %@ ms"},
    EnglishText{u"Disk Menu Label12", u"Latency: %@ / %@"},
    EnglishText{u"readBytes", u"Bytes Read: %@"},
    EnglishText{u"writtenBytes", u"Bytes Written: %@"},
    EnglishText{u"readTimes", u"Reads: %@"},
    EnglishText{u"writtenTimes", u"Writes: %@"},
    EnglishText{u"InByte", u"In"},
    EnglishText{u"OutByte", u"Out"},
    EnglishText{u"DiskRead", u"Read"},
    EnglishText{u"DiskWrite", u"Write"},
    EnglishText{u"CPUTime", u"CPU Time"},
    EnglishText{u"Thread", u"Threads"},
    EnglishText{u"RealMemorySize", u"Real Memory"},
    EnglishText{u"TotalMemorySize", u"Total Memory"},
    EnglishText{u"PageIns", u"Page Ins"},
    EnglishText{u"MachMessageSent", u"Mach Messages Sent"},
    EnglishText{u"MachMessageRecieve", u"Mach Messages Received"},
    EnglishText{u"UNIXSystemCall", u"UNIX System Calls"},
    EnglishText{u"MachSystemCall", u"Mach System Calls"},
    EnglishText{u"EnergyUsage", u"Energy Usage"},
    EnglishText{u"Charging: ", u"Charging: %.1f%%"},
    EnglishText{u"Battery: ", u"Battery: %.1f%%"},
    EnglishText{u"CPUTotalUsage", u"CPU Total"},
    EnglishText{u"NetworkInMinuteStats", u"Network In"},
    EnglishText{u"NetworkOutMinuteStats", u"Network Out"},
    EnglishText{u"FanAverage", u"Fan Average"},
    EnglishText{u"ActualSpeed_MenuTitle", u"Actual: %.0fRPM"},
    EnglishText{u"MinimumSpeed_MenuTitle", u"Minimum: %.0fRPM"},
    EnglishText{u"MaximumSpeed_MenuTitle", u"Maximum: %.0fRPM"},
    EnglishText{u"TargetSpeed_MenuTitle", u"Target: %.0fRPM"},
};

const QHash<QString, QString> &englishTable()
{
    static const QHash<QString, QString> table = [] {
        QHash<QString, QString> built;
        for (const auto &[key, text] : EnglishTexts)
            built.insert(QString::fromUtf16(key), QString::fromUtf16(text));
        return built;
    }();
    return table;
}

/// Absent when no installed catalogue has the key: Qt then answers the key itself.
std::optional<QString> translation(const QString &key, const QString &table)
{
    const QByteArray source = key.toUtf8();
    const QString text =
        QCoreApplication::translate(table.toUtf8().constData(), source.constData());
    if (text == key)
        return std::nullopt;
    return text;
}

QString defaultTable()
{
    return QStringLiteral("Default");
}

void complainOnce(const QString &key)
{
    static QSet<QString> known;
    if (known.contains(key))
        return;
    known.insert(key);
    qCWarning(logLocalisation) << "the translation of" << key << "does not fit its arguments";
}

} // namespace

QString englishString(const QString &key)
{
    return englishTable().value(key, key);
}

QString localizedString(const QString &key)
{
    const auto translated = translation(key, defaultTable());
    return translated ? *translated : englishString(key);
}

QString localizedString(const QString &key, const QString &table, const QString &defaultValue)
{
    const auto translated = translation(key, table);
    if (translated)
        return *translated;
    return defaultValue.isEmpty() ? key : defaultValue;
}

QString localizedFormatList(const QString &key, const FormatArguments &arguments)
{
    const QString decimalPoint = QLocale().decimalPoint();
    const auto translated = translation(key, defaultTable());
    if (translated) {
        if (const auto text = formatChecked(*translated, arguments, decimalPoint))
            return *text;
        complainOnce(key);
    }
    const QString english = englishString(key);
    return formatChecked(english, arguments, decimalPoint).value_or(english);
}

} // namespace pulsebar
