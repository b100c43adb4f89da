#pragma once

#include <QString>
#include <QStringList>

namespace pulsebar {

/// Collects what is logged while it lives.
class LogCapture
{
public:
    LogCapture()
    {
        lines().clear();
        m_before = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context,
                                             const QString &message) {
            lines().append(QString::fromUtf8(context.category) + QStringLiteral(": ") + message);
        });
    }
    ~LogCapture() { qInstallMessageHandler(m_before); }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    static QStringList &lines()
    {
        static QStringList collected;
        return collected;
    }

private:
    QtMessageHandler m_before;
};

} // namespace pulsebar
