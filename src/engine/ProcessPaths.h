#pragma once

#include "engine/MonitorSources.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>

class QProcess;

namespace pulsebar {

/// Learns the paths of processes from ps, and finds their icons. A lookup never waits: the first
/// one of a process number starts a query, and its answer is there for the later ones. There is one
/// query per number, and one child at a time.
class ProcessPaths : public QObject
{
    Q_OBJECT

public:
    /// Takes the icon sources and the command from `sources`; what it points to must live longer.
    explicit ProcessPaths(const MonitorSources &sources, QObject *parent = nullptr);
    /// Ends the query that runs.
    ~ProcessPaths() override;

    /// By process number as text a record: "path" (QString) and, where one is known, "icon"
    /// (QString, a themed icon's name or an image file's path). An empty record stands for a query
    /// that runs, or that gave nothing. Nothing is ever removed: the next process of a number is
    /// shown with what was learned about the first.
    const QVariantMap &processPathDict() const { return m_processPathDict; }

    /// The record's value for "path" or "icon"; invalid when it is not there (yet).
    /// @param pid process number; what follows a "-" in it is left out
    QVariant dataForPID(const QString &pid, const QString &type);
    /// Queues a query and stores the empty record.
    void checkPathForPID(const QString &pid);
    /// Stores what ps has written; the record goes under the number that it printed.
    void readProcessPath(const QByteArray &report);

private:
    void startNext();
    void onFailedToStart();
    void finish(const QByteArray &report);
    QString iconFor(const QString &pid, const QString &path) const;

    ProcessIcons *m_icons;
    Workspace *m_workspace;
    PathQueryCommand m_command;
    QVariantMap m_processPathDict;
    QStringList m_waiting;
    QProcess *m_process = nullptr; ///< a child object
    bool m_failureReported = false;
};

} // namespace pulsebar
