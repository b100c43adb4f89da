#include "sensors/SensorLists.h"
#include "util/Format.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace pulsebar;

/// Whatever stands in a list, what is taken from it can be used as it is.
void check(const QByteArray &bytes, SensorListKind kind)
{
    const SensorListReading reading = parseSensorList(bytes, kind);
    if (!reading.problem.isEmpty() && !reading.elements.isEmpty())
        std::abort();
    for (const QVariant &element : reading.elements) {
        const QVariantMap sensor = element.toMap();
        const QString key = sensor.value(QStringLiteral("SMCKey")).toString();
        const bool isFan = kind == SensorListKind::Fan;
        const QString first = isFan ? plainFormat(key, 0) : key;
        if (sensor.size() != 2 || first.size() != 4 ||
            sensor.value(QStringLiteral("Key")).toString().isEmpty())
            std::abort();
    }
}

} // namespace

/// The user's own list of sensors, in either form of a property list.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    check(bytes, SensorListKind::Temperature);
    check(bytes, SensorListKind::Fan);
    return 0;
}
