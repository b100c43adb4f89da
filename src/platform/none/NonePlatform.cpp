#include "platform/none/NonePlatform.h"

namespace pulsebar {

namespace {

class NoCoreTicks : public CoreTicksSource
{
public:
    std::optional<std::vector<CoreTicks>> readCoreTicks() override { return std::nullopt; }
};

class NoInterfaceCounters : public InterfaceCountersSource
{
public:
    std::optional<std::vector<InterfaceCounters>> readInterfaceCounters() override
    {
        return std::nullopt;
    }
};

class NoDiskCounters : public DiskCountersSource
{
public:
    std::optional<std::vector<DiskCounters>> readDiskCounters() override { return std::nullopt; }
};

class NoSystemFacts : public SystemFacts
{
public:
    std::optional<std::string> text(int) const override { return std::nullopt; }
    std::optional<std::int64_t> number(int) const override { return std::nullopt; }
    std::optional<std::int64_t> numberByName(std::string_view) const override
    {
        return std::nullopt;
    }
};

class NoProcessIcons : public ProcessIcons
{
public:
    QString iconForPID(const QString &) override { return {}; }
};

class NoProcesses : public Processes
{
public:
    quint64 now() const override { return 0; }
    std::shared_ptr<HeldProcess> hold(const QString &, quint64) override { return nullptr; }
};

class NoProcessTable : public ProcessTable
{
public:
    std::optional<QStringList> shortNames() const override { return std::nullopt; }
    std::shared_ptr<HeldProcess> parent(const HeldProcess &) override { return nullptr; }
    QStringList programs(const HeldProcess &) const override { return {}; }
};

class NoWorkspace : public Workspace
{
public:
    QString iconForFile(const QString &) override { return {}; }
    QString displayName(const QString &path) override
    {
        return path.mid(path.lastIndexOf(u'/') + 1);
    }
    QString fullPathForApplication(const QString &) override { return {}; }
    QStringList commandForProgram(const QString &) override { return {}; }
};

class NoLoginItems : public LoginItems
{
public:
    std::optional<QVariantList> items(const QString &) override { return std::nullopt; }
    bool setItems(const QVariantList &) override { return false; }
};

class NoBattery : public BatterySource
{
public:
    std::optional<std::vector<BatteryInfo>> readBatteries() override { return std::nullopt; }
};

class NoSmc : public SmcTransport
{
public:
    SmcOpenResult open() override { return {SmcOpening::NoService, kSmcSuccess}; }
    SmcStatus call(std::uint32_t, const SmcRecord &, SmcRecord &) override { return kSmcNotOpen; }
    void close() override {}
};

class NoSensorNames : public SensorNames
{
public:
    std::uint64_t revision() const override { return 0; }
    std::vector<SensorName> names() const override { return {}; }
    bool isResting(std::string_view) const override { return false; }
};

} // namespace

std::unique_ptr<Platform> makeNonePlatform()
{
    auto platform = std::make_unique<Platform>();
    platform->coreTicks = std::make_unique<NoCoreTicks>();
    platform->interfaceCounters = std::make_unique<NoInterfaceCounters>();
    platform->diskCounters = std::make_unique<NoDiskCounters>();
    platform->systemFacts = std::make_unique<NoSystemFacts>();
    platform->processIcons = std::make_unique<NoProcessIcons>();
    platform->processes = std::make_unique<NoProcesses>();
    platform->processTable = std::make_unique<NoProcessTable>();
    platform->workspace = std::make_unique<NoWorkspace>();
    platform->loginItems = std::make_unique<NoLoginItems>();
    platform->battery = std::make_unique<NoBattery>();
    platform->smc = std::make_shared<NoSmc>();
    platform->sensorNames = std::make_shared<NoSensorNames>();
    return platform;
}

} // namespace pulsebar
