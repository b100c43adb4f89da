#include "sensors/Battery.h"

#include <optional>

namespace pulsebar {

namespace {

std::optional<BatteryInfo> firstBattery(BatterySource &source)
{
    const auto batteries = source.readBatteries();
    if (!batteries || batteries->empty())
        return std::nullopt;
    return batteries->front();
}

/// What is not told counts as 0, so that the quotient is infinite or not a number.
float remainingPercent(const BatteryInfo &battery)
{
    const auto current = static_cast<float>(battery.current.value_or(0));
    const auto capacity = static_cast<float>(battery.capacity.value_or(0));
    return current / capacity * 100.0F;
}

void insertTold(QVariantMap &record, const QString &key, const std::optional<std::int64_t> &value)
{
    if (value)
        record.insert(key, static_cast<qlonglong>(*value));
}

} // namespace

QVariantMap batteryStatus(BatterySource &source)
{
    const auto battery = firstBattery(source);
    if (!battery)
        return {};
    const bool connected = (battery->flags & BatteryInfo::kConnected) != 0;
    const bool charging = (battery->flags & BatteryInfo::kCharging) != 0;
    const bool installed = (battery->flags & BatteryInfo::kInstalled) != 0;
    QVariantMap record{
        {QStringLiteral("BatteryEnabled"), installed},
        {QStringLiteral("IsConnected"), connected},
        {QStringLiteral("FullyCharged"), connected && !charging},
        {QStringLiteral("BatteryRemainPercent"), remainingPercent(*battery)},
    };
    insertTold(record, QStringLiteral("BatteryCycleCount"), battery->cycleCount);
    insertTold(record, QStringLiteral("BatteryVoltage"), battery->voltage);
    insertTold(record, QStringLiteral("BatteryAmperage"), battery->amperage);
    return record;
}

int isBatteryEnabled(BatterySource &source)
{
    const auto battery = firstBattery(source);
    return battery ? battery->flags & BatteryInfo::kInstalled : 0;
}

} // namespace pulsebar
