#include "processes/NettopReport.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool isNumber(const QVariant &value)
{
    return value.typeId() == QMetaType::Int || value.typeId() == QMetaType::Double;
}

/// @return how many connections it has
qsizetype checkProcess(const QString &key, const QVariantMap &process)
{
    require(process.size() == 6);
    require(process.value(QStringLiteral("name")) == key && !key.startsWith(u"tcp"));
    require(!key.contains(u',') && !key.contains(u'\n'));
    for (const char *name : {"bytes_in", "bytes_out"}) {
        require(process.value(QLatin1String(name)).typeId() == QMetaType::LongLong);
        require(isNumber(process.value(QLatin1String(name) + QStringLiteral("_delta"))));
    }
    const QVariantList connections = process.value(QStringLiteral("subprocess")).toList();
    for (const QVariant &connection : connections) {
        const QVariantMap record = connection.toMap();
        require(record.size() >= 4 && record.size() <= 6);
        require(!record.contains(QStringLiteral("type")) ||
                record.value(QStringLiteral("type")).toString().startsWith(u"tcp"));
    }
    return connections.size();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // The run before and this one, apart at the first form feed.
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const qsizetype cut = bytes.indexOf('\f');
    const QByteArray report = bytes.mid(cut + 1);
    const QVariantMap all =
        pulsebar::parseNettopReport(report, bytes.left(qMax<qsizetype>(cut, 0)));
    qsizetype lines = 0;
    for (auto it = all.cbegin(); it != all.cend(); ++it)
        lines += 1 + checkProcess(it.key(), it.value().toMap());
    require(lines <= report.count('\n') + 1);
    return 0;
}
