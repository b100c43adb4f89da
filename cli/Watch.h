#pragma once

#include "BusClient.h"
#include "WatchFormat.h"

#include <QObject>

namespace pulsebar::cli {

/// Prints one line per published sample until the program goes away or nobody reads the lines.
/// Ends the application's loop with the exit status.
class Watch : public QObject
{
    Q_OBJECT

public:
    Watch(const BusClient &client, WatchFormat &format);

    /// Subscribes and prints the format's header. @return whether both worked
    bool start();

private:
    Q_SLOT void printSample();
    Q_SLOT void stopWatching();

    const BusClient &m_client;
    WatchFormat &m_format;
};

} // namespace pulsebar::cli
