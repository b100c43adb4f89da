// Whole samples over recorded machines: the platform's readers behind the collectors.

#include "engine/TopMonitor.h"
#include "platform/TemporaryMachine.h"
#include "platform/linux_/LinuxPlatform.h"
#include "support/QtPrinting.h"
#include "util/Values.h"

#include <sstream>

namespace pulsebar {
namespace {

namespace fs = std::filesystem;

struct Expected
{
    std::string machine;
    int cores;
    int disks; ///< those that ever did anything
};

void PrintTo(const Expected &expected, std::ostream *out)
{
    *out << expected.machine;
}

std::string textOf(const fs::path &file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

/// The numbers of a line, each advanced by what `steps` says for its position.
std::string advanced(const std::string &line, const std::vector<long long> &steps)
{
    std::istringstream in(line);
    std::ostringstream out;
    std::size_t position = 0;
    for (std::string word; in >> word; ++position)
        out << (position < steps.size() ? std::to_string(std::stoll(word) + steps[position]) : word)
            << ' ';
    return out.str() + '\n';
}

class RecordedMachine : public ::testing::TestWithParam<Expected>
{
protected:
    RecordedMachine()
    {
        copyRecordedMachine(GetParam().machine, m_machine);
        m_platform = makeLinuxPlatform(m_machine.root());
        const MonitorSources sources{m_platform->coreTicks.get(),
                                     m_platform->interfaceCounters.get(),
                                     m_platform->diskCounters.get()};
        m_monitor = std::make_unique<TopMonitor>(sources, SamplerCommand(), 10, 2);
    }

    /// Gives every processor 20 ticks of user, 10 of system and 70 of idle time.
    void work()
    {
        std::istringstream before(textOf(m_machine.path("proc/stat")));
        std::string after;
        for (std::string line; std::getline(before, line);) {
            const auto blank = line.find(' ');
            const bool isCpu = line.rfind("cpu", 0) == 0;
            after += isCpu ? line.substr(0, blank + 1) +
                                 advanced(line.substr(blank + 1), {20, 0, 10, 70})
                           : line + '\n';
        }
        m_machine.write("proc/stat", after);
    }

    /// Lets every disk read and write: 4096 and 8192 sectors more.
    void useDisks()
    {
        for (const auto &disk : fs::directory_iterator(m_machine.path("sys/block"))) {
            const fs::path stat = disk.path() / "stat";
            if (fs::exists(stat))
                m_machine.write(fs::relative(stat, m_machine.folder()).string(),
                                advanced(textOf(stat), {9, 0, 4096, 5, 7, 0, 8192, 3}));
        }
    }

    QVariantMap sample()
    {
        m_monitor->loadTopInfo({});
        return m_monitor->topDict();
    }

    TemporaryMachine m_machine;
    std::unique_ptr<Platform> m_platform;
    std::unique_ptr<TopMonitor> m_monitor;
};

TEST_P(RecordedMachine, CoresGetTheirLoads)
{
    EXPECT_FALSE(sample().contains(QStringLiteral("CPUUsage")));
    work();
    const QVariantMap second = sample();
    const QVariantList cores = second.value(QStringLiteral("CPUUsage")).toList();
    ASSERT_EQ(cores.size(), GetParam().cores);
    for (const QVariant &core : cores) {
        EXPECT_DOUBLE_EQ(doubleValueForKey(core.toMap(), QStringLiteral("user")), 0.2);
        EXPECT_DOUBLE_EQ(doubleValueForKey(core.toMap(), QStringLiteral("kernel")), 0.1);
        EXPECT_DOUBLE_EQ(doubleValueForKey(core.toMap(), QStringLiteral("idle")), 0.7);
    }
    EXPECT_NEAR(m_monitor->CPUTotalUsage().toDouble(), 0.3, 1e-9);
    EXPECT_EQ(m_monitor->cacheDataForKey(QStringLiteral("CPUTotalUsage"))->size(), 1);
}

TEST_P(RecordedMachine, DisksGetTheirRates)
{
    const QVariantMap first = sample();
    EXPECT_EQ(first.value(QStringLiteral("DiskStatistics")).toList().size(), GetParam().disks);
    EXPECT_EQ(first.value(QStringLiteral("diskReadBytesPerSec")), QVariant::fromValue<qint64>(0));
    useDisks();
    const QVariantMap second = sample();
    const QVariantList disks = second.value(QStringLiteral("DiskStatistics")).toList();
    for (const QVariant &disk : disks) {
        EXPECT_EQ(longValueForKey(disk.toMap(), QStringLiteral("IODiskReadBytesPerSec")),
                  4096 * 512 / 2);
        EXPECT_EQ(longValueForKey(disk.toMap(), QStringLiteral("IODiskWrittenBytesPerSec")),
                  8192 * 512 / 2);
    }
    EXPECT_EQ(longValueForKey(second, QStringLiteral("diskReadBytesPerSec")),
              disks.size() * 4096 * 512 / 2);
}

TEST_P(RecordedMachine, TheKernelsInterfacesGiveSevenFigures)
{
    EXPECT_EQ(valueForKeyPath(sample(), u"NetStatistics").toMap().size(), 7);
}

INSTANTIATE_TEST_SUITE_P(Kinds, RecordedMachine,
                         ::testing::Values(Expected{"laptop", 4, 1}, Expected{"server", 8, 2},
                                           Expected{"board", 3, 1}, Expected{"vm", 2, 1},
                                           Expected{"container", 2, 0}, Expected{"desktop", 12, 2},
                                           Expected{"apple-laptop", 8, 1},
                                           Expected{"two-batteries", 4, 1}, Expected{"bare", 2, 1}),
                         [](const auto &kind) { return caseNameOf(kind.param.machine); });

} // namespace
} // namespace pulsebar
