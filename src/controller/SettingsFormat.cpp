#include "controller/SettingsFormat.h"

#include "controller/SettingsText.h"

#include <QIODevice>
#include <QLoggingCategory>
#include <QStringDecoder>
#include <QStringList>
#include <QVariant>

namespace pulsebar::settingsformat {

namespace {

Q_LOGGING_CATEGORY(lcSettings, "pulsebar.settings")

/// A byte order mark is a character like any other here; QString::fromUtf8() would drop it.
QString textOf(QByteArrayView utf8)
{
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
    return decoder.decode(utf8);
}

const QString &generalGroup()
{
    static const QString name = QStringLiteral("General");
    return name;
}

bool standsLiterally(uchar byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '_' || byte == '-';
}

/// Takes the next line off `rest`; lines end at a line feed, a carriage return or both.
QByteArrayView takeLine(QByteArrayView &rest)
{
    qsizetype end = 0;
    while (end < rest.size() && rest[end] != '\n' && rest[end] != '\r')
        ++end;
    const QByteArrayView line = rest.first(end);
    rest = rest.sliced(qMin(end + 1, rest.size()));
    return line.trimmed();
}

QString groupOfHeader(QByteArrayView line)
{
    const QByteArrayView inside = line.sliced(1, line.size() - 2).trimmed();
    const QString name = textOf(inside);
    return name.compare(generalGroup(), Qt::CaseInsensitive) == 0 ? QString() : name;
}

/// Whether a component of a key can stand in a line or a group header of its own.
bool isComponent(QStringView part)
{
    static constexpr QStringView kBlanks = u" \t\n\v\f\r";
    return !part.isEmpty() && !kBlanks.contains(part.front()) && !kBlanks.contains(part.back()) &&
           part.front() != u';' && part.front() != u'#' && part.front() != u'[';
}

bool isKey(QStringView key)
{
    for (const QStringView part : key.tokenize(u'/')) {
        if (!isComponent(part))
            return false;
    }
    return !key.startsWith(generalGroup() + u'/');
}

/// @return whether the line was understood
bool parseLine(QByteArrayView line, QString &group, QSettings::SettingsMap &values)
{
    if (line.isEmpty() || line.front() == ';' || line.front() == '#')
        return true;
    if (line.front() == '[') {
        if (line.size() < 2 || line.back() != ']')
            return false;
        group = groupOfHeader(line);
        return true;
    }
    const qsizetype equals = line.indexOf('=');
    if (equals <= 0)
        return false;
    QString key = textOf(line.first(equals).trimmed());
    key.replace(u'\\', u'/');
    if (!group.isEmpty())
        key = group + u'/' + key;
    if (!isKey(key))
        return false;
    values.insert(key, valueFromText(textOf(line.sliced(equals + 1).trimmed())));
    return true;
}

QByteArray lineFor(const QString &key, const QVariant &value)
{
    const std::optional<QString> text = textFromValue(value);
    if (!text)
        return {};
    return key.toUtf8() + '=' + text->toUtf8() + '\n';
}

bool readFile(QIODevice &device, QSettings::SettingsMap &map)
{
    QByteArray bytes = device.read(kMaxFileSize + 1);
    if (bytes.size() > kMaxFileSize) {
        bytes.truncate(qMax<qsizetype>(bytes.lastIndexOf('\n', kMaxFileSize - 1) + 1, 0));
        qCWarning(lcSettings, "The settings file is larger than %lld bytes; the rest is ignored.",
                  static_cast<long long>(kMaxFileSize));
    }
    const Parsed parsed = parse(bytes);
    if (parsed.droppedLines > 0)
        qCWarning(lcSettings, "%d lines of the settings file are not settings; they are ignored.",
                  parsed.droppedLines);
    map = parsed.values;
    // Failure would make QSettings refuse to write for the rest of the run.
    return true;
}

bool writeFile(QIODevice &device, const QSettings::SettingsMap &map)
{
    const QByteArray bytes = write(map);
    return device.write(bytes) == bytes.size();
}

} // namespace

Parsed parse(const QByteArray &bytes)
{
    Parsed parsed;
    QString group;
    QByteArrayView rest(bytes);
    if (rest.startsWith("\xEF\xBB\xBF"))
        rest = rest.sliced(3);
    while (!rest.isEmpty()) {
        if (!parseLine(takeLine(rest), group, parsed.values))
            ++parsed.droppedLines;
    }
    return parsed;
}

QByteArray write(const QSettings::SettingsMap &values)
{
    // By group, [General] (the keys without one) first.
    QMap<QString, QByteArray> groups;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        const qsizetype slash = it.key().lastIndexOf(u'/');
        const QString group = slash > 0 ? it.key().left(slash) : QString();
        groups[group] += lineFor(slash > 0 ? it.key().mid(slash + 1) : it.key(), it.value());
    }
    QByteArray bytes;
    for (auto it = groups.cbegin(); it != groups.cend(); ++it) {
        if (it.value().isEmpty())
            continue;
        if (!bytes.isEmpty())
            bytes += '\n';
        bytes += '[' + (it.key().isEmpty() ? generalGroup() : it.key()).toUtf8() + "]\n";
        bytes += it.value();
    }
    return bytes;
}

QString encodedKey(QStringView key)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    QString encoded;
    const QByteArray utf8 = key.toUtf8();
    for (const char c : utf8) {
        const uchar byte = static_cast<uchar>(c);
        if (standsLiterally(byte)) {
            encoded += QLatin1Char(c);
        } else {
            encoded += u'%';
            encoded += QLatin1Char(kDigits[byte >> 4]);
            encoded += QLatin1Char(kDigits[byte & 15]);
        }
    }
    return encoded;
}

QString decodedKey(QStringView encoded)
{
    return textOf(QByteArray::fromPercentEncoding(encoded.toUtf8()));
}

QSettings::Format format()
{
    static const QSettings::Format registered =
        QSettings::registerFormat(QStringLiteral("conf"), readFile, writeFile, Qt::CaseSensitive);
    return registered;
}

} // namespace pulsebar::settingsformat
