#include "platform/linux_/desktop/LinuxDesktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QStringList>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace pulsebar {

namespace {

// Long enough for a file manager that has to be started first.
constexpr int patience = 10000; // milliseconds

/// The file manager that the session bus knows (freedesktop.org's File Manager D-Bus Interface).
class DBusFileViewer : public FileViewer
{
public:
    void showFile(const QString &path, std::function<void()> otherwise) override
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.FileManager1"),
            QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
        const QString address = QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
        message.setArguments({QStringList{address}, QString()});
        const QDBusPendingCall call = QDBusConnection::sessionBus().asyncCall(message, patience);
        // Without a bus nobody reports the end.
        if (call.isFinished() && call.isError()) {
            QTimer::singleShot(0, &m_calls, otherwise);
            return;
        }
        auto *watcher = new QDBusPendingCallWatcher(call, &m_calls);
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                         [watcher, otherwise = std::move(otherwise)] {
                             if (watcher->isError() && otherwise)
                                 otherwise();
                             watcher->deleteLater();
                         });
    }

private:
    QObject m_calls; ///< parent of those that have no answer yet
};

} // namespace

std::unique_ptr<FileViewer> makeFileViewer()
{
    return std::make_unique<DBusFileViewer>();
}

} // namespace pulsebar
