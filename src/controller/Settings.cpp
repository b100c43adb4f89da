#include "controller/Settings.h"

#include "controller/SettingsFormat.h"
#include "controller/SettingsText.h"

#include <QLoggingCategory>
#include <QStandardPaths>
#include <QVariant>

#include <charconv>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(lcSettings, "pulsebar.settings")

/// Plain decimal digits with an optional sign, nothing before or behind.
template <typename Integer> std::optional<Integer> integerFrom(const QString &text)
{
    const QByteArray digits = text.trimmed().toUtf8();
    Integer number{};
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), number);
    if (error != std::errc() || end != digits.end())
        return std::nullopt;
    return number;
}

std::optional<bool> booleanFrom(const QString &text)
{
    const QString word = text.trimmed().toLower();
    if (word == QLatin1String("true") || word == QLatin1String("yes") ||
        word == QLatin1String("on"))
        return true;
    if (word == QLatin1String("false") || word == QLatin1String("no") ||
        word == QLatin1String("off"))
        return false;
    const std::optional<int> number = integerFrom<int>(word);
    return number ? std::optional<bool>(*number != 0) : std::nullopt;
}

std::optional<float> decimalFrom(const QString &text)
{
    const QByteArray digits = text.trimmed().toUtf8();
    // from_chars would also take "inf" and "nan".
    for (const char c : digits) {
        if (!(c >= '0' && c <= '9') && c != '.' && c != '-')
            return std::nullopt;
    }
    float number = 0;
    const auto [end, error] =
        std::from_chars(digits.begin(), digits.end(), number, std::chars_format::fixed);
    if (error != std::errc() || end != digits.end())
        return std::nullopt;
    return number;
}

/// A value written without a comma is a list of one.
template <typename T, typename Read>
std::optional<QVector<T>> listFrom(const QVariant &stored, Read readItem)
{
    QVector<T> list;
    const QStringList items = stored.toStringList();
    for (const QString &item : items) {
        const std::optional<T> value = readItem(item);
        if (!value)
            return std::nullopt;
        list += *value;
    }
    return list;
}

bool isSingleText(const QVariant &stored)
{
    return stored.typeId() == QMetaType::QString;
}

template <typename T> QVariantList variantList(const QVector<T> &values)
{
    QVariantList list;
    for (const T value : values)
        list += QVariant::fromValue(value);
    return list;
}

} // namespace

Settings::Settings(const QString &fileName)
    : m_file(fileName, settingsformat::format())
{
}

QString Settings::standardFileName()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Pulsebar/Pulsebar.conf");
}

Settings::Batch::Batch(Settings &settings)
    : m_settings(settings)
{
    ++m_settings.m_batches;
}

Settings::Batch::~Batch()
{
    --m_settings.m_batches;
    if (m_settings.m_batches == 0 && m_settings.m_synchronizeLater)
        m_settings.synchronize();
}

bool Settings::synchronize()
{
    m_synchronizeLater = m_batches > 0;
    if (m_synchronizeLater)
        return true;
    m_file.sync();
    if (m_file.status() == QSettings::NoError)
        return true;
    qCWarning(lcSettings, "The settings could not be written to %s.",
              qUtf8Printable(m_file.fileName()));
    return false;
}

QVariant Settings::storedValue(const QString &key) const
{
    QVariant stored = m_file.value(settingsformat::encodedKey(key));
    // What this run wrote has its own type until it has been on the disk.
    if (stored.isValid() && stored.typeId() != QMetaType::QVariantList &&
        stored.typeId() != QMetaType::QStringList)
        stored.convert(QMetaType(QMetaType::QString));
    return stored;
}

void Settings::reportMalformed(const QString &key) const
{
    // As it stands in the file, where it can be looked for; a key may hold line breaks.
    qCWarning(lcSettings, "The setting %s has a value that cannot be read; its default is used.",
              qUtf8Printable(settingsformat::encodedKey(key)));
}

std::optional<QString> Settings::text(const QString &key)
{
    const QVariant stored = storedValue(key);
    if (!stored.isValid())
        return std::nullopt;
    if (!isSingleText(stored)) {
        reportMalformed(key);
        return std::nullopt;
    }
    return stored.toString();
}

