#pragma once

#include "platform/SmcTransport.h"

#include <QString>

namespace pulsebar {

/// The way to the SMC that the collectors share: opened for one sample, closed after it. That it
/// cannot be opened is said in the log, once until that changes; that there is none is not a fault,
/// and only said to who looks for faults.
class SmcLink
{
public:
    /// Open while it lives. What could not be opened fails at every reading.
    class Connection
    {
    public:
        explicit Connection(SmcLink &link);
        ~Connection();
        Connection(const Connection &) = delete;
        Connection &operator=(const Connection &) = delete;

        SmcTransport &transport() const { return m_link.m_transport; }

    private:
        SmcLink &m_link;
        bool m_opened;
    };

    /// @param transport outlives the link
    explicit SmcLink(SmcTransport &transport);

private:
    bool open();

    SmcTransport &m_transport;
    QString m_problem; ///< what was said last; empty = it can be opened
};

} // namespace pulsebar
