#pragma once

#include "engine/Collectors.h"
#include "platform/Counters.h"
#include "platform/ProcessIcons.h"
#include "platform/SystemFacts.h"
#include "platform/Workspace.h"

#include <map>

/// Sources whose answers a test sets by hand.
namespace pulsebar::fakes {

struct CoreTicksAnswer : CoreTicksSource
{
    std::optional<std::vector<CoreTicks>> answer;
    std::optional<std::vector<CoreTicks>> readCoreTicks() override { return answer; }
};

struct InterfacesAnswer : InterfaceCountersSource
{
    std::optional<std::vector<InterfaceCounters>> answer;
    std::optional<std::vector<InterfaceCounters>> readInterfaceCounters() override
    {
        return answer;
    }
};

struct DisksAnswer : DiskCountersSource
{
    std::optional<std::vector<DiskCounters>> answer;
    std::optional<std::vector<DiskCounters>> readDiskCounters() override { return answer; }
};

struct BatteryAnswer : BatteryCollector
{
    QVariantMap answer;
    int asked = 0;
    QVariantMap batteryStatus() override
    {
        ++asked;
        return answer;
    }
};

struct TemperaturesAnswer : TemperatureCollector
{
    std::optional<QVariantMap> answer;
    bool fahrenheit = false;
    std::optional<QVariantMap> SMCGetTemperatures(bool inFahrenheit) override
    {
        fahrenheit = inFahrenheit;
        return answer;
    }
    QVariantList keys;
    QVariantList temperatureKeys() const override { return keys; }
};

struct FansAnswer : FanCollector
{
    std::optional<QVariantMap> answer;
    std::optional<QVariantMap> SMCGetFanMove() override { return answer; }
    QVariantList keys;
    QVariantList fanKeys() const override { return keys; }
};

struct IconsAnswer : ProcessIcons
{
    std::map<QString, QString> answers;
    QString iconForPID(const QString &pid) override
    {
        const auto found = answers.find(pid);
        return found == answers.end() ? QString() : found->second;
    }
};

struct WorkspaceAnswer : Workspace
{
    std::map<QString, QString> icons;        ///< by path
    std::map<QString, QString> paths;        ///< by application name
    std::map<QString, QString> names;        ///< by path
    std::map<QString, QStringList> commands; ///< by program
    QString iconForFile(const QString &path) override { return valueOf(icons, path, QString()); }
    QString displayName(const QString &path) override { return valueOf(names, path, path); }
    QString fullPathForApplication(const QString &name) override
    {
        return valueOf(paths, name, QString());
    }
    QStringList commandForProgram(const QString &program) override
    {
        return valueOf(commands, program, QStringList());
    }

private:
    template <typename Value>
    static Value valueOf(const std::map<QString, Value> &values, const QString &key,
                         Value otherwise)
    {
        const auto found = values.find(key);
        return found == values.end() ? otherwise : found->second;
    }
};

struct FactsAnswer : SystemFacts
{
    std::map<int, std::string> texts;
    std::map<int, std::int64_t> numbers;
    std::map<std::string, std::int64_t, std::less<>> named;
    std::optional<std::string> text(int selector) const override
    {
        const auto found = texts.find(selector);
        return found == texts.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<std::int64_t> number(int selector) const override
    {
        const auto found = numbers.find(selector);
        return found == numbers.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<std::int64_t> numberByName(std::string_view name) const override
    {
        const auto found = named.find(name);
        return found == named.end() ? std::nullopt : std::optional(found->second);
    }
};

/// An Ethernet interface that counts.
inline InterfaceCounters ethernet(std::uint64_t inBytes, std::uint64_t outBytes)
{
    InterfaceCounters counters;
    counters.name = "eth0";
    counters.up = true;
    counters.linkLevel = true;
    counters.inPackets = inBytes / 100 + 1;
    counters.outPackets = outBytes / 100 + 1;
    counters.inBytes = inBytes;
    counters.outBytes = outBytes;
    return counters;
}

/// A processor whose idle time is what the others leave of `all`.
inline CoreTicks core(int number, std::uint64_t user, std::uint64_t all)
{
    CoreTicks ticks;
    ticks.number = number;
    ticks.user = user;
    ticks.idle = all - user;
    return ticks;
}

/// Two fans and more, with their mean.
inline QVariantMap fanMove(const std::vector<float> &speeds)
{
    QVariantList fans;
    float sum = 0.0F;
    for (const float speed : speeds) {
        fans.append(QVariantMap{{QStringLiteral("ActualSpeed"), speed}});
        sum += speed;
    }
    return {{QStringLiteral("DataArray"), fans},
            {QStringLiteral("AverageSpeed"), sum / static_cast<float>(speeds.size())}};
}

} // namespace pulsebar::fakes