void Settings::setText(const QString &key, const QString &text)
{
    writeVariant(key, text);
}

template <> std::optional<QString> Settings::read<QString>(const char *key)
{
    return text(QString::fromLatin1(key));
}

/// Any text is one; a value written without a comma is a list of one.
template <> std::optional<QStringList> Settings::read<QStringList>(const char *key)
{
    const QVariant stored = storedValue(key);
    return stored.isValid() ? std::optional<QStringList>(stored.toStringList()) : std::nullopt;
}

template <> std::optional<int> Settings::read<int>(const char *key)
{
    const QVariant stored = storedValue(key);
    const std::optional<int> number =
        isSingleText(stored) ? integerFrom<int>(stored.toString()) : std::nullopt;
    if (stored.isValid() && !number)
        reportMalformed(key);
    return number;
}

template <> std::optional<qint64> Settings::read<qint64>(const char *key)
{
    const QVariant stored = storedValue(key);
    const std::optional<qint64> number =
        isSingleText(stored) ? integerFrom<qint64>(stored.toString()) : std::nullopt;
    if (stored.isValid() && !number)
        reportMalformed(key);
    return number;
}

template <> std::optional<bool> Settings::read<bool>(const char *key)
{
    const QVariant stored = storedValue(key);
    const std::optional<bool> value =
        isSingleText(stored) ? booleanFrom(stored.toString()) : std::nullopt;
    if (stored.isValid() && !value)
        reportMalformed(key);
    return value;
}

template <> std::optional<float> Settings::read<float>(const char *key)
{
    const QVariant stored = storedValue(key);
    const std::optional<float> number =
        isSingleText(stored) ? decimalFrom(stored.toString()) : std::nullopt;
    if (stored.isValid() && !number)
        reportMalformed(key);
    return number;
}

template <> std::optional<QVector<int>> Settings::read<QVector<int>>(const char *key)
{
    const QVariant stored = storedValue(key);
    if (!stored.isValid())
        return std::nullopt;
    auto list = listFrom<int>(stored, integerFrom<int>);
    if (!list)
        reportMalformed(key);
    return list;
}

template <> std::optional<QVector<bool>> Settings::read<QVector<bool>>(const char *key)
{
    const QVariant stored = storedValue(key);
    if (!stored.isValid())
        return std::nullopt;
    auto list = listFrom<bool>(stored, booleanFrom);
    if (!list)
        reportMalformed(key);
    return list;
}

bool Settings::hasText(const QString &key) const
{
    return m_file.contains(settingsformat::encodedKey(key));
}

QStringList Settings::textKeys(const QString &beginning) const
{
    QStringList keys;
    const QString encodedBeginning = settingsformat::encodedKey(beginning);
    const QStringList all = m_file.childKeys();
    for (const QString &encoded : all) {
        if (encoded.startsWith(encodedBeginning))
            keys += settingsformat::decodedKey(encoded);
    }
    return keys;
}

void Settings::removeKey(const QString &key)
{
    const QString encoded = settingsformat::encodedKey(key);
    if (m_file.contains(encoded))
        m_file.remove(encoded);
}

void Settings::writeVariant(const QString &key, const QVariant &value)
{
    const QString encoded = settingsformat::encodedKey(key);
    // What stands in the file already costs no new one.
    const QVariant stored = m_file.value(encoded);
    if (!stored.isValid() ||
        settingsformat::textFromValue(stored) != settingsformat::textFromValue(value))
        m_file.setValue(encoded, value);
}

void Settings::write(const char *key, const QString &value)
{
    writeVariant(key, value);
}

void Settings::write(const char *key, int value)
{
    writeVariant(key, value);
}

void Settings::write(const char *key, qint64 value)
{
    writeVariant(key, value);
}

void Settings::write(const char *key, bool value)
{
    writeVariant(key, value);
}

void Settings::write(const char *key, float value)
{
    writeVariant(key, value);
}

void Settings::write(const char *key, const QStringList &value)
{
    writeVariant(key, value);
}

void Settings::write(const char *key, const QVector<int> &value)
{
    writeVariant(key, variantList(value));
}

void Settings::write(const char *key, const QVector<bool> &value)
{
    writeVariant(key, variantList(value));
}

} // namespace pulsebar
