#include "platform/linux_/desktop/LinuxDesktop.h"

#include <QByteArray>
#include <QFile>

namespace pulsebar {

namespace {

// A path is never longer.
constexpr qint64 longestPath = 4096;

class ProcCmdlineNames : public ProcessNames
{
public:
    QString programName(qint64 pid) const override
    {
        QFile file(QStringLiteral("/proc/%1/cmdline").arg(pid));
        if (!file.open(QIODevice::ReadOnly)) {
            return {};
        }
        const QByteArray text = file.read(longestPath);
        const QByteArray program = text.left(text.indexOf('\0'));
        return QString::fromLocal8Bit(program.mid(program.lastIndexOf('/') + 1));
    }
};

} // namespace

std::unique_ptr<ProcessNames> makeProcessNames()
{
    return std::make_unique<ProcCmdlineNames>();
}

} // namespace pulsebar
