#include "platform/linux_/desktop/LinuxDesktop.h"

#include <QLoggingCategory>
#include <QProcess>
#include <QStandardPaths>

#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(lcOpen, "pulsebar.open")

class XdgUrlOpener : public UrlOpener
{
public:
    bool open(const QUrl &url) override
    {
        const QString program = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
        QProcess opener;
        opener.setProgram(program);
        opener.setArguments({QString::fromLatin1(url.toEncoded())});
        opener.setStandardInputFile(QProcess::nullDevice());
        opener.setStandardOutputFile(QProcess::nullDevice());
        // What it has to complain about, such as that there is no browser, goes to our own log.
        if (!program.isEmpty() && opener.startDetached())
            return true;
        if (!std::exchange(m_told, true))
            qCWarning(lcOpen, "Nothing can be opened: xdg-open is not installed or does not run.");
        return false;
    }

private:
    bool m_told = false;
};

} // namespace

std::unique_ptr<UrlOpener> makeUrlOpener()
{
    return std::make_unique<XdgUrlOpener>();
}

} // namespace pulsebar
