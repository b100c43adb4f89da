#include "Culprits.h"

#include "PrintableText.h"

#include <QDateTime>

#include <limits>

namespace pulsebar::cli {

namespace {

QString lineOfCulprits(const QVariantList &sample)
{
    static constexpr double kPercent = 100.0;
    const QTime time = QDateTime::fromMSecsSinceEpoch(sample.at(0).toLongLong()).time();
    QStringList names;
    const QVariantList processes = sample.at(2).toList();
    for (const QVariant &process : processes)
        names += printableText(process.toList().value(0).toString());
    QString line = time.toString(QStringLiteral("HH:mm:ss")) + u' ' +
                   QString::number(sample.at(1).toDouble() * kPercent, 'f', 1) + u'%';
    names.removeDuplicates();
    if (!names.isEmpty())
        line += QStringLiteral(": ") + names.join(QStringLiteral(", "));
    return line;
}

} // namespace

std::optional<quint32> secondsFromArguments(const QStringList &arguments)
{
    static constexpr QLatin1String kOption("--since");
    if (arguments.isEmpty())
        return std::numeric_limits<quint32>::max();
    QString seconds;
    if (arguments.size() == 2 && arguments.front() == kOption)
        seconds = arguments.back();
    else if (arguments.size() == 1 && arguments.front().startsWith(kOption + u'='))
        seconds = arguments.front().mid(kOption.size() + 1);
    bool isNumber = false;
    const quint32 number = seconds.toUInt(&isNumber);
    return isNumber ? std::optional<quint32>(number) : std::nullopt;
}

QString linesOfCulprits(const QVariantList &samples)
{
    QString lines;
    for (const QVariant &element : samples) {
        const QVariantList sample = element.toList();
        if (sample.size() == 3)
            lines += lineOfCulprits(sample) + u'\n';
    }
    return lines;
}

} // namespace pulsebar::cli
