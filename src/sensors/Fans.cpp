#include "sensors/Fans.h"

#include "sensors/smc/Smc.h"
#include "sensors/smc/SmcDecode.h"
#include "util/Format.h"
#include "util/Values.h"

namespace pulsebar {

Fans::Fans(SmcLink &smc, const QVariantList &keys)
    : m_smc(smc)
    , m_fanKeys(keys)
{
    for (const QVariant &element : keys) {
        const QVariantMap figure = element.toMap();
        m_figures.push_back({figure.value(QStringLiteral("Key")).toString(),
                             figure.value(QStringLiteral("SMCKey")).toString(),
                             {}});
    }
}

std::optional<QVariantMap> Fans::SMCGetFanMove()
{
    const SmcLink::Connection connection(m_smc);
    SmcValue number;
    if (SMCReadKey("FNum", number, connection.transport()) != kSmcSuccess)
        return std::nullopt;
    const auto count = static_cast<std::int32_t>(smcInteger(number));

    QVariantList fans;
    float sum = 0.0F;
    for (std::int32_t i = 0; i < count; ++i) {
        const QVariantMap fan = fanData(static_cast<std::size_t>(i), connection.transport());
        sum += floatValueForKey(fan, QStringLiteral("ActualSpeed"));
        fans.append(fan);
    }
    return QVariantMap{{QStringLiteral("DataArray"), fans},
                       {QStringLiteral("AverageSpeed"), sum / static_cast<float>(count)}};
}

QVariantMap Fans::fanData(std::size_t fan, SmcTransport &smc)
{
    QVariantMap data;
    for (Figure &figure : m_figures) {
        SmcValue value;
        SMCReadKey(keyOf(figure, fan), value, smc);
        data.insert(figure.name, smcFixedPoint(value));
    }
    return data;
}

const std::string &Fans::keyOf(Figure &figure, std::size_t fan)
{
    while (figure.keys.size() <= fan) {
        const auto number = static_cast<int>(figure.keys.size());
        figure.keys.push_back(plainFormat(figure.format, number).toStdString());
    }
    return figure.keys[fan];
}

} // namespace pulsebar
