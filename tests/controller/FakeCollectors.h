#pragma once

#include "engine/Collectors.h"
#include "platform/ProcessIcons.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace pulsebar {

class FakeBattery : public BatteryCollector
{
public:
    QVariantMap batteryStatus() override { return status; }
    QVariantMap status;
};

class FakeTemperatures : public TemperatureCollector
{
public:
    std::optional<QVariantMap> SMCGetTemperatures(bool fahrenheit) override
    {
        return QVariantMap{{QStringLiteral("CPU Die"), fahrenheit ? 122.0 : 50.0}};
    }
    QVariantList temperatureKeys() const override
    {
        return {QVariantMap{{QStringLiteral("Key"), QStringLiteral("CPU Die")}}};
    }
};

class FakeFans : public FanCollector
{
public:
    std::optional<QVariantMap> SMCGetFanMove() override
    {
        const QVariantMap fan{{QStringLiteral("ActualSpeed"), 1200.0F}};
        return QVariantMap{{QStringLiteral("DataArray"), QVariantList{fan}},
                           {QStringLiteral("AverageSpeed"), 1200.0F}};
    }
    QVariantList fanKeys() const override
    {
        return {QVariantMap{{QStringLiteral("Key"), QStringLiteral("ActualSpeed")}}};
    }
};

class FakeIcons : public ProcessIcons
{
public:
    QString iconForPID(const QString &pid) override
    {
        asked += pid;
        return icon;
    }
    QString icon = QStringLiteral("browser");
    QStringList asked;
};

} // namespace pulsebar
