#include "sensors/SensorLists.h"

#include "sensors/PropertyList.h"
#include "util/Format.h"

#include <QFile>
#include <QLoggingCategory>
#include <QSet>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logSensors, "pulsebar.sensors")

constexpr qint64 LargestList = 1 << 20;
constexpr qsizetype LongestName = 100;

bool isSmcKey(QStringView text)
{
    const auto isPrintable = [](QChar c) { return c >= u' ' && c <= u'~'; };
    return text.size() == 4 && std::all_of(text.begin(), text.end(), isPrintable);
}

bool isFanFormat(const QString &text)
{
    const auto first = formatChecked(text, {FormatArgument(0)}, QStringLiteral("."));
    return first && isSmcKey(*first);
}

/// The element as it is used; absent when it cannot be.
std::optional<QVariantMap> usable(const QVariant &element, SensorListKind kind)
{
    const QVariantMap all = element.toMap();
    const QVariant name = all.value(QStringLiteral("Key"));
    const QVariant key = all.value(QStringLiteral("SMCKey"));
    if (name.typeId() != QMetaType::QString || key.typeId() != QMetaType::QString)
        return std::nullopt;
    const qsizetype length = name.toString().size();
    const bool isKey =
        kind == SensorListKind::Fan ? isFanFormat(key.toString()) : isSmcKey(key.toString());
    if (length < 1 || length > LongestName || !isKey)
        return std::nullopt;
    return QVariantMap{{QStringLiteral("Key"), name}, {QStringLiteral("SMCKey"), key}};
}

SensorListReading unusable(const char *problem)
{
    return {{}, 0, QString::fromLatin1(problem)};
}

/// A file's content, without waiting for anything that is not a file.
std::optional<QByteArray> contentOf(const QString &path, QString &problem)
{
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        if (errno != ENOENT && errno != ENOTDIR)
            problem = qt_error_string(errno);
        return std::nullopt;
    }
    QFile file;
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
        !file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        problem = QStringLiteral("not a file");
        return std::nullopt;
    }
    QByteArray bytes = file.read(LargestList + 1);
    if (bytes.size() > LargestList) {
        problem = QStringLiteral("too large");
        return std::nullopt;
    }
    return bytes;
}

/// Absent when there is no such list, or none that can be used; the latter is said.
std::optional<QVariantList> readList(const QString &path, SensorListKind kind)
{
    SensorListReading reading;
    if (const auto bytes = contentOf(path, reading.problem))
        reading = parseSensorList(*bytes, kind);
    else if (reading.problem.isEmpty())
        return std::nullopt;
    if (!reading.problem.isEmpty()) {
        qCWarning(logSensors).noquote() << path << "is not used:" << reading.problem;
        return std::nullopt;
    }
    if (reading.leftOut > 0)
        qCWarning(logSensors).noquote() << path << "has" << reading.leftOut << "unusable elements";
    return reading.elements;
}

QVariantList firstList(const QStringList &folders, const QString &file, SensorListKind kind)
{
    for (const QString &folder : folders) {
        if (auto list = readList(folder + QLatin1Char('/') + file, kind))
            return *list;
    }
    qCWarning(logSensors).noquote() << "no" << file << "found";
    return {};
}

} // namespace

SensorListReading parseSensorList(const QByteArray &bytes, SensorListKind kind)
{
    const std::optional<QVariant> list = parsePropertyList(bytes, {"Key", "SMCKey"});
    if (!list)
        return unusable("not a property list");
    if (list->typeId() != QMetaType::QVariantList)
        return unusable("not an array");
    SensorListReading reading;
    QSet<QString> names;
    for (const QVariant &element : list->toList()) {
        const auto sensor = usable(element, kind);
        const QString name = sensor ? sensor->value(QStringLiteral("Key")).toString() : QString();
        if (!sensor || names.contains(name)) {
            ++reading.leftOut;
            continue;
        }
        names.insert(name);
        reading.elements.append(*sensor);
    }
    if (kind == SensorListKind::Fan && !names.contains(QStringLiteral("ActualSpeed")))
        return unusable("without a usable \"ActualSpeed\"");
    if (reading.elements.isEmpty() && reading.leftOut > 0)
        return unusable("no usable element");
    return reading;
}

SensorLists readSensorLists(const QStringList &folders)
{
    return {firstList(folders, QStringLiteral("Temperature.plist"), SensorListKind::Temperature),
            firstList(folders, QStringLiteral("Fan.plist"), SensorListKind::Fan)};
}

} // namespace pulsebar
