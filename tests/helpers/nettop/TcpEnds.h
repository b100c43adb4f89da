#pragma once

#include <sys/types.h>

#include <cstddef>
#include <netinet/in.h>
#include <string>

namespace pulsebar::nettop {

/// A socket that is closed with its owner.
class Socket
{
public:
    explicit Socket(int descriptor = -1)
        : m_descriptor(descriptor)
    {
    }
    ~Socket();
    Socket(Socket &&other) noexcept;
    Socket &operator=(Socket &&other) noexcept;
    Socket(const Socket &) = delete;
    Socket &operator=(const Socket &) = delete;

    int get() const { return m_descriptor; }
    void close();
    std::uint16_t port() const;
    /// The local address as reports write it, with the port.
    std::string name() const;

private:
    int m_descriptor;
};

/// Listens at an address ("127.0.0.1", "::1", "::") on a free port.
Socket listenAt(const std::string &address);
/// Connects to a port of an address.
Socket connectTo(const std::string &address, std::uint16_t port);
Socket acceptFrom(const Socket &listener);

/// Sends so many bytes from one end, takes them at the other, and waits until the sender knows that
/// they have arrived.
void transfer(const Socket &from, const Socket &to, std::size_t size);
/// Waits until all that was sent, an end included, is acknowledged.
void waitUntilSent(const Socket &socket);
/// Waits until the kernel has the connection in a state (TCP_ESTABLISHED, …).
void waitForState(const Socket &socket, int state);

/// Both ends of a connection.
struct Connection
{
    explicit Connection(const std::string &listenAddress = "127.0.0.1",
                        const std::string &connectAddress = "127.0.0.1");
    Socket listener;
    Socket client;
    Socket server;
};

} // namespace pulsebar::nettop
