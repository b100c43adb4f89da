// Established TCP connections over loopback, for measuring what lists them.
//   connections COUNT CLIENTS ACTIVE
// A server process holds one end of each; CLIENTS processes share the other ends. ACTIVE of the
// connections carry a message each second. Says "ready", then makes one more connection for each
// line that it is sent (and says "made"). Everything ends with its standard input.
#include <arpa/inet.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <netinet/in.h>
#include <unistd.h>
#include <vector>

namespace {

[[noreturn]] void fail(const char *what)
{
    std::perror(what);
    std::exit(1);
}

void allowManyDescriptors()
{
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

sockaddr_in loopback(in_port_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = port;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int connectTo(in_port_t port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    // Nothing is to be left of it, for whoever measures next.
    const linger reset{1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    auto address = loopback(port);
    if (::connect(socket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
        fail("connections: connect");
    return socket;
}

[[noreturn]] void beClient(in_port_t port, int count, int active)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::vector<int> sockets;
    for (int i = 0; i < count; ++i)
        sockets.push_back(connectTo(port));
    const std::array<char, 500> message{};
    for (;;) {
        ::sleep(active > 0 ? 1 : 3600);
        for (int i = 0; i < active && i < count; ++i)
            ::send(sockets[static_cast<std::size_t>(i)], message.data(), message.size(),
                   MSG_DONTWAIT | MSG_NOSIGNAL);
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4)
        return 2;
    const int count = std::atoi(argv[1]);
    const int clients = std::atoi(argv[2]);
    const int active = std::atoi(argv[3]);
    allowManyDescriptors();
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    auto address = loopback(0);
    socklen_t size = sizeof address;
    if (::bind(listener, reinterpret_cast<sockaddr *>(&address), size) != 0 ||
        ::listen(listener, 4096) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size) != 0)
        fail("connections: listen");
    for (int i = 0; i < clients; ++i) {
        if (::fork() == 0)
            beClient(address.sin_port, count / clients, active / clients);
    }
    for (int i = 0; i < count / clients * clients; ++i) {
        if (::accept(listener, nullptr, nullptr) < 0)
            fail("connections: accept");
    }
    std::puts("ready");
    std::fflush(stdout);
    std::array<char, 16> line{};
    while (std::fgets(line.data(), line.size(), stdin)) {
        connectTo(address.sin_port);
        ::accept(listener, nullptr, nullptr);
        std::puts("made");
        std::fflush(stdout);
    }
    ::signal(SIGTERM, SIG_IGN);
    ::kill(0, SIGTERM);
}
