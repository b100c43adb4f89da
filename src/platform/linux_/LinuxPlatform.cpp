#include "platform/linux_/LinuxPlatform.h"

#include "platform/linux_/AutostartFolder.h"
#include "platform/linux_/DesktopProcessIcons.h"
#include "platform/linux_/DesktopWorkspace.h"
#include "platform/linux_/KernelFacts.h"
#include "platform/linux_/LinuxProcesses.h"
#include "platform/linux_/NetlinkInterfaces.h"
#include "platform/linux_/ProcCoreTicks.h"
#include "platform/linux_/SysBlockDisks.h"
#include "platform/linux_/SysPowerSupplies.h"
#include "platform/linux_/hwmon/HwmonSmc.h"

#include <QLoggingCategory>

#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(logSensors, "pulsebar.sensors")

std::shared_ptr<HwmonSmc> makeSmc(const Sysroot &root)
{
    HwmonSmc::Options options;
    options.complain = [](const std::string &text) {
        qCWarning(logSensors).noquote() << QString::fromStdString(text);
    };
    return std::make_shared<HwmonSmc>(root, std::move(options));
}

} // namespace

std::unique_ptr<Platform> makeLinuxPlatform(const Sysroot &root)
{
    auto platform = std::make_unique<Platform>();
    platform->coreTicks = std::make_unique<ProcCoreTicks>(root);
    platform->interfaceCounters = std::make_unique<NetlinkInterfaces>();
    platform->diskCounters = std::make_unique<SysBlockDisks>(root);
    platform->systemFacts = std::make_unique<KernelFacts>(root);
    const auto entries = std::make_shared<DesktopEntries>(DesktopEntries::standardFolders());
    platform->processIcons = std::make_unique<DesktopProcessIcons>(root, entries);
    platform->processes = std::make_unique<LinuxProcesses>(root);
    platform->processTable = std::make_unique<LinuxProcessTable>();
    platform->workspace = std::make_unique<DesktopWorkspace>(entries);
    platform->loginItems =
        std::make_unique<AutostartFolder>(AutostartFolder::standardFolder(), qgetenv("PATH"));
    platform->battery = std::make_unique<SysPowerSupplies>(root);
    const auto smc = makeSmc(root);
    platform->smc = smc;
    platform->sensorNames = smc;
    return platform;
}

} // namespace pulsebar
